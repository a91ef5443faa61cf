// Boundary: what stands between C and the component. No exception gets past it; each becomes a status and an error
// text.
//
// Threads  the error text is the calling thread's own.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "c/tavlo_value.h"
#include "common/Text.h"
#include "common/Value.h"

namespace tavlo::c {

// An argument that no call may have. Says which, and what is allowed.
class Misuse : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// What a callback written in C++ threw, whatever its kind: no fault of the caller's. Lack of memory stays what it is.
class CallbackThrew : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The exception reporter's own failure, which passes through the operation that reported.
class ReporterFailed : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Bytes that are no archive or property list, or a value that none can hold.
class NoArchive : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Within a handler: what is being handled, as a status; its text becomes the thread's error. `function` is what the
// caller called.
[[nodiscard]] tavlo_status statusOfHandled(const char* function) noexcept;
[[nodiscard]] const char* lastError() noexcept;

template <class Work>
[[nodiscard]] tavlo_status guarded(const char* function, const Work& work) noexcept {
  try {
    work();
    return TAVLO_OK;
  } catch (...) {
    return statusOfHandled(function);
  }
}

// The handle that the work makes, nullptr when it throws.
template <class Work>
[[nodiscard]] auto made(const char* function, const Work& work) noexcept -> decltype(work()) {
  try {
    return work();
  } catch (...) {
    static_cast<void>(statusOfHandled(function));
    return nullptr;
  }
}

// Each throws Misuse, with `what` in its message, for what is none.
void require(const void* pointer, const char* what);
[[nodiscard]] Text textOf(tavlo_text text, const char* what);
[[nodiscard]] std::string_view viewOf(tavlo_text text, const char* what);  // absent is misuse, too

[[nodiscard]] inline tavlo_text borrowed(std::string_view text) { return {.data = text.data(), .size = text.size()}; }
[[nodiscard]] inline tavlo_text borrowed(const Text& text) {
  return text ? borrowed(std::string_view(*text)) : tavlo_text{.data = nullptr, .size = 0};
}

void give(tavlo_string& result, const Text& text);

// An operation whose result is a text.
template <class Operation>
[[nodiscard]] tavlo_status givingText(const char* function, tavlo_string* result, const Operation& operation) noexcept {
  if (result) *result = {.data = nullptr, .size = 0};
  return guarded(function, [&] {
    require(result, "the result");
    give(*result, operation());
  });
}

// Handles are pointers to what they stand for.
[[nodiscard]] inline const Value* valueOf(const tavlo_value* handle) { return reinterpret_cast<const Value*>(handle); }
[[nodiscard]] inline const tavlo_value* handleOf(const Value* value) {
  return reinterpret_cast<const tavlo_value*>(value);
}
[[nodiscard]] inline tavlo_value* ownedHandle(Value value) {
  return reinterpret_cast<tavlo_value*>(new Value(std::move(value)));
}
[[nodiscard]] inline std::optional<Value> optionalValue(const tavlo_value* handle) {
  return handle ? std::optional(*valueOf(handle)) : std::nullopt;
}

// An operation whose result is a value that may be absent.
template <class Operation>
[[nodiscard]] tavlo_status givingValue(const char* function, tavlo_value** result,
                                       const Operation& operation) noexcept {
  if (result) *result = nullptr;
  return guarded(function, [&] {
    require(result, "the result");
    std::optional<Value> value = operation();
    if (value) *result = ownedHandle(*std::move(value));
  });
}

}  // namespace tavlo::c
