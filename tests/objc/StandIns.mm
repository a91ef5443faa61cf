#import "tests/objc/StandIns.h"

#include <cstdarg>
#include <string>

#include "tests/objc/Calls.h"

Device& device() {
  static Device device{};
  return device;
}

void forgetDevice() {
  [device().asked release];
  [device().given release];
  device() = {};
  device().isEnabled = YES;
  device().status = 3;
}

namespace {

void note(NSString* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  NSString* const call = [[[NSString alloc] initWithFormat:format arguments:arguments] autorelease];
  va_end(arguments);
  tavlo::test::calls().note([call UTF8String]);
}

}  // namespace

@implementation UIImage
+ (UIImage*)imageWithContentsOfFile:(NSString*)path {
  note(@"UIImage imageWithContentsOfFile:%@", path);
  if (![[NSFileManager defaultManager] fileExistsAtPath:path]) return nil;
  return [[[UIImage alloc] init] autorelease];
}
- (CGSize)size {
  return NSMakeSize(12, 10);
}
- (CGFloat)scale {
  return 2;
}
- (void)dealloc {
  note(@"UIImage dealloc");
  [super dealloc];
}
@end

@implementation UIView
- (NSString*)description {
  return @"the view";
}
@end

@interface ScreenOfAnApp : UIViewController {
 @public
  UIView* shown;
}
@end

@implementation UIViewController
- (UIView*)view {
  return nil;
}
@end

@implementation ScreenOfAnApp
- (UIView*)view {
  note(@"view");
  return shown;
}
@end

@implementation UIApplication
+ (UIApplication*)sharedApplication {
  note(@"UIApplication sharedApplication");
  static UIApplication* const shared = [[UIApplication alloc] init];
  return shared;
}
- (BOOL)canOpenURL:(NSURL*)url {
  note(@"canOpenURL:%@", [url absoluteString]);
  return device().opens;
}
@end

@implementation UIDocumentInteractionController
+ (UIDocumentInteractionController*)interactionControllerWithURL:(NSURL*)url {
  note(@"interactionControllerWithURL:%@", [url absoluteString]);
  return [[[UIDocumentInteractionController alloc] init] autorelease];
}
- (BOOL)presentOpenInMenuFromRect:(CGRect)rect inView:(UIView*)view animated:(BOOL)animated {
  note(@"presentOpenInMenuFromRect:%g,%g,%g,%g inView:%@ animated:%d", rect.origin.x, rect.origin.y, rect.size.width,
       rect.size.height, view, animated);
  return NO;
}
- (void)dealloc {
  note(@"UIDocumentInteractionController dealloc");
  [super dealloc];
}
@end

@interface FixedPlace : CLLocation {
 @public
  CLLocationCoordinate2D place;
}
@end

@implementation FixedPlace
- (CLLocationCoordinate2D)coordinate {
  return place;
}
@end

@implementation CLLocation
- (id)initWithLatitude:(double)latitude longitude:(double)longitude {
  FixedPlace* const fixed = [[FixedPlace alloc] init];
  fixed->place = {latitude, longitude};
  [self release];
  return fixed;
}
- (CLLocationCoordinate2D)coordinate {
  return {};
}
@end

@implementation CLLocationManager
+ (BOOL)locationServicesEnabled {
  note(@"locationServicesEnabled");
  return device().isEnabled;
}
+ (int)authorizationStatus {
  note(@"authorizationStatus");
  return device().status;
}
- (id)init {
  note(@"CLLocationManager init");
  return [super init];
}
- (void)setDistanceFilter:(double)distance {
  note(@"setDistanceFilter:%g", distance);
}
- (void)setDesiredAccuracy:(double)accuracy {
  note(@"setDesiredAccuracy:%g", accuracy);
}
- (void)startUpdatingLocation {
  note(@"startUpdatingLocation");
}
- (CLLocation*)location {
  note(@"location");
  [device().given release];
  device().given = nil;
  if (!device().hasFix) return nil;
  device().given = [[CLLocation alloc] initWithLatitude:device().fix.latitude longitude:device().fix.longitude];
  return device().given;
}
- (void)dealloc {
  note(@"CLLocationManager dealloc");
  [super dealloc];
}
@end

@interface PlacemarkOfFields : CLPlacemark {
 @public
  NSDictionary* fields;
}
@end

@implementation CLPlacemark
- (NSString*)field:(SEL)name {
  note(@"placemark.%@", NSStringFromSelector(name));
  return [static_cast<PlacemarkOfFields*>(self)->fields objectForKey:NSStringFromSelector(name)];
}
- (NSString*)ISOcountryCode {
  return [self field:_cmd];
}
- (NSString*)country {
  return [self field:_cmd];
}
- (NSString*)postalCode {
  return [self field:_cmd];
}
- (NSString*)administrativeArea {
  return [self field:_cmd];
}
- (NSString*)locality {
  return [self field:_cmd];
}
- (NSString*)subLocality {
  return [self field:_cmd];
}
- (NSString*)thoroughfare {
  return [self field:_cmd];
}
@end

@implementation PlacemarkOfFields
- (void)dealloc {
  [fields release];
  [super dealloc];
}
@end

@implementation CLGeocoder
- (id)init {
  note(@"CLGeocoder init");
  return [super init];
}
- (void)reverseGeocodeLocation:(CLLocation*)location completionHandler:(CLGeocodeCompletionHandler)completionHandler {
  const CLLocationCoordinate2D place = location == nil ? CLLocationCoordinate2D{} : [location coordinate];
  note(location == nil ? @"reverseGeocodeLocation:(null) completionHandler"
                       : @"reverseGeocodeLocation:%g,%g completionHandler",
       place.latitude, place.longitude);
  device().isGiven = location == device().given;
  if (device().geocoderRaises) [NSException raise:NSInvalidArgumentException format:@"no location"];
  [device().asked release];
  device().asked = [completionHandler copy];
  if (device().answersAtOnce) answerGeocoder([NSArray array], nil);
}
- (void)dealloc {
  note(@"CLGeocoder dealloc");
  [super dealloc];
}
@end

CLPlacemark* placemark(NSDictionary* fields) {
  PlacemarkOfFields* const made = [[[PlacemarkOfFields alloc] init] autorelease];
  made->fields = [fields retain];
  return made;
}

// A block's function stands behind its class and two integers.
void answerGeocoder(NSArray* placemarks, NSError* error) {
  struct Block {
    Class isa;
    int flags;
    int reserved;
    void (*invoke)(id self, NSArray* placemarks, NSError* error);
  };
  const id asked = device().asked;
  device().asked = nil;
  void* const laidOut = (__bridge void*)asked;
  static_cast<Block*>(laidOut)->invoke(asked, placemarks, error);
  [asked release];
}

UIViewController* screen(UIView* view) {
  ScreenOfAnApp* const screen = [[[ScreenOfAnApp alloc] init] autorelease];
  screen->shown = view;
  return screen;
}
