#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>

#include "TavloUtility.h"
#include "cli/LoopbackServer.h"
#include "tests/cli/CacheProgramTest.h"

namespace tavlo::cli::test {
namespace {

using testing::ElementsAre;

// A server that takes a connection, and never answers.
class SilentServer {
 public:
  SilentServer() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(::bind(listener_, generic, length), 0);
    EXPECT_EQ(::listen(listener_, 16), 0);
    EXPECT_EQ(::getsockname(listener_, generic, &length), 0);
    port_ = ntohs(address.sin_port);
  }
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;
  ~SilentServer() {
    ::close(connection_);
    ::close(listener_);
  }

  [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/a.png"; }
  void waitForConnection() { connection_ = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC); }

 private:
  const int listener_;
  int connection_ = -1;
  int port_ = 0;
};

std::string digestOf(const std::string& url) { return TavloUtility::md5(url).value_or(""); }

class CacheFetchTest : public CacheProgramTest {
 protected:
  const LoopbackServer server_{{{"/a.png", "GIF89a"}, {"/empty", ""}}};
  const std::string image_ = server_.url("/a.png");
  const std::string missing_ = server_.url("/none");
};

TEST_F(CacheFetchTest, ImagesAreStoredAndSummedUp) {
  const std::string empty = server_.url("/empty");

  EXPECT_EQ(cache({"fetch", image_, empty}), (Result{0,
                                                     "result  bytes  name                              URL\n"
                                                     "stored  6      " +
                                                         digestOf(image_) + "  " + image_ +
                                                         "\n"
                                                         "stored  0      " +
                                                         digestOf(empty) + "  " + empty + "\n",
                                                     "tavlo: note: 2/2 done, 6 bytes, 0 failed\n"}));

  EXPECT_EQ(contents(digestOf(image_)), "GIF89a");
  EXPECT_TRUE(std::filesystem::is_empty(path(digestOf(empty))));
  EXPECT_EQ(cache({"banner", image_}).out, path(digestOf(image_)) + "\n");
}

TEST_F(CacheFetchTest, JsonHasTheLogOfEachDownload) {
  const std::string stored = path(digestOf(image_));
  std::filesystem::create_directories(directory());

  EXPECT_EQ(
      cache({"fetch", "--json", "--quiet", image_, missing_}),
      (Result{
          1,
          R"([{"url":")" + image_ + R"(","stored":true,"bytes":6,"path":")" + stored +
              R"(","log":["Cached directory path : )" + stored +
              R"j(","getAndSaveBannerImage() - write successfully"]},{"url":")j" + missing_ +
              R"j(","stored":false,"bytes":null,"path":null,"log":["getAndSaveBannerImage(): Passed data is empty"]}])j"
              "\n",
          "tavlo: 1 of 2 downloads failed; check the URLs, the network, and the rights to " + directory() + ": \"" +
              missing_ + "\" (getAndSaveBannerImage(): Passed data is empty)\n"}));
}

TEST_F(CacheFetchTest, FailuresAreNamedAndTheOthersStored) {
  const Result fetched = cache({"fetch", missing_, "no URL", image_});

  EXPECT_EQ(fetched.exitCode, 1);
  EXPECT_EQ(fetched.out,
            "result  bytes  name                              URL\n"
            "FAILED  -      -                                 " +
                missing_ +
                "\n"
                "FAILED  -      -                                 no URL\n"
                "stored  6      " +
                digestOf(image_) + "  " + image_ + "\n");
  EXPECT_EQ(fetched.err,
            "tavlo: note: 3/3 done, 6 bytes, 2 failed\n"
            "tavlo: 2 of 3 downloads failed; check the URLs, the network, and the rights to " +
                directory() + ": \"" + missing_ +
                "\" (getAndSaveBannerImage(): Passed data is empty), \"no URL\" "
                "(getAndSaveBannerImage(): Passed data is empty)\n");
}

TEST_F(CacheFetchTest, ManyFailuresLeaveTheAdviceInTheMessage) {
  std::vector<std::string> arguments = {"fetch", "--quiet"};
  arguments.insert(arguments.end(), 50, "no URL");

  const Result fetched = cache(arguments);

  EXPECT_EQ(fetched.exitCode, 1);
  EXPECT_THAT(fetched.err,
              testing::StartsWith("tavlo: 50 of 50 downloads failed; check the URLs, the network, and the rights to " +
                                  directory() + ": \"no URL\" ("));
  EXPECT_THAT(fetched.err, testing::EndsWith("…\n"));
}

TEST_F(CacheFetchTest, DirectoryIsMadeBeforeTheDownloadsThatWouldMakeItAtOnce) {
  ASSERT_EQ(cache({"fetch", image_}).exitCode, 0);

  EXPECT_THAT(log(), ElementsAre("TavloCache directory created!", "Cached directory path : " + directory(),
                                 "Cached directory path : " + path(digestOf(image_)),
                                 "getAndSaveBannerImage() - write successfully"));
}

TEST_F(CacheFetchTest, DirectoryThatCannotBeMadeIsAFailure) {
  std::filesystem::create_directories(container());
  tavlo::test::writeFile(container() + "/Documents", "in the way");

  const Result fetched = cache({"fetch", "--json", image_});

  EXPECT_EQ(fetched.exitCode, 1);
  EXPECT_THAT(fetched.out, testing::HasSubstr(R"("stored":false,"bytes":6,"path":null,)"));
  EXPECT_THAT(fetched.err, testing::HasSubstr(" (Couldn't create directory TavloCache error: "));
}

TEST_F(CacheFetchTest, ProgressOfATerminalEndsInItsLastState) {
  const Result fetched = cache({"fetch", image_}, {.errorTerminal = true});

  EXPECT_EQ(fetched.exitCode, 0);
  EXPECT_THAT(fetched.err, testing::EndsWith("1/1 done, 6 bytes, 0 failed\n"));
  EXPECT_THAT(fetched.err, testing::Not(testing::HasSubstr("note")));
  EXPECT_EQ(cache({"fetch", image_, "--quiet"}, {.errorTerminal = true}).err, "");
}

TEST_F(CacheFetchTest, SignalEndsItWithWhatIsStoredByThen) {
  for (const int signal : {SIGINT, SIGTERM}) {
    SilentServer silent;

    const Result fetched = cache({"fetch", "--quiet", silent.url()}, {.afterStart = [&](int child) {
                                   silent.waitForConnection();
                                   ::kill(child, signal);
                                 }});

    EXPECT_EQ(fetched, (Result{1,
                               "result    bytes  name  URL\n"
                               "not done  -      -     " +
                                   silent.url() + "\n",
                               "tavlo: interrupted; run it again for what is not stored of 1 downloads: \"" +
                                   silent.url() + "\"\n"}));
  }
}

}  // namespace
}  // namespace tavlo::cli::test
