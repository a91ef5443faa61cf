#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <bit>
#include <cmath>
#include <limits>

#include "cache/KeyedArchive.h"
#include "cli/ArchiveJson.h"
#include "cli/Json.h"
#include "tests/support/CaseName.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::cli {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct FormCase {
  const char* name;
  std::optional<Value> value;
  const char* json;
};

void PrintTo(const FormCase& row, std::ostream* stream) { *stream << row.name; }

class ArchiveFormTest : public testing::TestWithParam<FormCase> {};

TEST_P(ArchiveFormTest, IsWrittenSoAndReadBackTheSame) {
  EXPECT_EQ(toArchiveJson(GetParam().value, ArchiveLayout::oneLine), GetParam().json);
  EXPECT_EQ(parseArchiveJson(GetParam().json), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ArchiveFormTest,
    testing::ValuesIn(std::vector<FormCase>{
        {"NothingAtAll", std::nullopt, "null"},
        {"NothingInAList", Value::list({Uid{}}), "[null]"},
        {"NullObject", Value(), R"({"$null":true})"},
        {"OtherReference", Uid{.index = 18446744073709551615U}, R"({"$uid":18446744073709551615})"},
        {"True", true, "true"},
        {"False", false, "false"},
        {"SmallInteger", -7, "-7"},
        {"LargeInteger", std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
        {"Integer128", Integer{.high = std::numeric_limits<std::int64_t>::min(), .low = 0},
         "-170141183460469231731687303715884105728"},
        {"WholeReal", 3.0, "3.0"},
        {"NegativeZero", -0.0, "-0.0"},
        {"ShortReal", 0.1, "0.1"},
        {"RoundReal", 1700000000.0, "1700000000.0"},
        {"LargestWithoutExponent", 9999999999999998.0, "9999999999999998.0"},
        {"SmallestWithExponent", 1e16, "1e+16"},
        {"SmallReal", 0.0001, "0.0001"},
        {"SmallerReal", -0.00005, "-5e-05"},
        {"LargeReal", 1e300, "1e+300"},
        {"TinyReal", 5e-324, "5e-324"},
        {"Infinity", kInfinity, R"({"$real":"inf"})"},
        {"NegativeInfinity", -kInfinity, R"({"$real":"-inf"})"},
        {"NoNumber", std::numeric_limits<double>::quiet_NaN(), R"({"$real":"nan"})"},
        {"NoNumberWithBits", std::bit_cast<double>(0xFFF8000000000123U), R"({"$real":"nan:fff8000000000123"})"},
        {"DateOf2001", Date{.seconds = 0}, R"({"$date":978307200.0})"},
        {"DateOf1970", Date{.seconds = -978307200}, R"({"$date":0.0})"},
        {"DateWithAFraction", Date{.seconds = 730682571.0320001}, R"({"$date":1708989771.032})"},
        {"DateThatTheSumWouldRound", Date{.seconds = 0.1}, R"({"$date":978307200.1,"since2001":0.1})"},
        {"DateOfNegativeZero", Date{.seconds = -0.0}, R"({"$date":978307200.0,"since2001":-0.0})"},
        {"DateWithoutEnd", Date{.seconds = kInfinity}, R"({"$date":"inf"})"},
        {"DateThatIsNone", Date{.seconds = std::bit_cast<double>(0x7FF8000000000001U)},
         R"({"$date":"nan:7ff8000000000001"})"},
        {"Text", "a/\"ü😀\"\n", R"("a/\"ü😀\"\n")"},
        {"TextWithNul", std::string("a\0b", 3), R"("a\u0000b")"},
        {"TextThatIsNoUtf8", "a\xFF", R"({"$text":"61ff"})"},
        {"TextWithALoneSurrogate", "\xED\xA0\xBD", R"({"$text":"eda0bd"})"},
        {"Data", Value::data(std::string("\x00\xAB", 2)), R"({"$data":"00ab"})"},
        {"EmptyData", Value::data(""), R"({"$data":""})"},
        {"List", Value::list({1, Value::list({})}), "[1,[]]"},
        {"Set", Value::set({"a", 3}), R"({"$set":["a",3]})"},
        {"SetInTheOrderOfItsTexts", Value::set({"c", 3, "a", Value::list({}), 20, "b"}),
         R"({"$set":["a","b","c",20,3,[]]})"},
        {"Map", Value::map({{"z", 1}, {"", 2}}), R"({"z":1,"":2})"},
        {"MapOfAnyKeys", Value::map({{1, "one"}, {Value::list({}), 2}}), R"({"$map":[[1,"one"],[[],2]]})"},
        {"MapWithADollar", Value::map({{"$date", 5}}), R"({"$map":[["$date",5]]})"},
        {"MapWithAKeyThatIsNoUtf8", Value::map({{"\xFF", 5}}), R"({"$map":[[{"$text":"ff"},5]]})"},
        {"Url", Value::url({.text = "http://h/a", .base = {}}), R"({"$url":"http://h/a"})"},
        {"UrlWithBase", Value::url({.text = "c", .base = Value::url({.text = "http://h/", .base = {}})}),
         R"({"$url":"c","base":"http://h/"})"},
        {"UrlWithBaseThatHasOne",
         Value::url({.text = "c", .base = Value::url({.text = "b", .base = Value::url({.text = "\xFF", .base = {}})})}),
         R"({"$url":"c","base":{"$url":"b","base":{"$text":"ff"}}})"},
        {"Object", Value::object({.className = "Ad", .fields = {{"a", 1}, {"b", Uid{}}}}),
         R"({"$class":"Ad","a":1,"b":null})"},
        {"ObjectWithNamelessFields", Value::object({.className = "\xFF", .fields = {{"$0", 1}, {"b", 2}}}),
         R"({"$class":{"$text":"ff"},"$fields":[["$0",1],["b",2]]})"},
        {"ObjectWithoutFields", Value::object({.className = "Ad", .fields = {}}), R"({"$class":"Ad"})"},
    }),
    tavlo::test::kCaseName);

TEST(ArchiveJsonTest, RealOf32BitsIsItsNumber) {
  EXPECT_EQ(toArchiveJson(Real{.value = 4.5, .narrow = true}, ArchiveLayout::oneLine), "4.5");
}

TEST(ArchiveJsonTest, IndentedLayoutHasALineAnItem) {
  const Value value = Value::list({Value::map({{"startdate", Date{.seconds = 0}}, {"tags", Value::set({"b", "a"})}}),
                                   Value::list({}), Value::map(ValueMap()), Value::map({{1, Value::list({2})}})});

  EXPECT_EQ(toArchiveJson(value, ArchiveLayout::indented), R"([
  {
    "startdate": {"$date": 978307200.0},
    "tags": {"$set": [
      "a",
      "b"
    ]}
  },
  [],
  {},
  {"$map": [
    [1, [
      2
    ]]
  ]}
])");
}

TEST(ArchiveJsonTest, WhatSharingMakesTooLongIsRefusedBeforeItIsMade) {
  Value value = Value::list({});
  for (int level = 0; level < 60; ++level) value = Value::list({value, value});

  for (const ArchiveLayout layout : {ArchiveLayout::oneLine, ArchiveLayout::indented}) {
    EXPECT_THROW(static_cast<void>(toArchiveJson(value, layout)), ArchiveTooLarge);
  }
}

TEST(ArchiveJsonTest, LimitIsThatOfTheWholeText) {
  EXPECT_EQ(toArchiveJson(Value::list({1, 2}), ArchiveLayout::oneLine, 5), "[1,2]");
  try {
    static_cast<void>(toArchiveJson(Value::list({1, 2}), ArchiveLayout::oneLine, 4));
    FAIL();
  } catch (const ArchiveTooLarge& error) {
    EXPECT_STREQ(error.what(), "its contents take more than 4 bytes as text");
  }
}

struct MistakeCase {
  const char* name;
  const char* json;
  std::size_t line;
  const char* message;
};

void PrintTo(const MistakeCase& row, std::ostream* stream) { *stream << row.name; }

class ArchiveMistakeTest : public testing::TestWithParam<MistakeCase> {};

TEST_P(ArchiveMistakeTest, IsToldWithItsLineAndPlace) {
  try {
    static_cast<void>(parseArchiveJson(GetParam().json));
    FAIL();
  } catch (const JsonError& error) {
    EXPECT_EQ(error.line(), GetParam().line);
    EXPECT_STREQ(error.what(), GetParam().message);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ArchiveMistakeTest,
    testing::ValuesIn(std::vector<MistakeCase>{
        {"KeyTwice", "[{\"a\": 1,\n\"a\": 2}]", 2, "[0]: \"a\": expected once, first given in line 1"},
        {"UnknownForm", "{\"a\": [{\"$frob\": 1}]}", 1,
         "a[0]: \"$frob\": expected a key without \"$\" in front, or one of $class, $fields (with it), $date, $data, "
         "$map, $null, $real, $set, $text, $uid and $url"},
        {"MemberBesideAForm", "{\"$data\": \"\",\n\"x\": 1}", 2, "\"x\": unexpected beside \"$data\""},
        {"OddHexadecimal", "{\"$data\": \"abc\"}", 1, "$data: expected a text of hexadecimal digits, two a byte"},
        {"NoHexadecimal", "{\"$text\": \"xy\"}", 1, "$text: expected a text of hexadecimal digits, two a byte"},
        {"DateOfAText", "{\"$date\": \"yesterday\"}", 1,
         "$date: expected seconds, a number of at most 64 bits, or \"inf\", \"-inf\", \"nan\" or \"nan:\" and the 64 "
         "bits of one"},
        {"DatesThatDiffer", "{\"$date\": 5,\n\"since2001\": 5}", 2,
         "$date: \"since2001\" and \"$date\" are not the same moment; give one of them the other's value, or leave out "
         "\"since2001\""},
        {"RealThatJsonHas", "{\"$real\": 1.5}", 1,
         "$real: expected \"inf\", \"-inf\", \"nan\" or \"nan:\" and the 64 bits of one"},
        {"BitsOfANumber", "{\"$real\": \"nan:3ff0000000000000\"}", 1,
         "$real: expected \"inf\", \"-inf\", \"nan\" or \"nan:\" and the 64 bits of one"},
        {"SetOfAText", "[1, {\"$set\": \"a\"}]", 1, "[1].$set: expected a list"},
        {"MapOfATriple", "{\"$map\": [[1, 2], [1, 2, 3]]}", 1, "$map[1]: expected a list of a key and a value"},
        {"MapOfEqualKeys", "{\"$map\": [[1, 2], [1, 3]]}", 1, "$map: expected keys that differ from one another"},
        {"NullThatIsFalse", "{\"$null\": false}", 1, "$null: expected true"},
        {"NegativeReference", "{\"$uid\": -1}", 1, "$uid: expected an index"},
        {"UrlOfANumber", "{\"$url\": 1}", 1, "$url: expected a text"},
        {"BaseOfANumber", "{\"$url\": \"a\", \"base\": 1}", 1, "base: expected a text"},
        {"BaseOfABaseOfANumber", "[{\"$url\": \"a\", \"base\": {\"$url\": \"b\", \"base\": []}}]", 1,
         "[0].base.base: expected a text"},
        {"SecondTimeThatIsAText", "{\"$date\": 5, \"since2001\": \"x\"}", 1,
         "since2001: expected seconds, a number of at most 64 bits, or \"inf\", \"-inf\", \"nan\" or \"nan:\" and the "
         "64 "
         "bits of one"},
        {"ClassOfANumber", "{\"$class\": 1}", 1, "$class: expected a text"},
        {"FieldsAndMembers", "{\"$class\": \"A\", \"$fields\": [], \"a\": 1}", 1,
         "expected nothing beside \"$class\" and \"$fields\""},
        {"FieldWithADollar", "{\"$class\": \"A\", \"$date\": 1}", 1,
         "\"$date\": expected a key without \"$\" in front, or one of $class, $fields (with it), $date, $data, $map, "
         "$null, $real, $set, $text, $uid and $url"},
        {"BrokenJson", "[1,\n2", 2,
         "broken JSON: syntax error while parsing array - unexpected end of input; expected ']'"},
    }),
    tavlo::test::kCaseName);

// Beside each archive lies what it holds.
class ArchiveFixtureTest : public testing::TestWithParam<const char*> {
 protected:
  static std::string file(const std::string& extension) {
    return tavlo::test::readFile(std::string(TAVLO_SOURCE_DIR) + "/tests/fixtures/archives/" + GetParam() + extension);
  }
};

TEST_P(ArchiveFixtureTest, IsWrittenAsTheJsonBesideIt) {
  const auto expected = nlohmann::json::parse(file(".json")).at("root");

  const auto value = keyed_archive::decode(file(".bin"));

  for (const ArchiveLayout layout : {ArchiveLayout::oneLine, ArchiveLayout::indented}) {
    EXPECT_EQ(nlohmann::json::parse(toArchiveJson(value, layout)), expected);
  }
}

TEST_P(ArchiveFixtureTest, GoesThroughJsonAndAnArchiveAgain) {
  const std::string json = toArchiveJson(keyed_archive::decode(file(".bin")), ArchiveLayout::oneLine);

  const auto again = keyed_archive::decode(keyed_archive::encode(parseArchiveJson(json)));

  EXPECT_EQ(toArchiveJson(again, ArchiveLayout::oneLine), json);
}

INSTANTIATE_TEST_SUITE_P(Files, ArchiveFixtureTest,
                         testing::Values("desktop_custom_list", "desktop_dates", "desktop_five_records", "desktop_sets",
                                         "desktop_urls", "device_custom_list", "device_empty_list",
                                         "device_five_records", "device_nested", "device_one_record",
                                         "device_root_string", "device_shared", "device_types"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace tavlo::cli
