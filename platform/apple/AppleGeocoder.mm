#include <atomic>
#include <memory>
#include <utility>

#import "platform/apple/AppleLocation.h"
#import "platform/apple/Bridge.h"
#import "platform/apple/DeviceFrameworks.h"
#include "platform/apple/ErrorGuard.h"
#import "platform/apple/ExceptionGuard.h"
#import "platform/apple/Retained.h"

namespace tavlo::apple_platform {
namespace {

using platform::GeocodeCompletionHandler;
using platform::Placemark;
using platform::Placemarks;

Placemark placemarkOf(CLPlacemark* placemark) {
  return {.ISOcountryCode = textOf([placemark ISOcountryCode]),
          .country = textOf([placemark country]),
          .postalCode = textOf([placemark postalCode]),
          .administrativeArea = textOf([placemark administrativeArea]),
          .locality = textOf([placemark locality]),
          .subLocality = textOf([placemark subLocality]),
          .thoroughfare = textOf([placemark thoroughfare])};
}

// Nobody asks for more than the first, so the others are not read.
std::optional<Placemarks> placemarksOf(NSArray* found) {
  if (found == nil) return std::nullopt;
  Placemarks placemarks;
  if ([found count] != 0) placemarks.push_back(placemarkOf([found objectAtIndex:0]));
  return placemarks;
}

// On this platform a list without placemarks raises; nothing here catches it.
void deliver(const GeocodeCompletionHandler& handler, NSArray* found, NSError* error) {
  const Text description = textOf([error description]);
  const Text thrown = errorThrownBy([&] { handler(placemarksOf(found), description); });
  if (thrown) [NSException raise:NSRangeException format:@"%@", stringOf(*thrown)];
}

}  // namespace
}  // namespace tavlo::apple_platform

#if !__has_feature(blocks)

// An object that is laid out like a block, as there are none with this compiler: whoever has it calls `invoke`.
@interface TavloGeocoderAnswer : NSObject {
 @public
  int flags;
  int reserved;
  void (*invoke)(TavloGeocoderAnswer* self, NSArray* placemarks, NSError* error);
  void* handler;  // a GeocodeCompletionHandler, whose type this compiler cannot encode
  id geocoder;    // which stays until it has answered
}
@end

@implementation TavloGeocoderAnswer
- (id)copyWithZone:(NSZone*)zone {
  static_cast<void>(zone);
  return [self retain];
}
- (void)dealloc {
  delete static_cast<tavlo::platform::GeocodeCompletionHandler*>(handler);
  [geocoder release];
  [super dealloc];
}
@end

#endif

namespace tavlo::apple_platform {
namespace {

#if __has_feature(blocks)

CLGeocodeCompletionHandler answerOf(GeocodeCompletionHandler handler, CLGeocoder* geocoder) {
  const Retained kept(geocoder);
  const CLGeocodeCompletionHandler answer = ^(NSArray* placemarks, NSError* error) {
    static_cast<void>(kept.get());  // the geocoder stays until it has answered
    deliver(handler, placemarks, error);
  };
#if __has_feature(objc_arc)
  return answer;
#else
  return [[answer copy] autorelease];
#endif
}

#else

id answerOf(GeocodeCompletionHandler handler, CLGeocoder* geocoder) {
  TavloGeocoderAnswer* const answer = [[[TavloGeocoderAnswer alloc] init] autorelease];
  answer->invoke = [](TavloGeocoderAnswer* self, NSArray* placemarks, NSError* error) {
    deliver(*static_cast<GeocodeCompletionHandler*>(self->handler), placemarks, error);
  };
  answer->handler = new GeocodeCompletionHandler(std::move(handler));
  answer->geocoder = [geocoder retain];
  return answer;
}

#endif

class AppleGeocoder final : public platform::Geocoder {
 public:
  void reverseGeocodeLocation(const std::optional<platform::Location>& location,
                              GeocodeCompletionHandler completionHandler) override {
    CLGeocoder* const geocoder = autoreleased([[NSClassFromString(@"CLGeocoder") alloc] init]);
    if (geocoder == nil) return completionHandler(std::nullopt, "there is no geocoder");
    CLLocation* const place = location ? locationAt(location->coordinate) : nil;
    const auto isAnswered = std::make_shared<std::atomic<bool>>(false);
    const GeocodeCompletionHandler once = [=](const std::optional<Placemarks>& placemarks, const Text& error) {
      if (!isAnswered->exchange(true)) completionHandler(placemarks, error);
    };
    NSException* const raised =
        exceptionRaisedBy([&] { [geocoder reverseGeocodeLocation:place completionHandler:answerOf(once, geocoder)]; });
    if (raised == nil) return;
    if (*isAnswered) [raised raise];  // by the handler, in an answer that came at once
    once(std::nullopt, textOf([raised reason]).value_or("the geocoder refuses"));
  }
};

}  // namespace

std::shared_ptr<platform::Geocoder> makeAppleGeocoder() { return std::make_shared<AppleGeocoder>(); }

}  // namespace tavlo::apple_platform
