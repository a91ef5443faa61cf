#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "common/Format.h"
#include "tests/support/CaseName.h"
#include "tests/support/Python.h"
#include "tests/support/Scale.h"
#include "tests/support/Seed.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo {
namespace {

template <class Append, class Argument>
std::string written(Append append, const Argument& argument) {
  std::string out = "<";
  append(out, argument);
  return out + ">";
}

TEST(FormatTest, AnAbsentTextIsSixCharactersAndAnEmptyOneNone) {
  EXPECT_EQ(written(appendText, Text()), "<(null)>");
  EXPECT_EQ(written(appendText, Text("")), "<>");
  EXPECT_EQ(written(appendText, Text("a %@ b")), "<a %@ b>");
}

TEST(FormatTest, ATruthValueIsOneOrZero) {
  EXPECT_EQ(written(appendBoolean, true), "<1>");
  EXPECT_EQ(written(appendBoolean, false), "<0>");
}

TEST(FormatTest, AnIntegerIsSignedDecimalWithoutGrouping) {
  EXPECT_EQ(written(appendInteger, 0), "<0>");
  EXPECT_EQ(written(appendInteger, -1), "<-1>");
  EXPECT_EQ(written(appendInteger, std::numeric_limits<std::int32_t>::max()), "<2147483647>");
  EXPECT_EQ(written(appendInteger, std::numeric_limits<std::int32_t>::min()), "<-2147483648>");
}

TEST(FormatTest, ADoubleHasSixDecimalsAndPrintsAsInC) {
  EXPECT_EQ(written(appendFixed, 28.5), "<28.500000>");
  EXPECT_EQ(written(appendFixed, -0.12), "<-0.120000>");
  EXPECT_EQ(written(appendFixed, 0.0), "<0.000000>");
  EXPECT_EQ(written(appendFixed, -0.0), "<-0.000000>");
  EXPECT_EQ(written(appendFixed, -33.8688), "<-33.868800>");
  EXPECT_EQ(written(appendFixed, 1e22), "<10000000000000000000000.000000>");
  EXPECT_EQ(written(appendFixed, std::numeric_limits<double>::max()).size(), 309U + 7 + 2);
  EXPECT_EQ(written(appendFixed, std::numeric_limits<double>::infinity()), "<inf>");
  EXPECT_EQ(written(appendFixed, -std::numeric_limits<double>::infinity()), "<-inf>");
  EXPECT_EQ(written(appendFixed, std::nan("")), "<nan>");
}

// Special ones first: both zeros, the smallest and largest, what is no number, infinities.
void expectAgreementOnDoubles(const std::string& where) {
  const std::string count = std::to_string(test::figure(10'000, 100'000));

  const auto lines = test::splitLines(test::runOracle("fixed.py", {count, std::to_string(test::seed())}));

  ASSERT_GE(lines.size(), std::stoull(count));
  for (const std::string& line : lines) {
    const double number = std::bit_cast<double>(std::uint64_t{std::stoull(line.substr(0, 16), nullptr, 16)});
    std::string ours;
    appendFixed(ours, std::isnan(number) ? std::fabs(number) : number);
    ASSERT_EQ(ours, line.substr(17)) << line;
  }
  test::reached("T14 %f", count + " doubles" + where);
}

TEST(FormatTest, FixedNotationAgreesWithASecondImplementation) { expectAgreementOnDoubles(""); }

// Sets the process's locale to one that lies in a folder, and back at the end.
class LocaleFrom {
 public:
  LocaleFrom(const std::filesystem::path& folder, const char* name) {
    ::setenv("LOCPATH", folder.c_str(), 1);
    isSet_ = std::setlocale(LC_ALL, name) != nullptr;
  }
  LocaleFrom(const LocaleFrom&) = delete;
  LocaleFrom& operator=(const LocaleFrom&) = delete;
  ~LocaleFrom() {
    std::setlocale(LC_ALL, "C");
    ::unsetenv("LOCPATH");
  }

  [[nodiscard]] bool isSet() const { return isSet_; }

