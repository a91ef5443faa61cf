// The platform of a case.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "platform/Platform.h"
#include "tests/conformance/Files.h"
#include "tests/conformance/Position.h"
#include "tests/support/MemoryUserDefaults.h"

namespace tavlo::conformance {

// Knows which file it is of, and nothing else.
class GivenImage final : public platform::Image {
 public:
  explicit GivenImage(std::string file) : file_(std::move(file)) {}
  [[nodiscard]] const std::string& file() const { return file_; }

  std::size_t width() const override { return 0; }
  std::size_t height() const override { return 0; }
  std::span<const std::uint8_t> pixels() const override { return {}; }

 private:
  std::string file_;
};

// The images of the resource bundle's directory; without a value there is none.
using BundleFiles = std::optional<std::set<std::string>>;

class GivenBundle final : public platform::Bundle {
 public:
  GivenBundle(std::string path, std::shared_ptr<BundleFiles> files)
      : path_(std::move(path)), files_(std::move(files)) {}
  [[nodiscard]] const std::string& path() const { return path_; }

  Text pathForResourceOfType(std::string_view name, std::string_view type) override {
    const std::string file = std::string(name) + "." + std::string(type);
    return *files_ && (*files_)->contains(file) ? Text(path_ + "/" + file) : std::nullopt;
  }

 private:
  std::string path_;
  std::shared_ptr<BundleFiles> files_;
};

class GivenPlatform final : public platform::Platform,
                            private platform::UserDefaults,
                            private platform::Console,
                            private platform::BackgroundQueue,
                            private platform::UrlData,
                            private platform::Bundles,
                            private platform::Images,
                            private platform::Application {
 public:
  GivenPlatform(const Value& given, Seen seen);

  platform::UserDefaults& standardUserDefaults() override { return *this; }
  platform::Console& console() override { return *this; }
  platform::FileManager& fileManager() override { return files; }
  platform::BackgroundQueue& backgroundQueue() override { return *this; }
  platform::UrlData& urlData() override { return *this; }
  platform::LocationServices& locationServices() override { return location_; }
  platform::Bundles& bundles() override { return *this; }
  platform::Images& images() override { return *this; }
  platform::Application& sharedApplication() override { return *this; }
  std::shared_ptr<platform::Geocoder> makeGeocoder() override {
    return std::make_shared<GivenGeocoder>(seen_, lookUps);
  }

  void setBundle(const Value* images);
  void runTasks();
  void restart() { settings_ = std::make_unique<test::MemoryUserDefaults>(disk_); }
  [[nodiscard]] Value storedSettings() const;

  GivenFiles files;
  std::shared_ptr<LookUps> lookUps = std::make_shared<LookUps>();

 private:
  std::optional<Value> objectForKey(std::string_view key) override;
  void setObjectForKey(const Value& value, std::string_view key) override;
  bool synchronize() override { return seen_->asks.emplace_back("synchronize"), settings_->synchronize(); }
  void log(std::string_view message) override { seen_->console.emplace_back(message); }
  void dispatchAsync(std::function<void()> task) override { tasks_.push_back(std::move(task)); }
  std::optional<std::string> dataWithContentsOfUrl(std::string_view url) override;
  Text mainBundleResourcePath() override { return std::string(kResources); }
  std::shared_ptr<platform::Bundle> bundleWithPath(const Text& path) override;
  std::shared_ptr<const platform::Image> imageWithContentsOfFile(const Text& path) override;
  bool canOpenURL(std::string_view url) override;
  std::shared_ptr<platform::DocumentInteractionController> interactionControllerWithURL(std::string_view url) override;

  Seen seen_;
  std::shared_ptr<test::MemoryUserDefaults::Disk> disk_ = std::make_shared<test::MemoryUserDefaults::Disk>();
  std::unique_ptr<test::MemoryUserDefaults> settings_;
  GivenServices location_;
  std::deque<std::function<void()>> tasks_;
  Value urls_;
  std::shared_ptr<BundleFiles> bundle_ = std::make_shared<BundleFiles>();
  bool opens_;
  bool shows_;
};

}  // namespace tavlo::conformance
