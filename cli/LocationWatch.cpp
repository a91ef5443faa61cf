#include "cli/LocationWatch.h"

#include <functional>
#include <mutex>
#include <utility>

#include "TavloUtility.h"

namespace tavlo::cli {
namespace {

using platform::Location;

}  // namespace

// What is seen, and by whom it is written: the platform of the watch, on any thread.
class LocationWatch::Board {
 public:
  struct Seen {
    LocationReport report;
    bool hasStatus = false;
    bool hasFix = false;  // or the answer that there is none
    std::optional<Location> fix;
  };

  void note(const std::function<void(Seen&)>& change) {
    const std::lock_guard lock(mutex_);
    change(seen_);
    changed_.happen();
  }

  [[nodiscard]] Seen seen() const {
    const std::lock_guard lock(mutex_);
    return seen_;
  }

  WaitEnd wait(const Patience& patience, const std::function<bool(const Seen&)>& isDone) {
    while (!isDone(seen())) {
      if (const WaitEnd end = changed_.wait(patience); end != WaitEnd::done) return end;
    }
    return WaitEnd::done;
  }

 private:
  Event changed_;
  mutable std::mutex mutex_;
  Seen seen_;
};

class LocationWatch::WatchingPlatform final : public platform::Platform {
 public:
  WatchingPlatform(std::shared_ptr<platform::Platform> real, const std::shared_ptr<Board>& board)
      : real_(std::move(real)), board_(board), services_(*real_, board) {}

  platform::UserDefaults& standardUserDefaults() override { return real_->standardUserDefaults(); }
  platform::Console& console() override { return real_->console(); }
  platform::FileManager& fileManager() override { return real_->fileManager(); }
  platform::BackgroundQueue& backgroundQueue() override { return real_->backgroundQueue(); }
  platform::UrlData& urlData() override { return real_->urlData(); }
  platform::Bundles& bundles() override { return real_->bundles(); }
  platform::Images& images() override { return real_->images(); }
  platform::Application& sharedApplication() override { return real_->sharedApplication(); }
  platform::LocationServices& locationServices() override { return services_; }
  std::shared_ptr<platform::Geocoder> makeGeocoder() override {
    return std::make_shared<Geocoder>(real_->makeGeocoder(), board_);
  }

 private:
  class Manager final : public platform::LocationManager {
   public:
    Manager(std::shared_ptr<platform::LocationManager> real, std::shared_ptr<Board> board)
        : real_(std::move(real)), board_(std::move(board)) {}

    void setDistanceFilter(double distance) override { real_->setDistanceFilter(distance); }
    void setDesiredAccuracy(double accuracy) override { real_->setDesiredAccuracy(accuracy); }
    void startUpdatingLocation() override { real_->startUpdatingLocation(); }
    std::optional<Location> location() override {
      auto location = real_->location();
      board_->note([&](Board::Seen& seen) { seen.report.positions.push_back(location); });
      return location;
    }

   private:
    const std::shared_ptr<platform::LocationManager> real_;
    const std::shared_ptr<Board> board_;
  };

  class Services final : public platform::LocationServices {
   public:
    Services(platform::Platform& real, std::shared_ptr<Board> board) : real_(real), board_(std::move(board)) {}

    bool locationServicesEnabled() override {
      const bool enabled = real_.locationServices().locationServicesEnabled();
      board_->note([&](Board::Seen& seen) { seen.report.enabled = enabled; });
      return enabled;
    }
    std::int32_t authorizationStatus() override {
      const std::int32_t status = real_.locationServices().authorizationStatus();
      board_->note([&](Board::Seen& seen) { seen.report.status = status; });
      return status;
    }
    std::shared_ptr<platform::LocationManager> makeLocationManager() override {
      return std::make_shared<Manager>(real_.locationServices().makeLocationManager(), board_);
    }
    void requestAuthorization(StatusHandler answered) override {
      real_.locationServices().requestAuthorization(std::move(answered));
    }
    void requestLocation(LocationHandler answered) override {
      real_.locationServices().requestLocation(std::move(answered));
    }

   private:
    platform::Platform& real_;
    const std::shared_ptr<Board> board_;
  };

  // Ends the look-up when its handler has run or thrown, and also when the handler is dropped.
  class Ticket {
   public:
    explicit Ticket(std::shared_ptr<Board> board) : board_(std::move(board)) {}
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;
    ~Ticket() { end(); }
    void end() const {
      board_->note([](Board::Seen& seen) { seen.report.isOver = true; });
    }

   private:
    const std::shared_ptr<Board> board_;
  };

  struct EndsTicket {
    void operator()(const Ticket* ticket) const { ticket->end(); }
  };

  class Geocoder final : public platform::Geocoder {
   public:
    Geocoder(std::shared_ptr<platform::Geocoder> real, std::shared_ptr<Board> board)
        : real_(std::move(real)), board_(std::move(board)) {}

    void reverseGeocodeLocation(const std::optional<Location>& location,
                                platform::GeocodeCompletionHandler completionHandler) override {
      board_->note([](Board::Seen& seen) { seen.report.isLookedUp = true; });
      const auto answered = [board = board_, ticket = std::make_shared<Ticket>(board_),
                             handler = std::move(completionHandler)](const auto& placemarks, const Text& error) {
        board->note([&](Board::Seen& seen) {
          seen.report.isAnswered = true;
          seen.report.placemarks = placemarks;
          seen.report.error = error;
        });
        const std::unique_ptr<const Ticket, EndsTicket> end(ticket.get());
        handler(placemarks, error);
      };
      real_->reverseGeocodeLocation(location, answered);
    }

   private:
    const std::shared_ptr<platform::Geocoder> real_;
    const std::shared_ptr<Board> board_;
  };

  const std::shared_ptr<platform::Platform> real_;
  const std::shared_ptr<Board> board_;
  Services services_;
};

LocationWatch::LocationWatch(std::shared_ptr<platform::Platform> real)
    : real_(std::move(real)), board_(std::make_shared<Board>()) {
  platform::install(std::make_shared<WatchingPlatform>(real_, board_));
}

LocationWatch::~LocationWatch() = default;

WaitEnd LocationWatch::askPermission(const Patience& patience) {
  board_->note([](Board::Seen& seen) { seen.report.isAsked = true; });
  real_->locationServices().requestAuthorization([board = board_](std::int32_t status) {
    board->note([&](Board::Seen& seen) {
      seen.report.status = status;
      seen.hasStatus = true;
    });
  });
  return board_->wait(patience, [](const Board::Seen& seen) { return seen.hasStatus; });
}

WaitEnd LocationWatch::askPosition(const Patience& patience) {
  real_->locationServices().requestLocation([board = board_](const std::optional<Location>& fix) {
    board->note([&](Board::Seen& seen) {
      seen.fix = fix;
      seen.hasFix = true;
    });
  });
  return board_->wait(patience, [](const Board::Seen& seen) { return seen.hasFix; });
}

bool LocationWatch::hasPosition() const { return board_->seen().fix.has_value(); }

WaitEnd LocationWatch::fetch(const Patience& patience) {
  TavloUtility::fetchCurrentLocation();
  return board_->wait(patience, [](const Board::Seen& seen) { return seen.report.isOver || !seen.report.isLookedUp; });
}

LocationReport LocationWatch::report() const { return board_->seen().report; }

}  // namespace tavlo::cli
