// Random property lists: there and back, and against Python's own reader and writer.
#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "common/PropertyList.h"
#include "common/Utf8.h"
#include "tests/support/AnyDouble.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"

namespace tavlo::property_list {
namespace {

// What goes through Python goes in portions, so that the texts of one fit in memory.
constexpr int kPortion = 2000;
int portions() { return test::figure(1, 10); }

// What Python's reader and writer cannot hold is left out for it: sets, other keys than texts and data, lone
// surrogates, dates beyond its calendar.
enum class For { ourselves, python };

class RandomValues {
 public:
  explicit RandomValues(For whom) : whom_(whom) {}

  Value next() {
    containers_.clear();
    return graph(4);
  }

 private:
  std::uint64_t below(std::uint64_t limit) { return generator_() % limit; }
  std::size_t sizeBelow(std::size_t limit) { return static_cast<std::size_t>(below(limit)); }
  bool oneIn(std::uint64_t count) { return below(count) == 0; }
  std::uint64_t bits() { return generator_() >> below(64); }

  Value graph(int depth) {
    if (!containers_.empty() && oneIn(5)) return containers_[sizeBelow(containers_.size())];
    if (depth == 0 || oneIn(3)) return scalar();
    const std::size_t size = oneIn(10) ? 14 + sizeBelow(4) : sizeBelow(5);
    const Value container = depth == 4 ? list(size, 3) : containerOf(below(3), size, depth - 1);
    containers_.push_back(container);
    return container;
  }

  Value containerOf(std::uint64_t kind, std::size_t size, int depth) {
    if (kind == 0) return list(size, depth);
    if (kind == 1 && whom_ == For::ourselves) return Value::set(items(size, depth));
    std::vector<ValueMap::Entry> entries;
    for (std::size_t i = 0; i < size; ++i) {
      Value key = whom_ == For::ourselves ? graph(depth) : oneIn(8) ? Value::data(bytes()) : Value(text());
      entries.emplace_back(std::move(key), graph(depth));
    }
    return Value::map(ValueMap(entries));
  }

  Value list(std::size_t size, int depth) { return Value::list(items(size, depth)); }

  ValueList items(std::size_t size, int depth) {
    ValueList values;
    for (std::size_t i = 0; i < size; ++i) values.push_back(graph(depth));
    return values;
  }

  Value scalar() {
    switch (below(9)) {
      case 0: return {};
      case 1: return oneIn(2);
      case 2: return static_cast<std::int64_t>(bits());
      case 3: return -static_cast<std::int64_t>(bits() >> 1U);
      case 4: return Integer{.high = static_cast<std::int64_t>(generator_()), .low = generator_()};
      case 5: return real();
      case 6: return date();
      case 7: return oneIn(2) ? Value::data(bytes()) : Value(Uid{.index = bits()});
      default: return text();
    }
  }

  Value real() {
    if (oneIn(2)) return test::anyDouble(generator_());
    // Python turns a signalling 32-bit value that is no number into a quiet one.
    const auto narrow = std::bit_cast<float>(static_cast<std::uint32_t>(generator_()) & ~0x00800000U);
    return Real{.value = static_cast<double>(narrow), .narrow = true};
  }

