// Any bytes end in a value or an error. A value can be written, and comes back the same.
#include "common/PropertyList.h"
#include "fuzz/Promise.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavlo::property_list;
  using tavlo::fuzz::require;

  const Decoded decoded = decode(tavlo::fuzz::textOf(data, size));
  require(decoded.value.has_value() == decoded.error.empty(), "a value or an error");
  if (!decoded.value) return 0;

  const auto bytes = encode(*decoded.value);
  require(bytes.has_value(), "what was read can be written");
  const Decoded again = decode(*bytes);
  require(again.value == decoded.value, "what was written is what was read");
  require(encode(*again.value) == bytes, "equal values are equal bytes");
  return 0;
}
