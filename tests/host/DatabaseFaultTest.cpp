// Every system call of the database's opening and of its first write failing in turn: what was stored is there, the
// message tells what to do about it, and the next opening goes through.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ostream>
#include <string>

#include "host/Database.h"
#include "tests/support/CaseName.h"
#include "tests/support/Scale.h"
#include "tests/support/TemporaryFolder.h"

namespace {

// How many calls go through before one fails; none does when it is negative.
int callsLeft = -1;
int errorOfCall = 0;
std::size_t longestWrite = 0;  // of the one that is cut short in place of failing, when there is no error
bool hasFailed = false;

bool isTheOne() { return callsLeft >= 0 && callsLeft-- == 0; }

bool fails() {
  if (errorOfCall == 0 || !isTheOne()) return false;
  hasFailed = true;
  errno = errorOfCall;
  return true;
}

int openFaultily(const char* path, int flags, int mode) { return fails() ? -1 : ::open(path, flags, mode); }
int statFaultily(const char* path, struct stat* status) { return fails() ? -1 : ::stat(path, status); }
int fstatFaultily(int fd, struct stat* status) { return fails() ? -1 : ::fstat(fd, status); }
int ftruncateFaultily(int fd, off_t size) { return fails() ? -1 : ::ftruncate(fd, size); }
int fchmodFaultily(int fd, mode_t mode) { return fails() ? -1 : ::fchmod(fd, mode); }
int unlinkFaultily(const char* path) { return fails() ? -1 : ::unlink(path); }
ssize_t preadFaultily(int fd, void* bytes, std::size_t size, off_t at) {
  return fails() ? -1 : ::pread(fd, bytes, size, at);
}
ssize_t pwriteFaultily(int fd, const void* bytes, std::size_t size, off_t at) {
  if (fails()) return -1;
  if (errorOfCall == 0 && isTheOne()) {
    hasFailed = true;
    size = std::min(size - 1, longestWrite);
  }
  return size == 0 ? 0 : ::pwrite(fd, bytes, size, at);
}

template <class Call>
void use(const char* name, Call call) {
  sqlite3_vfs* const files = sqlite3_vfs_find(nullptr);
  EXPECT_EQ(files->xSetSystemCall(files, name, reinterpret_cast<sqlite3_syscall_ptr>(call)), SQLITE_OK) << name;
}

}  // namespace

// The database's flushes are no calls that it lets others replace, so that they come here, as the program's own.
extern "C" int fsync(int fd) { return fails() ? -1 : static_cast<int>(::syscall(SYS_fsync, fd)); }
extern "C" int fdatasync(int fd) { return fails() ? -1 : static_cast<int>(::syscall(SYS_fdatasync, fd)); }

namespace tavlo::host {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct Fault {
  const char* name;
  int error;  // 0: a write is cut to so many bytes
  std::size_t longest = 0;
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

class DatabaseFault : public testing::TestWithParam<Fault> {
 protected:
  DatabaseFault() {
    use("open", openFaultily);
    use("stat", statFaultily);
    use("fstat", fstatFaultily);
    use("ftruncate", ftruncateFaultily);
    use("fchmod", fchmodFaultily);
    use("unlink", unlinkFaultily);
    for (const char* const name : {"pread", "pread64"}) use(name, preadFaultily);
    for (const char* const name : {"pwrite", "pwrite64"}) use(name, pwriteFaultily);
  }
  ~DatabaseFault() override {
    sqlite3_vfs* const files = sqlite3_vfs_find(nullptr);
    files->xSetSystemCall(files, nullptr, nullptr);
  }

  // Opens the file and stores day 5 with the n-th call failing; "" or what the error says. Whether one failed is in
  // hasFailed.
  [[nodiscard]] std::string storeWithFault(int n) const {
    hasFailed = false;
    errorOfCall = GetParam().error;
    longestWrite = GetParam().longest;
    callsLeft = n;
    std::string told;
    try {
      Database(file_).run("INSERT INTO used_day (day) VALUES (5)");
    } catch (const DatabaseError& error) {
      told = error.what();
    }
    callsLeft = -1;
    return told;
  }

  // A read that ends in EIO is a damaged file in the database's own eyes; nothing else is.
  void expectClearError(const std::string& told) const {
    EXPECT_THAT(told, StartsWith("the database " + file_.string() + " "));
    if (GetParam().error == EIO && told.find(" is damaged: move it away") != std::string::npos) return;
    EXPECT_THAT(told, AnyOf(HasSubstr(" cannot be opened: check that its folder is there"),
                            HasSubstr(" cannot be read or written: check its disk"),
                            HasSubstr(" cannot grow: free some space"), HasSubstr(" cannot be written: check the perm"),
                            HasSubstr(" is locked by another program: try again")));
  }

  test::TemporaryFolder folder_{test::TemporaryFolder::inMemory()};
  fs::path file_ = folder_ / "tracker.sqlite";
};

INSTANTIATE_TEST_SUITE_P(With, DatabaseFault,
                         testing::Values(Fault{"EIO", EIO}, Fault{"ENOSPC", ENOSPC}, Fault{"EDQUOT", EDQUOT},
                                         Fault{"EACCES", EACCES}, Fault{"EROFS", EROFS}, Fault{"EMFILE", EMFILE},
                                         Fault{"EINTR", EINTR}, Fault{"AWriteOfNothing", 0, 0},
                                         Fault{"AWriteOfOneByte", 0, 1}, Fault{"AWriteOfHalfAPage", 0, 2048},
                                         Fault{"AWriteOfAllButOneByte", 0, 1'000'000}),
                         test::kCaseName);

TEST_P(DatabaseFault, AtAnyCallOfTheOpeningAndAWriteKeepsWhatWasStoredAndIsOverWithTheNextOne) {
  int faults = 0;
  for (const bool isThere : {false, true}) {
    for (int n = 0;; ++n, ++faults) {
      SCOPED_TRACE(testing::Message() << (isThere ? "a database" : "no file") << ", call " << n);
      for (const auto& entry : fs::directory_iterator(folder_.path())) fs::remove(entry.path());
      if (isThere) Database(file_).run("INSERT INTO used_day (day) VALUES (1)");

      const std::string told = storeWithFault(n);

      if (!told.empty()) expectClearError(told);
      Database healed(file_);
      const auto days = healed.run("SELECT day FROM used_day");
      if (isThere) {
        EXPECT_THAT(days, Contains(ElementsAre(Value(1))));
      }
      if (told.empty()) {
        EXPECT_THAT(days, Contains(ElementsAre(Value(5))));
      }
      healed.run("INSERT OR IGNORE INTO used_day (day) VALUES (5)");
      EXPECT_EQ(healed.run("SELECT day FROM used_day").size(), isThere ? 2U : 1U);
      if (!hasFailed) break;
    }
  }
  EXPECT_GE(faults, GetParam().error != 0 ? 20 : 5);
  test::reached("T3", std::to_string(faults) + " faults of calls for the database");
}

}  // namespace
}  // namespace tavlo::host
