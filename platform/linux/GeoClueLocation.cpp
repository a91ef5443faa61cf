#include <geoclue.h>

#include <new>
#include <optional>
#include <utility>

#include "platform/linux/DesktopLocation.h"
#include "platform/linux/GLibCalls.h"
#include "platform/linux/LocationState.h"
#include "platform/linux/MainLoop.h"
#include "platform/linux/SystemBus.h"

// Whatever names a GLib type here runs on the thread of MainLoop.h.
namespace tavlo::linux_platform {
namespace {

using platform::Location;

constexpr const char* kService = "org.freedesktop.GeoClue2";
constexpr const char* kManager = "/org/freedesktop/GeoClue2/Manager";

LocationState& state() {
  static auto* const state = new LocationState;
  return *state;
}

// The client, from its beginning to its end, which is one of: it is refused, time is up, the daemon or the bus ends.
class Client : public std::enable_shared_from_this<Client> {
 public:
  // Ends at once where there is no memory, so that whoever waits is answered.
  static void begin(const LocationOptions& options) {
    std::shared_ptr<Client> client;
    try {
      client = std::make_shared<Client>(options);
      current() = client;
      client->start();
    } catch (...) {
      client ? client->end() : state().ended(platform::kCLAuthorizationStatusNotDetermined);
    }
  }

  explicit Client(const LocationOptions& options) : desktopId_(options.desktopId), limit_(options.authorization) {}
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client() = default;

 private:
  using Step = void (Client::*)(GAsyncResult* result);

  static std::shared_ptr<Client>& current() {
    static auto* const client = new std::shared_ptr<Client>;
    return *client;
  }

  // The step is not taken when the client has ended meanwhile, and ends it when there is no memory.
  Answer then(Step step) {
    return [self = shared_from_this(), step](GAsyncResult* result) {
      if (self->hasEnded_) return;
      try {
        ((*self).*step)(result);
      } catch (...) {
        self->end();
      }
    };
  }

  void start() {
    cancellable_.reset(g_cancellable_new());
    timer_ = g_timeout_source_new(static_cast<guint>(limit_.count()));
    g_source_set_callback(timer_, isTooLate, this, nullptr);
    g_source_attach(timer_, g_main_context_get_thread_default());
    connectToSystemBus(cancellable_.get(), then(&Client::connected));
  }

  void connected(GAsyncResult* result) {
    connection_.reset(g_dbus_connection_new_for_address_finish(result, nullptr));
    if (!connection_) return end();
    g_signal_connect(connection_.get(), "closed", G_CALLBACK(isClosed), this);
    gclue_manager_proxy_new(connection_.get(), G_DBUS_PROXY_FLAGS_NONE, kService, kManager, cancellable_.get(),
                            answered, kept(then(&Client::hasManager)));
  }

  void hasManager(GAsyncResult* result) {
    manager_.reset(gclue_manager_proxy_new_finish(result, nullptr));
    if (!manager_ || !watchOwner(manager_.get())) return end();
    g_signal_connect(manager_.get(), "notify::available-accuracy-level", G_CALLBACK(accuracyChanges), this);
    gclue_manager_call_create_client(manager_.get(), cancellable_.get(), answered, kept(then(&Client::hasPath)));
  }

  void hasPath(GAsyncResult* result) {
    gchar* path = nullptr;
    gclue_manager_call_create_client_finish(manager_.get(), &path, result, nullptr);
    const Chars owned(path);
    if (!owned) return end();
    gclue_client_proxy_new(connection_.get(), G_DBUS_PROXY_FLAGS_NONE, kService, path, cancellable_.get(), answered,
                           kept(then(&Client::hasClient)));
  }

  void hasClient(GAsyncResult* result) {
    client_.reset(gclue_client_proxy_new_finish(result, nullptr));
    if (!client_ || !watchOwner(client_.get())) return end();
    g_signal_connect(client_.get(), "location-updated", G_CALLBACK(locationUpdated), this);
    gclue_client_set_desktop_id(client_.get(), desktopId_.c_str());
    gclue_client_set_requested_accuracy_level(client_.get(), GCLUE_ACCURACY_LEVEL_EXACT);
    gclue_client_call_start(client_.get(), cancellable_.get(), answered, kept(then(&Client::decided)));
  }

  void decided(GAsyncResult* result) {
    Failure failure;
    const bool allowed = gclue_client_call_start_finish(client_.get(), result, failure.out()) != FALSE;
    if (allowed) {
      stopTimer();
      state().allowed(hasAccuracy());
    } else if (failure.isRefusal()) {
      end(hasAccuracy() ? platform::kCLAuthorizationStatusDenied : platform::kCLAuthorizationStatusRestricted);
    } else {
      end();
    }
  }

