#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/linux/NominatimAnswer.h"
#include "tests/support/CaseName.h"

namespace tavlo::test {
namespace {

using linux_platform::preparedNominatimAnswer;

constexpr const char* kFirst = R"({"place_id":"0")";
constexpr const char* kLast =
    R"(,"lat":"0","lon":"0","boundingbox":["0","0","0","0"],"osm_type":"node","osm_id":"0","place_id":"0"})";

struct Prepared {
  const char* name;
  const char* answer;
  const char* middle;
};

class NominatimAnswerPrepared : public testing::TestWithParam<Prepared> {};

TEST_P(NominatimAnswerPrepared, HasHarmlessCoordinatesAndOneNameOfThePlace) {
  EXPECT_EQ(preparedNominatimAnswer(GetParam().answer), std::string(kFirst) + GetParam().middle + kLast);
}

INSTANTIATE_TEST_SUITE_P(
    , NominatimAnswerPrepared,
    testing::Values(Prepared{"Empty", "{}", ""}, Prepared{"EmptyWithBlanks", " \n{ \t} \r\n", " \t"},
                    Prepared{"City", R"({"address":{"city":"A"}})", R"(,"address":{"city":"A"})"},
                    Prepared{"Town", R"({"address":{"town":"A"}})", R"(,"address":{"city":"A"})"},
                    Prepared{"Village", R"({"address":{"village":"A"}})", R"(,"address":{"city":"A"})"},
                    Prepared{"All", R"({"address":{"village":"A","town" : "B","city":"C"}})",
                             R"(,"address":{"-":"A","-" : "B","city":"C"})"},
                    Prepared{"TownAndVillage", R"({"address":{"village":"A","town":"B"}})",
                             R"(,"address":{"-":"A","city":"B"})"},
                    Prepared{"ValuesAreNoNames", R"({"address":{"road":"town","x":["city"]}})",
                             R"(,"address":{"road":"town","x":["city"]})"},
                    Prepared{"OtherMembers", R"({"town":"A","x":{"town":"B"},"address":{"y":{"town":"C"}}})",
                             R"(,"town":"A","x":{"town":"B"},"address":{"y":{"town":"C"}})"},
                    // The library keeps the last of two members of one name, so only that one's place counts.
                    Prepared{"TwoAddresses", R"({"address":{"town":"A"},"address":{"village":"B"}})",
                             R"(,"address":{"town":"A"},"address":{"city":"B"})"},
                    // The library reads escapes in names, too.
                    Prepared{"EscapedNames", R"({"addr\u0065ss":{"t\u006Fwn":"A","c\u0069ty":"B"}})",
                             R"(,"addr\u0065ss":{"-":"A","city":"B"})"},
                    Prepared{"EscapesOfNoName", R"({"address":{"\u00":"A","town\u00f":"B","\u0174own":"C"}})",
                             R"(,"address":{"\u00":"A","town\u00f":"B","\u0174own":"C"})"},
                    Prepared{"BracketsAndQuotesInStrings", R"({"a":"}\"]{","address":{"town":"\\"}})",
                             R"(,"a":"}\"]{","address":{"city":"\\"})"}),
    kCaseName);

struct Refused {
  const char* name;
  std::string answer;
};

class NominatimAnswerRefused : public testing::TestWithParam<Refused> {};

TEST_P(NominatimAnswerRefused, IsAbsent) { EXPECT_EQ(preparedNominatimAnswer(GetParam().answer), std::nullopt); }

std::string nested(int depth) {
  std::string text;
  for (int i = 0; i < depth - 1; ++i) text += R"({"a":)";
  return text + "{}" + std::string(static_cast<std::size_t>(depth - 1), '}');
}

INSTANTIATE_TEST_SUITE_P(, NominatimAnswerRefused,
                         testing::Values(Refused{"Nothing", ""}, Refused{"Blanks", " \n"}, Refused{"Text", "\"a\""},
                                         Refused{"List", "[{}]"}, Refused{"Page", "<html>"},
                                         Refused{"OpenBracket", "{"}, Refused{"OpenString", R"({"a)"},
                                         Refused{"EndsInAnEscape", "{\"a\\"}, Refused{"WrongBracket", R"({"a":[}])"},
                                         Refused{"TextBehind", "{} x"}, Refused{"SecondObject", "{}{}"},
                                         Refused{"ClosedTwice", "{}}"}, Refused{"NotUtf8", "{\"a\":\"\xff\"}"},
                                         Refused{"NestedDeeperThan32", nested(33)}),
                         kCaseName);

TEST(NominatimAnswer, ADepthOf32IsFit) { EXPECT_TRUE(preparedNominatimAnswer(nested(32))); }

}  // namespace
}  // namespace tavlo::test
