#include "platform/linux/LinuxUrlData.h"

#include <fcntl.h>

#include <algorithm>
#include <new>
#include <utility>

#include "common/UrlGrammar.h"
#include "platform/linux/FileOps.h"

namespace tavlo::linux_platform {
namespace {

std::string withoutLineBreaksAndTabs(std::string_view text) {
  std::string url;
  std::copy_if(text.begin(), text.end(), std::back_inserter(url),
               [](char c) { return c != '\t' && c != '\n' && c != '\r'; });
  return url;
}

std::string lowercase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

bool hasHost(std::string_view authority) {
  const std::string_view host = authority.substr(authority.find('@') + 1);
  return !host.empty() && host.front() != ':';
}

bool isOnThisMachine(const std::optional<std::string_view>& authority) {
  return !authority || authority->empty() || lowercase(*authority) == "localhost";
}

bool isReadable(const struct stat& status, std::size_t limit) {
  return S_ISREG(status.st_mode) && static_cast<std::size_t>(status.st_size) <= limit;
}

}  // namespace

// A transfer out of the pool, back in it at the end.
class LinuxUrlData::Lease {
 public:
  explicit Lease(LinuxUrlData& owner) : owner_(owner) {
    std::unique_lock lock(owner_.mutex_);
    if (!owner_.idle_.empty()) {
      transfer_ = std::move(owner_.idle_.back());
      owner_.idle_.pop_back();
    } else {
      lock.unlock();
      transfer_ = makeHttpTransfer(owner_.limits_, owner_.certificateAuthorities_);
      if (!transfer_) return;
      lock.lock();
    }
    if (owner_.cancelled_) transfer_->cancel();
    owner_.busy_.push_back(transfer_.get());
  }
  Lease(const Lease&) = delete;
  Lease& operator=(const Lease&) = delete;
  ~Lease() {
    if (!transfer_) return;
    const std::lock_guard lock(owner_.mutex_);
    owner_.busy_.erase(std::find(owner_.busy_.begin(), owner_.busy_.end(), transfer_.get()));
    const bool hasRoom = owner_.idle_.size() < static_cast<std::size_t>(owner_.limits_.workers);
    if (hasRoom) owner_.idle_.push_back(std::move(transfer_));
  }

  [[nodiscard]] HttpTransfer* get() const { return transfer_.get(); }

 private:
  LinuxUrlData& owner_;
  std::unique_ptr<HttpTransfer> transfer_;  // what is not taken back is destroyed after the lock is gone
};

LinuxUrlData::LinuxUrlData(DownloadLimits limits, std::optional<std::filesystem::path> certificateAuthorities,
                           Syscalls& syscalls)
    : limits_(limits), certificateAuthorities_(std::move(certificateAuthorities)), syscalls_(syscalls) {
  idle_.reserve(static_cast<std::size_t>(limits.workers));
}

std::optional<std::string> LinuxUrlData::dataWithContentsOfUrl(std::string_view url) {
  try {
    const std::string text = withoutLineBreaksAndTabs(url);
    const auto parsed = parseUrlReference(text);
    if (!parsed || !parsed->scheme) return std::nullopt;

    const std::string scheme = lowercase(*parsed->scheme);
    if (scheme == "file") return isOnThisMachine(parsed->authority) ? fetchFile(parsed->path) : std::nullopt;
    if (scheme != "http" && scheme != "https") return std::nullopt;
    return hasHost(parsed->authority.value_or("")) ? fetchHttp(text) : std::nullopt;
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

bool LinuxUrlData::isCancelled() {
  const std::lock_guard lock(mutex_);
  return cancelled_;
}

void LinuxUrlData::cancel() {
  const std::lock_guard lock(mutex_);
  cancelled_ = true;
  for (HttpTransfer* const transfer : busy_) transfer->cancel();
}

// A device may do something when it is opened, so what it is is asked first; what it is by then, once more.
std::optional<std::string> LinuxUrlData::fetchFile(std::string_view encodedPath) {
  if (isCancelled()) return std::nullopt;
  const std::string path = percentDecoded(encodedPath);
  if (!path.starts_with('/') || path.find('\0') != std::string::npos) return std::nullopt;

  struct stat status {};
  if (uninterrupted([&] { return syscalls_.stat(path.c_str(), &status); }) != 0) return std::nullopt;
  if (!isReadable(status, limits_.body)) return std::nullopt;
  const FileDescriptor file = openFile(syscalls_, path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file || uninterrupted([&] { return syscalls_.fstat(file.get(), &status); }) != 0) return std::nullopt;
  return isReadable(status, limits_.body) ? readWhole(syscalls_, file.get(), limits_.body) : std::nullopt;
}

std::optional<std::string> LinuxUrlData::fetchHttp(const std::string& url) {
  const Lease lease(*this);
  return lease.get() == nullptr ? std::nullopt : lease.get()->fetch(url);
}

}  // namespace tavlo::linux_platform
