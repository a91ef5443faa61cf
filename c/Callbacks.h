// Callbacks: a host's table, copied and checked; and what its callbacks answer with.
//
// Values   tables begin with `size`, `user` and `released`. What a shorter table lacks is a null pointer.
// Threads  a table never changes; `released` is called by whoever is the last to let go of it.
// Throws   the constructor: Misuse, for a table that is none.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "c/Boundary.h"
#include "c/tavlo_host.h"
#include "c/tavlo_platform.h"

namespace tavlo::c {

// Copies a struct that begins with its size to one of `known` bytes, all zero, of this library's. Throws Misuse, which
// calls it `what`, when it is shorter than `least`, or longer and not zero in what is not known.
void copySized(void* to, std::size_t known, std::size_t least, const void* from, const char* what);

template <class Struct>
[[nodiscard]] Struct sizedCopy(const Struct& given, const char* what, std::size_t least = sizeof(std::size_t)) {
  static_assert(std::is_trivially_copyable_v<Struct> && offsetof(Struct, size) == 0);
  Struct copy{};
  copySized(&copy, sizeof copy, least, &given, what);
  return copy;
}

// Within a handler of what a callback threw: throws CallbackThrew with its text, or std::bad_alloc again.
[[noreturn]] void throwCallbackThrew();

template <class Table>
class Callbacks {
 public:
  explicit Callbacks(const Table& given, const char* what)
      : table_(sizedCopy(given, what, offsetof(Table, released) + sizeof(given.released))) {}
  Callbacks(const Callbacks&) = delete;
  Callbacks& operator=(const Callbacks&) = delete;
  ~Callbacks() {
    if (!installed_ || !table_.released) return;
    try {
      table_.released(table_.user);
    } catch (...) {  // of a host in C++
      static_cast<void>(statusOfHandled("released"));
    }
  }

  // From now on the table is released at the end; one that could not be installed is its host's still.
  void installed() noexcept { installed_ = true; }

  // Calls one of them, if it is there; else, and for a callback without a result, gives a value of zeros.
  template <class Result, class... Parameters, class... Arguments>
  Result call(Result (*Table::*callback)(void*, Parameters...), Arguments&&... arguments) const {
    const auto function = table_.*callback;
    if (!function) return Result();
    try {
      return function(table_.user, std::forward<Arguments>(arguments)...);
    } catch (...) {  // of a host in C++
      throwCallbackThrew();
    }
  }
  [[nodiscard]] bool has(auto callback) const { return table_.*callback != nullptr; }

 private:
  const Table table_;
  bool installed_ = false;
};

// What one callback answers. After the callback, throws std::bad_alloc when there was no memory for it.
class Answer {
 public:
  [[nodiscard]] tavlo_answer* handle() { return reinterpret_cast<tavlo_answer*>(this); }
  [[nodiscard]] static Answer& of(tavlo_answer* handle) { return *reinterpret_cast<Answer*>(handle); }

  void set(tavlo_text text);
  [[nodiscard]] Text taken() {
    if (noMemory_) throw std::bad_alloc();
    return std::move(text_);
  }

 private:
  Text text_;
  bool noMemory_ = false;
};

// The answer of a callback whose last parameter it is; absent when there is no such callback.
template <class Table, class... Parameters, class... Arguments>
[[nodiscard]] Text answerOf(const Callbacks<Table>& callbacks, void (*Table::*callback)(void*, Parameters...),
                            Arguments&&... arguments) {
  Answer answer;
  callbacks.call(callback, std::forward<Arguments>(arguments)..., answer.handle());
  return answer.taken();
}

// Several things that one callback adds, one a call.
template <class Item, class Handle>
class Added {
 public:
  [[nodiscard]] Handle* handle() { return reinterpret_cast<Handle*>(this); }
  [[nodiscard]] static Added& of(Handle* handle) { return *reinterpret_cast<Added*>(handle); }

  template <class Maker>
  void add(const Maker& maker) {
    try {
      items_.push_back(maker());
    } catch (const std::bad_alloc&) {
      noMemory_ = true;
      throw;
    }
  }
  [[nodiscard]] std::vector<Item> taken() {
    if (noMemory_) throw std::bad_alloc();
    return std::move(items_);
  }

 private:
  std::vector<Item> items_;
  bool noMemory_ = false;
};

}  // namespace tavlo::c