  // A location that the daemon has dropped meanwhile has no properties, which would read as 0.
  void hasLocation(GAsyncResult* result) {
    const Ref<GClueLocation> location(gclue_location_proxy_new_finish(result, nullptr));
    if (!location) return;
    for (const char* name : {"Latitude", "Longitude"}) {
      const Variant value(g_dbus_proxy_get_cached_property(reinterpret_cast<GDBusProxy*>(location.get()), name));
      if (!value) return;
    }
    state().moved({{gclue_location_get_latitude(location.get()), gclue_location_get_longitude(location.get())}});
  }

  [[nodiscard]] bool hasAccuracy() {
    return gclue_manager_get_available_accuracy_level(manager_.get()) != GCLUE_ACCURACY_LEVEL_NONE;
  }

  // False when the daemon is not there. The calls have no limit but that of the whole.
  bool watchOwner(gpointer proxy) {
    auto* const common = static_cast<GDBusProxy*>(proxy);
    g_dbus_proxy_set_default_timeout(common, G_MAXINT);
    g_signal_connect(proxy, "notify::g-name-owner", G_CALLBACK(ownerChanges), this);
    return Chars(g_dbus_proxy_get_name_owner(common)) != nullptr;
  }

  static gboolean isTooLate(gpointer self) {
    static_cast<Client*>(self)->end();
    return G_SOURCE_REMOVE;
  }
  static void isClosed(GDBusConnection* /*connection*/, gboolean /*byPeer*/, GError* /*error*/, gpointer self) {
    static_cast<Client*>(self)->end();
  }
  static void ownerChanges(GDBusProxy* /*proxy*/, GParamSpec* /*property*/, gpointer self) {
    static_cast<Client*>(self)->end();
  }
  static void accuracyChanges(GClueManager* /*manager*/, GParamSpec* /*property*/, gpointer self) {
    state().hasAccuracy(static_cast<Client*>(self)->hasAccuracy());
  }
  static void locationUpdated(GClueClient* /*client*/, const gchar* /*before*/, const gchar* path, gpointer data) {
    auto* const self = static_cast<Client*>(data);
    try {
      gclue_location_proxy_new(self->connection_.get(), G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS, kService, path,
                               self->cancellable_.get(), answered, kept(self->then(&Client::hasLocation)));
    } catch (...) {  // none may reach GLib
      self->end();
    }
  }

  void stopTimer() {
    if (timer_ == nullptr) return;
    g_source_destroy(timer_);
    g_source_unref(timer_);
    timer_ = nullptr;
  }

  // The daemon ends what a connection that is closed has asked for.
  void end(std::int32_t status = platform::kCLAuthorizationStatusNotDetermined) {
    if (std::exchange(hasEnded_, true)) return;
    const auto self = std::exchange(current(), nullptr);
    stopTimer();
    const auto ignore = [this](gpointer object) {
      if (object != nullptr) g_signal_handlers_disconnect_by_data(object, this);
    };
    ignore(client_.get());
    ignore(manager_.get());
    ignore(connection_.get());
    g_cancellable_cancel(cancellable_.get());
    if (connection_) g_dbus_connection_close(connection_.get(), nullptr, nullptr, nullptr);
    state().ended(status);
  }

  const std::string desktopId_;
  const std::chrono::milliseconds limit_;
  bool hasEnded_ = false;
  Ref<GCancellable> cancellable_;
  GSource* timer_ = nullptr;
  Ref<GDBusConnection> connection_;
  Ref<GClueManager> manager_;
  Ref<GClueClient> client_;
};

// Of any platform: what it gives is what the process knows.
class Manager final : public platform::LocationManager {
 public:
  void setDistanceFilter(double /*distance*/) override {}
  void setDesiredAccuracy(double /*accuracy*/) override {}
  void startUpdatingLocation() override {}
  std::optional<Location> location() override { return state().location(); }
};

class DesktopLocation final : public platform::LocationServices {
 public:
  explicit DesktopLocation(LocationOptions options) : options_(std::move(options)) {}

  bool locationServicesEnabled() override { return state().isAllowed() || isOnSystemBus(kService); }

  std::int32_t authorizationStatus() override { return state().authorizationStatus(); }

  std::shared_ptr<platform::LocationManager> makeLocationManager() override { return std::make_shared<Manager>(); }

  void requestAuthorization(StatusHandler answered) override {
    if (state().requestAuthorization(std::move(answered)) && !begins()) {
      state().ended(platform::kCLAuthorizationStatusNotDetermined);
    }
  }

  void requestLocation(LocationHandler answered) override { state().requestLocation(std::move(answered)); }

 private:
  bool begins() {
    try {
      return MainLoop::post([options = options_] { Client::begin(options); });
    } catch (const std::bad_alloc&) {
      return false;
    }
  }

  const LocationOptions options_;
};

}  // namespace

std::shared_ptr<platform::LocationServices> makeDesktopLocation(const LocationOptions& options) {
  return std::make_shared<DesktopLocation>(options);
}

}  // namespace tavlo::linux_platform
