#include <curl/curl.h>
#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <new>
#include <string_view>
#include <utility>

#include "platform/linux/HttpTransfer.h"
#include "platform/linux/ResponseHead.h"

namespace tavlo::linux_platform {
namespace {

using Clock = std::chrono::steady_clock;

bool libraryIsReady() noexcept {
  static std::once_flag once;
  static std::atomic<bool> ready = false;
  std::call_once(once, [] { ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK; });
  return ready;
}

struct EasyCleanup {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct MultiCleanup {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};

// What one fetch has received so far, and when it last got on.
class Response {
 public:
  explicit Response(const DownloadLimits& limits) : limits_(limits), head_(limits.responseHead) {}

  bool addHeadLine(std::string_view line) {
    moved();
    closeNotified_ = false;
    return head_.add(line);
  }

  bool addBody(std::string_view bytes) {
    moved();
    if (bytes.size() > limits_.body - body_.size()) return false;
    makeRoom(body_.size() + bytes.size());
    body_ += bytes;
    return true;
  }

  // The bytes of the body that came, whether they are kept or are those of a redirect.
  bool countBody(std::uint64_t size) {
    if (size != counted_) moved();
    counted_ = size;
    return size <= limits_.body;
  }

  // The time to connect has a limit of its own.
  void connects() { connecting_ = true; }
  void isConnected() {
    connecting_ = false;
    moved();
  }

  [[nodiscard]] Clock::duration timeToStall() const {
    return connecting_ ? limits_.connect : limits_.stall - (Clock::now() - lastMove_);
  }

  void isCloseNotified() { closeNotified_ = true; }

  // Over TLS only the peer's close-notify tells the end of a body that ends with its connection from a cut.
  [[nodiscard]] bool isComplete(bool secure) const {
    return head_.isComplete() && (!secure || closeNotified_ || head_.delimitsBody());
  }
  [[nodiscard]] std::string takeBody() { return std::move(body_); }

 private:
  void moved() { lastMove_ = Clock::now(); }

  // The announced size, else the limit divided as often as it may be. Pages that are not written to take no memory,
  // but the allocator may keep those of the storage before, so the steps are few and large.
  void makeRoom(std::size_t needed) {
    constexpr std::size_t kStep = 32;
    if (needed <= body_.capacity()) return;
    std::size_t room = limits_.body;
    if (const auto length = head_.contentLength(); length && *length >= needed && *length <= limits_.body) {
      room = static_cast<std::size_t>(*length);
    } else {
      while (room / kStep >= needed) room /= kStep;
    }
    body_.reserve(room);
  }

  const DownloadLimits& limits_;
  ResponseHead head_;
  std::string body_;
  std::uint64_t counted_ = 0;
  bool connecting_ = true;
  bool closeNotified_ = false;
  Clock::time_point lastMove_ = Clock::now();
};

// Nothing may be thrown through the library, which takes a short count for a failure.
template <bool (Response::*Add)(std::string_view)>
std::size_t receive(char* bytes, std::size_t one, std::size_t count, void* response) noexcept {
  const std::size_t size = one * count;
  try {
    return (static_cast<Response*>(response)->*Add)({bytes, size}) ? size : CURL_WRITEFUNC_ERROR;
  } catch (const std::bad_alloc&) {
    return CURL_WRITEFUNC_ERROR;
  }
}

curl_socket_t openSocket(void* response, curlsocktype, curl_sockaddr* address) noexcept {
  static_cast<Response*>(response)->connects();
  return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

int beforeRequest(void* response, char*, char*, int, int) noexcept {
  static_cast<Response*>(response)->isConnected();
  return CURL_PREREQFUNC_OK;
}

// The library takes a connection that is cut for one that was closed, but shows the TLS messages that it gets: the
// two bytes of an alert are its level and its description, of which 0 is close-notify.
int watchTls(CURL*, curl_infotype type, char* bytes, std::size_t size, void* response) noexcept {
  const std::string_view message(bytes, size);
  if (type == CURLINFO_SSL_DATA_IN && message.size() == 2 && message[1] == 0) {
    static_cast<Response*>(response)->isCloseNotified();
  }
  return 0;
}

// One fetch. Its handle is its own, since a handle counts the dead connections that it has met in all its life and
// gives up at the sixth; the connections are the CurlTransfer's.
class Request {
 public:
  Request(const DownloadLimits& limits, const std::optional<std::filesystem::path>& certificateAuthorities,
          const std::string& userAgent, const std::string& url)
      : response_(limits),
        easy_(curl_easy_init()),
        usable_(easy_ && set(CURLOPT_URL, url.c_str()) && setProtocol() && setLimits(limits) && setCallbacks() &&
                set(CURLOPT_USERAGENT, userAgent.c_str()) &&
                (!certificateAuthorities || trustOnly(*certificateAuthorities))) {}

  [[nodiscard]] bool isUsable() const { return usable_; }
  [[nodiscard]] CURL* handle() const { return easy_.get(); }
  [[nodiscard]] Response& response() { return response_; }

  bool hasRoomForMore() {
    curl_off_t received = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_SIZE_DOWNLOAD_T, &received);
    return response_.countBody(static_cast<std::uint64_t>(received));
  }

  [[nodiscard]] bool isComplete() const {
    const char* scheme = nullptr;
    curl_easy_getinfo(easy_.get(), CURLINFO_SCHEME, &scheme);
    const bool isPlain =
        scheme != nullptr && (std::string_view(scheme) == "HTTP" || std::string_view(scheme) == "http");
    return response_.isComplete(!isPlain);
  }

 private:
  template <class Value>
  bool set(CURLoption option, Value value) {
    return curl_easy_setopt(easy_.get(), option, value) == CURLE_OK;
  }

  // Content decoding stays off as long as no encoding is accepted.
  bool setProtocol() {
    return set(CURLOPT_PROTOCOLS_STR, "http,https") && set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https") &&
           set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1}) && set(CURLOPT_HTTP09_ALLOWED, 0L) &&
           set(CURLOPT_FOLLOWLOCATION, 1L) && set(CURLOPT_FAILONERROR, 1L) && set(CURLOPT_PATH_AS_IS, 1L) &&
           set(CURLOPT_SSL_VERIFYPEER, 1L) && set(CURLOPT_SSL_VERIFYHOST, 2L) &&
           set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L) && set(CURLOPT_NOSIGNAL, 1L) && set(CURLOPT_QUICK_EXIT, 1L);
  }

