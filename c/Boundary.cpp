#include "c/Boundary.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <exception>
#include <new>

#include "cache/KeyedArchive.h"

namespace tavlo::c {
namespace {

constexpr std::size_t kLongestError = 1000;

// Of each thread its own, and no object: a thread's end and the closing of the library find nothing to destroy.
thread_local constinit std::array<char, kLongestError + 1> error{};

class ErrorText {
 public:
  explicit ErrorText(const char* function) {
    add(function);
    add(": ");
  }
  ~ErrorText() { error[size_] = '\0'; }
  ErrorText(const ErrorText&) = delete;
  ErrorText& operator=(const ErrorText&) = delete;

  void add(std::string_view text) {
    const std::size_t taken = std::min(text.size(), kLongestError - size_);
    std::copy_n(text.data(), taken, error.data() + size_);
    size_ += taken;
  }

 private:
  std::size_t size_ = 0;
};

tavlo_status told(const char* function, tavlo_status status, std::string_view what) {
  ErrorText(function).add(what);
  return status;
}

// Such a size is a negative number's, or was never set.
void checkSize(tavlo_text text, const char* what) {
  if (text.size > PTRDIFF_MAX) throw Misuse("the size of " + std::string(what) + " is beyond that of any text");
}

}  // namespace

tavlo_status statusOfHandled(const char* function) noexcept {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return told(function, TAVLO_NO_MEMORY, "no memory left");
  } catch (const std::length_error&) {
    return told(function, TAVLO_NO_MEMORY, "longer than memory can be");
  } catch (const NoArchive& failure) {
    return told(function, TAVLO_NO_ARCHIVE, failure.what());
  } catch (const ArchiveError& failure) {
    return told(function, TAVLO_NO_ARCHIVE, failure.what());
  } catch (const ReporterFailed& failure) {
    return told(function, TAVLO_REPORTED, failure.what());
  } catch (const std::invalid_argument& failure) {
    return told(function, TAVLO_MISUSE, failure.what());
  } catch (const std::exception& failure) {
    return told(function, TAVLO_FAILED, failure.what());
  } catch (...) {
    return told(function, TAVLO_FAILED, "what is not known");
  }
}

const char* lastError() noexcept { return error.data(); }

void require(const void* pointer, const char* what) {
  if (!pointer) throw Misuse(std::string(what) + " must not be a null pointer");
}

Text textOf(tavlo_text text, const char* what) {
  checkSize(text, what);
  if (text.data) return std::string(text.data, text.size);
  if (text.size == 0) return std::nullopt;
  throw Misuse("the data of " + std::string(what) + " is a null pointer, but its size is " + std::to_string(text.size));
}

std::string_view viewOf(tavlo_text text, const char* what) {
  if (!text.data) throw Misuse(std::string(what) + " must not be absent");
  checkSize(text, what);
  return {text.data, text.size};
}

void give(tavlo_string& result, const Text& text) {
  if (!text) return;
  char* const copy = static_cast<char*>(::operator new(text->size() + 1));
  std::memcpy(copy, text->c_str(), text->size() + 1);
  result = {.data = copy, .size = text->size()};
}

}  // namespace tavlo::c
