// The portal's own interface rather than a library over it: those take a parent window only from a toolkit's window
// object, and share the process-wide connection, whose loss ends the process.
#include <gio/gunixfdlist.h>

#include <condition_variable>
#include <mutex>
#include <utility>

#include "common/Text.h"
#include "platform/linux/DesktopPortal.h"
#include "platform/linux/GLibCalls.h"
#include "platform/linux/MainLoop.h"
#include "platform/linux/SystemBus.h"

namespace tavlo::linux_platform {
namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kRequest = "org.freedesktop.portal.Request";
constexpr int kCloseTimeout = 1'000;  // milliseconds

enum Response : guint32 { kDone = 0, kCancelled = 1 };

Text sessionBusAddress() {
  Syscalls& system = Syscalls::real();
  if (auto address = system.environment("DBUS_SESSION_BUS_ADDRESS"); address && !address->empty()) return address;
  const auto folder = system.environment("XDG_RUNTIME_DIR");
  if (!folder || folder->empty()) return std::nullopt;
  const Chars path(g_dbus_address_escape_value((*folder + "/bus").c_str()));
  return std::string("unix:path=") + path.get();
}

// Once start() has run, all that has no lock of its own belongs to the loop's thread.
class Menu final : public PortalMenu, public std::enable_shared_from_this<Menu> {
 public:
  Menu(FileDescriptor file, std::string window, std::chrono::milliseconds patience, MenuHandler handler)
      : file_(std::move(file)), window_(std::move(window)), patience_(patience), handler_(std::move(handler)) {}

  bool post(void (Menu::*step)()) {
    return MainLoop::post([self = shared_from_this(), step] { (self.get()->*step)(); });
  }

  void start() {
    const Text address = sessionBusAddress();
    if (!address) return fail("there is no session bus: DBUS_SESSION_BUS_ADDRESS and XDG_RUNTIME_DIR are not set");
    timer_ = g_timeout_source_new(static_cast<guint>(patience_.count()));
    g_source_set_callback(timer_, onTimeout, holder(), release);
    g_source_attach(timer_, g_main_context_get_thread_default());
    connectToBus(address->c_str(), cancellable_.get(), then(&Menu::connected));
  }

  std::optional<std::string> awaitRefusal() override {
    std::unique_lock lock(mutex_);
    if (MainLoop::isCurrent() && !answer_) answer_ = Verdict();
    if (!answered_.wait_for(lock, patience_, [this] { return answer_.has_value(); })) {
      answer_ = Verdict(kNoAnswer);
      lock.unlock();
      post(&Menu::close);
      return kNoAnswer;
    }
    return *answer_;
  }

  void withdraw() noexcept override {
    try {
      post(&Menu::takeBack);
    } catch (const std::bad_alloc&) {  // the menu stays; that is all that is lost
    }
  }

  void refuse(const std::string& reason) { static_cast<void>(answer(reason)); }

 private:
  // Why the menu is not shown; none for one that is.
  using Verdict = std::optional<std::string>;
  using Holder = std::shared_ptr<Menu>;

  static constexpr const char* kNoAnswer = "the desktop portal does not answer";

  Answer then(void (Menu::*step)(GAsyncResult* result)) {
    return [self = shared_from_this(), step](GAsyncResult* result) { (self.get()->*step)(result); };
  }

  // What a source or a subscription keeps of this object until it is taken out.
  [[nodiscard]] gpointer holder() { return new Holder(shared_from_this()); }
  static void release(gpointer holder) { delete static_cast<Holder*>(holder); }
  static void releaseOf(gpointer holder, GClosure*) { release(holder); }

  static gboolean onTimeout(gpointer holder) {
    const Holder menu = *static_cast<Holder*>(holder);
    menu->fail(kNoAnswer);
    return G_SOURCE_REMOVE;
  }

  void connected(GAsyncResult* result) {
    Failure failure;
    Ref<GDBusConnection> connection(g_dbus_connection_new_for_address_finish(result, failure.out()));
    if (!connection) return fail("the session bus cannot be reached: " + failure.message());
    if (ended_) return;
    connection_ = std::move(connection);
    listen();
    ask();
  }

  void listen() {
    g_signal_connect_data(connection_.get(), "closed", G_CALLBACK(onClosed), holder(), releaseOf, GConnectFlags{});
    signals_[0] = g_dbus_connection_signal_subscribe(connection_.get(), kPortal, kRequest, "Response", nullptr, nullptr,
                                                     G_DBUS_SIGNAL_FLAGS_NONE, onResponse, holder(), release);
    signals_[1] = g_dbus_connection_signal_subscribe(connection_.get(), "org.freedesktop.DBus", "org.freedesktop.DBus",
                                                     "NameOwnerChanged", "/org/freedesktop/DBus", kPortal,
                                                     G_DBUS_SIGNAL_FLAGS_NONE, onOwnerChanged, holder(), release);
  }

  void ask() {
    Failure failure;
    const Ref<GUnixFDList> files(g_unix_fd_list_new());
    const int index = g_unix_fd_list_append(files.get(), file_.get(), failure.out());
    if (index < 0) return fail("the file cannot be handed over: " + failure.message());
    file_ = {};
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&options, "{sv}", "ask", g_variant_new_boolean(TRUE));
    g_variant_builder_add(&options, "{sv}", "writable", g_variant_new_boolean(FALSE));
    g_dbus_connection_call_with_unix_fd_list(connection_.get(), kPortal, kPortalPath, "org.freedesktop.portal.OpenURI",
                                             "OpenFile", g_variant_new("(sha{sv})", window_.c_str(), index, &options),
                                             G_VARIANT_TYPE("(o)"), G_DBUS_CALL_FLAGS_NONE, G_MAXINT, files.get(),
                                             cancellable_.get(), answered, kept(then(&Menu::asked)));
  }

