// Where a value keeps what it holds, and for how long.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/Value.h"
#include "tests/support/CaseName.h"

namespace tavlo {
namespace {

static_assert(sizeof(Value) == 24);
static_assert(std::is_nothrow_move_constructible_v<Value> && std::is_nothrow_move_assignable_v<Value>);

constexpr std::size_t kLongestInPlace = 22;

// Whether the view lies in the value itself.
bool isInside(std::string_view view, const Value& value) {
  const auto* const begin = reinterpret_cast<const char*>(&value);
  return view.data() >= begin && view.data() + view.size() <= begin + sizeof(Value);
}

TEST(ValueStorage, TextsAndDataOfUpTo22BytesLieInTheValueAndLongerOnesAreShared) {
  for (std::size_t size = 0; size <= 100; ++size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>('a' + i % 26);
    for (const Value& value : {Value(bytes), Value::data(bytes)}) {
      const Value copy = value;

      const std::string_view read = value.isText() ? *value.ifText() : *value.ifData();
      const std::string_view copied = copy.isText() ? *copy.ifText() : *copy.ifData();
      EXPECT_EQ(read, bytes);
      EXPECT_EQ(copied, bytes);
      EXPECT_EQ(isInside(read, value), size <= kLongestInPlace) << size;
      EXPECT_EQ(value.identity() == nullptr, size <= kLongestInPlace) << size;
      EXPECT_EQ(copied.data() == read.data(), size > kLongestInPlace) << size;
      EXPECT_EQ(copy, value) << size;
    }
  }
}

TEST(ValueStorage, BytesAreKeptWhateverTheyAre) {
  const std::string zeros(22, '\0');
  const std::string ones(22, '\xFF');

  EXPECT_EQ(Value(zeros).ifText(), zeros);
  EXPECT_EQ(Value(ones).ifText(), ones);
  EXPECT_NE(Value(zeros), Value(zeros.substr(1)));
  EXPECT_NE(Value(ones), Value::data(ones));
}

TEST(ValueStorage, ALiteralIsNeitherCopiedNorCounted) {
  static constexpr std::string_view kText = "a literal of more than 22 bytes";
  const Value literal = Value::literal(kText);
  const Value copy = literal;

  EXPECT_EQ(copy.ifText()->data(), kText.data());
  EXPECT_EQ(copy.ifText()->size(), kText.size());
  EXPECT_EQ(literal.identity(), nullptr);
  EXPECT_EQ(literal, Value(kText));
  EXPECT_EQ(Value::literal("short"), Value("short"));
  EXPECT_LT(literal, Value("b"));
  EXPECT_EQ(Value::map({{literal, 1}}).ifMap()->find(kText)->ifInteger()->low, 1U);
}

struct Kept {
  const char* name;
  Value value;
};

class ValueOwnership : public testing::TestWithParam<Kept> {};

TEST_P(ValueOwnership, AValueThatWasMovedFromIsNullAndMayBeAssignedTo) {
  const Value& expected = GetParam().value;
  Value from = expected;

  const Value to = std::move(from);

  EXPECT_EQ(to, expected);
  EXPECT_TRUE(from.isNull());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(from.identity(), nullptr);
  from = to;
  EXPECT_EQ(from, expected);
}

TEST_P(ValueOwnership, AssignmentReplacesWhatWasThere) {
  const Value& expected = GetParam().value;
  Value longText = std::string(100, 'l');
  Value list = Value::list({longText, expected});
  const Value keptList = list;

  longText = expected;
  list = Value(expected);

  EXPECT_EQ(longText, expected);
  EXPECT_EQ(list, expected);
  EXPECT_EQ(keptList.ifList()->front(), Value(std::string(100, 'l')));
}

TEST_P(ValueOwnership, AValueMayBeAssignedToItselfAndToAPartOfItself) {
  Value value = GetParam().value;
  Value& same = value;
  Value outer = Value::list({value});

  value = same;
  value = std::move(same);
  outer = outer.ifList()->front();

  EXPECT_EQ(value, GetParam().value);
  EXPECT_EQ(outer, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ValueOwnership,
    testing::Values(Kept{"Null", Value()}, Kept{"Boolean", true}, Kept{"Integer", 7}, Kept{"Real", 1.5},
                    Kept{"Date", Date{.seconds = 2}}, Kept{"ShortText", "short"},
                    Kept{"LongText", std::string(1000, 't')}, Kept{"ShortData", Value::data("d")},
                    Kept{"LongData", Value::data(std::string(1000, 'd'))},
                    Kept{"Url", Value::url({.text = "u", .base = Value::url({.text = "b", .base = std::nullopt})})},
                    Kept{"Uid", Uid{.index = 3}}, Kept{"List", Value::list({1, "x"})},
                    Kept{"Set", Value::set({1, "x"})}, Kept{"Map", Value::map({{"k", Value::list({})}})},
                    Kept{"Object", Value::object({.className = "C", .fields = {{"f", 1}}})}),
    test::kCaseName);

TEST(ValueStorage, WhatAContainerHoldsLivesAsLongAsAnyCopyOfIt) {
  auto first = std::make_unique<Value>(Value::list({std::string(100, 'x')}));
  const Value copy = *first;
  const ValueList* const items = first->ifList();

  first.reset();

  EXPECT_EQ(copy.ifList(), items);
  EXPECT_EQ(items->front().ifText(), std::string(100, 'x'));
}

using Wrap = Value (*)(Value inner);

struct Nesting {
  const char* name;
  Wrap wrap;
};

class ValueNesting : public testing::TestWithParam<Nesting> {};

// A call for each level would overflow the stack.
TEST_P(ValueNesting, HundredsOfThousandsOfLevelsAreDestroyedOneAfterTheOther) {
  Value value = Value::url({.text = "innermost", .base = std::nullopt});
  const Value innermost = value;
  for (int level = 0; level < 300'000; ++level) value = GetParam().wrap(std::move(value));

  value = Value();

  EXPECT_EQ(innermost.ifUrl()->text, "innermost");
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ValueNesting,
    testing::Values(Nesting{"Lists", [](Value inner) { return Value::list({std::move(inner)}); }},
                    Nesting{"Sets",
                            [](Value inner) {
                              return Value::set({1, std::move(inner)});
                            }},
                    Nesting{"MapValues",
                            [](Value inner) {
                              return Value::map({{"k", std::move(inner)}});
                            }},
                    Nesting{"Objects",
                            [](Value inner) {
                              return Value::object({.className = "C", .fields = {{"f", std::move(inner)}}});
                            }},
                    Nesting{"Urls", [](Value inner) { return Value::url({.text = "u", .base = std::move(inner)}); }}),
    test::kCaseName);

// There are more ways to the text than could be gone one by one.
TEST(ValueStorage, ContentsSharedByManyLevelsAreFreedOnce) {
  Value value = std::string(1000, 'x');
  for (int level = 0; level < 100; ++level) value = Value::list({value, value, Value::map({{"k", value}})});

  const Value text = [&] {
    Value step = value;
    while (step.ifList()) step = Value(step.ifList()->front());
    return step;
  }();
  value = Value();

  EXPECT_EQ(text.ifText(), std::string(1000, 'x'));
}

TEST(ValueStorageThread, ThreadsCopyReadAndDropTheSameContents) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 1000;
  const Value shared = Value::list({std::string(100, 'x'), Value::map({{"key", Value::data(std::string(50, 'd'))}})});
  std::vector<std::thread> threads;
  std::vector<int> whole(kThreads);

  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread, own = shared] {
      for (int round = 0; round < kRounds; ++round) {
        const Value list = own;
        const Value map = (*list.ifList())[1];
        Value text = list.ifList()->front();
        const Value moved = std::move(text);
        const bool isWhole = moved.ifText()->size() == 100 && map.ifMap()->find("key")->ifData()->size() == 50;
        if (isWhole) ++whole[static_cast<std::size_t>(thread)];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(whole, std::vector<int>(kThreads, kRounds));
}

// The last owner, whichever thread has it, frees what all others have read.
TEST(ValueStorageThread, TheLastOfManyThreadsFreesTheContents) {
  for (int round = 0; round < 200; ++round) {
    Value value = Value::list({std::string(100, 'x'), Value::list({std::string(100, 'y')})});
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([own = value] { EXPECT_EQ(own.ifList()->size(), 2U); });
    }
    value = Value();
    for (std::thread& thread : threads) thread.join();
  }
}

}  // namespace
}  // namespace tavlo
