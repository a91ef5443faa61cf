#import "platform/apple/AppleApplication.h"

#include "common/UrlGrammar.h"
#import "platform/apple/Bridge.h"
#import "platform/apple/DeviceFrameworks.h"

namespace tavlo::apple_platform {
namespace {

NSURL* urlOf(std::string_view text) { return parseUrlReference(text) ? [NSURL URLWithString:stringOf(text)] : nil; }

class AppleInteractionController final : public platform::DocumentInteractionController {
 public:
  explicit AppleInteractionController(id controller) : controller_(controller) {}

  bool presentOpenInMenuFromRect(const platform::Rect& rect, const std::shared_ptr<platform::View>& inView,
                                 bool animated) override {
    UIDocumentInteractionController* const controller = controller_.get();
    const auto* const view = dynamic_cast<const AppleView*>(inView.get());
    CGRect from;
    from.origin.x = rect.x;
    from.origin.y = rect.y;
    from.size.width = rect.width;
    from.size.height = rect.height;
    return [controller presentOpenInMenuFromRect:from inView:view ? view->object() : nil animated:animated ? YES : NO];
  }

 private:
  Retained controller_;
};

}  // namespace

std::shared_ptr<platform::View> AppleViewController::view() {
  const id view = [static_cast<UIViewController*>(controller_.get()) view];
  return view == nil ? nullptr : std::make_shared<AppleView>(view);
}

bool AppleApplication::canOpenURL(std::string_view url) {
  NSURL* const address = urlOf(url);
  const Class applications = NSClassFromString(@"UIApplication");
  return address != nil && [[applications sharedApplication] canOpenURL:address];
}

std::shared_ptr<platform::DocumentInteractionController> AppleApplication::interactionControllerWithURL(
    std::string_view url) {
  const Class controllers = NSClassFromString(@"UIDocumentInteractionController");
  return std::make_shared<AppleInteractionController>([controllers interactionControllerWithURL:urlOf(url)]);
}

}  // namespace tavlo::apple_platform
