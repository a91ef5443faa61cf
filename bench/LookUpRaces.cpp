#include <sys/stat.h>

#include <array>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "TavloUtility.h"
#include "bench/Areas.h"
#include "bench/BenchHost.h"
#include "common/Md5.h"

namespace tavlo::bench {
namespace {

constexpr const char* kUrl = "https://cdn.example.com/campaigns/2024/spring/clip-1280x720.mp4?token=7D4E0F2A93B1";
constexpr const char* kVideoName = "spring-clip-1280x720.mp4";

struct LookUp {
  const char* operation;
  Text (*call)(const Text&);
  const char* argument;
  const char* extension;  // of the file's name, which is the digest of the argument; nullptr: it is the argument
};

constexpr std::array kLookUps{
    LookUp{"getCacheVideoDataPath", &TavloUtility::getCacheVideoDataPath, kUrl, ".mp4"},
    LookUp{"getCacheVideoPathOfSavedInDB", &TavloUtility::getCacheVideoPathOfSavedInDB, kVideoName, nullptr},
    LookUp{"getCacheBannerImagePath", &TavloUtility::getCacheBannerImagePath, kUrl, ""},
};

struct Paths {
  std::string directory;
  std::string file;
};

// The cache directory is there; the file when it is to be found.
Paths prepared(const LookUp& lookUp, bool hit) {
  installHost();
  const std::string name =
      lookUp.extension ? hexadecimal(md5Digest(lookUp.argument)) + lookUp.extension : std::string(lookUp.argument);
  Paths paths{.directory = TavloUtility::getDocumentDirectoryPath("").value(),
              .file = TavloUtility::getDocumentDirectoryPath(name).value()};
  if (hit) std::ofstream(paths.file).put('v');
  if (lookUp.call(lookUp.argument).has_value() != hit)
    throw std::runtime_error("not the file looked up: " + paths.file);
  return paths;
}

int statOf(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status);
}

void add(Races& races, const LookUp& lookUp, bool hit) {
  const auto paths = std::make_shared<Paths>();
  const Text argument = lookUp.argument;
  Race& race = races.add(lookUp.operation, hit ? "a hit" : "a miss");
  race.setUp([=] { *paths = prepared(lookUp, hit); }).ours([=, call = lookUp.call] { return call(argument); });
  if (lookUp.extension) {
    race.limit("two stat calls and the digest", [=] {
      const std::string name = hexadecimal(md5Digest(*argument));
      return static_cast<int>(name.size()) + statOf(paths->directory) + statOf(paths->file);
    });
    race.atMost(1.25, "two stat calls and the digest");
  } else {
    race.limit("two stat calls", [=] { return statOf(paths->directory) + statOf(paths->file); });
    race.atMost(1.25, "two stat calls");
  }
}

}  // namespace

void addLookUps(Races& races) {
  for (const LookUp& lookUp : kLookUps) {
    add(races, lookUp, true);
    add(races, lookUp, false);
  }
}

}  // namespace tavlo::bench