  void asked(GAsyncResult* result) {
    if (ended_) return;
    Failure failure;
    const Variant reply(
        g_dbus_connection_call_with_unix_fd_list_finish(connection_.get(), nullptr, result, failure.out()));
    if (!reply) return fail("the desktop portal shows no menu: " + failure.message());
    const char* request = nullptr;
    g_variant_get(reply.get(), "(&o)", &request);
    request_ = request;
    show();
  }

  static void onResponse(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* parameters,
                         gpointer holder) {
    const Holder menu = *static_cast<Holder*>(holder);
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ua{sv})"))) return;
    guint32 response = 0;
    g_variant_get(parameters, "(ua{sv})", &response, nullptr);
    menu->show();
    if (response == kDone) return menu->end(MenuOutcome::opened, "");
    if (response == kCancelled) return menu->end(MenuOutcome::cancelled, "no app was chosen");
    menu->end(MenuOutcome::failed, "the desktop portal could not show its menu, or no app could open the file");
  }

  static void onOwnerChanged(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* parameters,
                             gpointer holder) {
    const Holder menu = *static_cast<Holder*>(holder);
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sss)"))) return;
    const char* before = nullptr;
    g_variant_get(parameters, "(&s&s&s)", nullptr, &before, nullptr);
    if (*before != '\0') menu->fail("the desktop portal is gone");
  }

  static void onClosed(GDBusConnection*, gboolean, GError*, gpointer holder) {
    const Holder menu = *static_cast<Holder*>(holder);
    menu->fail("the session bus is gone");
  }

  // False for a menu that has an answer already.
  bool answer(Verdict verdict) {
    const std::lock_guard lock(mutex_);
    if (answer_) return false;
    answer_ = std::move(verdict);
    answered_.notify_all();
    return true;
  }

  [[nodiscard]] bool wasShown() {
    const std::lock_guard lock(mutex_);
    return answer_ && !*answer_;
  }

  void show() {
    if (ended_) return;
    stopTimer();
    static_cast<void>(answer(std::nullopt));
  }

  void fail(const std::string& reason) {
    if (ended_) return;
    if (answer(reason)) return close();
    end(MenuOutcome::failed, reason);
  }

  void takeBack() {
    if (ended_) return;
    if (answer("the menu was taken back")) return close();
    end(MenuOutcome::cancelled, "the menu was taken back");
  }

  // The handler is called by a task of its own, with nothing of GLib below it.
  void end(MenuOutcome outcome, const std::string& explanation) {
    if (ended_) return;
    const bool tells = wasShown() && handler_;
    close();
    if (tells) MainLoop::post([handler = handler_, outcome, explanation] { handler(outcome, explanation); });
  }

  // The portal takes a menu from the screen whose request is closed. That of a menu that has ended is none any more.
  void close() {
    if (std::exchange(ended_, true)) return;
    stopTimer();
    g_cancellable_cancel(cancellable_.get());
    if (!connection_) return;
    g_signal_handlers_disconnect_matched(connection_.get(), G_SIGNAL_MATCH_FUNC, 0, 0, nullptr,
                                         reinterpret_cast<gpointer>(onClosed), nullptr);
    for (const guint signal : signals_) g_dbus_connection_signal_unsubscribe(connection_.get(), signal);
    const Ref<GDBusConnection> connection = std::move(connection_);
    if (request_.empty()) return g_dbus_connection_close(connection.get(), nullptr, nullptr, nullptr);
    g_dbus_connection_call(
        connection.get(), kPortal, request_.c_str(), kRequest, "Close", nullptr, nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START, kCloseTimeout, nullptr,
        [](GObject* closed, GAsyncResult*, gpointer) {
          g_dbus_connection_close(G_DBUS_CONNECTION(closed), nullptr, nullptr, nullptr);
        },
        nullptr);
  }

  void stopTimer() {
    if (!timer_) return;
    g_source_destroy(timer_);
    g_source_unref(std::exchange(timer_, nullptr));
  }

  FileDescriptor file_;
  const std::string window_;
  const std::chrono::milliseconds patience_;
  const MenuHandler handler_;
  const Ref<GCancellable> cancellable_{g_cancellable_new()};
  GSource* timer_ = nullptr;
  Ref<GDBusConnection> connection_;
  guint signals_[2] = {};
  std::string request_;
  bool ended_ = false;

  std::mutex mutex_;
  std::condition_variable answered_;
  std::optional<Verdict> answer_;
};

}  // namespace

bool hasHandlerForScheme(const std::string& scheme) {
  return Ref<GAppInfo>(g_app_info_get_default_for_uri_scheme(scheme.c_str())) != nullptr;
}

bool isPortalThere() {
  const Text address = sessionBusAddress();
  return address && isOnBus(*address, kPortal);
}

std::shared_ptr<PortalMenu> openInMenu(FileDescriptor file, const std::string& parentWindow,
                                       std::chrono::milliseconds patience, const MenuHandler& handler) {
  auto menu = std::make_shared<Menu>(std::move(file), parentWindow, patience, handler);
  if (!menu->post(&Menu::start)) menu->refuse("the process is about to exit");
  return menu;
}

}  // namespace tavlo::linux_platform
