#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "platform/linux/DownloadLimits.h"
#include "platform/linux/LinuxPlatform.h"
#include "tests/support/CaseName.h"

namespace tavlo::test {
namespace {

using linux_platform::DownloadLimits;
using linux_platform::make;
using std::chrono::hours;
using std::chrono::milliseconds;
using testing::StrEq;
using testing::ThrowsMessage;

TEST(DownloadLimits, AreThoseOfTheManual) {
  const DownloadLimits limits;

  EXPECT_EQ(limits.connect, milliseconds(10'000));
  EXPECT_EQ(limits.stall, milliseconds(15'000));
  EXPECT_EQ(limits.total, milliseconds(120'000));
  EXPECT_EQ(limits.body, 67'108'864U);
  EXPECT_EQ(limits.responseHead, 262'144U);
  EXPECT_EQ(limits.redirects, 20);
  EXPECT_EQ(limits.workers, 4);
}

struct Outside {
  const char* name;
  DownloadLimits limits;
  std::string message;
};

class LimitsOutside : public testing::TestWithParam<Outside> {};

TEST_P(LimitsOutside, AreAnErrorOfMakeThatNamesThem) {
  EXPECT_THAT([] { static_cast<void>(make({.domain = "app", .downloads = GetParam().limits})); },
              ThrowsMessage<std::invalid_argument>(StrEq(GetParam().message)));
}

const std::string kTime = " must be from 1 to 86400000 ms";
// Where sizes have 32 bits, a negative one was within the limit.
constexpr auto kLargestBody = static_cast<std::size_t>(std::min(std::uint64_t{1} << 40U, std::uint64_t{SIZE_MAX / 2}));
const std::string kBody = std::string("the download limit \"body\" must be from 1 to ") +
                          (sizeof(std::size_t) == 4 ? "2147483647" : "1099511627776") + " bytes";
const std::string kHead = "the download limit \"responseHead\" must be from 1 to 67108864 bytes";
const std::string kRedirects = "the download limit \"redirects\" must be from 0 to 100";
const std::string kWorkers = "the download limit \"workers\" must be from 1 to 64";

INSTANTIATE_TEST_SUITE_P(
    DownloadLimits, LimitsOutside,
    testing::Values(Outside{"NoConnect", {.connect = milliseconds(0)}, "the download limit \"connect\"" + kTime},
                    Outside{"NegativeStall", {.stall = milliseconds(-1)}, "the download limit \"stall\"" + kTime},
                    Outside{"LongTotal", {.total = hours(25)}, "the download limit \"total\"" + kTime},
                    Outside{"NoBody", {.body = 0}, kBody}, Outside{"NegativeBody", {.body = SIZE_MAX}, kBody},
                    Outside{"NoHead", {.responseHead = 0}, kHead},
                    Outside{"HugeHead", {.responseHead = 67'108'865}, kHead},
                    Outside{"NegativeRedirects", {.redirects = -1}, kRedirects},
                    Outside{"ManyRedirects", {.redirects = 101}, kRedirects},
                    Outside{"NoWorkers", {.workers = 0}, kWorkers}, Outside{"ManyWorkers", {.workers = 65}, kWorkers}),
    kCaseName);

TEST(DownloadLimits, AtTheirEndsAreFine) {
  const DownloadLimits lowest{.connect = milliseconds(1),
                              .stall = milliseconds(1),
                              .total = milliseconds(1),
                              .body = 1,
                              .responseHead = 1,
                              .redirects = 0,
                              .workers = 1};
  const DownloadLimits highest{.connect = hours(24),
                               .stall = hours(24),
                               .total = hours(24),
                               .body = kLargestBody,
                               .responseHead = std::size_t{64} << 20U,
                               .redirects = 100,
                               .workers = 64};

  EXPECT_NE(make({.domain = "app", .downloads = lowest}), nullptr);
  EXPECT_NE(make({.domain = "app", .downloads = highest}), nullptr);
}

TEST(CertificateAuthorities, ThatAreNoPathAreAnErrorOfMake) {
  const auto error = ThrowsMessage<std::invalid_argument>(
      StrEq("the option \"certificateAuthorities\" must be a path, not empty and without a NUL"));

  EXPECT_THAT([] { static_cast<void>(make({.domain = "app", .certificateAuthorities = ""})); }, error);
  EXPECT_THAT([] { static_cast<void>(make({.domain = "app", .certificateAuthorities = std::string("a\0b", 3)})); },
              error);
}

}  // namespace
}  // namespace tavlo::test
