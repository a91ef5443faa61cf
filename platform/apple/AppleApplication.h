// The app probe by UIApplication, the open-in menu by UIDocumentInteractionController.
//
// Values   the strict grammar decides what is a URL, whatever the system's version takes for one.
// Absent   without UIKit nothing can be opened, and no menu is shown.
// Threads  as UIKit says: the main thread.
//
// Not run here with UIKit itself: stand-in classes of the tests take its place.
#pragma once

#include <memory>
#include <string_view>

#include "platform/Application.h"
#import "platform/apple/Retained.h"

namespace tavlo::apple_platform {

class AppleView final : public platform::View {
 public:
  explicit AppleView(id view) : view_(view) {}
  [[nodiscard]] id object() const { return view_.get(); }

 private:
  Retained view_;
};

// A UIViewController.
class AppleViewController final : public platform::ViewController {
 public:
  explicit AppleViewController(id controller) : controller_(controller) {}
  [[nodiscard]] std::shared_ptr<platform::View> view() override;

 private:
  Retained controller_;
};

class AppleApplication final : public platform::Application {
 public:
  [[nodiscard]] bool canOpenURL(std::string_view url) override;
  [[nodiscard]] std::shared_ptr<platform::DocumentInteractionController> interactionControllerWithURL(
      std::string_view url) override;
};

}  // namespace tavlo::apple_platform
