// A platform for the media cache: files in memory, a background queue that is stepped by hand, URLs that answer
// what they were given. Each call is recorded in order, paths relative to the Documents directory:
//
//   documentDirectory
//   fileExistsAtPathIsDirectory TavloCache
//   removeItemAtPath TavloCache                    "removeFileAtPath" when it takes files only
//   createDirectoryAtPath TavloCache
//   contentsOfDirectoryAtPath TavloCache
//   fileExistsAtPath TavloCache/a.mp4
//   dataWithContentsOfFile TavloCache/VideoListAPI
//   writeToFileAtomically TavloCache/0cc175b9 3 bytes
//   dispatchAsync
//   dataWithContentsOfUrl http://h/a.png
//   log <line>                                     what goes to the Logger
//
// An absent path stands as (null). For one thread at a time.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Format.h"
#include "common/Logger.h"
#include "platform/Platform.h"
#include "tests/support/MemoryFileManager.h"

namespace tavlo::test {

class CachePlatform final : public platform::Platform {
 public:
  CachePlatform() { Logger::install(logger_); }
  ~CachePlatform() override { Logger::install(nullptr); }

  platform::FileManager& fileManager() override { return recorded_; }
  platform::BackgroundQueue& backgroundQueue() override { return queue_; }
  platform::UrlData& urlData() override { return urls_; }

  // Everything asked so far; only the log lines.
  [[nodiscard]] const std::vector<std::string>& calls() const { return *calls_; }
  [[nodiscard]] std::vector<std::string> lines() const {
    constexpr std::string_view kPrefix = "log ";
    std::vector<std::string> lines;
    for (const std::string& call : *calls_) {
      if (call.starts_with(kPrefix)) lines.push_back(call.substr(kPrefix.size()));
    }
    return lines;
  }
  void forget() { calls_->clear(); }

  // The files themselves, to prepare and to look at without a record.
  [[nodiscard]] MemoryFileManager& files() { return files_; }
  void putFile(const std::string& name, std::string_view bytes) {
    static_cast<void>(files_.writeToFileAtomically(bytes, path(name), platform::Durable::contents));
  }
  void putFolder(const std::string& name) { static_cast<void>(files_.createDirectoryAtPath(path(name))); }
  [[nodiscard]] std::optional<std::string> bytes(const std::string& name) {
    return files_.dataWithContentsOfFile(path(name));
  }
  [[nodiscard]] std::vector<std::string> names(const std::string& folder) const { return files_.names(path(folder)); }
  [[nodiscard]] static std::string path(const std::string& name) {
    return std::string(MemoryFileManager::kDocuments) + "/" + name;
  }

  // Called before each file operation with its record. An answer is the description of the failure that it
  // then ends in, where it can.
  std::function<Text(const std::string& call)> onFileCall = [](const std::string&) { return Text(); };

  std::map<std::string, std::string, std::less<>> urlContents;
  std::function<void()> onFetch = [] {};

  // Runs the oldest waiting task.
  void runTask() {
    const auto task = std::move(queue_.tasks.front());
    queue_.tasks.pop_front();
    task();
  }
  [[nodiscard]] std::size_t waitingTasks() const { return queue_.tasks.size(); }

 private:
  using Calls = std::vector<std::string>;

  class RecordingLines final : public Logger {
   public:
    explicit RecordingLines(std::shared_ptr<Calls> calls) : calls_(std::move(calls)) {}
    void writeLine(std::string_view message) override { calls_->push_back("log " + std::string(message)); }

   private:
    std::shared_ptr<Calls> calls_;
  };

  class RecordedFiles final : public platform::FileManager {
   public:
    explicit RecordedFiles(CachePlatform& platform) : platform_(platform) {}

    Text documentDirectory() override {
      platform_.calls_->push_back("documentDirectory");
      return platform_.files_.documentDirectory();
    }
    platform::Existence fileExistsAtPathIsDirectory(const Text& path) override {
      static_cast<void>(note("fileExistsAtPathIsDirectory", path));
      return platform_.files_.fileExistsAtPathIsDirectory(path);
    }
    bool fileExistsAtPath(const Text& path) override {
      static_cast<void>(note("fileExistsAtPath", path));
      return platform_.files_.fileExistsAtPath(path);
    }
    platform::FileResult removeItemAtPath(const Text& path, platform::Removal removal) override {
      const bool file = removal == platform::Removal::fileOnly;
      if (const Text error = note(file ? "removeFileAtPath" : "removeItemAtPath", path)) return failure(*error);
      return platform_.files_.removeItemAtPath(path, removal);
    }
    platform::FileResult createDirectoryAtPath(const Text& path) override {
      if (const Text error = note("createDirectoryAtPath", path)) return failure(*error);
      return platform_.files_.createDirectoryAtPath(path);
    }
    std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(const Text& path) override {
      if (note("contentsOfDirectoryAtPath", path)) return std::nullopt;
      return platform_.files_.contentsOfDirectoryAtPath(path);
    }
    std::optional<std::string> dataWithContentsOfFile(const Text& path) override {
      if (note("dataWithContentsOfFile", path)) return std::nullopt;
      return platform_.files_.dataWithContentsOfFile(path);
    }
    platform::FileResult writeToFileAtomically(std::string_view bytes, const Text& path,
                                               platform::Durable durable) override {
      const std::string size = " " + std::to_string(bytes.size()) + " bytes";
      const std::string flushed = durable == platform::Durable::name ? " and the name" : "";
      if (const Text error = note("writeToFileAtomically", path, size + flushed)) return failure(*error);
      return platform_.files_.writeToFileAtomically(bytes, path, durable);
    }

   private:
    static platform::FileResult failure(const std::string& error) { return platform::FileResult::failure(error); }

    // The description to fail with.
    [[nodiscard]] Text note(const std::string& operation, const Text& path, const std::string& more = "") {
      static const std::string kPrefix = std::string(MemoryFileManager::kDocuments) + "/";
      std::string shown = path.value_or(std::string(kAbsent));
      if (shown.starts_with(kPrefix)) shown.erase(0, kPrefix.size());
      platform_.calls_->push_back(operation + " " + shown + more);
      return platform_.onFileCall(operation + " " + shown);
    }

    CachePlatform& platform_;
  };

  class HandQueue final : public platform::BackgroundQueue {
   public:
    explicit HandQueue(Calls& calls) : calls_(calls) {}
    void dispatchAsync(std::function<void()> task) override {
      calls_.push_back("dispatchAsync");
      tasks.push_back(std::move(task));
    }

    std::deque<std::function<void()>> tasks;

   private:
    Calls& calls_;
  };

  class GivenUrls final : public platform::UrlData {
   public:
    explicit GivenUrls(CachePlatform& platform) : platform_(platform) {}
    std::optional<std::string> dataWithContentsOfUrl(std::string_view url) override {
      platform_.calls_->push_back("dataWithContentsOfUrl " + std::string(url));
      platform_.onFetch();
      const auto contents = platform_.urlContents.find(url);
      return contents == platform_.urlContents.end() ? std::nullopt : std::optional(contents->second);
    }

   private:
    CachePlatform& platform_;
  };

  std::shared_ptr<Calls> calls_ = std::make_shared<Calls>();
  std::shared_ptr<RecordingLines> logger_ = std::make_shared<RecordingLines>(calls_);
  MemoryFileManager files_;
  RecordedFiles recorded_{*this};
  HandQueue queue_{*calls_};
  GivenUrls urls_{*this};
};

}  // namespace tavlo::test
