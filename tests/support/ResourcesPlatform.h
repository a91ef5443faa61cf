// A platform for the resource bundle and the log export. Each call is recorded in order:
//
//   mainBundleResourcePath
//   bundleWithPath:/app/TavloSDKResource.bundle
//   pathForResource:volume ofType:png
//   imageWithContentsOfFile:/app/TavloSDKResource.bundle/volume.png
//   documentDirectory
//   documentDirectoryUrl
//   canOpenURL:File Manager://
//   interactionControllerWithURL:file:///app/Documents/TavloCache/TavloLogFile.txt
//   presentOpenInMenuFromRect:0,0,0,0 inView:(none) animated:1      the view by its window handle
//   console:<line>
//   log:<line>                                                      what goes to the Logger
//
// An absent text stands as (null). Any thread may call it.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "common/Format.h"
#include "common/Logger.h"
#include "common/Slot.h"
#include "platform/Platform.h"
#include "tests/support/Counted.h"
#include "tests/support/MemoryFileManager.h"

namespace tavlo::test {

class ResourcesPlatform final : public platform::Platform,
                                private platform::Bundles,
                                private platform::Images,
                                private platform::Application {
 public:
  static constexpr const char* kBundlePath = "/app/TavloSDKResource.bundle";

  platform::Console& console() override { return console_; }
  platform::FileManager& fileManager() override { return files_; }
  platform::Bundles& bundles() override { return *this; }
  platform::Images& images() override { return *this; }
  platform::Application& sharedApplication() override { return *this; }

  void note(const std::string& call, const Text& argument) {
    if (!records) return;
    const std::lock_guard lock(mutex_);
    appendText(calls_.emplace_back(call), argument);
  }

  // Everything asked since the last time.
  [[nodiscard]] std::vector<std::string> takeCalls() {
    const std::lock_guard lock(mutex_);
    return std::exchange(calls_, {});
  }

  bool records = true;
  Text resourcePath = "/app";
  std::set<std::string> directories = {kBundlePath};
  std::set<std::string> files = {std::string(kBundlePath) + "/volume.png", std::string(kBundlePath) + "/mute.png"};
  bool hasFileManagerApp = false;
  bool showsMenus = true;
  Text documents = "/app/Documents";
  Text documentsUrl = "file:///app/Documents/";

  Count bundlesMade;
  Count imagesMade;
  Count controllersMade;
  std::function<void()> onBundleSought = [] {};  // while one is being opened
  std::function<void()> onBundleGone = [] {};
  std::function<void()> onImageGone = [] {};
  std::function<void()> onControllerGone = [] {};

 private:
  class RecordedConsole final : public platform::Console {
   public:
    explicit RecordedConsole(ResourcesPlatform& platform) : platform_(platform) {}
    void log(std::string_view message) override { platform_.note("console:", std::string(message)); }

   private:
    ResourcesPlatform& platform_;
  };

  class RecordedDocuments final : public MemoryFileManager {
   public:
    explicit RecordedDocuments(ResourcesPlatform& platform) : platform_(platform) {}
    Text documentDirectory() override { return platform_.note("documentDirectory", ""), platform_.documents; }
    Text documentDirectoryUrl() override { return platform_.note("documentDirectoryUrl", ""), platform_.documentsUrl; }

   private:
    ResourcesPlatform& platform_;
  };

  class FakeBundle final : public platform::Bundle {
   public:
    FakeBundle(ResourcesPlatform& platform, std::string path)
        : platform_(platform), path_(std::move(path)), counted_(platform.bundlesMade) {}
    ~FakeBundle() override { platform_.onBundleGone(); }
    Text pathForResourceOfType(std::string_view name, std::string_view type) override {
      platform_.note("pathForResource:" + std::string(name) + " ofType:", std::string(type));
      std::string file = path_ + "/" + std::string(name) + "." + std::string(type);
      return platform_.files.contains(file) ? Text(std::move(file)) : std::nullopt;
    }

   private:
    ResourcesPlatform& platform_;
    std::string path_;
    Counted counted_;
  };

  // Its only pixel tells which image it is: the first letter of the file's name.
  class FakeImage final : public platform::Image {
   public:
    FakeImage(ResourcesPlatform& platform, std::uint8_t letter)
        : platform_(platform), pixel_{letter, 0, 0, 255}, counted_(platform.imagesMade) {}
    ~FakeImage() override { platform_.onImageGone(); }
    std::size_t width() const override { return 1; }
    std::size_t height() const override { return 1; }
    std::span<const std::uint8_t> pixels() const override { return pixel_; }

   private:
    ResourcesPlatform& platform_;
    std::uint8_t pixel_[4];
    Counted counted_;
  };

  class FakeController final : public platform::DocumentInteractionController {
   public:
    explicit FakeController(ResourcesPlatform& platform) : platform_(platform), counted_(platform.controllersMade) {}
    ~FakeController() override { platform_.onControllerGone(); }
    bool presentOpenInMenuFromRect(const platform::Rect& rect, const std::shared_ptr<platform::View>& inView,
                                   bool animated) override {
      std::string call = "presentOpenInMenuFromRect:";
      for (const double side : {rect.x, rect.y, rect.width}) call += std::to_string(static_cast<int>(side)) + ",";
      call += std::to_string(static_cast<int>(rect.height));
      call += " inView:" + (inView ? inView->windowHandle().value_or("(null)") : "(none)");
      platform_.note(call + " animated:", animated ? "1" : "0");
      return platform_.showsMenus;
    }

   private:
    ResourcesPlatform& platform_;
    Counted counted_;
  };

  Text mainBundleResourcePath() override { return note("mainBundleResourcePath", ""), resourcePath; }
  std::shared_ptr<platform::Bundle> bundleWithPath(const Text& path) override {
    note("bundleWithPath:", path);
    onBundleSought();
    if (!path || !directories.contains(*path)) return nullptr;
    return std::make_shared<FakeBundle>(*this, *path);
  }
  std::shared_ptr<const platform::Image> imageWithContentsOfFile(const Text& path) override {
    note("imageWithContentsOfFile:", path);
    if (!path || !files.contains(*path)) return nullptr;
    return std::make_shared<FakeImage>(*this, static_cast<std::uint8_t>((*path)[path->rfind('/') + 1]));
  }
  bool canOpenURL(std::string_view url) override { return note("canOpenURL:", std::string(url)), hasFileManagerApp; }
  std::shared_ptr<platform::DocumentInteractionController> interactionControllerWithURL(std::string_view url) override {
    note("interactionControllerWithURL:", std::string(url));
    return std::make_shared<FakeController>(*this);
  }

  std::mutex mutex_;
  std::vector<std::string> calls_;
  RecordedConsole console_{*this};
  RecordedDocuments files_{*this};
};

// Such a platform in place, with the SDK's log in the same record. The slots are emptied at the end.
class ResourcesWorld {
 public:
  ResourcesWorld() {
    platform::install(platform_);
    Logger::install(std::make_shared<Lines>(*platform_));
  }
  ResourcesWorld(const ResourcesWorld&) = delete;
  ResourcesWorld& operator=(const ResourcesWorld&) = delete;
  ~ResourcesWorld() {
    platform_->onBundleGone = platform_->onImageGone = platform_->onControllerGone = [] {};
    Logger::install(nullptr);
    processSlot<platform::Bundle>().store(nullptr);
    processSlot<const platform::Image>().store(nullptr);
    processSlot<platform::DocumentInteractionController>().store(nullptr);
    platform::install(nullptr);
  }

  ResourcesPlatform* operator->() const { return platform_.get(); }

 private:
  class Lines final : public Logger {
   public:
    explicit Lines(ResourcesPlatform& platform) : platform_(platform) {}
    void writeLine(std::string_view message) override { platform_.note("log:", std::string(message)); }

   private:
    ResourcesPlatform& platform_;
  };

  std::shared_ptr<ResourcesPlatform> platform_ = std::make_shared<ResourcesPlatform>();
};

}  // namespace tavlo::test
