#include <gtest/gtest.h>

#include "cli/Errors.h"
#include "cli/SessionFile.h"
#include "tests/support/CaseName.h"

namespace tavlo::cli {
namespace {

struct ErrorCase {
  const char* name;
  std::string document;
  const char* message;  // after the file's name
};

void PrintTo(const ErrorCase& row, std::ostream* stream) { *stream << row.name; }

class SessionErrorTest : public testing::TestWithParam<ErrorCase> {};

TEST_P(SessionErrorTest, NamesFileLineKeyAndWhatWasExpected) {
  try {
    static_cast<void>(parseSession(GetParam().document, "s.json"));
    FAIL() << "the session was taken";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.what(), std::string("s.json:") + GetParam().message);
  }
}

const std::vector<ErrorCase> kWrongKinds{
    {"RootIsAList", "\n[]", "2: expected an object, got a list"},
    {"RootIsNull", "null", "1: expected an object, got null"},
    {"SectionIsAText", "{\n\"package\": \"x\"}", "2: package: expected an object, got a text"},
    {"RecordsAreAnObject", R"({"trackerRecords": {}})", "1: trackerRecords: expected a list of records, got an object"},
    {"TextIsAnInteger", "{\"package\": {\n\n\"age\":\n 34\n}}",
     "4: package.age: expected a text or null, got an integer"},
    {"TextIsAReal", R"({"package": {"age": 3.5}})", "1: package.age: expected a text or null, got a real number"},
    {"TextIsATruthValue", R"({"package": {"age": true}})",
     "1: package.age: expected a text or null, got a truth value"},
    {"TextIsAList", R"({"package": {"age": []}})", "1: package.age: expected a text or null, got a list"},
    {"TruthValueIsAnInteger", R"({"package": {"limitAdTrackingEnabled": 1}})",
     "1: package.limitAdTrackingEnabled: expected true, false or null, got an integer"},
    {"IntegerIsAText", R"({"package": {"preRoll": "2"}})",
     "1: package.preRoll: expected an integer or null, got a text"},
    {"IntegerIsAReal", R"({"package": {"resolution": 2.0}})",
     "1: package.resolution: expected an integer or null, got a real number"},
    {"CounterIsATruthValue", R"({"uniqueUser": {"getIsUserNew": true}})",
     "1: uniqueUser.getIsUserNew: expected an integer or null, got a truth value"},
    {"DayIsAnInteger", R"({"uniqueUser": {"getUniqueUserDay": 320}})",
     "1: uniqueUser.getUniqueUserDay: expected a text or null, got an integer"},
    {"RecordIsNull", "{\"trackerRecords\": [{},\n{},\nnull]}", "3: trackerRecords[2]: expected an object, got null"},
    {"RecordIsAnIntegerBeforeALineBreak", "{\"trackerRecords\": [\n1\n]}",
     "2: trackerRecords[0]: expected an object, got an integer"},
    {"CountIsATruthValue", R"({"trackerRecords": [{"count": false}]})",
     "1: trackerRecords[0].count: expected a text, a number or null, got a truth value"},
    {"IdentifierIsAnInteger", R"({"identifiers": {"ApplicationId": 1}})",
     "1: identifiers.ApplicationId: expected a text or null, got an integer"},
};

const std::vector<ErrorCase> kKeys{
    // The text of an exception ends at a NUL.
    {"UnknownSectionWithANul", "{\"\\u0000e\": 1}",
     "1: \\u0000e: unknown key, expected package, uniqueUser, trackerRecords, identifiers or about"},
    {"UnknownSection", "{\n\"packages\":\n{}}",
     "2: packages: unknown key, expected package, uniqueUser, trackerRecords, identifiers or about"},
    {"UnknownPackageKey", R"({"package": {"latitude": "1"}})",
     "1: package.latitude: unknown key, expected a read operation of TavloPackage"},
    {"AboutBelongsToTheTop", R"({"package": {"about": "1"}})",
     "1: package.about: unknown key, expected a read operation of TavloPackage"},
    {"UnknownCounter", R"({"uniqueUser": {"isUserNew": 1}})",
     "1: uniqueUser.isUserNew: unknown key, expected an operation of TavloUniqueUserHandler"},
    {"UnknownRecordKey", R"({"trackerRecords": [{"network_id": 1}]})",
     "1: trackerRecords[0].network_id: unknown key, expected networkID, event or count"},
    {"UnknownIdentifier", R"({"identifiers": {"app": "a"}})",
     "1: identifiers.app: unknown key, expected ApplicationId, OptionalId or SecurityKey"},
    {"EmptyKey", R"({"": 1})",
     "1: \"\": unknown key, expected package, uniqueUser, trackerRecords, identifiers or about"},
    {"SectionTwice", "{\"package\": {},\n\"package\": {}}", "2: package: expected once, first given in line 1"},
    {"KeyTwice", "{\"package\": {\n\"age\": \"1\",\n\"sex\": \"f\",\n\"age\": \"1\"}}",
     "4: package.age: expected once, first given in line 2"},
    {"RecordKeyTwice", R"({"trackerRecords": [{"count": 1, "count": null}]})",
     "1: trackerRecords[0].count: expected once, first given in line 1"},
};

const std::vector<ErrorCase> kNumbers{
    {"IntegerAbove32Bits", R"({"package": {"resolution": 2147483648}})",
     "1: package.resolution: expected an integer from -2147483648 to 2147483647, got 2147483648"},
    {"IntegerBelow32Bits", "{\"uniqueUser\": {\"getNumberOfWeek\": -2147483649\n}}",
     "1: uniqueUser.getNumberOfWeek: expected an integer from -2147483648 to 2147483647, got -2147483649"},
    {"IntegerOf33BitsThatLooksSmallIn32", R"({"package": {"preRoll": 4294967297}})",
     "1: package.preRoll: expected an integer from -2147483648 to 2147483647, got 4294967297"},
    {"IntegerAbove64Bits", R"({"package": {"preRoll": 18446744073709551616}})",
     "1: package.preRoll: expected an integer from -2147483648 to 2147483647, got 18446744073709551616"},
    {"IntegerAbove128Bits", "{\"trackerRecords\": [{\"count\":\n170141183460469231731687303715884105728}]}",
     "2: trackerRecords[0].count: expected an integer of at most 128 bits"},
    {"RealBeyondAllUnderAKeyWithANul", "{\"\\u0000\": 1e999}",
     "1: \\u0000: expected a number that 64 bits can hold as a real"},
    {"RealBeyondAll", "{\"trackerRecords\": [{\"count\":\n1e999}]}",
     "2: trackerRecords[0].count: expected a number that 64 bits can hold as a real"},
};

const std::vector<ErrorCase> kBroken{
    {"EmptyFile", "",
     "1: broken JSON: syntax error while parsing value - unexpected end of input; expected '[', '{', or a literal"},
    {"Unclosed", "{\n\"package\": {\n\n\n",
     "2: broken JSON: syntax error while parsing object key - unexpected end of input; expected string literal"},
    {"MissingComma", "{\n\"about\": 1\n\"package\": {}}",
     "3: broken JSON: syntax error while parsing object - unexpected string literal; expected '}'"},
    {"LineBreakInText", "{\"about\": \"a\nb\"}",
     "1: broken JSON: syntax error while parsing value - invalid string: control character U+000A (LF) must be "
     "escaped to \\u000A or \\n; last read: '\"a<U+000A>'"},
    {"LoneSurrogate", "\n{\"about\": \"\\ud800\"}",
     "2: broken JSON: syntax error while parsing value - invalid string: surrogate U+D800..U+DBFF must be followed "
     "by U+DC00..U+DFFF; last read: '\"\\ud800\"'"},
    {"BytesThatAreNoUtf8", "{\n\n\"about\": \"a\xFF\"}",
     "3: broken JSON: syntax error while parsing value - invalid string: ill-formed UTF-8 byte; last read: '\"a\xFF'"},
    {"SomethingAfterTheEnd", "{}\n\n{}",
     "3: broken JSON: syntax error while parsing value - unexpected '{'; expected end of input"},
    // The parser takes it for the end of the text, whatever follows.
    {"NulAfterTheEnd", std::string("{}\n\0[", 5),
     "2: broken JSON: a NUL byte where the text should end; save it as UTF-8 without one"},
    {"NulInTheMiddle", std::string("{\n\"about\":\0 1}", 14),
     "2: broken JSON: syntax error while parsing value - unexpected end of input; expected '[', '{', or a literal"},
    {"DeepNesting", "{\"about\":\n" + std::string(64, '['), "2: expected at most 64 levels of nesting"},
};

INSTANTIATE_TEST_SUITE_P(WrongKinds, SessionErrorTest, testing::ValuesIn(kWrongKinds), tavlo::test::kCaseName);
INSTANTIATE_TEST_SUITE_P(Keys, SessionErrorTest, testing::ValuesIn(kKeys), tavlo::test::kCaseName);
INSTANTIATE_TEST_SUITE_P(Numbers, SessionErrorTest, testing::ValuesIn(kNumbers), tavlo::test::kCaseName);
INSTANTIATE_TEST_SUITE_P(Broken, SessionErrorTest, testing::ValuesIn(kBroken), tavlo::test::kCaseName);

}  // namespace
}  // namespace tavlo::cli
