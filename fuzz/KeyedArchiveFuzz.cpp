// Any bytes end in a value or an ArchiveError. A value can be written, and comes back the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "cache/KeyedArchive.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavlo;
  const auto require = [](bool holds) {
    if (!holds) std::abort();
  };

  std::optional<Value> value;
  try {
    value = keyed_archive::decode({reinterpret_cast<const char*>(data), size});
  } catch (const ArchiveError& error) {
    require(!std::string_view(error.what()).empty());
    return 0;
  }
  const std::string bytes = keyed_archive::encode(value);
  const std::optional<Value> again = keyed_archive::decode(bytes);
  require(again == value);
  require(keyed_archive::encode(again) == bytes);
  return 0;
}