  bool setLimits(const DownloadLimits& limits) {
    return set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits.connect.count())) &&
           set(CURLOPT_TIMEOUT_MS, static_cast<long>(limits.total.count())) &&
           set(CURLOPT_MAXREDIRS, long{limits.redirects}) &&
           set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits.body));
  }

  // The library has a folder of authorities of its own beside the file.
  bool trustOnly(const std::filesystem::path& certificateAuthorities) {
    return set(CURLOPT_CAINFO, certificateAuthorities.c_str()) && set(CURLOPT_CAPATH, nullptr);
  }

  bool setCallbacks() {
    return set(CURLOPT_WRITEFUNCTION, &receive<&Response::addBody>) && set(CURLOPT_WRITEDATA, &response_) &&
           set(CURLOPT_HEADERFUNCTION, &receive<&Response::addHeadLine>) && set(CURLOPT_HEADERDATA, &response_) &&
           set(CURLOPT_OPENSOCKETFUNCTION, &openSocket) && set(CURLOPT_OPENSOCKETDATA, &response_) &&
           set(CURLOPT_PREREQFUNCTION, &beforeRequest) && set(CURLOPT_PREREQDATA, &response_) &&
           set(CURLOPT_DEBUGFUNCTION, &watchTls) && set(CURLOPT_DEBUGDATA, &response_) && set(CURLOPT_VERBOSE, 1L);
  }

  Response response_;
  const std::unique_ptr<CURL, EasyCleanup> easy_;
  const bool usable_;
};

class CurlTransfer final : public HttpTransfer {
 public:
  CurlTransfer(const DownloadLimits& limits, std::optional<std::filesystem::path> certificateAuthorities,
               std::string userAgent)
      : limits_(limits),
        certificateAuthorities_(std::move(certificateAuthorities)),
        userAgent_(std::move(userAgent)),
        multi_(curl_multi_init()) {
    if (multi_) curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, kKeptConnections);
  }

  std::optional<std::string> fetch(const std::string& url) noexcept override {
    Request request(limits_, certificateAuthorities_, userAgent_, url);
    if (!multi_ || !request.isUsable()) return std::nullopt;
    if (curl_multi_add_handle(multi_.get(), request.handle()) != CURLM_OK) return std::nullopt;
    const bool succeeded = run(request) && request.isComplete();
    curl_multi_remove_handle(multi_.get(), request.handle());
    if (!succeeded) return std::nullopt;
    return request.response().takeBody();
  }

  void cancel() noexcept override {
    cancelled_ = true;
    if (multi_) curl_multi_wakeup(multi_.get());
  }

 private:
  static constexpr long kKeptConnections = 4;

  bool run(Request& request) {
    while (!cancelled_) {
      int running = 0;
      if (curl_multi_perform(multi_.get(), &running) != CURLM_OK) return false;
      if (running == 0) return hasSucceeded();

      const auto wait = std::chrono::ceil<std::chrono::milliseconds>(request.response().timeToStall());
      if (!request.hasRoomForMore() || wait.count() <= 0) return false;
      if (curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(wait.count()), nullptr) != CURLM_OK) return false;
    }
    return false;
  }

  bool hasSucceeded() {
    int left = 0;
    const CURLMsg* const message = curl_multi_info_read(multi_.get(), &left);
    return message != nullptr && message->msg == CURLMSG_DONE && message->data.result == CURLE_OK;
  }

  const DownloadLimits limits_;
  const std::optional<std::filesystem::path> certificateAuthorities_;
  const std::string userAgent_;
  const std::unique_ptr<CURLM, MultiCleanup> multi_;
  std::atomic<bool> cancelled_ = false;
};

}  // namespace

std::unique_ptr<HttpTransfer> makeHttpTransfer(const DownloadLimits& limits,
                                               const std::optional<std::filesystem::path>& certificateAuthorities,
                                               const std::string& userAgent) {
  if (!libraryIsReady()) return nullptr;
  return std::make_unique<CurlTransfer>(limits, certificateAuthorities, userAgent);
}

void prepareHttp() noexcept { static_cast<void>(libraryIsReady()); }

}  // namespace tavlo::linux_platform
