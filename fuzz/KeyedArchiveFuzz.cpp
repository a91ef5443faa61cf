// Any bytes end in a value or an ArchiveError. A value can be written, and comes back the same; only one that
// repeats more text than an archive without the input's ballast may is refused.
#include <optional>
#include <string>
#include <string_view>

#include "cache/KeyedArchive.h"
#include "fuzz/Promise.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavlo;
  using fuzz::require;

  std::optional<Value> value;
  std::string bytes;
  try {
    value = keyed_archive::decode(fuzz::textOf(data, size));
  } catch (const ArchiveError& error) {
    require(!std::string_view(error.what()).empty(), "an error says what is wrong");
    return 0;
  }
  try {
    bytes = keyed_archive::encode(value);
  } catch (const ArchiveError& error) {
    require(std::string_view(error.what()) == "the archive to be has too many URLs and class names for its size",
            "what was read can be written");
    return 0;
  }
  const std::optional<Value> again = keyed_archive::decode(bytes);
  require(again == value, "what was written is what was read");
  require(keyed_archive::encode(again) == bytes, "equal values are equal bytes");
  return 0;
}
