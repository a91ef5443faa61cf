#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "common/Slot.h"

namespace tavlo {
namespace {

// Counts itself, and reads the slot that it is leaving.
struct Counted {
  explicit Counted(Slot<Counted>* slot = nullptr) : slot_(slot) { ++made; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() {
    if (slot_) static_cast<void>(slot_->load());
    ++destroyed;
  }
  static inline std::atomic<int> made = 0;
  static inline std::atomic<int> destroyed = 0;

 private:
  Slot<Counted>* slot_;
};

class SlotTest : public testing::Test {
 protected:
  void SetUp() override { Counted::made = Counted::destroyed = 0; }
};

TEST_F(SlotTest, IsEmptyAtFirstAndHoldsTheLastObject) {
  Slot<Counted> slot;
  EXPECT_EQ(slot.load(), nullptr);

  const auto first = std::make_shared<Counted>();
  const auto second = std::make_shared<Counted>();
  slot.store(first);
  slot.store(second);

  EXPECT_EQ(slot.load(), second);
  EXPECT_EQ(first.use_count(), 1);
}

TEST_F(SlotTest, ExchangeGivesWhatWasThere) {
  Slot<Counted> slot;
  const auto first = std::make_shared<Counted>();

  EXPECT_EQ(slot.exchange(first), nullptr);
  EXPECT_EQ(slot.exchange(nullptr), first);
  EXPECT_EQ(slot.load(), nullptr);
}

TEST_F(SlotTest, FillKeepsWhatIsThere) {
  Slot<Counted> slot;
  const auto first = std::make_shared<Counted>();

  EXPECT_EQ(slot.fill(first), first);
  EXPECT_EQ(slot.fill(std::make_shared<Counted>()), first);
  EXPECT_EQ(Counted::destroyed, 1);
}

TEST_F(SlotTest, AnObjectMayUseTheSlotWhileItIsDestroyed) {
  Slot<Counted> slot;
  slot.store(std::make_shared<Counted>(&slot));

  slot.store(nullptr);

  EXPECT_EQ(Counted::destroyed, 1);
}

TEST_F(SlotTest, EachObjectIsDestroyedOnceHoweverManyThreadsReplaceIt) {
  Slot<Counted> slot;
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < 64; ++t) {
      threads.emplace_back([&] {
        for (int i = 0; i < 500; ++i) {
          slot.store(std::make_shared<Counted>(&slot));
          EXPECT_NE(slot.load(), nullptr);
        }
      });
    }
  }

  EXPECT_EQ(Counted::destroyed, 64 * 500 - 1);
  slot.store(nullptr);
  EXPECT_EQ(Counted::made, 64 * 500);
  EXPECT_EQ(Counted::destroyed, 64 * 500);
}

TEST_F(SlotTest, AReaderGivesWhatTheSlotHoldsAtEachRead) {
  Slot<Counted> slot;
  SlotReader reader(slot);
  EXPECT_EQ(reader.read(), nullptr);

  const auto first = slot.fill(std::make_shared<Counted>());
  EXPECT_EQ(reader.read(), first.get());
  EXPECT_EQ(reader.read(), first.get());

  const auto second = std::make_shared<Counted>();
  slot.store(second);
  EXPECT_EQ(reader.read(), second.get());

  slot.store(nullptr);
  EXPECT_EQ(reader.read(), nullptr);
}

TEST_F(SlotTest, AReaderGivesWhatWasThereBeforeIt) {
  Slot<Counted> slot;
  const auto first = slot.fill(std::make_shared<Counted>());

  EXPECT_EQ(SlotReader(slot).read(), first.get());
}

TEST_F(SlotTest, AReaderKeepsWhatItReadAliveUntilTheNextRead) {
  Slot<Counted> slot;
  slot.store(std::make_shared<Counted>(&slot));
  SlotReader reader(slot);
  static_cast<void>(reader.read());

  slot.store(nullptr);
  EXPECT_EQ(Counted::destroyed, 0);

  EXPECT_EQ(reader.read(), nullptr);
  EXPECT_EQ(Counted::destroyed, 1);
}

TEST_F(SlotTest, AReaderThatEndsLeavesNothingAlive) {
  Slot<Counted> slot;
  slot.store(std::make_shared<Counted>(&slot));
  {
    SlotReader reader(slot);
    static_cast<void>(reader.read());
    slot.store(nullptr);
  }

  EXPECT_EQ(Counted::destroyed, 1);
}

// An object that knows when it was stored.
struct Stored {
  int number = 0;
};

TEST_F(SlotTest, AThreadsReaderNeverFallsBehindWhatItsThreadKnowsToBeStored) {
  constexpr int kStores = 20'000;
  Slot<const Stored> slot;
  std::atomic<int> stored = 0;
  slot.store(std::make_shared<const Stored>());

  std::vector<std::jthread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      SlotReader reader(slot);
      for (int known = 0; known < kStores;) {
        known = stored;
        EXPECT_GE(reader.read()->number, known);
      }
    });
  }
  for (int i = 1; i <= kStores; ++i) {
    slot.store(std::make_shared<const Stored>(Stored{i}));
    stored = i;
  }
}

}  // namespace
}  // namespace tavlo
