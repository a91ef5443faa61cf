// What calls of GLib need: owners of what it hands out, and callbacks that no exception leaves.
//
// Threads  what is asynchronous belongs to the thread of MainLoop.h; the owners to any one thread.
#pragma once

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <string>

namespace tavlo::linux_platform {

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <class Object>
using Ref = std::unique_ptr<Object, Unref>;

struct Free {
  void operator()(gpointer memory) const { g_free(memory); }
};
using Chars = std::unique_ptr<gchar, Free>;

struct UnrefVariant {
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, UnrefVariant>;

// The failure of a call, if it failed.
class Failure {
 public:
  Failure() = default;
  Failure(const Failure&) = delete;
  Failure& operator=(const Failure&) = delete;
  ~Failure() { g_clear_error(&error_); }

  [[nodiscard]] GError** out() { return &error_; }
  [[nodiscard]] bool isRefusal() const { return g_error_matches(error_, G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED); }
  [[nodiscard]] std::string message() const;

 private:
  GError* error_ = nullptr;
};

// Everything is started with a pointer to what its answer, which always comes, is for.
using Answer = std::function<void(GAsyncResult* result)>;

// `answered` is the callback of an asynchronous call, `kept()` its data: the answer, which runs once. What it throws
// ends there.
[[nodiscard]] gpointer kept(Answer answer);
void answered(GObject* source, GAsyncResult* result, gpointer data);

// A connection of its own (the one that all of a process share ends the process when the bus ends). To be finished
// with g_dbus_connection_new_for_address_finish().
void connectToBus(const char* address, GCancellable* cancellable, Answer answer);
void connectToSystemBus(GCancellable* cancellable, Answer answer);

}  // namespace tavlo::linux_platform
