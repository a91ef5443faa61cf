// Random archives: there and back, and against Python's own property lists.
#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "cache/KeyedArchive.h"
#include "common/Utf8.h"
#include "tests/cache/ArchiveContents.h"
#include "tests/support/AnyDouble.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"

namespace tavlo::keyed_archive {
namespace {

using test::archiveContents;

// What goes through Python goes in portions, so that the texts of one fit in memory.
constexpr int kPortion = 2000;
int portions() { return test::figure(1, 10); }

// Python's reader and writer know no lone surrogates.
enum class For { ourselves, python };

class RandomValues {
 public:
  explicit RandomValues(For whom) : whom_(whom) {}

  Value next() {
    made_.clear();
    return graph(4);
  }

 private:
  std::uint64_t below(std::uint64_t limit) { return generator_() % limit; }
  std::size_t sizeBelow(std::size_t limit) { return static_cast<std::size_t>(below(limit)); }
  bool oneIn(std::uint64_t count) { return below(count) == 0; }

  Value graph(int depth) {
    if (!made_.empty() && oneIn(5)) return made_[sizeBelow(made_.size())];
    if (depth == 0 || oneIn(3)) return scalar(depth == 4);
    const Value container = containerOf(below(4), oneIn(10) ? 14 + sizeBelow(4) : sizeBelow(5), depth - 1);
    made_.push_back(container);
    return container;
  }

  Value containerOf(std::uint64_t kind, std::size_t size, int depth) {
    if (kind == 0) return Value::list(items(size, depth));
    if (kind == 1) return Value::set(items(size, depth));
    std::vector<ValueMap::Entry> entries;
    for (std::size_t i = 0; i < size; ++i) {
      Value key = kind == 2 && oneIn(3) ? graph(depth) : Value(text());
      entries.emplace_back(std::move(key), graph(depth));
    }
    if (kind == 2) return Value::map(ValueMap(entries));
    return Value::object({.className = "Ad" + text(), .fields = ValueMap(entries)});
  }

  ValueList items(std::size_t size, int depth) {
    ValueList values;
    for (std::size_t i = 0; i < size; ++i) values.push_back(graph(depth));
    return values;
  }

  Value scalar(bool isRoot) {
    switch (below(isRoot ? 8 : 9)) {
      case 0: return {};
      case 1: return oneIn(2);
      case 2: return static_cast<std::int64_t>(generator_() >> below(64));
      case 3:
        return whom_ == For::python ? Integer::of(generator_())
                                    : Integer{.high = static_cast<std::int64_t>(generator_()), .low = generator_()};
      case 4: return real();
      case 5: return Date{.seconds = test::anyDouble(generator_())};
      case 6: return Value::data(text());
      case 7: return oneIn(2) ? url(3) : Value(text());
      default: return Uid{.index = 0};
    }
  }

  Value real() {
    if (oneIn(2)) return test::anyDouble(generator_());
    // Python turns a signalling 32-bit value that is no number into a quiet one.
    const auto narrow = std::bit_cast<float>(static_cast<std::uint32_t>(generator_()) & ~0x00800000U);
    return Real{.value = static_cast<double>(narrow), .narrow = true};
  }

  Value url(int depth) {
    return Value::url({.text = text(), .base = depth > 0 && oneIn(2) ? std::optional(url(depth - 1)) : std::nullopt});
  }

  std::string text() {
    constexpr char32_t kLimits[] = {0x80, 0x80, 0x100, 0x10000, 0x110000};
    const char32_t limit = kLimits[below(5)];
    std::string out;
    for (std::size_t length = sizeBelow(18); length-- > 0;) {
      const auto codePoint = static_cast<char32_t>(below(limit));
      const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
      if (!surrogate) appendUtf8(out, codePoint);
    }
    if (whom_ == For::ourselves && oneIn(8)) appendUtf8(out, static_cast<char32_t>(0xD800 + below(0x800)));
    return out;
  }

  For whom_;
  std::mt19937_64 generator_{test::seed()};
  std::vector<Value> made_;
};

// How many containers there are in all, and how many when shared ones count once.
struct Count {
  std::size_t all = 0;
  std::set<const void*> once;

  void add(const ValueMap& entries) {
    for (const auto& [key, value] : entries) {
      add(key);
      add(value);
    }
  }
  void add(const Value& value) {
    const ValueList* const items = value.ifList() ? value.ifList() : value.ifSet();
    if (!items && !value.ifMap() && !value.ifObject()) return;
    ++all;
    once.insert(value.identity());
    if (value.ifMap()) add(*value.ifMap());
    if (value.ifObject()) add(value.ifObject()->fields);
    if (items) {
      for (const Value& item : *items) add(item);
    }
  }
};

TEST(KeyedArchiveRandom, EveryValueComesBackWithItsSharing) {
  RandomValues values(For::ourselves);
  std::size_t shared = 0;

  for (int i = 0; i < portions() * kPortion; ++i) {
    const Value value = values.next();
    const std::string bytes = encode(value);
    const Value back = decode(bytes).value();

    Count before;
    Count after;
    before.add(value);
    after.add(back);
    shared += before.all - before.once.size();
    ASSERT_EQ(back, value) << i;
    ASSERT_EQ(after.all, before.all) << i;
    ASSERT_EQ(after.once.size(), before.once.size()) << i;
    ASSERT_EQ(encode(back), bytes) << i;
  }

  EXPECT_GT(shared, 1000U);
}

void expectPythonToRead(RandomValues& values) {
  std::string input;
  std::vector<std::string> expected;
  for (int i = 0; i < kPortion; ++i) {
    const Value value = values.next();
    input += test::toHex(encode(value)) + "\n";
    expected.push_back(archiveContents(value));
  }

  const auto read = test::splitLines(test::runOracle("keyed_archive.py", {"read"}, input));

  ASSERT_EQ(read.size(), expected.size());
  for (std::size_t i = 0; i < read.size(); ++i) ASSERT_EQ(read[i], expected[i]) << i;
}

TEST(KeyedArchiveRandom, PythonReadsWhatWeWrite) {
  RandomValues values(For::python);

  for (int i = 0; i < portions(); ++i) ASSERT_NO_FATAL_FAILURE(expectPythonToRead(values)) << "portion " << i;

  test::reached("T9d", std::to_string(portions() * kPortion) + " archives of ours read by Python");
}

void expectToReadPython(const std::string& seed) {
  const auto lines = test::splitLines(test::runOracle("keyed_archive.py", {"write", seed, std::to_string(kPortion)}));

  ASSERT_EQ(lines.size(), static_cast<std::size_t>(kPortion));
  for (const std::string& line : lines) {
    const std::size_t blank = line.find(' ');
    const auto value = decode(test::fromHex(line.substr(0, blank)));
    ASSERT_EQ(archiveContents(value), line.substr(blank + 1)) << line;
    ASSERT_EQ(decode(encode(value)), value) << line;
  }
}

TEST(KeyedArchiveRandom, WeReadWhatPythonWrites) {
  for (int i = 0; i < portions(); ++i) {
    const std::string seed = std::to_string(test::seed()) + "." + std::to_string(i);
    ASSERT_NO_FATAL_FAILURE(expectToReadPython(seed)) << "portion " << i;
  }
  test::reached("T9d", std::to_string(portions() * kPortion) + " archives of Python read");
}

}  // namespace
}  // namespace tavlo::keyed_archive