  Value date() {
    if (whom_ == For::ourselves) return Date{.seconds = test::anyDouble(generator_())};
    return Date{.seconds = (static_cast<double>(below(120'000'000'000)) - 6e10) / 2};
  }

  std::string bytes() {
    std::string out;
    for (std::size_t length = sizeBelow(18); length-- > 0;) out.push_back(static_cast<char>(generator_()));
    return out;
  }

  std::string text() {
    constexpr char32_t kLimits[] = {0x80, 0x80, 0x100, 0x10000, 0x110000};
    const char32_t limit = kLimits[below(5)];
    std::string out;
    bool afterHigh = false;
    for (std::size_t length = sizeBelow(18); length-- > 0;) {
      const auto codePoint = static_cast<char32_t>(oneIn(4) ? 0xD800 + below(0x800) : below(limit));
      const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
      if (surrogate && (whom_ == For::python || limit < 0x10000 || (afterHigh && codePoint >= 0xDC00))) continue;
      appendUtf8(out, codePoint);
      afterHigh = surrogate && codePoint < 0xDC00;
    }
    return out;
  }

  For whom_;
  std::mt19937_64 generator_{test::seed()};
  std::vector<Value> containers_;
};

std::string hexBits(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  std::string bytes;
  for (unsigned shift = 64; shift > 0; shift -= 8) bytes.push_back(static_cast<char>(bits >> (shift - 8)));
  return test::toHex(bytes);
}

// As tests/oracles/property_list.py writes it.
std::string contents(const Value& value) {
  std::string out;
  switch (value.kind()) {
    case Value::Kind::null: return "n";
    case Value::Kind::boolean: return *value.ifBoolean() ? "T" : "F";
    case Value::Kind::integer: return "i" + value.ifInteger()->decimal();
    case Value::Kind::real: return "r" + hexBits(value.ifReal()->value);
    case Value::Kind::date: return "d" + hexBits(value.ifDate()->seconds);
    case Value::Kind::text: return "t" + test::toHex(*value.ifText());
    case Value::Kind::data: return "b" + test::toHex(*value.ifData());
    case Value::Kind::uid: return "u" + std::to_string(value.ifUid()->index);
    case Value::Kind::list:
      for (const Value& item : *value.ifList()) out += (out.empty() ? "" : ",") + contents(item);
      return "[" + out + "]";
    case Value::Kind::map:
      for (const auto& [key, entry] : *value.ifMap()) {
        out += (out.empty() ? "" : ",") + contents(key) + "=" + contents(entry);
      }
      return "{" + out + "}";
    default: return "?";
  }
}

// How many contents there are in all, and how many when shared ones count once.
struct Count {
  std::size_t all = 0;
  std::set<const void*> once;
};

void countContainers(const Value& value, Count& count) {
  if (!value.ifList() && !value.ifSet() && !value.ifMap()) return;
  ++count.all;
  count.once.insert(value.identity());
  if (const ValueList* const list = value.ifList()) {
    for (const Value& item : *list) countContainers(item, count);
  } else if (const ValueList* const set = value.ifSet()) {
    for (const Value& item : *set) countContainers(item, count);
  } else {
    for (const auto& [key, entry] : *value.ifMap()) {
      countContainers(key, count);
      countContainers(entry, count);
    }
  }
}

TEST(PropertyListRandom, EveryValueComesBackWithItsSharing) {
  RandomValues values(For::ourselves);
  std::size_t shared = 0;

  for (int i = 0; i < portions() * kPortion; ++i) {
    const Value value = values.next();
    const auto bytes = encode(value);
    ASSERT_TRUE(bytes) << i;
    const Decoded back = decode(*bytes);
    ASSERT_TRUE(back.value) << i << ": " << back.error;

    Count before;
    Count after;
    countContainers(value, before);
    countContainers(*back.value, after);
    shared += before.all - before.once.size();
    ASSERT_EQ(*back.value, value) << i;
    ASSERT_EQ(after.all, before.all) << i;
    ASSERT_EQ(after.once.size(), before.once.size()) << i;
    ASSERT_EQ(encode(*back.value), bytes) << i;
  }

  EXPECT_GT(shared, 1000U);
}

void expectPythonToRead(RandomValues& values) {
  std::string input;
  std::vector<std::string> expected;
  for (int i = 0; i < kPortion; ++i) {
    const Value value = values.next();
    const auto bytes = encode(value);
    ASSERT_TRUE(bytes) << i;
    input += test::toHex(*bytes) + "\n";
    expected.push_back(contents(value));
  }

  const auto read = test::splitLines(test::runOracle("property_list.py", {"read"}, input));

  ASSERT_EQ(read.size(), expected.size());
  for (std::size_t i = 0; i < read.size(); ++i) ASSERT_EQ(read[i], expected[i]) << i;
}

TEST(PropertyListRandom, PythonReadsWhatWeWrite) {
  RandomValues values(For::python);

  for (int i = 0; i < portions(); ++i) ASSERT_NO_FATAL_FAILURE(expectPythonToRead(values)) << "portion " << i;

  test::reached("T9d", std::to_string(portions() * kPortion) + " property lists of ours read by Python");
}

void expectToReadPython(const std::string& seed) {
  const auto lines = test::splitLines(test::runOracle("property_list.py", {"write", seed, std::to_string(kPortion)}));

  ASSERT_EQ(lines.size(), static_cast<std::size_t>(kPortion));
  for (const std::string& line : lines) {
    const std::size_t blank = line.find(' ');
    const Decoded read = decode(test::fromHex(line.substr(0, blank)));
    ASSERT_TRUE(read.value) << read.error << " in " << line;
    ASSERT_EQ(contents(*read.value), line.substr(blank + 1)) << line;
  }
}

TEST(PropertyListRandom, WeReadWhatPythonWrites) {
  for (int i = 0; i < portions(); ++i) {
    const std::string seed = std::to_string(test::seed()) + "." + std::to_string(i);
    ASSERT_NO_FATAL_FAILURE(expectToReadPython(seed)) << "portion " << i;
  }
  test::reached("T9d", std::to_string(portions() * kPortion) + " property lists of Python read");
}

}  // namespace
}  // namespace tavlo::property_list
