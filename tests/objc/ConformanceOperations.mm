// The operations of the conformance cases through the Objective-C class, each by its selector.
#include <stdexcept>

#include "common/Slot.h"
#import "objc/TavloUtility.h"
#import "platform/apple/Bridge.h"
#import "platform/apple/DeviceFrameworks.h"
#import "platform/apple/ExceptionGuard.h"
#include "request/UrlEncode.h"
#include "tests/conformance/Given.h"
#include "tests/conformance/GivenPlatform.h"
#include "tests/conformance/Operations.h"

@interface ScreenWithAView : NSObject
@end

@implementation ScreenWithAView
- (id)view {
  return self;
}
@end

namespace tavlo::conformance {
namespace {

using apple_platform::objectOf;

// The cases' bundles and images are not the platform's own, so the selector answers nil; what it loaded is in its slot.
std::optional<Value> loadedBundle() {
  if ([::TavloUtility frameworkBundle] != nil) throw std::runtime_error("a bundle that is not the platform's own");
  const auto bundle = std::dynamic_pointer_cast<GivenBundle>(processSlot<platform::Bundle>().load());
  return bundle ? std::optional<Value>(bundle->path()) : std::nullopt;
}

std::optional<Value> loadedImage(bool isVolume) {
  const id image = isVolume ? [::TavloUtility getVolumeImage] : [::TavloUtility getMuteImage];
  if (image != nil) throw std::runtime_error("an image that is not the platform's own");
  const auto loaded = std::dynamic_pointer_cast<const GivenImage>(processSlot<const platform::Image>().load());
  return loaded ? std::optional<Value>(loaded->file()) : std::nullopt;
}

std::optional<Value> truth(BOOL answer) { return Value(answer != NO); }

// The selector of an operation with one object for argument, or none, and an object for answer, or none.
id performed(const std::string& operation, bool hasArgument, id argument) {
  const Class component = [::TavloUtility class];
  NSString* const name = apple_platform::stringOf(operation + (hasArgument ? ":" : ""));
  const SEL selector = NSSelectorFromString(name);
  if (![component respondsToSelector:selector]) throw std::runtime_error("there is no selector " + operation);
  NSMethodSignature* const signature = [component methodSignatureForSelector:selector];
  const id answer = [component performSelector:selector withObject:argument];
  return *[signature methodReturnType] == 'v' ? nil : answer;
}

std::optional<Value> answered(const std::string& operation, const std::optional<Value>& argument) {
  const bool isTrue = argument && argument->ifBoolean() && *argument->ifBoolean();
  if (operation == "frameworkBundle") return loadedBundle();
  if (operation == "getVolumeImage") return loadedImage(true);
  if (operation == "getMuteImage") return loadedImage(false);
  if (operation == "quillmixInstalledOnThisDevice") return truth([::TavloUtility quillmixInstalledOnThisDevice]);
  if (operation == "deleteCachedVideo") return truth([::TavloUtility deleteCachedVideo:objectOf(argument)]);
  if (operation == "getCachedVideoList") {
    return apple_platform::valueOf([::TavloUtility getCachedVideoList:isTrue ? YES : NO]);
  }
  if (operation == "getExportTavloSDKLog") {
    const id screen = argument ? [[[ScreenWithAView alloc] init] autorelease] : nil;
    [::TavloUtility getExportTavloSDKLog:screen];
    return std::nullopt;
  }
  if (operation == "urlEncode") {  // no operation of the class
    const Text encoded = urlEncode(argument ? textOf(&*argument) : std::nullopt);
    return encoded ? std::optional<Value>(*encoded) : std::nullopt;
  }
  const std::string selector = operation + ":";
  const bool hasArgument =
      [[::TavloUtility class] respondsToSelector:NSSelectorFromString(apple_platform::stringOf(selector))];
  return apple_platform::valueOf(performed(operation, hasArgument, objectOf(argument)));
}

}  // namespace

std::optional<Value> call(const std::string& operation, const std::optional<Value>& argument) {
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  std::optional<Value> answer;
  std::string reason;
  NSException* const raised = apple_platform::exceptionRaisedBy([&] { answer = answered(operation, argument); });
  if (raised != nil) reason = apple_platform::textOf([raised reason]).value_or("an exception without a reason");
  [pool drain];
  if (!reason.empty()) throw std::runtime_error(reason);
  return answer;
}

}  // namespace tavlo::conformance
