// The host app as the platform sees it: what other apps can open for it.
//
// Values   URLs as text.
// Absent   no app, no service to ask: false, and a menu that is not shown.
// Threads  any thread, any time, unless the host's views ask for one of their own.
#pragma once

#include <memory>
#include <string_view>

#include "common/Text.h"

namespace tavlo::platform {

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  friend bool operator==(const Rect&, const Rect&) = default;
};

// What the host shows something over. A host makes its own.
class View {
 public:
  View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;
  virtual ~View() = default;

  // The window, as the platform's services name it. On Linux "x11:" and the XID in hexadecimal, or "wayland:"
  // and the exported handle.
  [[nodiscard]] virtual Text windowHandle() const { return std::nullopt; }
};

// A screen of the host's. nullptr for its view is no view.
class ViewController {
 public:
  ViewController() = default;
  ViewController(const ViewController&) = delete;
  ViewController& operator=(const ViewController&) = delete;
  virtual ~ViewController() = default;

  [[nodiscard]] virtual std::shared_ptr<View> view() = 0;
};

// Offers one file to other apps, for as long as it lives. May outlive the platform that made it.
class DocumentInteractionController {
 public:
  DocumentInteractionController() = default;
  DocumentInteractionController(const DocumentInteractionController&) = delete;
  DocumentInteractionController& operator=(const DocumentInteractionController&) = delete;
  virtual ~DocumentInteractionController() = default;

  // Shows the list of apps that can open the file; whether it could be shown. Returns before one is chosen.
  [[nodiscard]] virtual bool presentOpenInMenuFromRect(const Rect& rect, const std::shared_ptr<View>& inView,
                                                       bool animated) = 0;
};

class Application {
 public:
  Application() = default;
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;
  virtual ~Application() = default;

  // Whether an app is installed that handles the URL's scheme. False for a text that is no URL.
  [[nodiscard]] virtual bool canOpenURL(std::string_view url) = 0;

  // For a "file:" URL. Never nullptr.
  [[nodiscard]] virtual std::shared_ptr<DocumentInteractionController> interactionControllerWithURL(
      std::string_view url) = 0;
};

}  // namespace tavlo::platform
