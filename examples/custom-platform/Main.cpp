// A platform of one's own: files in memory and a logger that prints. The component is linked without any other.
#include <TavloUtility.h>
#include <common/Logger.h>
#include <platform/Platform.h>

#include <cstdio>
#include <memory>
#include <string>

#include "MemoryFiles.h"

namespace {

class OwnPlatform final : public tavlo::platform::Platform {
 public:
  MemoryFiles& fileManager() override { return files_; }

 private:
  MemoryFiles files_;
};

class PrintedLog final : public tavlo::Logger {
 public:
  void writeLine(std::string_view message) override { std::puts(("log: " + std::string(message)).c_str()); }
};

}  // namespace

int main() {
  const auto platform = std::make_shared<OwnPlatform>();
  tavlo::platform::install(platform);
  tavlo::Logger::install(std::make_shared<PrintedLog>());

  const std::string url = "https://cdn.example.com/clip.mp4";
  const std::string name = *tavlo::TavloUtility::md5(tavlo::Value(url)) + ".mp4";
  const tavlo::Text path = tavlo::TavloUtility::getDocumentDirectoryPath(name);
  if (!platform->fileManager().writeToFileAtomically("a video", path, tavlo::platform::Durable::name)) return 1;

  std::printf("video: %s\n", tavlo::TavloUtility::getCacheVideoDataPath(url).value_or("(null)").c_str());
  tavlo::TavloUtility::clearCache();
  std::printf("video: %s\n", tavlo::TavloUtility::getCacheVideoDataPath(url).value_or("(null)").c_str());
}
