#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/DesktopApplication.h"
#include "platform/linux/MainLoop.h"
#include "tests/platform/linux/DesktopApplicationFixture.h"
#include "tests/support/CaseName.h"
#include "tests/support/TemporaryFolder.h"

namespace tavlo::test {
namespace {

using linux_platform::DesktopApplication;
using testing::StartsWith;
using namespace std::chrono_literals;

TEST_F(DesktopApplicationTest, OnlyAUrlOfAFileOnThisMachineIsShown) {
  for (const std::string url : {"", "http://host/log.txt", "file://host/log.txt", "file:log.txt", "/log.txt",
                                "file:///a b", "file:///a%00b", "file://", "File Manager://"}) {
    EXPECT_FALSE(present(*controller(url))) << url;
    EXPECT_EQ(outcomes_.next(), "failed: no file of this machine has the URL " + url);
  }
}

TEST_F(DesktopApplicationTest, OnlyARegularFileIsShown) {
  ASSERT_EQ(::mkfifo(at("fifo").c_str(), 0600), 0);

  EXPECT_FALSE(present(*controller(url("gone"))));
  EXPECT_EQ(outcomes_.next(), "failed: No such file or directory: " + at("gone"));
  EXPECT_FALSE(present(*controller(url("fifo"))));
  EXPECT_EQ(outcomes_.next(), "failed: no regular file: " + at("fifo"));
  EXPECT_FALSE(present(*controller("file://" + folder_.path().string())));
  EXPECT_EQ(outcomes_.next(), "failed: no regular file: " + folder_.path().string());
}

TEST_F(DesktopApplicationTest, WithoutASessionBusNothingIsShown) {
  EXPECT_FALSE(present(*controller(url())));
  EXPECT_EQ(outcomes_.next(),
            "failed: there is no session bus: DBUS_SESSION_BUS_ADDRESS and XDG_RUNTIME_DIR are not set");

  ::setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
  EXPECT_FALSE(present(*controller(url())));
  EXPECT_THAT(outcomes_.next(), StartsWith("failed: the session bus cannot be reached: "));

  ::setenv("DBUS_SESSION_BUS_ADDRESS", "no address", 1);
  EXPECT_FALSE(present(*controller(url())));
  EXPECT_THAT(outcomes_.next(), StartsWith("failed: the session bus cannot be reached: "));
}

TEST_F(DesktopApplicationTest, WithoutAHandlerNobodyIsTold) {
  EXPECT_FALSE(present(*DesktopApplication(nullptr).interactionControllerWithURL(url())));
}

TEST_F(DesktopApplicationTest, ABusThatDoesNotAnswerIsNotWaitedForWithoutEnd) {
  const int listening = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  at("bus").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(listening, 1), 0);
  ::setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);

  EXPECT_FALSE(present(*controller(url(), 100ms)));

  EXPECT_EQ(outcomes_.next(), "failed: the desktop portal does not answer");
  ::close(listening);
}

TEST_F(DesktopApplicationTest, OnTheLoopAnAnswerIsAnOutcome) {
  const auto one = controller(url());

  linux_platform::MainLoop::post([one] { EXPECT_TRUE(present(*one)); });

  EXPECT_THAT(outcomes_.next(), StartsWith("failed: there is no session bus"));
}

TEST_F(DesktopApplicationTest, EachOfManyThreadsIsToldOnceThatThereIsNoBus) {
  constexpr int kThreads = 8;
  constexpr int kEach = 50;
  const auto shared = controller(url());
  std::vector<std::thread> threads;

  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int menu = 0; menu < kEach; ++menu) EXPECT_FALSE(present(menu % 2 == 0 ? *shared : *controller(url())));
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(outcomes_.left(), std::size_t{kThreads * kEach});
}

struct Probe {
  const char* name;
  std::string url;
  bool canBeOpened;

  friend std::ostream& operator<<(std::ostream& out, const Probe& probe) { return out << probe.url; }
};

class CanOpenURLTest : public testing::TestWithParam<Probe> {};

// GLib keeps the folders that it first sees.
void haveAppForTavloTest() {
  static const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "applications");
  writeFile(folder / "applications/test-app.desktop", "[Desktop Entry]\nType=Application\nName=Test\nExec=true %u\n");
  writeFile(folder / "applications/mimeinfo.cache", "[MIME Cache]\nx-scheme-handler/tavlo-test=test-app.desktop;\n");
  for (const char* const name : {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"}) {
    ::setenv(name, folder.path().c_str(), 1);
  }
}

TEST_P(CanOpenURLTest, IsTrueForASchemeThatAnInstalledAppHandles) {
  haveAppForTavloTest();

  EXPECT_EQ(DesktopApplication(nullptr).canOpenURL(GetParam().url), GetParam().canBeOpened);
}

INSTANTIATE_TEST_SUITE_P(
    All, CanOpenURLTest,
    testing::Values(Probe{"Handled", "tavlo-test://open?x=1", true}, Probe{"InCapitals", "TAVLO-Test:", true},
                    Probe{"OfNobody", "tavlo-other://open", false}, Probe{"WithABlank", "tavlo-test://a b", false},
                    Probe{"BlankInTheScheme", "File Manager://", false}, Probe{"WithoutAScheme", "//host/x", false},
                    Probe{"Empty", "", false}, Probe{"NotAscii", "tavlo-test://\xc3\xa4", false},
                    Probe{"WithANul", std::string("tavlo-test://\0", 14), false}),
    kCaseName);

}  // namespace
}  // namespace tavlo::test
