#include "platform/linux/LinuxGeocoder.h"

#include <cmath>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "common/UrlGrammar.h"
#include "common/Utf8.h"
#include "platform/linux/AddressLookUp.h"
#include "platform/linux/HttpTransfer.h"
#include "platform/linux/WorkerQueue.h"

namespace tavlo::linux_platform {
namespace {

using platform::Coordinate;
using platform::GeocodeCompletionHandler;
using platform::Location;
using platform::Placemark;
using platform::Placemarks;

constexpr std::size_t kMostWaiting = 8;

constexpr const char* kUnconfigured = "no geocoding service is configured: set the option \"geocoding.url\"";
constexpr const char* kNoLocation = "there is no location to look up";
constexpr const char* kNoPlace = "the location is no place on earth";
constexpr const char* kOvertaken = "the look-up was overtaken: too many newer ones wait";
constexpr const char* kNoHttp = "this build of the component asks no service: libcurl was missing";
constexpr const char* kNoAnswer =
    "the geocoding service gives no answer: it is out of reach, takes too long, sends too much, or fails";

DownloadLimits limitsOf(const GeocodingOptions& options) {
  return {.connect = options.timeLimit,
          .stall = options.timeLimit,
          .total = options.timeLimit,
          .body = std::size_t{1} << 20U,
          .responseHead = std::size_t{64} << 10U,
          .redirects = 5,
          .workers = 1};
}

std::string userAgentOf(const std::string& domain) {
  std::string name = domain;
  for (char& c : name) {
    if (c < ' ' || c > '~' || c == '(' || c == ')' || c == '\\') c = '_';
  }
  return std::string(kUserAgent) + (name.empty() ? "" : " (" + name + ")");
}

std::string withoutSlashes(std::string url) {
  while (url.ends_with('/')) url.pop_back();
  return url;
}

// What is asked, by whom: shared by the requests of one platform. Used on the answering thread only, but for what is
// constant.
class Asker {
 public:
  Asker(const GeocodingOptions& options, const std::string& domain,
        std::optional<std::filesystem::path> certificateAuthorities)
      : url(withoutSlashes(options.url)),
        maintainer(options.maintainer),
        limits_(limitsOf(options)),
        userAgent_(userAgentOf(domain)),
        certificateAuthorities_(std::move(certificateAuthorities)) {}

  // nullptr when there is no HTTP.
  [[nodiscard]] HttpTransfer* transfer() {
    if (!transfer_) transfer_ = makeHttpTransfer(limits_, certificateAuthorities_, userAgent_);
    return transfer_.get();
  }

  const std::string url;
  const std::string maintainer;
  std::optional<std::pair<Coordinate, Placemark>> newest;

 private:
  const DownloadLimits limits_;
  const std::string userAgent_;
  const std::optional<std::filesystem::path> certificateAuthorities_;
  std::unique_ptr<HttpTransfer> transfer_;
};

struct Request {
  std::shared_ptr<Asker> asker;
  Coordinate place;
  GeocodeCompletionHandler handler;
  Text error;  // known before anyone is asked
};

Text errorOf(const Asker& asker, const std::optional<Location>& location) {
  if (!location) return kNoLocation;
  const auto [latitude, longitude] = location->coordinate;
  const bool isPlace = std::abs(latitude) <= 90 && std::abs(longitude) <= 180;  // false for what is no number
  if (!isPlace) return kNoPlace;
  return asker.url.empty() ? Text(kUnconfigured) : std::nullopt;
}

// All requests of the process, on one thread.
class Requests {
 public:
  // Never destroyed: threads may ask while the process ends.
  static Requests& ofProcess() {
    static auto* const requests = new Requests;
    return *requests;
  }

  static std::unique_ptr<RequestPace::Clock>& clock() {
    static auto* const clock = new std::unique_ptr<RequestPace::Clock>;
    return *clock;
  }

  void add(Request request) {
    const auto next = std::make_shared<Request>(std::move(request));
    {
      const std::lock_guard lock(mutex_);
      if (!next->error) asking_.push_back(next);
      if (asking_.size() > kMostWaiting) {
        asking_.front()->error = kOvertaken;
        asking_.pop_front();
      }
    }
    try {
      queue_.dispatchAsync([this, next] { answer(*next); });
    } catch (...) {
      leaveLine(*next);
      throw;
    }
  }

