#include "cli/Downloads.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <mutex>
#include <system_error>
#include <utility>

#include "TavloUtility.h"
#include "cli/CacheSession.h"
#include "cli/Errors.h"

namespace tavlo::cli {
namespace {

constexpr std::string_view kStored = "getAndSaveBannerImage() - write successfully";
constexpr std::string_view kPath = "Cached directory path : ";

// The download that this thread starts or runs.
thread_local std::optional<std::size_t> current;

class CurrentDownload {
 public:
  explicit CurrentDownload(std::size_t index) : before_(std::exchange(current, index)) {}
  CurrentDownload(const CurrentDownload&) = delete;
  CurrentDownload& operator=(const CurrentDownload&) = delete;
  ~CurrentDownload() { current = before_; }

 private:
  const std::optional<std::size_t> before_;
};

}  // namespace

// What is known of the downloads, by all threads.
class Downloads::Board {
 public:
  Board() : ended_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (ended_ < 0) throw Failure("cannot watch downloads: " + std::generic_category().message(errno));
  }
  Board(const Board&) = delete;
  Board& operator=(const Board&) = delete;
  ~Board() { ::close(ended_); }

  [[nodiscard]] int ended() const { return ended_; }

  [[nodiscard]] std::size_t add(const std::string& url) {
    const std::lock_guard lock(mutex_);
    downloads_.push_back({.url = url, .isDone = false, .isStored = false, .bytes = {}, .path = {}, .lines = {}});
    return downloads_.size() - 1;
  }
  void takeBytes(std::size_t index, std::size_t count) {
    const std::lock_guard lock(mutex_);
    downloads_[index].bytes = count;
  }
  void takeLine(std::size_t index, std::string_view line) {
    const std::lock_guard lock(mutex_);
    Download& download = downloads_[index];
    download.lines.emplace_back(line);
    if (line == kStored) download.isStored = true;
    if (line.starts_with(kPath)) download.path = line.substr(kPath.size());
  }
  void end(std::size_t index) {
    const std::lock_guard lock(mutex_);
    downloads_[index].isDone = true;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(ended_, &one, sizeof one);
  }

  [[nodiscard]] DownloadCounts counts() const {
    const std::lock_guard lock(mutex_);
    DownloadCounts counts{.all = downloads_.size(), .done = 0, .failed = 0, .bytes = 0};
    for (const Download& download : downloads_) {
      counts.bytes += download.bytes.value_or(0);
      if (!download.isDone) continue;
      ++counts.done;
      if (!download.isStored) ++counts.failed;
    }
    return counts;
  }
  [[nodiscard]] std::vector<Download> all() const {
    const std::lock_guard lock(mutex_);
    return downloads_;
  }

 private:
  const int ended_;  // has something to read when downloads have ended
  mutable std::mutex mutex_;
  std::vector<Download> downloads_;
};

class Downloads::WatchingPlatform final : public platform::Platform {
 public:
  WatchingPlatform(std::shared_ptr<platform::Platform> real, const std::shared_ptr<Board>& board)
      : real_(std::move(real)), queue_(*real_, board), urls_(*real_, board) {}

  platform::UserDefaults& standardUserDefaults() override { return real_->standardUserDefaults(); }
  platform::Console& console() override { return real_->console(); }
  platform::FileManager& fileManager() override { return real_->fileManager(); }
  platform::BackgroundQueue& backgroundQueue() override { return queue_; }
  platform::UrlData& urlData() override { return urls_; }

 private:
  // Ends its download when the task is over, and also when it is dropped.
  class Ticket {
   public:
    Ticket(std::shared_ptr<Board> board, std::size_t index) : board_(std::move(board)), index_(index) {}
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;
    ~Ticket() { board_->end(index_); }
    [[nodiscard]] std::size_t index() const { return index_; }

   private:
    const std::shared_ptr<Board> board_;
    const std::size_t index_;
  };

  class Queue final : public platform::BackgroundQueue {
   public:
    Queue(platform::Platform& real, std::shared_ptr<Board> board) : real_(real), board_(std::move(board)) {}

    void dispatchAsync(std::function<void()> task) override {
      if (!current) return real_.backgroundQueue().dispatchAsync(std::move(task));
      auto ticket = std::make_shared<Ticket>(board_, *current);
      real_.backgroundQueue().dispatchAsync([ticket = std::move(ticket), task = std::move(task)]() mutable {
        const std::shared_ptr<Ticket> used = std::move(ticket);  // however long the queue keeps what has run
        const CurrentDownload running(used->index());
        task();
      });
    }

   private:
    platform::Platform& real_;
    const std::shared_ptr<Board> board_;
  };

  class Urls final : public platform::UrlData {
   public:
    Urls(platform::Platform& real, std::shared_ptr<Board> board) : real_(real), board_(std::move(board)) {}

    std::optional<std::string> dataWithContentsOfUrl(std::string_view url) override {
      auto data = real_.urlData().dataWithContentsOfUrl(url);
      if (data && current) board_->takeBytes(*current, data->size());
      return data;
    }

   private:
    platform::Platform& real_;
    const std::shared_ptr<Board> board_;
  };

  const std::shared_ptr<platform::Platform> real_;
  Queue queue_;
  Urls urls_;
};

Downloads::Downloads(std::shared_ptr<platform::Platform> real, const std::string& documentsFolder)
    : board_(std::make_shared<Board>()) {
  platform::install(std::make_shared<WatchingPlatform>(std::move(real), board_));
  Logger::install(std::make_shared<CacheLog>(documentsFolder, [board = board_](std::string_view line) {
    if (current) board->takeLine(*current, line);
  }));
}

Downloads::~Downloads() = default;

void Downloads::start(const std::vector<std::string>& urls) {
  // Of two downloads that both find the directory missing, one would fail.
  static_cast<void>(TavloUtility::getDocumentDirectoryPath(""));
  for (const std::string& url : urls) {
    const CurrentDownload starting(board_->add(url));
    TavloUtility::cachedBannerImage(url);
  }
}

bool Downloads::wait(int wakeUp, const std::function<void(const DownloadCounts&)>& tell) {
  std::array<pollfd, 2> watched = {pollfd{.fd = board_->ended(), .events = POLLIN, .revents = 0},
                                   pollfd{.fd = wakeUp, .events = POLLIN, .revents = 0}};
  for (;;) {
    const DownloadCounts counts = board_->counts();
    tell(counts);
    if (counts.done == counts.all) return true;
    if (::poll(watched.data(), watched.size(), -1) < 0) continue;  // a signal came
    if (watched[1].revents != 0) return false;
    std::uint64_t ignored = 0;
    [[maybe_unused]] const ssize_t count = ::read(board_->ended(), &ignored, sizeof ignored);
  }
}

DownloadCounts Downloads::counts() const { return board_->counts(); }

std::vector<Download> Downloads::all() const { return board_->all(); }

}  // namespace tavlo::cli
