// How often the request path asks for memory. The counting operator new is this whole program's.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "TavloUtility.h"
#include "request/PackageReads.h"

namespace {

std::atomic<int> allocations = 0;

}  // namespace

// None is inlined, or the compiler takes malloc and delete, or new and free, for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
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

}  // namespace
}  // namespace tavlo
