// The settings store over a file of any bytes: it answers what lies in the file, a damaged one counts as empty and is
// kept beside, and whatever was read is still there after the next set.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/PropertyList.h"
#include "fuzz/Promise.h"
#include "platform/Console.h"
#include "platform/linux/Container.h"
#include "platform/linux/SettingsStore.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using namespace tavlo;
using fuzz::require;
using linux_platform::Container;
using linux_platform::SettingsStore;

constexpr std::string_view kKey = "ApplicationId";

class Lines final : public platform::Console {
 public:
  void log(std::string_view message) override { lines_.emplace_back(message); }
  [[nodiscard]] std::size_t size() const { return lines_.size(); }

 private:
  std::vector<std::string> lines_;
};

// Nothing here outlives the process, so nothing waits for the disk.
class QuickSyscalls final : public linux_platform::Syscalls {
 public:
  int fsync(int /*fd*/) override { return 0; }
};

struct World {
  test::TemporaryFolder folder;
  Container container = *Container::locate(folder / "box", "app");
  QuickSyscalls syscalls;

  [[nodiscard]] std::filesystem::path file() const { return container.settingsFile(); }
  [[nodiscard]] std::filesystem::path damaged() const { return file().string() + ".damaged"; }

  [[nodiscard]] SettingsStore store(Lines& lines) { return SettingsStore(container, lines, syscalls); }

  void put(const std::string& bytes) const {
    std::filesystem::create_directories(container.preferences());
    std::filesystem::remove(damaged());
    test::writeFile(file(), bytes);
  }
};

std::optional<ValueMap> entriesOf(const std::string& bytes) {
  const auto decoded = property_list::decode(bytes);
  if (!decoded.value || !decoded.value->ifMap()) return std::nullopt;
  return *decoded.value->ifMap();
}

std::optional<Value> valueIn(const std::optional<ValueMap>& entries, std::string_view key) {
  const Value* const value = entries ? entries->find(key) : nullptr;
  return value ? std::optional(*value) : std::nullopt;
}

void checkReading(World& world, const std::optional<ValueMap>& entries, const std::string& bytes) {
  Lines lines;
  SettingsStore store = world.store(lines);
  require(store.objectForKey(kKey) == valueIn(entries, kKey), "the answer is what lies in the file");
  require(store.objectForKey("k") == valueIn(entries, "k"), "each key has its own answer");
  require(store.synchronize(), "without a change there is nothing to fail");
  require(lines.size() == (entries ? 0 : 1), "damage is told once, and nothing else is");
  require(test::readFile(world.file()) == bytes, "reading leaves the file alone");
}

void checkSetting(World& world, ValueMap entries, bool damaged, const std::string& bytes) {
  Lines lines;
  SettingsStore store = world.store(lines);
  store.setObjectForKey("new", kKey);
  require(store.synchronize(), "over a file of any bytes can be written");
  require(lines.size() == (damaged ? 1 : 0), "damage is told once, and nothing else is");
  require(test::readFile(world.damaged()) == (damaged ? bytes : ""), "a damaged file is kept beside, no other one");
  require(std::filesystem::is_empty(world.container.temporary()), "no temporary file stays");

  entries.set(Value(kKey), "new");
  const auto written = entriesOf(test::readFile(world.file()));
  require(written.has_value(), "what was written is whole");
  require(Value::map(*written) == Value::map(entries), "what was read is kept beside what was set");

  Lines none;
  SettingsStore later = world.store(none);
  require(later.objectForKey(kKey) == Value("new"), "what was set is there for the next one");
  require(none.size() == 0, "what was written is not damaged");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static World world;
  const std::string bytes(fuzz::textOf(data, size));
  const auto entries = entriesOf(bytes);
  world.put(bytes);
  checkReading(world, entries, bytes);
  checkSetting(world, entries.value_or(ValueMap()), !entries, bytes);
  return 0;
}