 private:
  bool isSet_ = false;
};

TEST(FormatTest, NumbersAreTheSameUnderALocaleWithADecimalComma) {
  const test::TemporaryFolder folder;
  const std::string order = std::endian::native == std::endian::big ? "--big-endian" : "--little-endian";
  const std::string command =
      "localedef " + order + " -i de_DE -f UTF-8 '" + (folder / "de_DE.UTF-8").string() + "' >/dev/null 2>&1";
  if (std::system(command.c_str()) != 0)
    GTEST_SKIP() << "localedef (package locales) cannot make a locale with a decimal comma here";
  const LocaleFrom german(folder.path(), "de_DE.UTF-8");
  ASSERT_TRUE(german.isSet());
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");

  EXPECT_EQ(written(appendFixed, -1234.5), "<-1234.500000>");
  EXPECT_EQ(textForm(1234.5), "1234.5");
  EXPECT_EQ(textForm(-1234567), "-1234567");
  expectAgreementOnDoubles(" under a locale with a decimal comma");
}

struct Case {
  const char* name;
  Value value;
  const char* text;
};

class TextForm : public testing::TestWithParam<Case> {};

TEST_P(TextForm, IsAsDocumented) { EXPECT_EQ(textForm(GetParam().value), GetParam().text); }

INSTANTIATE_TEST_SUITE_P(
    Kinds, TextForm,
    testing::Values(Case{"ANull", Value(), "<null>"}, Case{"True", true, "1"}, Case{"False", false, "0"},
                    Case{"Integer", -42, "-42"},
                    Case{"Unsigned", std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
                    Case{"Bits128", Integer{.high = std::numeric_limits<std::int64_t>::min(), .low = 0},
                         "-170141183460469231731687303715884105728"},
                    Case{"Whole", 3.0, "3"}, Case{"Tenth", 0.1, "0.1"}, Case{"Third", 1.0 / 3, "0.3333333333333333"},
                    Case{"Large", 1e20, "1e+20"}, Case{"Small", 1.5e-7, "1.5e-07"}, Case{"Infinite", -HUGE_VAL, "-inf"},
                    Case{"Text", "a\nb", "a\nb"}, Case{"Data", Value::data("a b"), "a b"},
                    Case{"TheReferenceDate", Date{.seconds = 0}, "2001-01-01 00:00:00 +0000"},
                    Case{"ADateBefore", Date{.seconds = -0.5}, "2000-12-31 23:59:59 +0000"},
                    Case{"AnEarlyDate", Date{.seconds = -63113904000.0}, "0001-01-01 00:00:00 +0000"},
                    Case{"AYearOfTwoDigits", Date{.seconds = -61725369600.0}, "0045-01-01 00:00:00 +0000"},
                    Case{"AYearOfThreeDigits", Date{.seconds = -33324134400.0}, "0945-01-01 00:00:00 +0000"},
                    Case{"AYearBeforeZero", Date{.seconds = -64e9}, "-28-12-03 06:13:20 +0000"},
                    Case{"AYearOfFiveDigits", Date{.seconds = 8.9e11}, "30203-12-24 22:13:20 +0000"},
                    Case{"ADateBeyondTheCalendar", Date{.seconds = 1e12}, "1000000000000"},
                    Case{"ADateFarBeyondTheCalendar", Date{.seconds = 1e300}, "1e+300"},
                    Case{"ADateThatIsNone", Date{.seconds = std::nan("")}, "nan"}, Case{"AUid", Uid{.index = 7}, "7"},
                    Case{"Url", Value::url({.text = "x", .base = Value::url({.text = "http://h", .base = {}})}), "x"},
                    Case{"List", Value::list({"a", 1, Value::list({})}), "(a, 1, ())"},
                    Case{"Set", Value::set({"a"}), "(a)"},
                    Case{"Map", Value::map({{"k", 1}, {2, "v"}}), "{k = 1; 2 = v}"},
                    Case{"Object", Value::object({.className = "Ad", .fields = {}}), "Ad"}),
    test::kCaseName);

TEST(FormatTest, TheTextFormOfHeavySharingIsCut) {
  Value value = Value::list({"leaf"});
  for (int level = 0; level < 40; ++level) value = Value::list({value, value});

  const std::string text = textForm(value);

  EXPECT_GE(text.size(), 1U << 20U);
  EXPECT_LT(text.size(), 2U << 20U);
  EXPECT_NE(text.find("..."), std::string::npos);
}

TEST(FormatTest, ATextIsWholeInItsTextFormHoweverLong) {
  const std::string text(3U << 20U, 'x');

  EXPECT_EQ(textForm(text), text);
  EXPECT_EQ(textForm(Value::data(text)), text);
}

TEST(FormatTest, TheTextFormOfDeepNestingIsCut) {
  Value value = "leaf";
  for (int level = 0; level < 1000; ++level) value = Value::list({value});

  EXPECT_EQ(textForm(value), std::string(513, '(') + "..." + std::string(513, ')'));
}

TEST(FormatTest, AnAbsentValueHasATextFormToo) {
  EXPECT_EQ(written(appendTextForm, std::optional<Value>()), "<(null)>");
  EXPECT_EQ(written(appendTextForm, std::optional<Value>(7)), "<7>");
}

}  // namespace
}  // namespace tavlo
