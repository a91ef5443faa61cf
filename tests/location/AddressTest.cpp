// The JSON text of an address.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "location/Address.h"
#include "tests/support/CaseName.h"
#include "tests/support/Python.h"

namespace tavlo {
namespace {

using platform::Placemark;

struct Written {
  const char* name;
  std::string value;
  std::string json;
};

class AddressText : public testing::TestWithParam<Written> {};

TEST_P(AddressText, IsEscapedAsFarAsJsonAsksAndTheSolidus) {
  const Placemark placemark{.country = GetParam().value};

  EXPECT_EQ(addressJson(&placemark), R"({"country":")" + GetParam().json + R"("})");
}

INSTANTIATE_TEST_SUITE_P(
    Values, AddressText,
    testing::Values(Written{"Plain", "Great Britain", "Great Britain"}, Written{"Quotes", R"(a"b)", R"(a\"b)"},
                    Written{"Backslash", R"(a\b)", R"(a\\b)"}, Written{"Solidus", "1/2", R"(1\/2)"},
                    Written{"NamedControls", "\b\f\n\r\t", R"(\b\f\n\r\t)"},
                    Written{"OtherControls", std::string("\0\x01\x0B\x1F", 4), R"(\u0000\u0001\u000b\u001f)"},
                    Written{"Delete", "\x7F", "\x7F"}, Written{"Accents", "Délhi", "Délhi"},
                    Written{"Emoji", "\xF0\x9F\x8F\x99", "\xF0\x9F\x8F\x99"},
                    Written{"LineSeparators", "\xE2\x80\xA8\xE2\x80\xA9", "\xE2\x80\xA8\xE2\x80\xA9"},
                    Written{"Apostrophe", "l'Isle", "l'Isle"}, Written{"NotUtf8", "a\xFFz", "a\xEF\xBF\xBDz"},
                    Written{"CutShort", "a\xE2\x80", "a\xEF\xBF\xBD\xEF\xBF\xBD"},
                    Written{"Surrogate", "\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
                    Written{"Overlong", "\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"}),
    test::kCaseName);

TEST(Address, OfNoPlacemarkIsAnEmptyObject) { EXPECT_EQ(addressJson(nullptr), "{}"); }

struct Field {
  Text Placemark::*field;
  std::string value;
  std::string member;
};

// In the order of the members; the country code is none of them.
const std::array<Field, 7> kFields = {{{&Placemark::administrativeArea, "s", R"("state":"s")"},
                                       {&Placemark::subLocality, "l", R"("locality":"l")"},
                                       {&Placemark::thoroughfare, "a", R"("area":"a")"},
                                       {&Placemark::postalCode, "p", R"("pin":"p")"},
                                       {&Placemark::locality, "c", R"("city":"c")"},
                                       {&Placemark::country, "n", R"("country":"n")"},
                                       {&Placemark::ISOcountryCode, "i", ""}}};

TEST(Address, HasTheMembersOfTheFieldsThatThereAre) {
  for (unsigned set = 0; set < (1U << kFields.size()); ++set) {
    Placemark placemark;
    std::string members;
    for (std::size_t i = 0; i < kFields.size(); ++i) {
      if ((set >> i & 1U) == 0) continue;
      placemark.*kFields[i].field = kFields[i].value;
      if (kFields[i].member.empty()) continue;
      if (!members.empty()) members += ',';
      members += kFields[i].member;
    }

    EXPECT_EQ(addressJson(&placemark), "{" + members + "}") << set;
  }
}

// A line of hexadecimal JSON for each byte and each ill-formed pair; Python answers with the value's code points.
TEST(Address, IsJsonForPython) {
  std::string lines;
  std::vector<std::string> expected;
  for (int first = 0; first < 256; ++first) {
    const Placemark placemark{.locality = std::string{static_cast<char>(first), '"', '/'}};
    lines += test::toHex(addressJson(&placemark)) + "\n";
    const std::string shown = first < 128 ? std::to_string(first) : "65533";
    expected.push_back("city " + shown + " 34 47");
  }

  EXPECT_EQ(test::splitLines(test::runOracle("address.py", {}, lines)), expected);
}

}  // namespace
}  // namespace tavlo
