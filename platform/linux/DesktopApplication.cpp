#include "platform/linux/DesktopApplication.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "common/Slot.h"
#include "common/UrlGrammar.h"
#include "platform/linux/DesktopPortal.h"
#include "platform/linux/FileOps.h"

namespace tavlo::linux_platform {
namespace {

std::string lowercase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

Text pathOfFileUrl(std::string_view url) {
  const auto parsed = parseUrlReference(url);
  if (!parsed || !parsed->scheme || lowercase(*parsed->scheme) != "file") return std::nullopt;
  if (parsed->authority && !parsed->authority->empty() && lowercase(*parsed->authority) != "localhost") {
    return std::nullopt;
  }
  std::string path = percentDecoded(parsed->path);
  if (!path.starts_with('/') || path.find('\0') != std::string::npos) return std::nullopt;
  return path;
}

std::string windowOf(const std::shared_ptr<platform::View>& view) {
  const Text handle = view ? view->windowHandle() : std::nullopt;
  const bool isKnown = handle && (handle->starts_with("x11:") || handle->starts_with("wayland:"));
  const auto isPrintable = [](char c) { return c > ' ' && c < '\x7f'; };
  return isKnown && std::ranges::all_of(*handle, isPrintable) ? *handle : "";
}

// Empty where it cannot be read; `why` then tells.
FileDescriptor openForReading(Syscalls& syscalls, const std::string& path, std::string& why) {
  FileDescriptor file = openFile(syscalls, path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  struct stat status {};
  if (!file || uninterrupted([&] { return syscalls.fstat(file.get(), &status); }) != 0) {
    why = std::generic_category().message(errno) + ": " + path;
    return {};
  }
  if (S_ISREG(status.st_mode)) return file;
  why = "no regular file: " + path;
  return {};
}

class Controller final : public platform::DocumentInteractionController {
 public:
  Controller(std::string_view url, MenuHandler handler, std::chrono::milliseconds patience, Syscalls& syscalls)
      : url_(url), path_(pathOfFileUrl(url)), handler_(std::move(handler)), patience_(patience), syscalls_(syscalls) {}
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;
  ~Controller() override { show(nullptr); }

  bool presentOpenInMenuFromRect(const platform::Rect&, const std::shared_ptr<platform::View>& inView, bool) override {
    const auto refusal = refusalOver(windowOf(inView));
    if (refusal && handler_) handler_(MenuOutcome::failed, *refusal);
    return !refusal;
  }

 private:
  // Why no menu is shown.
  std::optional<std::string> refusalOver(const std::string& window) {
    if (!path_) return "no file of this machine has the URL " + url_;
    std::string why;
    FileDescriptor file = openForReading(syscalls_, *path_, why);
    if (!file) return why;
    const auto menu = openInMenu(std::move(file), window, patience_, handler_);
    show(menu);
    return menu->awaitRefusal();
  }

  void show(std::shared_ptr<PortalMenu> menu) {
    if (const auto earlier = shown_.exchange(std::move(menu))) earlier->withdraw();
  }

  const std::string url_;
  const Text path_;
  const MenuHandler handler_;
  const std::chrono::milliseconds patience_;
  Syscalls& syscalls_;
  Slot<PortalMenu> shown_;
};

}  // namespace

DesktopApplication::DesktopApplication(MenuHandler handler, std::chrono::milliseconds patience, Syscalls& syscalls)
    : handler_(std::move(handler)), patience_(patience), syscalls_(syscalls) {}

bool DesktopApplication::canOpenURL(std::string_view url) {
  const auto parsed = parseUrlReference(url);
  return parsed && parsed->scheme && hasHandlerForScheme(lowercase(*parsed->scheme));
}

std::shared_ptr<platform::DocumentInteractionController> DesktopApplication::interactionControllerWithURL(
    std::string_view url) {
  return std::make_shared<Controller>(url, handler_, patience_, syscalls_);
}

}  // namespace tavlo::linux_platform
