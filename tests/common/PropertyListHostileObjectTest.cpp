// Objects that no writer writes: each file ends in an error that says where.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/PropertyList.h"
#include "tests/common/RawPropertyList.h"
#include "tests/support/Python.h"

namespace tavlo::property_list {
namespace {

using test::asciiObject;
using test::bigEndianBytes;
using test::errorOf;
using test::expectErrors;
using test::expectValueOrError;
using test::fromHex;
using test::kAllOnes;
using test::kTwoTo31;
using test::kTwoTo61;
using test::kTwoTo62;
using test::kTwoTo63;
using test::rawList;
using test::RawPropertyList;
using test::topObject;

struct Container {
  const char* name;
  char marker;
  std::size_t unit;  // bytes of one of its units, references being of one byte
};

constexpr Container kCounted[] = {
    {"data", '\x4F', 1}, {"ASCII", '\x5F', 1}, {"UTF-16", '\x6F', 2},
    {"list", '\xAF', 1}, {"set", '\xCF', 1},   {"map", '\xDF', 2},
};

TEST(PropertyListHostileObject, LengthMayBeAsLongAsTheInputButNotOneMore) {
  for (const auto& [name, marker, unit] : kCounted) {
    for (unsigned power = 0; power <= 3; ++power) {
      for (const std::size_t length : {15U, 16U}) {
        for (const bool tableFirst : {false, true}) {
          const std::string head = std::string(1, marker) + static_cast<char>(0x10U + power);
          RawPropertyList list =
              topObject(head + bigEndianBytes(length, std::size_t{1} << power) + std::string(15 * unit, '\0'));
          list.tableFirst = tableFirst;
          const std::string at = tableFirst ? "11" : "9";

          EXPECT_EQ(errorOf(list), length == 15 ? "" : "object 1 at byte " + at + ": its contents reach beyond the end")
              << name << power << tableFirst;
        }
      }
    }
  }
}

TEST(PropertyListHostileObject, ShortLengthIsBoundedToo) {
  for (const auto& [name, marker, unit] : kCounted) {
    const std::string head(1, static_cast<char>((static_cast<unsigned char>(marker) & 0xF0U) | 4U));

    EXPECT_EQ(errorOf(topObject(head + std::string(4 * unit, '\0'))), "") << name;
    EXPECT_EQ(errorOf(topObject(head + std::string((4 * unit) - 1, '\0'))),
              "object 1 at byte 9: its contents reach beyond the end")
        << name;
  }
}

TEST(PropertyListHostileObject, LengthThatWrapsIsTooLong) {
  for (const auto& [name, marker, unit] : kCounted) {
    for (const std::size_t referenceSize : {1U, 2U, 4U, 8U}) {
      for (const std::uint64_t power : {kTwoTo31 * 2, kTwoTo61 / 2, kTwoTo61, kTwoTo62, kTwoTo63}) {
        for (const std::uint64_t length : {power - 1, power, power + 1, kAllOnes - power, kAllOnes}) {
          RawPropertyList list =
              topObject(std::string(1, marker) + "\x13" + bigEndianBytes(length, 8) + std::string(32, '\0'));
          list.referenceSize = referenceSize;

          EXPECT_EQ(errorOf(list), "object 1 at byte 9: its contents reach beyond the end") << name << length;
        }
      }
    }
  }
}

TEST(PropertyListHostileObject, LengthIsAnIntegerInsideTheInput) {
  const char* const noInteger = "object 1 at byte 9: its length is no integer";
  const char* const cut = "object 1 at byte 9: its length reaches beyond the end";

  expectErrors({
      {"nothing behind the marker", topObject("\x4F").bytes(), noInteger},
      {"a text", topObject(fromHex("4f5161")).bytes(), noInteger},
      {"sixteen bytes", topObject(fromHex("4f14") + std::string(16, '\0')).bytes(), noInteger},
      {"a real", topObject(fromHex("4f2200000000")).bytes(), noInteger},
      {"one byte cut", topObject(fromHex("4f10")).bytes(), cut},
      {"two bytes cut", topObject(fromHex("4f1100")).bytes(), cut},
      {"four bytes cut", topObject(fromHex("5f12000000")).bytes(), cut},
      {"eight bytes cut", topObject(fromHex("af1300000000000000")).bytes(), cut},
  });
}

TEST(PropertyListHostileObject, ScalarCutShortIsRefused) {
  for (const char* hex :
       {"10", "1100", "12000000", "1300000000000000", "14000000000000000000000000000000", "22000000",
        "2300000000000000", "3300000000000000", "80", "8100", "8700000000000000", "6100", "62d83dde"}) {
    EXPECT_EQ(errorOf(topObject(fromHex(hex))), "object 1 at byte 9: its contents reach beyond the end") << hex;
  }
}

TEST(PropertyListHostileObject, AsciiAbove7fIsAnErrorThatSaysWhere) {
  EXPECT_EQ(errorOf(topObject(fromHex("536162ff"))), "object 1 at byte 9: byte 12 of its text is not ASCII");
  EXPECT_EQ(errorOf(topObject(fromHex("5f1003806263"))), "object 1 at byte 9: byte 12 of its text is not ASCII");
}

// Object 0 is null and the bytes behind the marker are zeros, so that every reference is sound.
TEST(PropertyListHostileObject, MarkersAreKnownOrRefused) {
  const auto known = [](unsigned marker) {
    const unsigned low = marker & 0xFU;
    switch (marker >> 4U) {
      case 0x0: return low == 0 || low == 8 || low == 9;
      case 0x1: return low <= 4;
      case 0x2: return low == 2 || low == 3;
      case 0x3: return low == 3;
      case 0x8: return low <= 7;
      case 0x4:
      case 0x5:
      case 0x6:
      case 0xA:
      case 0xC:
      case 0xD: return true;
      default: return false;
    }
  };

  for (unsigned marker = 0; marker <= 0xFF; ++marker) {
    const bool longForm = marker >= 0x40 && (marker & 0xFU) == 0xF;
    const std::string behind = (longForm ? fromHex("1010") : "") + std::string(32, '\0');
    const std::string object = std::string(1, static_cast<char>(marker)) + behind;

    EXPECT_EQ(errorOf(topObject(object)),
              known(marker) ? "" : "object 1 at byte 9: unknown marker " + std::to_string(marker));
    expectValueOrError(topObject(object.substr(0, 1)).bytes(), std::to_string(marker));
  }
}

TEST(PropertyListHostileObject, CyclesAreRefused) {
  const char* const cycle = "object 0: it contains itself";

  expectErrors({
      {"list of itself", rawList({fromHex("a100")}).bytes(), cycle},
      {"set of itself", rawList({fromHex("c100")}).bytes(), cycle},
      {"map under its own key", rawList({fromHex("d10001"), asciiObject("k")}).bytes(), cycle},
      {"map that is its own value", rawList({fromHex("d10100"), asciiObject("k")}).bytes(), cycle},
      {"two lists of one another", rawList({fromHex("a101"), fromHex("a100")}).bytes(), cycle},
      {"a sound item first", rawList({fromHex("a20102"), fromHex("a0"), fromHex("a100")}).bytes(), cycle},
      {"below the top", rawList({fromHex("a101"), fromHex("a102"), fromHex("a101")}).bytes(),
       "object 1: it contains itself"},
  });
}

// Lists of one item in one another, `levels` of them, the innermost one empty.
RawPropertyList chain(std::size_t levels) {
  RawPropertyList list;
  list.referenceSize = 3;
  list.offsetSize = 4;
  for (std::size_t i = 1; i < levels; ++i) list.objects.push_back("\xA1" + bigEndianBytes(i, 3));
  list.objects.emplace_back("\xA0");
  return list;
}

TEST(PropertyListHostileObject, NestingIsBounded) {
  EXPECT_EQ(errorOf(chain(512)), "");
  EXPECT_EQ(errorOf(chain(513)), "object 512 at byte 2056: nested too deep");
  EXPECT_EQ(errorOf(chain(100'000)), "object 512 at byte 2056: nested too deep");
}

TEST(PropertyListHostileObject, NestingIsBoundedFromTheInsideOut) {
  RawPropertyList list = chain(100'000);
  list.saidTop = 99'999;
  EXPECT_EQ(errorOf(list), "");
  list.saidTop = 99'488;
  EXPECT_EQ(errorOf(list), "");
  list.saidTop = 99'487;
  EXPECT_EQ(errorOf(list), "object 99999 at byte 400004: nested too deep");
}

// The top list has its deepest part as an item of its own too, before the chain that leads to it.
TEST(PropertyListHostileObject, PartMetNearTheTopStillCountsWithItsHeight) {
  const auto withShortcut = [](std::size_t levels, std::size_t part) {
    RawPropertyList list = chain(levels);
    list.objects[0] = "\xA2" + bigEndianBytes(part, 3) + bigEndianBytes(1, 3);
    return errorOf(list);
  };

  EXPECT_EQ(withShortcut(512, 300), "");
  EXPECT_EQ(withShortcut(513, 300), "object 0 at byte 8: nested too deep");
  EXPECT_EQ(withShortcut(700, 400), "object 187 at byte 759: nested too deep");
}

}  // namespace
}  // namespace tavlo::property_list
