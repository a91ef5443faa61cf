#include "platform/linux/SystemBus.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "common/Text.h"
#include "platform/linux/GLibCalls.h"
#include "platform/linux/MainLoop.h"

namespace tavlo::linux_platform {
namespace {

constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusObject = "/org/freedesktop/DBus";
constexpr std::chrono::milliseconds kPatience{1000};

// Asked of the bus by one thread, awaited by another.
class Inquiry : public std::enable_shared_from_this<Inquiry> {
 public:
  // Without an address, of the system's bus.
  Inquiry(Text address, std::string service) : address_(std::move(address)), service_(std::move(service)) {}

  void begin() {
    cancellable_.reset(g_cancellable_new());
    if (address_) return connectToBus(address_->c_str(), cancellable_.get(), then(&Inquiry::connected));
    connectToSystemBus(cancellable_.get(), then(&Inquiry::connected));
  }

  // A bus that hangs would keep the connection for ever.
  void giveUp() { g_cancellable_cancel(cancellable_.get()); }

  // Absent: none has come in time.
  [[nodiscard]] std::optional<bool> awaitAnswer() {
    std::unique_lock lock(mutex_);
    answers_.wait_for(lock, kPatience, [this] { return answer_.has_value(); });
    return answer_;
  }

  void answer(bool yes) {
    const std::lock_guard lock(mutex_);
    answer_ = yes;
    answers_.notify_all();
  }

 private:
  using Step = void (Inquiry::*)(GAsyncResult* result);

  Answer then(Step step) {
    return [self = shared_from_this(), step](GAsyncResult* result) { ((*self).*step)(result); };
  }

  void call(const char* method, GVariant* arguments, const char* answerType, Step step) {
    g_dbus_connection_call(connection_.get(), kBus, kBusObject, kBus, method, arguments, G_VARIANT_TYPE(answerType),
                           G_DBUS_CALL_FLAGS_NONE, static_cast<int>(kPatience.count()), nullptr, answered,
                           kept(then(step)));
  }

  [[nodiscard]] Variant resultOf(GAsyncResult* result) {
    return Variant(g_dbus_connection_call_finish(connection_.get(), result, nullptr));
  }

  void connected(GAsyncResult* result) {
    connection_.reset(g_dbus_connection_new_for_address_finish(result, nullptr));
    if (!connection_) return answer(false);
    call("NameHasOwner", g_variant_new("(s)", service_.c_str()), "(b)", &Inquiry::hasOwner);
  }

  void hasOwner(GAsyncResult* result) {
    const Variant reply = resultOf(result);
    gboolean owned = FALSE;
    if (reply) g_variant_get(reply.get(), "(b)", &owned);
    if (owned != FALSE) return finish(true);
    call("ListActivatableNames", nullptr, "(as)", &Inquiry::hasNames);
  }

  void hasNames(GAsyncResult* result) {
    const Variant reply = resultOf(result);
    if (!reply) return finish(false);
    const Variant names(g_variant_get_child_value(reply.get(), 0));
    const std::unique_ptr<const gchar*, Free> list(g_variant_get_strv(names.get(), nullptr));
    finish(g_strv_contains(list.get(), service_.c_str()) != FALSE);
  }

  void finish(bool yes) {
    g_dbus_connection_close(connection_.get(), nullptr, nullptr, nullptr);
    answer(yes);
  }

  const Text address_;
  const std::string service_;
  Ref<GCancellable> cancellable_;
  Ref<GDBusConnection> connection_;
  std::mutex mutex_;
  std::condition_variable answers_;
  std::optional<bool> answer_;
};

bool isOn(Text address, const std::string& service) {
  if (MainLoop::isCurrent()) return false;
  const auto inquiry = std::make_shared<Inquiry>(std::move(address), service);
  if (!MainLoop::post([inquiry] { inquiry->begin(); })) return false;
  const std::optional<bool> answer = inquiry->awaitAnswer();
  if (!answer) MainLoop::post([inquiry] { inquiry->giveUp(); });
  return answer.value_or(false);
}

}  // namespace

bool isOnSystemBus(const std::string& service) { return isOn(std::nullopt, service); }

bool isOnBus(const std::string& address, const std::string& service) { return isOn(address, service); }

}  // namespace tavlo::linux_platform
