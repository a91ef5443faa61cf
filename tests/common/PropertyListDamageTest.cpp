// Small files made to cost much, and sound files damaged in every place.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/PropertyList.h"
#include "tests/common/RawPropertyList.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::property_list {
namespace {

using test::asciiObject;
using test::bigEndianBytes;
using test::decodeExactly;
using test::errorOf;
using test::expectValueOrError;
using test::fromHex;
using test::RawPropertyList;
using test::soundList;

// Two to the power of 100 values in 101 objects.
TEST(PropertyListAmplifier, SharingDoesNotMultiply) {
  for (const char* marker : {"a2", "c2", "d2"}) {
    RawPropertyList list;
    list.offsetSize = 2;
    const bool map = marker[0] == 'd';
    for (char i = 1; i <= 100; ++i) {
      list.objects.push_back(fromHex(marker) + (map ? std::string("\x65\x66") : "") + i + i);
    }
    list.objects.emplace_back(asciiObject("z"));
    list.objects.emplace_back(asciiObject("k"));
    list.objects.emplace_back(asciiObject("l"));

    EXPECT_EQ(errorOf(list), "") << marker;
  }
}

// Every map asks whether its two keys, equal lists of 20,000 items each, are the same.
TEST(PropertyListAmplifier, SharedKeysAreComparedOnce) {
  constexpr std::size_t kItems = 20'000;
  constexpr std::size_t kMaps = 20'000;
  const std::string length = "\xAF\x11" + bigEndianBytes(kItems, 2);
  std::string references;
  for (std::size_t i = 0; i < kItems; ++i) references += bigEndianBytes(3, 2);
  RawPropertyList list;
  list.referenceSize = 2;
  list.offsetSize = 4;
  list.objects = {"", length + references, length + references, asciiObject("i")};
  std::string maps;
  for (std::size_t i = 0; i < kMaps; ++i) {
    maps += bigEndianBytes(list.objects.size(), 2);
    list.objects.push_back("\xD2" + fromHex("0001000200030003"));
  }
  list.objects[0] = "\xAF\x11" + bigEndianBytes(kMaps, 2) + maps;

  const Decoded result = decodeExactly(list.bytes());

  ASSERT_TRUE(result.value) << result.error;
  EXPECT_EQ((*result.value->ifList())[kMaps - 1].ifMap()->size(), 1U);
}

TEST(PropertyListAmplifier, ObjectsThatOverlapDoNotMultiply) {
  constexpr std::size_t kObjects = 5000;
  RawPropertyList list;
  list.referenceSize = 2;
  list.offsetSize = 2;
  std::string references;
  for (std::size_t i = 1; i < kObjects; ++i) references += bigEndianBytes(i, 2);
  list.objects.push_back("\xAF\x11" + bigEndianBytes(kObjects - 1, 2) + references);
  const std::size_t data = 8 + list.objects[0].size();
  list.objects.push_back("\x4F\x11" + bigEndianBytes(10'000, 2) + std::string(10'000, 'd'));
  for (std::size_t i = 2; i < kObjects; ++i) {
    list.objects.emplace_back();
    list.offsets[i] = data;
  }

  EXPECT_EQ(errorOf(list), "object 3 at byte 10010: objects overlap");
}

TEST(PropertyListAmplifier, TwoObjectsInOnePlaceAreHarmless) {
  RawPropertyList list = soundList();
  list.offsets[2] = 11;

  EXPECT_EQ(decode(list.bytes()).value, Value::list({"one", "one"}));
}

// Each sound file by name, so that a failure names it and they run side by side.
class PropertyListDamage : public testing::TestWithParam<const char*> {
 protected:
  const std::string file_ =
      test::readFile(std::string(TAVLO_SOURCE_DIR "/tests/fixtures/archives/") + GetParam() + ".bin");
};

TEST_P(PropertyListDamage, EveryCutEndsInAnError) {
  ASSERT_EQ(errorOf(file_), "");

  for (std::size_t length = 0; length < file_.size(); ++length) {
    ASSERT_NE(errorOf(file_.substr(0, length)), "") << length << " of " << file_.size();
  }
}

TEST_P(PropertyListDamage, EveryFlippedBitEndsInAValueOrAnError) {
  std::string flipped = file_;

  for (std::size_t bit = 0; bit < 8 * file_.size(); ++bit) {
    char& byte = flipped[bit / 8];
    byte = static_cast<char>(byte ^ (1 << (bit % 8)));
    const std::string what = "bit " + std::to_string(bit);
    // One bit of each byte is enough for the way back, which takes most of the time.
    if (bit % 8 == bit / 8 % 8) {
      expectValueOrError(flipped, what);
    } else {
      errorOf(flipped);
    }
    byte = file_[bit / 8];
  }
  test::reached("T9b",
                std::to_string(file_.size()) + " bytes of property lists cut at each, each of their bits flipped");
}

INSTANTIATE_TEST_SUITE_P(Of, PropertyListDamage,
                         testing::Values("desktop_custom_list", "desktop_dates", "desktop_five_records", "desktop_sets",
                                         "desktop_urls", "device_custom_list", "device_empty_list",
                                         "device_five_records", "device_nested", "device_one_record",
                                         "device_root_string", "device_shared", "device_types"),
                         [](const auto& file) { return std::string(file.param); });

}  // namespace
}  // namespace tavlo::property_list
