#include <curl/curl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <utility>

#include "bench/peers/CurlDownloads.h"
#include "bench/peers/Peers.h"

namespace tavlo::bench::peers {
namespace {

constexpr int kBackground = 10;

}  // namespace

std::string curlEscape(std::string_view text) {
  char* const escaped = curl_easy_escape(nullptr, text.data(), static_cast<int>(text.size()));
  std::string result = escaped;
  curl_free(escaped);
  return result;
}

class CurlDownloads::Handle {
 public:
  explicit Handle(std::string temporary) : temporary_(std::move(temporary)), easy_(curl_easy_init()) {
    curl_easy_setopt(easy_, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy_, CURLOPT_FOLLOWLOCATION, 1L);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { curl_easy_cleanup(easy_); }

  [[nodiscard]] bool fetch(const Download& download) {
    std::FILE* const file = std::fopen(temporary_.c_str(), "wxe");
    if (file == nullptr) return false;
    curl_easy_setopt(easy_, CURLOPT_URL, download.url.c_str());
    curl_easy_setopt(easy_, CURLOPT_WRITEDATA, file);
    const bool written = curl_easy_perform(easy_) == CURLE_OK && std::fflush(file) == 0 && ::fsync(::fileno(file)) == 0;
    return std::fclose(file) == 0 && written && std::rename(temporary_.c_str(), download.file.c_str()) == 0;
  }

 private:
  const std::string temporary_;
  CURL* const easy_;
};

CurlDownloads::CurlDownloads(std::size_t threads, std::string temporaryFolder) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  temporaryFolder += "/download-";
  for (std::size_t i = 0; i < threads; ++i) {
    handles_.push_back(std::make_unique<Handle>(temporaryFolder + std::to_string(i)));
  }
}

CurlDownloads::~CurlDownloads() = default;

void CurlDownloads::fetch(const std::vector<Download>& downloads) {
  std::atomic<std::size_t> next = 0;
  std::atomic<bool> failed = false;
  std::vector<std::thread> threads;
  for (const auto& handle : handles_) {
    threads.emplace_back([&, handle = handle.get()] {
      // In the background like ours, since the server wants the same cores.
      static_cast<void>(::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kBackground));
      for (std::size_t i = next++; i < downloads.size(); i = next++) {
        if (!handle->fetch(downloads[i])) failed = true;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  if (failed) throw std::runtime_error("a download by libcurl failed");
}

}  // namespace tavlo::bench::peers
