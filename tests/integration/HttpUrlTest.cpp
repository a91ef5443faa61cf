// What the fetch of a URL does besides giving its data.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <latch>
#include <thread>
#include <vector>

#include "platform/linux/LinuxUrlData.h"
#include "tests/support/BadServer.h"

namespace tavlo::test {
namespace {

using linux_platform::LinuxUrlData;
using testing::Each;
using testing::Optional;

class HttpUrl : public testing::Test {
 protected:
  static constexpr std::chrono::hours kFar{24};

  [[nodiscard]] std::optional<std::string> fetch(const std::string& text) {
    return data_.dataWithContentsOfUrl(server_.url(text));
  }

  BadServer server_;
  LinuxUrlData data_{{.connect = kFar, .stall = kFar, .total = kFar, .workers = 2}, server_.certificateAuthority()};
};

// The TCP connections of this process.
std::vector<int> connections() {
  std::vector<int> found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int descriptor = std::stoi(entry.path().filename());
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    const bool isConnected = ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    if (isConnected && address.sin_family == AF_INET) found.push_back(descriptor);
  }
  return found;
}

TEST_F(HttpUrl, KeepsItsConnectionFromTheProgramsThatThisOneStarts) {
  EXPECT_THAT(fetch("/length"), Optional(BadServer::kBody));

  ASSERT_EQ(connections().size(), 1U);
  EXPECT_EQ(::fcntl(connections().front(), F_GETFD), FD_CLOEXEC);
}

TEST_F(HttpUrl, ReusesItsConnection) {
  for (int i = 0; i < 10; ++i) EXPECT_THAT(fetch("/length"), Optional(BadServer::kBody));

  EXPECT_THAT(fetch("/connections"), Optional(std::string("1")));
}

TEST_F(HttpUrl, ReusesAConnectionOverTLS) {
  for (int i = 0; i < 10; ++i) EXPECT_THAT(fetch("https://localhost:{good}/length"), Optional(BadServer::kBody));

  EXPECT_THAT(fetch("https://localhost:{good}/connections"), Optional(std::string("1")));
}

TEST_F(HttpUrl, ConnectsAnewWhenTheServerHasClosed) {
  for (int i = 0; i < 3; ++i) EXPECT_THAT(fetch("/chunked"), Optional(BadServer::kBody));

  EXPECT_THAT(fetch("/connections"), Optional(std::string("4")));
}

// A handle of the HTTP library gives up at the sixth connection that it finds dead in its life.
TEST_F(HttpUrl, OutlivesAnyNumberOfConnectionsThatDieWhileTheyAreKept) {
  for (int i = 0; i < 20; ++i) EXPECT_THAT(fetch("/once"), Optional(BadServer::kBody));

  EXPECT_THAT(fetch("/connections"), Optional(std::string("20")));
}

TEST_F(HttpUrl, IsNotHarmedByTheFailuresBefore) {
  for (const char* const bad : {"/reset", "/short", "/fields", "/self", "/status/500", "/over", "/hugechunk",
                                "/status/304", "/longerkept", "/chunkedkept"}) {
    static_cast<void>(fetch(bad));
    EXPECT_THAT(fetch("/length"), Optional(BadServer::kBody)) << bad;
  }
}

TEST_F(HttpUrl, LosesTabsAndLineBreaksInTheRequest) {
  EXPECT_THAT(fetch("http://127.0.0.1:{http}/len\n\tgth\r\n"), Optional(BadServer::kBody));
}

TEST_F(HttpUrl, WithoutTheAuthorityIsNotTrusted) {
  LinuxUrlData strict({.workers = 1});
  LinuxUrlData misled({.workers = 1}, "/nonexistent/authority.pem");

  EXPECT_EQ(strict.dataWithContentsOfUrl(server_.url("https://localhost:{good}/length")), std::nullopt);
  EXPECT_EQ(misled.dataWithContentsOfUrl(server_.url("https://localhost:{good}/length")), std::nullopt);
}

TEST_F(HttpUrl, FollowsNoRedirectWhenNoneIsAllowed) {
  LinuxUrlData data({.redirects = 0});

  EXPECT_EQ(data.dataWithContentsOfUrl(server_.url("/relative")), std::nullopt);
  EXPECT_THAT(data.dataWithContentsOfUrl(server_.url("/notarget")), Optional(BadServer::kBody));
}

TEST_F(HttpUrl, FollowsTwentyRedirectsUnlessToldOtherwise) {
  LinuxUrlData data({});

  EXPECT_THAT(data.dataWithContentsOfUrl(server_.url("/chain/20")), Optional(BadServer::kBody));
  EXPECT_EQ(data.dataWithContentsOfUrl(server_.url("/chain/21")), std::nullopt);
}

TEST_F(HttpUrl, GoesThroughTheProxyOfTheEnvironment) {
  const std::string proxy = server_.url("http://127.0.0.1:{http}");
  ASSERT_EQ(::setenv("http_proxy", proxy.c_str(), 1), 0);
  ASSERT_EQ(::setenv("https_proxy", proxy.c_str(), 1), 0);

  EXPECT_THAT(fetch("http://no-such-host.invalid/length"), Optional(BadServer::kBody));
  EXPECT_EQ(fetch("http://no-such-host.invalid/short"), std::nullopt);
  EXPECT_THAT(fetch("https://localhost:{good}/length"), Optional(BadServer::kBody));
  EXPECT_THAT(fetch("https://localhost:{good}/close"), Optional(BadServer::kBody));
  EXPECT_EQ(fetch("https://localhost:{cut}/close"), std::nullopt);
  EXPECT_EQ(fetch("https://localhost:{unknown}/length"), std::nullopt);
  EXPECT_EQ(fetch("https://no-such-host.invalid/length"), std::nullopt);

  ::unsetenv("http_proxy");
  ::unsetenv("https_proxy");
}

TEST_F(HttpUrl, HasALimitOfItsHead) {
  LinuxUrlData fits({.responseHead = 64});
  LinuxUrlData tooLong({.responseHead = 38});  // "HTTP/1.1 200 OK", "Content-Length: 14" and three line ends take 39

  EXPECT_THAT(fits.dataWithContentsOfUrl(server_.url("/length")), Optional(BadServer::kBody));
  EXPECT_EQ(tooLong.dataWithContentsOfUrl(server_.url("/length")), std::nullopt);
}

TEST_F(HttpUrl, HasAStallLimitOnEveryConnection) {
  LinuxUrlData data({.connect = kFar, .stall = std::chrono::milliseconds(300), .total = kFar});

  EXPECT_EQ(data.dataWithContentsOfUrl(server_.url("/tonever")), std::nullopt);
}

TEST_F(HttpUrl, ThreadsThatFetchAtOnceLeaveAConnectionForEachWorker) {
  std::vector<std::future<std::optional<std::string>>> fetches;
  for (int i = 0; i < 8; ++i) fetches.push_back(std::async(std::launch::async, [&] { return fetch("/gate"); }));
  server_.waitUntilHeld(8);
  EXPECT_EQ(connections().size(), 8U);
  server_.openGate();

  for (auto& each : fetches) EXPECT_THAT(each.get(), Optional(BadServer::kBody));

  EXPECT_EQ(connections().size(), 2U);
}

TEST_F(HttpUrl, IsAbsentOnceCancelledOverANewConnectionAndOverAKeptOne) {
  LinuxUrlData unused({.connect = kFar, .stall = kFar, .total = kFar});
  EXPECT_THAT(fetch("/length"), Optional(BadServer::kBody));

  unused.cancel();
  data_.cancel();

  EXPECT_EQ(unused.dataWithContentsOfUrl(server_.url("/never")), std::nullopt);
  EXPECT_EQ(fetch("/never"), std::nullopt);
}

TEST_F(HttpUrl, KeepsNoMoreThanFourConnectionsForAWorker) {
  for (const char* const url : {"http://127.0.0.1:{http}", "http://localhost:{http}", "https://127.0.0.1:{good}",
                                "https://localhost:{good}", "https://127.0.0.1:{cut}", "https://localhost:{cut}"}) {
    EXPECT_THAT(fetch(std::string(url) + "/length"), Optional(BadServer::kBody)) << url;
  }

  EXPECT_EQ(connections().size(), 4U);
}

TEST_F(HttpUrl, LeavesThePathAsItStands) {
  EXPECT_THAT(fetch("/argument/a/../b%2E./"), Optional(std::string("a/../b%2E./")));
}

TEST_F(HttpUrl, ThreadsFetchAtOnceAndAreAllCancelledAtOnce) {
  std::vector<std::future<std::optional<std::string>>> fetches;
  for (int i = 0; i < 8; ++i) fetches.push_back(std::async(std::launch::async, [&] { return fetch("/gate"); }));
  server_.waitUntilHeld(8);

  data_.cancel();

  std::vector<std::optional<std::string>> results;
  for (auto& each : fetches) results.push_back(each.get());
  EXPECT_THAT(results, Each(std::nullopt));
  EXPECT_EQ(fetch("/length"), std::nullopt);
}

TEST_F(HttpUrl, ThreadsMayFetchAndCancelAtAnyTime) {
  for (int round = 0; round < 20; ++round) {
    LinuxUrlData data({.connect = kFar, .stall = kFar, .total = kFar, .workers = 2});
    std::latch start(4);
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
      threads.emplace_back([&] {
        start.arrive_and_wait();
        static_cast<void>(data.dataWithContentsOfUrl(server_.url("/length")));
        static_cast<void>(data.dataWithContentsOfUrl(server_.url("/never")));
      });
    }
    start.arrive_and_wait();
    data.cancel();
    for (std::thread& thread : threads) thread.join();
  }
}

}  // namespace
}  // namespace tavlo::test
