#include "platform/linux/GLibCalls.h"

#include <utility>

namespace tavlo::linux_platform {

gpointer kept(Answer answer) { return new Answer(std::move(answer)); }

void answered(GObject* /*source*/, GAsyncResult* result, gpointer data) {
  const std::unique_ptr<Answer> answer(static_cast<Answer*>(data));
  try {
    (*answer)(result);
  } catch (...) {  // there is no one to tell
  }
}

std::string Failure::message() const {
  if (!error_) return "";
  g_dbus_error_strip_remote_error(error_);
  return error_->message;
}

void connectToBus(const char* address, GCancellable* cancellable, Answer answer) {
  const int flags = G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION;
  g_dbus_connection_new_for_address(address, static_cast<GDBusConnectionFlags>(flags), nullptr, cancellable, answered,
                                    kept(std::move(answer)));
}

void connectToSystemBus(GCancellable* cancellable, Answer answer) {
  const Chars address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
  connectToBus(address ? address.get() : "", cancellable, std::move(answer));
}

}  // namespace tavlo::linux_platform
