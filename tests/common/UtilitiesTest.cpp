#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TavloUtility.h"
#include "common/TavloException.h"
#include "tests/support/RecordingCollaborators.h"

namespace tavlo {
namespace {

using test::Installed;
using test::RecordingReporter;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kReport = "md5:() Invalid string for passed for hash";

class Md5Operation : public testing::Test {
 protected:
  Installed<TavloException, RecordingReporter> reporter_;
};

TEST_F(Md5Operation, HashesTheUtf8BytesOfAText) {
  EXPECT_EQ(TavloUtility::md5(""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(TavloUtility::md5("http://h/a.mp4"), "46a031da1eba2acf8ec285d177c677da");
  EXPECT_EQ(TavloUtility::md5("\xC3\xBC"), "c03410a5204b21cd8229ff754688d743");
}

TEST_F(Md5Operation, StopsAtTheFirstNul) {
  EXPECT_EQ(TavloUtility::md5(std::string("abc\0def", 7)), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(TavloUtility::md5(std::string("\0abc", 4)), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST_F(Md5Operation, GivesAbsentForAbsentWithoutAReport) {
  const Text digest = TavloUtility::md5(std::nullopt);

  EXPECT_EQ(digest, std::nullopt);
  EXPECT_THAT(reporter_->messages, IsEmpty());
}

TEST_F(Md5Operation, ReportsAValueThatIsNoTextOnceAndGivesAbsent) {
  const Value others[] = {Value(),
                          Value(true),
                          Value(42),
                          Value(4.2),
                          Value(Date{}),
                          Value(Uid{}),
                          Value::data("abc"),
                          Value::list({}),
                          Value::set({}),
                          Value::map({}),
                          Value::url({.text = "http://h", .base = {}}),
                          Value::object({.className = "C", .fields = {}})};
  for (const Value& value : others) {
    reporter_->messages.clear();

    const Text digest = TavloUtility::md5(value);

    EXPECT_EQ(digest, std::nullopt);
    EXPECT_THAT(reporter_->messages, ElementsAre(kReport)) << "kind " << static_cast<int>(value.kind());
  }
}

TEST_F(Md5Operation, LetsAnExceptionOfTheReporterPass) {
  class Throwing final : public TavloException {
    void report(std::string_view message) override { throw std::runtime_error(std::string(message)); }
  };
  TavloException::install(std::make_shared<Throwing>());

  EXPECT_THROW(static_cast<void>(TavloUtility::md5(1)), std::runtime_error);
  EXPECT_EQ(TavloUtility::md5("abc"), "900150983cd24fb0d6963f7d28e17f72");
}

TEST_F(Md5Operation, GivesAbsentForANumberWithNoReporterInstalled) {
  TavloException::install(nullptr);

  EXPECT_EQ(TavloUtility::md5(1), std::nullopt);
}

}  // namespace
}  // namespace tavlo
