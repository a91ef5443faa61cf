#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/linux/ResponseHead.h"
#include "tests/support/CaseName.h"

namespace tavlo::test {
namespace {

using linux_platform::ResponseHead;

constexpr const char* kOk = "HTTP/1.1 200 OK\r\n";
constexpr const char* kEnd = "\r\n";

bool addAll(ResponseHead& head, const std::vector<std::string>& lines) {
  return std::all_of(lines.begin(), lines.end(), [&](const std::string& line) { return head.add(line); });
}

TEST(ResponseHead, IsCompleteWithItsBlankLine) {
  ResponseHead head(1000);

  EXPECT_TRUE(addAll(head, {kOk, "Content-Type: image/png\r\n"}));
  EXPECT_FALSE(head.isComplete());
  EXPECT_TRUE(head.add(kEnd));

  EXPECT_TRUE(head.isComplete());
  EXPECT_EQ(head.contentLength(), std::nullopt);
}

TEST(ResponseHead, ThatIsInterimIsNotComplete) {
  ResponseHead head(1000);

  EXPECT_TRUE(addAll(head, {"HTTP/1.1 103 Early Hints\r\n", kEnd}));
  EXPECT_FALSE(head.isComplete());
  EXPECT_TRUE(addAll(head, {kOk, kEnd}));

  EXPECT_TRUE(head.isComplete());
}

TEST(ResponseHead, WithoutAStatusLineIsNotComplete) {
  ResponseHead head(1000);

  EXPECT_TRUE(addAll(head, {"A: b\r\n", kEnd}));
  EXPECT_FALSE(head.isComplete());
  EXPECT_TRUE(addAll(head, {kOk, kEnd}));

  EXPECT_TRUE(head.isComplete());
}

TEST(ResponseHead, HasTheLengthOfItsOwnResponse) {
  ResponseHead head(1000);

  EXPECT_TRUE(
      addAll(head, {"HTTP/1.1 302 Found\r\n", "Content-Length: 5\r\n", kEnd, kOk, "cOnTent-lengTH:\t 0012 \n"}));
  EXPECT_EQ(head.contentLength(), 12U);
}

struct Lines {
  const char* name;
  std::vector<std::string> accepted;
  std::string refused;
};

class RefusedLines : public testing::TestWithParam<Lines> {};

TEST_P(RefusedLines, AreRefusedAfterThoseBefore) {
  ResponseHead head(1000);

  EXPECT_TRUE(addAll(head, GetParam().accepted));
  EXPECT_FALSE(head.add(GetParam().refused));
}

INSTANTIATE_TEST_SUITE_P(
    ResponseHead, RefusedLines,
    testing::Values(
        Lines{"Nul", {kOk}, std::string("A: b\0c\r\n", 8)}, Lines{"NoLength", {kOk}, "Content-Length:\r\n"},
        Lines{"NegativeLength", {kOk}, "Content-Length: -1\r\n"}, Lines{"MinusZero", {kOk}, "Content-Length: -0\r\n"},
        Lines{"PlusSign", {kOk}, "Content-Length: +5\r\n"}, Lines{"Letters", {kOk}, "Content-Length: 5x\r\n"},
        Lines{"Hexadecimal", {kOk}, "Content-Length: 0x10\r\n"}, Lines{"List", {kOk}, "Content-Length: 5, 5\r\n"},
        Lines{"TwoToThe63", {kOk}, "Content-Length: 9223372036854775808\r\n"},
        Lines{"TwoToThe64", {kOk}, "Content-Length: 18446744073709551616\r\n"},
        Lines{"OtherLength", {kOk, "Content-Length: 5\r\n"}, "Content-Length: 6\r\n"},
        Lines{"CompressedTransfer", {kOk}, "Transfer-Encoding: gzip, chunked\r\n"},
        Lines{"LengthInATrailer", {kOk, "Content-Length: 5\r\n", kEnd}, "Content-Length: 6\r\n"},
        Lines{"LineBeyondTheLimit", {kOk}, "A: " + std::string(1000, 'x') + "\r\n"},
        Lines{"SumBeyondTheLimit", {kOk, "A: " + std::string(900, 'x') + "\r\n"}, std::string(81, 'x')}),
    kCaseName);

TEST(ResponseHead, TakesTheLargestLengthAndTheSameOneTwice) {
  ResponseHead head(1000);

  EXPECT_TRUE(
      addAll(head, {kOk, "Content-Length: 9223372036854775807\r\n", "Content-Length: 9223372036854775807\r\n"}));
  EXPECT_EQ(head.contentLength(), 9'223'372'036'854'775'807U);
}

TEST(ResponseHead, TakesChunksInAnyLetterCase) {
  ResponseHead head(1000);

  EXPECT_TRUE(addAll(head, {kOk, "transfer-encoding: Chunked\r\n", kEnd, "Trailer: a\r\n", kEnd}));
  EXPECT_TRUE(head.isComplete());
}

TEST(ResponseHead, KnowsWhetherTheBodySaysWhereItEnds) {
  const auto delimits = [](const std::vector<std::string>& lines) {
    ResponseHead head(1000);
    return addAll(head, lines) && head.delimitsBody();
  };

  EXPECT_FALSE(delimits({kOk, kEnd}));
  EXPECT_TRUE(delimits({kOk, "Content-Length: 0\r\n", kEnd}));
  EXPECT_TRUE(delimits({kOk, "Transfer-Encoding: chunked\r\n", kEnd}));
  EXPECT_TRUE(delimits({"HTTP/1.1 204 No Content\r\n", kEnd}));
  EXPECT_TRUE(delimits({"HTTP/1.1 304 Not Modified\r\n", kEnd}));
  EXPECT_FALSE(delimits({"HTTP/1.1 302 Found\r\n", "Transfer-Encoding: chunked\r\n", kEnd, kOk, kEnd}));
}

TEST(ResponseHead, MayBeAsLongAsTheLimitAfterEachRedirect) {
  ResponseHead head(40);
  const std::string twenty = "A: 45678901234567\r\n";

  EXPECT_TRUE(addAll(head, {kOk, twenty, kEnd}));
  EXPECT_TRUE(addAll(head, {kOk, twenty, kEnd}));
  EXPECT_FALSE(head.add("more\r\n"));
}

TEST(ResponseHead, CountsInterimOnesTowardsTheNext) {
  ResponseHead head(100);
  int accepted = 0;

  while (accepted < 100 && addAll(head, {"HTTP/1.1 100 Go on\r\n", kEnd})) ++accepted;

  EXPECT_EQ(accepted, 4);
}

TEST(ResponseHead, IsNotBegunAnewByItsOwnFields) {
  ResponseHead head(100);
  int accepted = 0;
  EXPECT_TRUE(addAll(head, {kOk, kEnd}));

  while (accepted < 100 && head.add("HTTP/1.1 200 in a trailer\r\n")) ++accepted;

  EXPECT_EQ(accepted, 3);
  EXPECT_FALSE(head.isComplete());
}

}  // namespace
}  // namespace tavlo::test
