// What the library makes of answers that a server may invent. Run with G_DEBUG=fatal-criticals: a complaint of the
// library ends the test.
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>

#include "platform/linux/AddressLookUp.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"

namespace tavlo::test {
namespace {

using linux_platform::AddressAnswer;
using linux_platform::lookUpAddress;

constexpr platform::Coordinate kPlace{.latitude = 28.5, .longitude = 77.25};
constexpr const char* kAnswer =
    R"({"place_id":1,"licence":"none","osm_type":"way","osm_id":"1","lat":"28.6","lon":"77.2","category":"highway",)"
    R"("type":"primary","place_rank":26,"importance":0.1,"icon":"http://h/i.png","display_name":"Rajpath",)"
    R"("address":{"house_number":"5","road":"R\u00e9 \"x\"","suburb":"S","city":"C","state":"T","postcode":"1",)"
    R"("country":"I","country_code":"in"},"boundingbox":["28.5","28.7","77.1","77.3"],"extra":[null,true,{"a":[]}]})";

AddressAnswer lookUp(const std::string& answer) {
  return lookUpAddress("http://h", "", kPlace, [&](const std::string&) { return answer; });
}

TEST(AddressLookUp, FillsEveryFieldFromItsMember) {
  const AddressAnswer answer = lookUp(kAnswer);

  EXPECT_EQ(answer.error, std::nullopt);
  EXPECT_EQ(answer.placemark, (platform::Placemark{.ISOcountryCode = "IN",
                                                   .country = "I",
                                                   .postalCode = "1",
                                                   .administrativeArea = "T",
                                                   .locality = "C",
                                                   .subLocality = "S",
                                                   .thoroughfare = "R\u00e9 \"x\""}));
}

TEST(AddressLookUp, AsksForThePlaceInItsOwnDigits) {
  std::string asked;

  static_cast<void>(lookUpAddress("http://h/base", "a b@h", kPlace, [&](const std::string& url) {
    asked = url;
    return std::string("{}");
  }));

  EXPECT_EQ(asked.substr(0, 22), "http://h/base/reverse?");
  for (const char* member : {"lat=28.5", "lon=77.25", "email=a+b%40h", "format=json", "addressdetails=1"}) {
    EXPECT_NE(asked.find(member), std::string::npos) << member << " in " << asked;
  }
}

TEST(AddressLookUp, WhatTheFetchThrowsIsTheError) {
  const AddressAnswer answer = lookUpAddress(
      "http://h", "", kPlace, [](const std::string&) -> std::string { throw std::runtime_error("no answer today"); });

  EXPECT_EQ(answer.error, "no answer today");
}

// The words are the library's.
TEST(AddressLookUp, AnErrorThatIsNoTextIsOneAllTheSame) {
  for (const char* error : {R"("")", "null", "404", "true", R"({"code":400,"message":"No"})", R"(["No"])"}) {
    const AddressAnswer answer = lookUp(R"({"address":{"city":"C"},"error":)" + std::string(error) + "}");

    EXPECT_EQ(answer.error, "Query not supported") << error;
    EXPECT_EQ(answer.placemark, platform::Placemark()) << error;
  }
}

TEST(AddressLookUp, AnswersCutAtEveryByteAreErrors) {
  const std::string whole = kAnswer;

  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_TRUE(lookUp(whole.substr(0, length)).error) << length;
  }
}

TEST(AddressLookUp, SpoiltAnswersGiveAnAddressOrAnError) {
  std::mt19937_64 random(seed());
  const std::string whole = kAnswer;
  const std::string alphabet = "{}[]\",:\\0189-+.eEtfnu \n\x01\x7f";

  for (int i = scaled(5000); i > 0; --i) {
    std::string spoilt = whole;
    for (unsigned changes = random() % 4 + 1; changes > 0; --changes) {
      const std::size_t at = random() % spoilt.size();
      const std::size_t from = random() % spoilt.size();
      const std::size_t length = random() % 12;
      switch (random() % 3) {
        case 0: spoilt[at] = alphabet[random() % alphabet.size()]; break;
        case 1: spoilt.erase(at, length); break;
        default: spoilt.insert(at, spoilt.substr(from, length)); break;
      }
    }

    const AddressAnswer answer = lookUp(spoilt);

    EXPECT_NE(answer.error.has_value(), answer.placemark != platform::Placemark()) << spoilt;
  }
}

}  // namespace
}  // namespace tavlo::test
