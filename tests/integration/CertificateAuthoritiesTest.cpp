// Whom a download trusts, in a child process that sees another folder of authorities in the system's place.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "platform/linux/LinuxUrlData.h"
#include "tests/support/BadServer.h"

namespace tavlo::test {
namespace {

using linux_platform::LinuxUrlData;

enum Outcome { kData, kNone, kNotAllowed };

class CertificateAuthorities : public testing::Test {
 protected:
  CertificateAuthorities() {
    std::filesystem::create_directory(trusted_);
    std::filesystem::copy_file(server_.certificateAuthority().replace_filename("stranger.pem"),
                               trusted_ / "stranger.pem");
    EXPECT_EQ(std::system(("openssl rehash '" + trusted_.string() + "'").c_str()), 0);
    std::filesystem::copy_file(server_.certificateAuthority(), trusted_ / "ca-certificates.crt");
  }

  // What comes of a server that the stranger vouches for, where the stranger is one of the system's authorities.
  [[nodiscard]] int fetch(const std::optional<std::filesystem::path>& certificateAuthorities) {
    const pid_t child = ::fork();
    if (child == 0) {
      if (!putInPlaceOfTheSystems()) ::_exit(kNotAllowed);
      LinuxUrlData data({}, certificateAuthorities);
      ::_exit(data.dataWithContentsOfUrl(server_.url("https://127.0.0.1:{unknown}/length")) ? kData : kNone);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  BadServer server_;

 private:
  [[nodiscard]] bool putInPlaceOfTheSystems() const {
    const bool isAlone = ::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
    return isAlone && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount(trusted_.c_str(), "/etc/ssl/certs", nullptr, MS_BIND, nullptr) == 0;
  }

  TemporaryFolder folder_;
  const std::filesystem::path trusted_ = folder_ / "trusted";
};

TEST_F(CertificateAuthorities, ThatAreGivenReplaceTheSystems) {
  const int ofTheSystem = fetch(std::nullopt);
  if (ofTheSystem == kNotAllowed) GTEST_SKIP() << "needs the right to mount a folder";
  if (ofTheSystem == kNone) GTEST_SKIP() << "the system keeps its authorities elsewhere";

  EXPECT_EQ(ofTheSystem, kData);
  EXPECT_EQ(fetch(server_.certificateAuthority()), kNone);
}

}  // namespace
}  // namespace tavlo::test
