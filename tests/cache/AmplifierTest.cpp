// Files of a mebibyte that say as much as they can with each byte. What decoding them takes is counted by operator new
// and delete, which are this whole program's.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <new>
#include <string>

#include "cache/KeyedArchive.h"
#include "tests/cache/ArchiveBytes.h"
#include "tests/support/CaseName.h"
#include "tests/support/Scale.h"

namespace {

std::atomic<std::size_t> held = 0;  // bytes
std::atomic<std::size_t> most = 0;

constexpr std::size_t kHead = alignof(std::max_align_t);  // before each block, for its size

void release(void* memory) {
  if (memory == nullptr) return;
  void* const block = static_cast<char*>(memory) - kHead;
  held -= *static_cast<std::size_t*>(block);
  std::free(block);
}

}  // namespace

// None is inlined, or the compiler takes malloc and delete, or new and free, for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const block = std::malloc(size + kHead);
  if (block == nullptr) throw std::bad_alloc();
  *static_cast<std::size_t*>(block) = size;
  most = std::max<std::size_t>(most, held += size);
  return static_cast<char*>(block) + kHead;
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { release(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { release(memory); }

namespace tavlo {
namespace {

constexpr std::size_t kMebibyte = 1U << 20U;

std::string listOf(std::size_t count) { return test::propertyListBytes(Value::list(ValueList(count, "x"))); }

std::string setOf(std::size_t count) { return test::propertyListBytes(Value::set(ValueList(count, 7))); }

std::string listsOfLists(std::size_t width) {
  Value value = "x";
  for (int level = 0; level < 500; ++level) value = Value::list(ValueList(width, value));
  return test::propertyListBytes(value);
}

std::string pairOfPairs(int levels) {
  Value value = "x";
  for (int level = 0; level < levels; ++level) value = Value::list({value, value});
  return test::propertyListBytes(value);
}

std::string archivedListOf(std::size_t count) {
  const Value items = Value::list(ValueList(count, test::uid(3)));
  return test::archiveBytes(
      {Value::map({{"NS.objects", items}, {"$class", test::uid(2)}}), test::classObject("NSArray"), "x"});
}

std::string archivedListsOfLists(std::size_t width) {
  constexpr std::uint64_t kLevels = 500;
  ValueList objects;
  for (std::uint64_t number = 1; number <= kLevels; ++number) {
    const Value items = Value::list(ValueList(width, test::uid(number == kLevels ? 0 : number + 1)));
    objects.push_back(Value::map({{"NS.objects", items}, {"$class", test::uid(kLevels + 1)}}));
  }
  objects.push_back(test::classObject("NSArray"));
  return test::archiveBytes(objects);
}

struct Case {
  const char* name;
  std::string (*made)();  // in the test alone: listing the tests must be quick
  bool isArchive;
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }

class Amplifier : public testing::TestWithParam<Case> {};

TEST_P(Amplifier, TakesNoMoreMemoryThanItsSizeAllows) {
  const auto& [name, made, isArchive] = GetParam();
  const std::string bytes = made();
  ASSERT_LE(bytes.size(), kMebibyte);
  const std::size_t before = held;
  most = before;
  const std::clock_t start = std::clock();

  const std::optional<Value> value = isArchive ? keyed_archive::decode(bytes) : property_list::decode(bytes).value;

  const std::clock_t ticks = std::clock() - start;
  const std::size_t peak = most - before;
  EXPECT_TRUE(value);
  EXPECT_LT(peak, 64 * kMebibyte);
  test::reached("T9e " + std::string(name), std::to_string(bytes.size()) + " bytes, " +
                                                std::to_string(ticks * 1000 / CLOCKS_PER_SEC) + " ms, " +
                                                std::to_string(peak / kMebibyte) + " MiB");
}

INSTANTIATE_TEST_SUITE_P(Of, Amplifier,
                         testing::Values(Case{"List", [] { return listOf(kMebibyte - 100); }, false},
                                         Case{"Set", [] { return setOf(kMebibyte - 100); }, false},
                                         Case{"ListsOfLists", [] { return listsOfLists(1000); }, false},
                                         Case{"ThirtyPairsOfPairs", [] { return pairOfPairs(30); }, false},
                                         Case{"ArchivedList", [] { return archivedListOf(kMebibyte - 400); }, true},
                                         Case{"ArchivedListsOfLists", [] { return archivedListsOfLists(1000); }, true}),
                         test::kCaseName);

}  // namespace
}  // namespace tavlo
