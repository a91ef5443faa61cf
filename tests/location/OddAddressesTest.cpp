// Addresses that are hard to write down: each set of fields, each with values that JSON must escape or cannot hold.
// What Python's reader of JSON makes of them is compared, code point by code point.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "TavloUtility.h"
#include "tests/support/LocationPlatform.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"

namespace tavlo {
namespace {

using platform::Placemark;

struct Odd {
  std::string value;
  const char* codePoints;
};
const std::array<Odd, 11> kOdd = {{{"", ""},
                                   {R"(a"b")", "97 34 98 34"},
                                   {R"(\")", "92 34"},
                                   {"1/2", "49 47 50"},
                                   {std::string("\0\x01\x1F\x7F", 4), "0 1 31 127"},
                                   {"\b\f\n\r\t", "8 12 10 13 9"},
                                   {"\xE2\x80\xA8\xE2\x80\xA9", "8232 8233"},
                                   {"\xF0\x9F\x8F\x99", "127961"},
                                   {"a\xFFz", "97 65533 122"},
                                   {"\xED\xA0\x80", "65533 65533 65533"},
                                   {"\xC0\xAF{}", "65533 65533 123 125"}}};

// In the order of the members; the country code is none of them.
struct Field {
  Text Placemark::*field;
  const char* key;
};
const std::array<Field, 7> kFields = {{{&Placemark::administrativeArea, "state"},
                                       {&Placemark::subLocality, "locality"},
                                       {&Placemark::thoroughfare, "area"},
                                       {&Placemark::postalCode, "pin"},
                                       {&Placemark::locality, "city"},
                                       {&Placemark::country, "country"},
                                       {&Placemark::ISOcountryCode, nullptr}}};

TEST(OddAddresses, AreTheJsonOfTheFieldsThatThereAre) {
  const test::LocationWorld world;
  std::string lines;
  std::vector<std::string> expected;

  for (unsigned set = 0; set < (1U << kFields.size()); ++set) {
    for (std::size_t odd = 0; odd < kOdd.size(); ++odd) {
      Placemark placemark;
      std::string members;
      for (std::size_t i = 0; i < kFields.size(); ++i) {
        if ((set >> i & 1U) == 0) continue;
        const Odd& value = kOdd[(odd + i) % kOdd.size()];
        placemark.*kFields[i].field = value.value;
        if (kFields[i].key == nullptr) continue;
        members += std::string(members.empty() ? "" : " ") + kFields[i].key + " " + value.codePoints;
      }
      TavloUtility::fetchCurrentLocation();
      world->answer(world->lookUps() - 1, platform::Placemarks{placemark});
      static_cast<void>(world->takeCalls());
      lines += test::toHex(world.address().value()) + "\n";
      expected.push_back(members);
    }
  }

  EXPECT_EQ(test::splitLines(test::runOracle("address.py", {}, lines)), expected);
  test::reached("T12", std::to_string(expected.size()) + " addresses of 128 sets of fields as Python reads them");
}

}  // namespace
}  // namespace tavlo
