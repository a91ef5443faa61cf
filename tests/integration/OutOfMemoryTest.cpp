// Each operation without memory, at every place where its caller's thread asks for some: it succeeds or throws
// std::bad_alloc, what it was about is as before or as after it, and the next call is right.
#include <gtest/gtest.h>

#include <algorithm>
#include <new>

#include "tests/integration/OutOfMemoryOperations.h"
#include "tests/support/CaseName.h"
#include "tests/support/Scale.h"

namespace tavlo::test {
namespace {

using Lasts = OutOfMemory::Lasts;

constexpr int kPlenty = -1;

class OutOfMemoryIn : public testing::TestWithParam<OutOfMemoryOperation> {
 protected:
  void prepare() {
    world_.restart();
    GetParam().prepare(world_);
  }
  [[nodiscard]] std::string state() { return GetParam().state(world_); }
  [[nodiscard]] Value call() {
    Attempt attempt(kPlenty, Lasts::once);
    return GetParam().call(world_, attempt);
  }

  // False: there was memory enough.
  bool runOutAfter(int allocations, Lasts lasts, const Value& answer) {
    const auto& states = GetParam().states;
    Attempt attempt(allocations, lasts);
    prepare();
    try {
      const Value answered = GetParam().call(world_, attempt);
      EXPECT_EQ(answered, answer);
      EXPECT_EQ(state(), states.back());
    } catch (const std::bad_alloc&) {
      EXPECT_TRUE(attempt.ranOut());
      const std::string found = state();
      EXPECT_EQ(std::count(states.begin(), states.end(), found), 1) << found;
    }
    return attempt.ranOut();
  }

  OutOfMemoryWorld world_;
};

INSTANTIATE_TEST_SUITE_P(All, OutOfMemoryIn, testing::ValuesIn(outOfMemoryOperations()), kCaseName);

TEST_P(OutOfMemoryIn, SucceedsOrThrowsAndLeavesAllOfItsBeforeOrAfter) {
  prepare();
  ASSERT_EQ(state(), GetParam().states.front());
  const Value answer = call();
  ASSERT_EQ(state(), GetParam().states.back());
  if (GetParam().answer != Value()) {
    ASSERT_EQ(answer, GetParam().answer) << (answer.ifText() ? *answer.ifText() : "no text");
  }
  int failures = 0;
  for (const Lasts lasts : {Lasts::once, Lasts::toTheEnd}) {
    for (int allocations = 0;; ++allocations, ++failures) {
      SCOPED_TRACE(testing::Message() << allocations << " allocations"
                                      << (lasts == Lasts::once ? ", then one not" : ""));

      if (!runOutAfter(allocations, lasts, answer)) break;

      GetParam().prepare(world_);
      EXPECT_EQ(call(), answer);
      EXPECT_EQ(state(), GetParam().states.back());
    }
  }
  reached("T13", std::to_string(failures) + " allocations that failed");
}

}  // namespace
}  // namespace tavlo::test
