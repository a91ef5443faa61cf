#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "TavloUtility.h"
#include "bench/Areas.h"
#include "bench/Child.h"
#include "bench/TemporaryFolder.h"
#include "bench/WebServer.h"
#include "bench/peers/CurlDownloads.h"
#include "bench/peers/Peers.h"
#include "common/Logger.h"
#include "platform/linux/LinuxPlatform.h"

namespace tavlo::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBanners = 1000;
constexpr std::size_t kBannerBytes = 50'000;
constexpr int kWorkers = 4;

// Waits for the line that each download ends with, and is woken by the last one only: to wake a thread a thousand times
// costs more than the log itself.
class DownloadLog final : public Logger {
 public:
  void writeLine(std::string_view message) override {
    if (!message.starts_with("getAndSaveBannerImage()")) return;
    const std::lock_guard lock(mutex_);
    if (message != "getAndSaveBannerImage() - write successfully") failure_ = message;
    if (++ended_ == awaited_) changed_.notify_one();
  }

  // Throws std::runtime_error when one of them failed.
  void await(std::size_t downloads) {
    std::unique_lock lock(mutex_);
    awaited_ = downloads;
    changed_.wait(lock, [this] { return ended_ == awaited_; });
    ended_ = 0;
    if (!failure_.empty()) throw std::runtime_error("a download of ours failed: " + std::exchange(failure_, {}));
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t ended_ = 0;
  std::size_t awaited_ = 0;
  std::string failure_;
};

// Banners on a server, and the container of those who download them.
class Banners {
 public:
  Banners(std::size_t count, const fs::path& in) : container_(in), server_(served_.path()) {
    const std::string bytes(kBannerBytes, 'b');
    for (std::size_t i = 0; i < count; ++i) {
      const std::string name = "banner-" + std::to_string(i) + ".png";
      if (!(std::ofstream(served_.path() / name) << bytes).flush()) throw std::runtime_error("cannot write " + name);
      downloads_.push_back({.url = server_.url() + name, .file = cache() / name});
    }
    fs::create_directories(container_.path() / "tmp");
    std::ofstream commands(commands_);
    for (const auto& [url, file] : downloads_) commands << "url = " << url << "\noutput = " << file << '\n';
    if (!commands.flush()) throw std::runtime_error("cannot write " + commands_.string());
    Logger::install(log_);
    platform::install(linux_platform::make({.container = container_.path(),
                                            .domain = "tavlo-bench",
                                            .quietConsole = true,
                                            .downloads = {.workers = kWorkers}}));
    if constexpr (peers::kCurl) {
      curl_ = std::make_shared<peers::CurlDownloads>(kWorkers, (container_.path() / "tmp").string());
    }
  }

  // Nobody pays for the one before: what that one left unwritten is written here, and its files stay until the end,
  // since ext4 looks at each inode that was freed within the last seconds when it chooses one for a new file.
  void emptyCache() {
    if (fs::exists(cache())) fs::rename(cache(), container_.path() / std::to_string(++full_));
    fs::create_directories(cache());
    ::sync();
  }

  void byUs() const {
    for (const auto& each : downloads_) TavloUtility::cachedBannerImage(each.url);
    log_->await(downloads_.size());
  }
  void byLibcurl() const {
    if constexpr (peers::kCurl) curl_->fetch(downloads_);
  }
  void byCurl() const {
    run({"curl", "--no-progress-meter", "--fail", "--parallel", "--parallel-max", std::to_string(kWorkers), "--config",
         commands_});
  }

  [[nodiscard]] fs::path cache() const { return container_.path() / "Documents/TavloCache"; }

 private:
  const TemporaryFolder served_;
  const TemporaryFolder container_;
  const WebServer server_;
  const fs::path commands_ = container_.path() / "curl";
  std::vector<peers::Download> downloads_;
  int full_ = 0;
  const std::shared_ptr<DownloadLog> log_ = std::make_shared<DownloadLog>();
  std::shared_ptr<peers::CurlDownloads> curl_;
};

// What has landed, counted when it is asked for, which is not timed.
struct Landed {
  fs::path in;
};

std::string answerOf(const Landed& landed) {
  std::size_t files = 0;
  std::size_t bytes = 0;
  for (const auto& entry : fs::directory_iterator(landed.in)) {
    ++files;
    bytes += entry.file_size();
  }
  return std::to_string(files) + " files, " + std::to_string(bytes) + " bytes";
}

void addTo(Races& races, const std::string& place, const fs::path& in) {
  const auto banners = std::make_shared<std::optional<Banners>>();
  const auto race = [banners](auto download) {
    return [banners, download] {
      ((**banners).*download)();
      return Landed{(*banners)->cache()};
    };
  };
  races.add("cachedBannerImage", "1000 banners of 50 KB, 4 workers, " + place)
      .setUp([banners, in, count = races.sized(kBanners)] { banners->emplace(count, in); })
      .prepare([banners] { (*banners)->emptyCache(); })
      .ours(race(&Banners::byUs))
      .peer("libcurl", race(&Banners::byLibcurl))
      .peer("curl --parallel, not synced", race(&Banners::byCurl))
      .atMost(1.05, "libcurl");
}

}  // namespace

void addDownloads(Races& races) {
  if (!peers::kCurl || !programPath("nginx") || !programPath("curl")) {
    std::fprintf(stderr, "tavlo_bench: no downloads: they need libcurl, curl and nginx (scripts/setup.sh --bench)\n");
    return;
  }
  addTo(races, "on disk", fs::temp_directory_path());
  // Where a sync is for nothing, so that only the work itself counts.
  addTo(races, "in memory", "/dev/shm");
}

}  // namespace tavlo::bench
