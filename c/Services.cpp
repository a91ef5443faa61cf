#include "c/Services.h"

#include <functional>

namespace tavlo::c {
namespace {

using platform::FileResult;

constexpr const char* kNoDescription = "the host's file manager failed";

using Names = Added<std::string, tavlo_names>;
using Task = std::function<void()>;

template <class Callback, class... Arguments>
FileResult resultOf(const Callbacks<tavlo_file_manager>& callbacks, Callback callback, Arguments... arguments) {
  Answer error;
  const bool done = callbacks.call(callback, arguments..., error.handle());
  return done ? FileResult::success() : FileResult::failure(error.taken().value_or(kNoDescription));
}

class HostLocationManager final : public platform::LocationManager {
 public:
  explicit HostLocationManager(std::shared_ptr<HostLocation> services) : services_(std::move(services)) {}
  void setDistanceFilter(double) override {}
  void setDesiredAccuracy(double) override {}
  void startUpdatingLocation() override { services_->callbacks.call(&tavlo_location_services::startUpdatingLocation); }
  std::optional<platform::Location> location() override { return services_->location(); }

 private:
  const std::shared_ptr<HostLocation> services_;
};

class HostMenu final : public platform::DocumentInteractionController {
 public:
  HostMenu(std::shared_ptr<HostApplication> application, std::string_view url)
      : application_(std::move(application)), url_(url) {}
  bool presentOpenInMenuFromRect(const platform::Rect&, const std::shared_ptr<platform::View>& inView,
                                 bool animated) override {
    const Text window = inView ? inView->windowHandle() : std::nullopt;
    return application_->callbacks.call(&tavlo_application::presentOpenInMenu, borrowed(std::string_view(url_)),
                                        borrowed(window), animated);
  }

 private:
  const std::shared_ptr<HostApplication> application_;
  const std::string url_;
};

}  // namespace

Text HostFiles::documentDirectory() { return answerOf(callbacks, &tavlo_file_manager::documentDirectory); }

platform::Existence HostFiles::fileExistsAtPathIsDirectory(const Text& path) {
  switch (callbacks.call(&tavlo_file_manager::fileExistsAtPath, borrowed(path))) {
    case TAVLO_EXISTENCE_FILE: return platform::Existence::file;
    case TAVLO_EXISTENCE_DIRECTORY: return platform::Existence::directory;
    default: return platform::Existence::missing;
  }
}

FileResult HostFiles::removeItemAtPath(const Text& path, platform::Removal removal) {
  return resultOf(callbacks, &tavlo_file_manager::removeItemAtPath, borrowed(path),
                  removal == platform::Removal::fileOnly);
}

FileResult HostFiles::createDirectoryAtPath(const Text& path) {
  return resultOf(callbacks, &tavlo_file_manager::createDirectoryAtPath, borrowed(path));
}

std::optional<std::vector<std::string>> HostFiles::contentsOfDirectoryAtPath(const Text& path) {
  Names names;
  const bool done = callbacks.call(&tavlo_file_manager::contentsOfDirectoryAtPath, borrowed(path), names.handle());
  return done ? std::optional(names.taken()) : std::nullopt;
}

std::optional<std::string> HostFiles::dataWithContentsOfFile(const Text& path) {
  return answerOf(callbacks, &tavlo_file_manager::dataWithContentsOfFile, borrowed(path));
}

FileResult HostFiles::writeToFileAtomically(std::string_view bytes, const Text& path, platform::Durable durable) {
  return resultOf(callbacks, &tavlo_file_manager::writeToFileAtomically, borrowed(bytes), borrowed(path),
                  durable == platform::Durable::name);
}

std::optional<Value> HostDefaults::objectForKey(std::string_view key) {
  tavlo_value* const answered = callbacks.call(&tavlo_user_defaults::objectForKey, borrowed(key));
  std::optional<Value> value = optionalValue(answered);
  tavlo_value_free(answered);
  return value;
}

void HostQueue::dispatchAsync(std::function<void()> task) {
  if (!callbacks.has(&tavlo_background_queue::dispatchAsync)) return;
  callbacks.call(&tavlo_background_queue::dispatchAsync, reinterpret_cast<tavlo_task*>(new Task(std::move(task))));
}

std::shared_ptr<platform::LocationManager> HostLocation::makeLocationManager() {
  return std::make_shared<HostLocationManager>(shared_from_this());
}

std::optional<platform::Location> HostLocation::location() const {
  tavlo_coordinate newest{.latitude = 0, .longitude = 0};
  if (!callbacks.call(&tavlo_location_services::location, &newest)) return std::nullopt;
  return platform::Location{{.latitude = newest.latitude, .longitude = newest.longitude}};
}

std::shared_ptr<platform::DocumentInteractionController> HostApplication::interactionControllerWithURL(
    std::string_view url) {
  return std::make_shared<HostMenu>(shared_from_this(), url);
}

}  // namespace tavlo::c

using tavlo::c::guarded;
using tavlo::c::Names;
using tavlo::c::require;
using tavlo::c::Task;
using tavlo::c::viewOf;

tavlo_status tavlo_names_add(tavlo_names* names, tavlo_text name) {
  return guarded(__func__, [=] {
    require(names, "the names");
    Names::of(names).add([=] { return std::string(viewOf(name, "the name")); });
  });
}

tavlo_status tavlo_task_run(tavlo_task* task) {
  return guarded(__func__, [=] {
    require(task, "the task");
    const std::unique_ptr<Task> owned(reinterpret_cast<Task*>(task));
    (*owned)();
  });
}
void tavlo_task_drop(tavlo_task* task) { delete reinterpret_cast<Task*>(task); }
