// Any bytes end in a value or an error. A value can be written, and comes back the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "common/PropertyList.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavlo::property_list;
  const auto require = [](bool holds) {
    if (!holds) std::abort();
  };

  const Decoded decoded = decode({reinterpret_cast<const char*>(data), size});
  require(decoded.value.has_value() == decoded.error.empty());
  if (!decoded.value) return 0;

  const auto bytes = encode(*decoded.value);
  require(bytes.has_value());
  const Decoded again = decode(*bytes);
  require(again.value == decoded.value);
  require(encode(*again.value) == bytes);
  return 0;
}
