#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "c/Boundary.h"
#include "c/Callbacks.h"
#include "c/tavlo_types.h"

namespace tavlo::c {
namespace {

// No struct of the interface is anywhere near; a size beyond it was never set.
constexpr std::size_t kLargestStruct = 4096;

}  // namespace

void copySized(void* to, std::size_t known, std::size_t least, const void* from, const char* what) {
  std::size_t size = 0;
  std::memcpy(&size, from, sizeof size);
  if (size < least || size > kLargestStruct || size % sizeof(void*) != 0) {
    throw Misuse("the size of the " + std::string(what) + " is " + std::to_string(size) + "; set it to sizeof");
  }
  const auto* const bytes = static_cast<const unsigned char*>(from);
  if (size > known && !std::all_of(bytes + known, bytes + size, [](unsigned char byte) { return byte == 0; })) {
    throw Misuse("the " + std::string(what) + " is of a newer version: beyond the " + std::to_string(known) +
                 " bytes that this library knows, only zeros may follow");
  }
  std::memcpy(to, from, std::min(size, known));
}

void throwCallbackThrew() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& thrown) {
    throw CallbackThrew(std::string("a callback threw: ") + thrown.what());
  } catch (...) {
    throw CallbackThrew("a callback threw");
  }
}

void Answer::set(tavlo_text text) {
  try {
    text_ = textOf(text, "the answer");
  } catch (const std::bad_alloc&) {
    noMemory_ = true;
    throw;
  }
}

}  // namespace tavlo::c

int32_t tavlo_version_number(void) { return TAVLO_VERSION_NUMBER; }
const char* tavlo_version(void) { return TAVLO_VERSION; }

void tavlo_string_free(tavlo_string* string) {
  if (!string) return;
  ::operator delete(string->data);
  *string = {.data = nullptr, .size = 0};
}

const char* tavlo_last_error(void) { return tavlo::c::lastError(); }

tavlo_status tavlo_answer_text(tavlo_answer* answer, tavlo_text text) {
  return tavlo::c::guarded(__func__, [&] {
    tavlo::c::require(answer, "the answer");
    tavlo::c::Answer::of(answer).set(text);
  });
}