 private:
  // What HTTP cleans up when the process exits must outlive the worker, so it is set up before it.
  Requests()
      : pace_(clock() ? std::move(clock()) : makeSteadyClock()), queue_((prepareHttp(), 1), [this] { cancel(); }) {}

  void answer(const Request& request) {
    leaveLine(request);
    const AddressAnswer answer = request.error ? AddressAnswer{{}, request.error} : ask(*request.asker, request.place);
    if (isCancelled() || !request.handler) return;
    if (answer.error) {
      request.handler(std::nullopt, answer.error);
    } else {
      request.handler(Placemarks{answer.placemark}, std::nullopt);
    }
  }

  // After that nothing changes it.
  void leaveLine(const Request& request) {
    const std::lock_guard lock(mutex_);
    std::erase_if(asking_, [&](const auto& each) { return each.get() == &request; });
  }

  AddressAnswer ask(Asker& asker, const Coordinate& place) {
    if (asker.newest && asker.newest->first == place) return {asker.newest->second, {}};
    AddressAnswer answer = lookUpAddress(asker.url, asker.maintainer, place, [&](const std::string& url) {
      HttpTransfer* const transfer = asker.transfer();
      if (transfer == nullptr) throw std::runtime_error(kNoHttp);
      auto body = pace_.next() ? fetch(*transfer, url) : std::nullopt;
      return body ? *std::move(body) : throw std::runtime_error(kNoAnswer);
    });
    if (!answer.error) asker.newest.emplace(place, answer.placemark);
    return answer;
  }

  std::optional<std::string> fetch(HttpTransfer& transfer, const std::string& url) {
    if (!setUnderWay(&transfer)) return std::nullopt;
    auto body = transfer.fetch(url);
    static_cast<void>(setUnderWay(nullptr));
    return body;
  }

  bool setUnderWay(HttpTransfer* transfer) {
    const std::lock_guard lock(mutex_);
    underWay_ = transfer;
    return !cancelled_;
  }

  bool isCancelled() {
    const std::lock_guard lock(mutex_);
    return cancelled_;
  }

  void cancel() {
    pace_.cancel();
    const std::lock_guard lock(mutex_);
    cancelled_ = true;
    if (underWay_ != nullptr) underWay_->cancel();
  }

  RequestPace pace_;
  std::mutex mutex_;
  std::deque<std::shared_ptr<Request>> asking_;  // those that wait and will ask someone
  HttpTransfer* underWay_ = nullptr;
  bool cancelled_ = false;
  WorkerQueue queue_;
};

class LinuxGeocoder final : public platform::Geocoder {
 public:
  explicit LinuxGeocoder(std::shared_ptr<Asker> asker) : asker_(std::move(asker)) {}

  void reverseGeocodeLocation(const std::optional<Location>& location,
                              GeocodeCompletionHandler completionHandler) override {
    Requests::ofProcess().add({asker_, location ? location->coordinate : Coordinate(), std::move(completionHandler),
                               errorOf(*asker_, location)});
  }

 private:
  const std::shared_ptr<Asker> asker_;
};

}  // namespace

void check(const GeocodingOptions& options) {
  const auto refuse = [](const char* option, const char* rule) {
    throw std::invalid_argument(std::string("the option \"geocoding.") + option + "\" must be " + rule);
  };
  const auto url = parseUrlReference(options.url);
  const bool isBase = url && (url->scheme == "http" || url->scheme == "https") &&
                      !url->authority.value_or("").empty() && !url->query && !url->fragment;
  if (!options.url.empty() && !isBase) refuse("url", "an http or https URL with a host, without a query or a fragment");
  const bool isText = isUtf8(options.maintainer) && options.maintainer.find('\0') == std::string::npos;
  if (!isText) refuse("maintainer", "UTF-8 without a NUL");
  const bool isInRange = options.timeLimit.count() >= 1 && options.timeLimit <= std::chrono::hours(24);
  if (!isInRange) refuse("timeLimit", "from 1 to 86400000 ms");
}

std::shared_ptr<platform::Geocoder> makeLinuxGeocoder(
    const GeocodingOptions& options, const std::string& domain,
    const std::optional<std::filesystem::path>& certificateAuthorities) {
  return std::make_shared<LinuxGeocoder>(std::make_shared<Asker>(options, domain, certificateAuthorities));
}

void setGeocodingClock(std::unique_ptr<RequestPace::Clock> clock) { Requests::clock() = std::move(clock); }

}  // namespace tavlo::linux_platform
