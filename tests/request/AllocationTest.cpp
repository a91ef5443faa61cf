// How often the request path asks for memory. The counting operator new is this whole program's.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "TavloUtility.h"
#include "request/PackageReads.h"
#include "request/UrlEncode.h"

namespace {

std::atomic<int> allocations = 0;
std::atomic<std::size_t> lastAllocation = 0;  // bytes

}  // namespace

// None is inlined, or the compiler takes malloc and delete, or new and free, for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  lastAllocation = size;
  if (void* const memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace tavlo {
namespace {

// Short values, which no text needs memory for.
class ShortPackage final : public TavloPackage {
#define TAVLO_OVERRIDE(name) \
  Text name() const override { return "a & b"; }
  TAVLO_PACKAGE_TEXT_READS(TAVLO_OVERRIDE)
#undef TAVLO_OVERRIDE
  bool limitAdTrackingEnabled() const override { return true; }
  std::int32_t resolution() const override { return 1; }
  std::int32_t preRoll() const override { return 2; }
  void setLatitudeAndLogitude(const Text&, const Text&) override {}
  void setUserAddress(const Text&) override {}
};

TEST(AllocationTest, AQueryIsBuiltInOneBufferWithoutATextForEachPair) {
  TavloPackage::install(std::make_shared<ShortPackage>());
  for (std::string (*request)() :
       {+[] { return TavloUtility::getAdditionalRequestingString(); },
        &TavloUtility::getInAppNotificationAdditionalRequest, &TavloUtility::getUserInfoRequestString}) {
    static_cast<void>(request());  // slots are made on first use
    const int before = allocations;

    const std::string query = request();

    EXPECT_EQ(allocations - before, 1) << query;
  }
}

// Short texts, keys and numbers lie in the values themselves; what is left are the map, its entries and the list.
TEST(AllocationTest, ATrackerPayloadOfShortValuesIsThreeAllocations) {
  TavloPackage::install(std::make_shared<ShortPackage>());
  static_cast<void>(TavloUtility::trackerNetworkSessionData());  // slots are made on first use
  const int before = allocations;

  const Value payload = TavloUtility::trackerNetworkSessionData();

  EXPECT_EQ(allocations - before, 3);
  EXPECT_EQ(payload.ifMap()->size(), 35U);
}

TEST(AllocationTest, ALongTextIsOneAllocationAndAShortOneALiteralACopyOrAMoveNone) {
  const std::string text(100, 'x');
  const auto allocationsOf = [](auto make) {
    const int before = allocations;
    const Value value = make();
    return allocations - before;
  };
  const Value kept(text);

  EXPECT_EQ(allocationsOf([&] { return Value(text); }), 1);
  EXPECT_EQ(allocationsOf([&] { return Value::data(text); }), 1);
  EXPECT_EQ(allocationsOf([&] { return Value(text.substr(0, 15)); }), 0);
  EXPECT_EQ(allocationsOf([&] { return Value(std::string_view(text).substr(0, 22)); }), 0);
  EXPECT_EQ(allocationsOf([&] { return Value(std::string_view(text).substr(0, 23)); }), 1);
  EXPECT_EQ(allocationsOf([&] { return Value::literal(text); }), 0);
  EXPECT_EQ(allocationsOf([&] { return kept; }), 0);
  EXPECT_EQ(allocationsOf([] { return Value(7); }), 0);
  EXPECT_EQ(allocationsOf([] { return Value::list({}); }), 1);
}

// Every character and every escape counts alike, wherever it stands in a long text.
TEST(AllocationTest, AnEncodedTextIsOneAllocationOfItsSizeAndAShortOneIsNone) {
  const std::string kinds = "azAZ09-._~ /:@[`{,^\x7F\x80\xDF\xFF%";
  for (std::size_t length = 0; length <= 1000; ++length) {
    Text text(std::in_place);
    for (std::size_t i = 0; i < length; ++i) *text += kinds[(i * i + i / 7) % kinds.size()];
    const int before = allocations;

    const Text encoded = urlEncode(text);

    const int expected = encoded->size() > 15 ? 1 : 0;
    EXPECT_EQ(allocations - before, expected) << length;
    if (length > 240) {
      EXPECT_EQ(lastAllocation, encoded->size() + 1) << length;
    }
  }
}

}  // namespace
}  // namespace tavlo
