#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <limits>
#include <string>
#include <vector>

#include "common/PropertyList.h"
#include "tests/common/RawPropertyList.h"
#include "tests/support/Python.h"

namespace tavlo::property_list {
namespace {

using test::asciiObject;
using test::bigEndianBytes;
using test::fromHex;
using test::rawList;
using test::RawPropertyList;
using test::toHex;

Value narrow(std::uint32_t bits) {
  return Real{.value = static_cast<double>(std::bit_cast<float>(bits)), .narrow = true};
}

// Arrays of so many in one another, the innermost one empty.
Value nested(std::size_t levels) {
  Value value = Value::list({});
  for (std::size_t i = 1; i < levels; ++i) value = Value::list({value});
  return value;
}

Value decoded(const std::string& bytes) {
  Decoded result = decode(bytes);
  EXPECT_EQ(result.error, "");
  return result.value.value_or(Value("no value"));
}

std::string encoded(const Value& value) { return encode(value).value_or("no bytes"); }

struct Scalar {
  const char* name;
  Value value;
  std::string hex;  // of the one object
};

std::vector<Scalar> scalars() {
  return {
      {"null", Value(), "00"},
      {"false", false, "08"},
      {"true", true, "09"},
      {"0", 0, "1000"},
      {"255", 255, "10ff"},
      {"256", 256, "110100"},
      {"65535", 65535, "11ffff"},
      {"65536", 65536, "1200010000"},
      {"2^32-1", 0xFFFFFFFFU, "12ffffffff"},
      {"2^32", std::uint64_t{1} << 32U, "130000000100000000"},
      {"2^63-1", std::numeric_limits<std::int64_t>::max(), "137fffffffffffffff"},
      {"2^63", std::uint64_t{1} << 63U, "1400000000000000008000000000000000"},
      {"2^64-1", ~std::uint64_t{0}, "140000000000000000ffffffffffffffff"},
      {"-1", -1, "13ffffffffffffffff"},
      {"-2^63", std::numeric_limits<std::int64_t>::min(), "138000000000000000"},
      {"-2^63-1", Integer{.high = -1, .low = (std::uint64_t{1} << 63U) - 1}, "14ffffffffffffffff7fffffffffffffff"},
      {"largest", Integer{.high = std::numeric_limits<std::int64_t>::max(), .low = ~std::uint64_t{0}},
       "147fffffffffffffffffffffffffffffff"},
      {"1.5", 1.5, "233ff8000000000000"},
      {"-0.0", -0.0, "238000000000000000"},
      {"no number with a payload", std::bit_cast<double>(0xFFF8000000ABCDEFU), "23fff8000000abcdef"},
      {"narrow 1.5", narrow(0x3FC00000U), "223fc00000"},
      {"narrow -0.0", narrow(0x80000000U), "2280000000"},
      {"narrow infinity", narrow(0x7F800000U), "227f800000"},
      {"narrow largest", narrow(0x7F7FFFFFU), "227f7fffff"},
      {"narrow smallest", narrow(0x00000001U), "2200000001"},
      {"narrow no number with a sign", Real{.value = std::bit_cast<double>(0xFFF8000000000000U), .narrow = true},
       "22ffc00000"},
      {"date", Date{.seconds = 721692800.123}, "3341c58214400fbe77"},
      {"date that is no number", Date{.seconds = std::bit_cast<double>(0x7FF8000000000001U)}, "337ff8000000000001"},
      {"no data", Value::data(""), "40"},
      {"14 bytes of data", Value::data(std::string(14, 'd')), "4e6464646464646464646464646464"},
      {"15 bytes of data", Value::data(std::string(15, 'd')), "4f100f646464646464646464646464646464"},
      {"no text", "", "50"},
      {"ASCII", "a\x7F", "52617f"},
      {"U+0000", std::string("a\0b", 3), "53610062"},
      {"U+00E9", "\xC3\xA9", "6100e9"},
      {"U+1F600", "\xF0\x9F\x98\x80", "62d83dde00"},
      {"U+10FFFF", "\xF4\x8F\xBF\xBF", "62dbffdfff"},
      {"lone high surrogate", "a\xED\xA0\xBDz", "630061d83d007a"},
      {"lone low surrogate at the end", "\xED\xB8\x80", "61de00"},
      {"low before high", "\xED\xB8\x80\xED\xA0\xBD", "62de00d83d"},
      {"uid 0", Uid{.index = 0}, "8000"},
      {"uid 255", Uid{.index = 255}, "80ff"},
      {"uid 65536", Uid{.index = 65536}, "82010000"},
      {"largest uid", Uid{.index = ~std::uint64_t{0}}, "87ffffffffffffffff"},
      {"empty list", Value::list({}), "a0"},
      {"empty set", Value::set({}), "c0"},
      {"empty map", Value::map({}), "d0"},
  };
}

TEST(PropertyList, ObjectIsWrittenInTheFewestBytesAndReadBack) {
  for (const auto& [name, value, hex] : scalars()) {
    const std::string file = rawList({fromHex(hex)}).bytes();

    EXPECT_EQ(toHex(encoded(value)), toHex(file)) << name;
    EXPECT_EQ(decoded(file), value) << name;
  }
}

TEST(PropertyList, SignallingNumberStaysOne) {
  if (FLT_EVAL_METHOD == 2) GTEST_SKIP() << "the registers of this processor make it quiet when they load it";
  for (const char* hex : {"227f800001", "337ff0000000000001"}) {
    const std::string file = rawList({fromHex(hex)}).bytes();
    EXPECT_EQ(toHex(encoded(decoded(file))), toHex(file));
  }
}

TEST(PropertyList, FileIsHeaderObjectsTableAndTrailer) {
  const Value value = Value::map({{"b", Value::list({1, "b", 1})}, {"a", true}});

  const std::string file = encoded(value);

  EXPECT_EQ(toHex(file),
            "62706c6973743030"  // bplist00
            "d201020305"        // 0: map of keys 1, 2 and values 3, 5
            "5162"              // 1: "b"
            "5161"              // 2: "a"
            "a3040104"          // 3: list of 4, 1, 4
            "1001"              // 4: 1
            "09"                // 5: true
            "080d0f111517"      // where they begin
            "0000000000000101"
            "00000000000000060000000000000000"
            "0000000000000018");
}

struct Foreign {
  const char* name;
  std::string hex;
  Value value;
};

TEST(PropertyList, WiderThanNeededIsReadAllTheSame) {
  const std::vector<Foreign> cases = {
      {"two bytes for 1", "110001", 1},
      {"four bytes are unsigned", "12ffffffff", 0xFFFFFFFFU},
      {"eight bytes for 1", "130000000000000001", 1},
      {"sixteen bytes for -1", "14ffffffffffffffffffffffffffffffff", -1},
      {"uid of three bytes", "82000007", Uid{.index = 7}},
      {"uid of eight bytes", "870000000000000007", Uid{.index = 7}},
      {"UTF-16 for ASCII", "6200610062", "ab"},
      {"long form for a short length", "5f10026162", "ab"},
      {"length of two bytes", "5f1100026162", "ab"},
      {"length of four bytes", "5f12000000026162", "ab"},
      {"length of eight bytes", "5f1300000000000000026162", "ab"},
  };

  for (const auto& [name, hex, value] : cases) EXPECT_EQ(decoded(rawList({fromHex(hex)}).bytes()), value) << name;
}

TEST(PropertyList, ReferencesAndOffsetsMayHaveAnySizeAndTheTableAnyPlace) {
  for (std::size_t offsetSize = 1; offsetSize <= 8; ++offsetSize) {
    for (std::size_t referenceSize = 1; referenceSize <= 8; ++referenceSize) {
      for (const bool tableFirst : {false, true}) {
        RawPropertyList list = rawList({"\xD1" + bigEndianBytes(1, referenceSize) + bigEndianBytes(2, referenceSize),
                                        asciiObject("k"), asciiObject("v")});
        list.offsetSize = offsetSize;
        list.referenceSize = referenceSize;
        list.tableFirst = tableFirst;

        EXPECT_EQ(decoded(list.bytes()), Value::map({{"k", "v"}})) << offsetSize << referenceSize << tableFirst;
      }
    }
  }
}

TEST(PropertyList, TopObjectMayBeAnyObject) {
  RawPropertyList list = rawList({asciiObject("a"), asciiObject("b"), "\xA1" + std::string(1, '\0')});

  list.saidTop = 1;
  EXPECT_EQ(decoded(list.bytes()), Value("b"));
  list.saidTop = 2;
  EXPECT_EQ(decoded(list.bytes()), Value::list({"a"}));
}

TEST(PropertyList, KeysMayBeOfAnyKindAndTheLastOfEqualOnesCounts) {
  const std::string file = rawList({"\xD6" + fromHex("010203040501"
                                                     "060708090a0b"),
                                    asciiObject("k"), fromHex("1001"), fromHex("09"), "\xA1" + std::string(1, '\2'),
                                    "\xA1" + std::string(1, '\2'), asciiObject("0"), asciiObject("1"), asciiObject("2"),
                                    asciiObject("3"), asciiObject("4"), asciiObject("5")})
                               .bytes();

  const Value map = decoded(file);

  ASSERT_NE(map.ifMap(), nullptr);
  const std::vector<ValueMap::Entry> entries(map.ifMap()->begin(), map.ifMap()->end());
  EXPECT_EQ(entries, (std::vector<ValueMap::Entry>{{"k", "5"}, {1, "1"}, {true, "2"}, {Value::list({1}), "4"}}));
}

TEST(PropertyList, EqualScalarsAreOneObject) {
  const Value value = Value::list({"same", std::string("same"), 7, 7, Value::data("same"), "\xC3\xA9", "\xC3\xA9"});

  const std::string file = encoded(value);

  EXPECT_EQ(bigEndianBytes(5, 8), file.substr(file.size() - 24, 8));
  EXPECT_EQ(decoded(file), value);
}

TEST(PropertyList, SharedContentsStaySharedAndEqualOnesStayApart) {
  const Value shared = Value::list({1});
  const Value value = Value::list({shared, shared, Value::list({1})});

  const Value back = decoded(encoded(value));

  ASSERT_NE(back.ifList(), nullptr);
  const ValueList& items = *back.ifList();
  EXPECT_EQ(items[0].identity(), items[1].identity());
  EXPECT_NE(items[0].identity(), items[2].identity());
  EXPECT_EQ(back, value);
}

// Two to the power of 100 lists in 101 objects.
TEST(PropertyList, EncodingAndDecodingWalkSharedContentsOnce) {
  Value value = 1;
  for (int i = 0; i < 100; ++i) value = Value::list({value, value});

  const std::string file = encoded(value);

  EXPECT_EQ(file.substr(file.size() - 24, 8), bigEndianBytes(101, 8));
  EXPECT_EQ(decoded(file), value);
}

TEST(PropertyList, ReferencesGrowWithTheNumberOfObjects) {
  for (const std::size_t items : {254U, 255U, 65534U, 65535U, 65536U}) {
    ValueList list;
    for (std::size_t i = 0; i < items; ++i) list.emplace_back(i);
    const Value value = Value::list(list);

    const std::string file = encoded(value);

    const char referenceSize = items <= 255 ? '\1' : items <= 65535 ? '\2' : '\3';
    EXPECT_EQ(file[file.size() - 25], referenceSize) << items;
    EXPECT_EQ(decoded(file), value) << items;
  }
}

TEST(PropertyList, TextThatIsNoUtf8IsWrittenAsData) {
  const std::vector<std::string> texts = {
      "\xFF", "a\x80", "\xC0\x80", "\xF4\x90\x80\x80", "\xED\xA0\xBD\xED\xB8\x80",  // the last would join to U+1F600
  };

  for (const std::string& text : texts) EXPECT_EQ(decoded(encoded(text)), Value::data(text)) << toHex(text);
}

TEST(PropertyList, NarrowRealThatIsWiderKeepsItsValue) {
  const std::vector<double> values = {0.1, 1e300, -1e300, 1e-300, std::bit_cast<double>(0x7FF8000000000001U)};

  for (const double value : values) {
    EXPECT_EQ(decoded(encoded(Real{.value = value, .narrow = true})), Value(value)) << value;
  }
}

TEST(PropertyList, UrlsAndObjectsOfArchivesHaveNoPlaceInIt) {
  const Value url = Value::url({.text = "http://h/", .base = std::nullopt});
  const Value object = Value::object({.className = "C", .fields = {}});

  for (const Value& value : {url, object}) {
    EXPECT_EQ(encode(value), std::nullopt);
    EXPECT_EQ(encode(Value::list({1, value})), std::nullopt);
    EXPECT_EQ(encode(Value::set({value})), std::nullopt);
    EXPECT_EQ(encode(Value::map({{"k", value}})), std::nullopt);
    EXPECT_EQ(encode(Value::map({{value, 1}})), std::nullopt);
    EXPECT_EQ(encode(Value::list({Value::list({value})})), std::nullopt);
  }
}

TEST(PropertyList, NestsAsDeepAsStatedAndNoDeeper) {
  const Value deepest = nested(kDeepest);

  EXPECT_EQ(decoded(encoded(deepest)), deepest);
  EXPECT_EQ(encode(Value::list({deepest})), std::nullopt);
  EXPECT_EQ(encode(nested(5000)), std::nullopt);
}

TEST(PropertyList, SharedPartMetNearTheTopStillCountsWithItsHeight) {
  const Value shared = nested(300);
  Value chain = shared;
  for (int i = 0; i < 211; ++i) chain = Value::list({chain});

  const Value deepest = Value::list({shared, chain});
  const Value tooDeep = Value::list({shared, Value::list({chain})});

  EXPECT_EQ(decoded(encoded(deepest)), deepest);
  EXPECT_EQ(encode(tooDeep), std::nullopt);
}

}  // namespace
}  // namespace tavlo::property_list
