#import "tests/objc/SdkClasses.h"

#import "platform/apple/Bridge.h"
#include "request/PackageReads.h"
#include "tests/objc/Calls.h"

Sdk& sdk() {
  static Sdk sdk{};
  return sdk;
}

void forgetSdk() {
  sdk() = {.texts = [NSMutableDictionary dictionary],
           .numbers = [NSMutableDictionary dictionary],
           .day = nil,
           .records = nil,
           .isLimited = NO,
           .reporterRaises = NO};
  static_cast<void>(tavlo::test::calls().take());
}

namespace {

void note(NSString* call) { tavlo::test::calls().note([call UTF8String]); }

id textNamed(NSString* operation) {
  note(operation);
  return [sdk().texts objectForKey:operation];
}

int numberNamed(NSString* operation) {
  note(operation);
  return [[sdk().numbers objectForKey:operation] intValue];
}

}  // namespace

@interface TavloPackage : NSObject
@end

@implementation TavloPackage
+ (id)sharedInstance {
  note(@"TavloPackage sharedInstance");
  static TavloPackage* const shared = [[TavloPackage alloc] init];
  return sdk().texts == nil ? nil : shared;
}
#define READ(name)             \
  -(id)name {                  \
    return textNamed(@ #name); \
  }
TAVLO_PACKAGE_TEXT_READS(READ)
#undef READ
- (BOOL)limitAdTrackingEnabled {
  note(@"limitAdTrackingEnabled");
  return sdk().isLimited;
}
- (int)resolution {
  return numberNamed(@"resolution");
}
- (int)preRoll {
  return numberNamed(@"preRoll");
}
- (void)setLatitude:(NSString*)latitude AndLogitude:(NSString*)longitude {
  note([NSString stringWithFormat:@"setLatitude:%@ AndLogitude:%@", latitude, longitude]);
  [sdk().texts setObject:latitude forKey:@"getLatitude"];
  [sdk().texts setObject:longitude forKey:@"getLongitude"];
}
- (void)setUserAddress:(NSString*)address {
  note([@"setUserAddress:" stringByAppendingString:address]);
  [sdk().texts setObject:address forKey:@"getUserAddress"];
}
@end

@interface TavloUniqueUserHandler : NSObject
@end

@implementation TavloUniqueUserHandler
+ (int)getIsUserNew {
  return numberNamed(@"getIsUserNew");
}
+ (int)getUniqueUserDayValue {
  return numberNamed(@"getUniqueUserDayValue");
}
+ (NSString*)getUniqueUserDay {
  note(@"getUniqueUserDay");
  return sdk().day;
}
+ (int)getUniqueUserWeekValue {
  return numberNamed(@"getUniqueUserWeekValue");
}
+ (int)getNumberOfWeek {
  return numberNamed(@"getNumberOfWeek");
}
+ (int)getUniqueUserMonthValue {
  return numberNamed(@"getUniqueUserMonthValue");
}
+ (int)getNumberOfMonth {
  return numberNamed(@"getNumberOfMonth");
}
@end

@interface NetworkTrackerDetail : NSObject {
 @public
  id networkID;
  id event;
  id count;
}
@end

@implementation NetworkTrackerDetail
- (void)dealloc {
  [networkID release];
  [event release];
  [count release];
  [super dealloc];
}
- (id)networkID {
  note(@"networkID");
  return networkID;
}
- (id)event {
  note(@"event");
  return event;
}
- (id)count {
  note(@"count");
  return count;
}
@end

@interface DataBaseHandler : NSObject
@end

@implementation DataBaseHandler
+ (id)sharedInastance {
  note(@"DataBaseHandler sharedInastance");
  static DataBaseHandler* const shared = [[DataBaseHandler alloc] init];
  return shared;
}
- (NSArray*)getNetworkTrackerDetails {
  note(@"getNetworkTrackerDetails");
  return sdk().records;
}
@end

@interface Logger : NSObject
@end

@implementation Logger
// GNUstep Base appends no lone surrogates.
+ (void)printLog:(NSString*)message {
  tavlo::test::calls().note("printLog:" + tavlo::apple_platform::textOf(message).value_or("(null)"));
}
@end

@interface TavloException : NSObject
@end

@implementation TavloException
+ (void)tavloException:(NSString*)message {
  note([@"tavloException:" stringByAppendingString:message]);
  if (sdk().reporterRaises) [NSException raise:@"ReporterException" format:@"told"];
}
@end

id trackerRecord(id networkID, id event, id count) {
  NetworkTrackerDetail* const detail = [[[NetworkTrackerDetail alloc] init] autorelease];
  detail->networkID = [networkID retain];
  detail->event = [event retain];
  detail->count = [count retain];
  return detail;
}
