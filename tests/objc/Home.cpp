#include "tests/objc/Home.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>

namespace tavlo::test {
namespace {

namespace fs = std::filesystem;

const fs::path* made() {
  std::string path = (fs::temp_directory_path() / "tavlo-home-XXXXXX").string();
  if (mkdtemp(path.data()) == nullptr) {
    std::perror("no temporary home");
    std::abort();
  }
  std::atexit([] {
    std::error_code ignored;
    fs::remove_all(home(), ignored);
  });
  return new fs::path(path);
}

int answer(passwd* entry, char* buffer, std::size_t size, passwd** result) {
  const std::string path = home().string();
  const std::size_t needed = sizeof "tester" + path.size() + 1;
  if (size < needed) return ERANGE;
  std::memcpy(buffer, "tester", sizeof "tester");
  std::memcpy(buffer + sizeof "tester", path.c_str(), path.size() + 1);
  *entry = {};
  entry->pw_name = buffer;
  entry->pw_passwd = entry->pw_gecos = entry->pw_shell = buffer + needed - 1;
  entry->pw_dir = buffer + sizeof "tester";
  entry->pw_uid = getuid();
  entry->pw_gid = getgid();
  *result = entry;
  return 0;
}

}  // namespace

const fs::path& home() {
  static const fs::path* const path = made();
  return *path;
}

}  // namespace tavlo::test

extern "C" int getpwnam_r(const char*, passwd* entry, char* buffer, std::size_t size, passwd** result) {
  return tavlo::test::answer(entry, buffer, size, result);
}

extern "C" int getpwuid_r(uid_t, passwd* entry, char* buffer, std::size_t size, passwd** result) {
  return tavlo::test::answer(entry, buffer, size, result);
}
