// What is used of UIKit and CoreLocation: the device's own headers, or, where there are none, declarations of just the
// selectors used. The classes are looked up by name, so that a program without these frameworks links, and has no
// images, no menus and no position.
//
// Not run here with the frameworks themselves: stand-in classes of the tests take their place.
#pragma once

#import <Foundation/Foundation.h>

#if __has_include(<UIKit/UIKit.h>)

#import <CoreLocation/CoreLocation.h>
#import <UIKit/UIKit.h>

#else

using CGRect = NSRect;
using CGSize = NSSize;

struct CLLocationCoordinate2D {
  double latitude;
  double longitude;
};

@interface UIImage : NSObject
+ (UIImage*)imageWithContentsOfFile:(NSString*)path;
- (CGSize)size;
- (CGFloat)scale;
@end

@interface UIView : NSObject
@end

@interface UIViewController : NSObject
- (UIView*)view;
@end

@interface UIApplication : NSObject
+ (UIApplication*)sharedApplication;
- (BOOL)canOpenURL:(NSURL*)url;
@end

@interface UIDocumentInteractionController : NSObject
+ (UIDocumentInteractionController*)interactionControllerWithURL:(NSURL*)url;
- (BOOL)presentOpenInMenuFromRect:(CGRect)rect inView:(UIView*)view animated:(BOOL)animated;
@end

@interface CLLocation : NSObject
- (id)initWithLatitude:(double)latitude longitude:(double)longitude;
- (CLLocationCoordinate2D)coordinate;
@end

@interface CLLocationManager : NSObject
+ (BOOL)locationServicesEnabled;
+ (int)authorizationStatus;
- (void)setDistanceFilter:(double)distance;
- (void)setDesiredAccuracy:(double)accuracy;
- (void)startUpdatingLocation;
- (CLLocation*)location;
@end

@interface CLPlacemark : NSObject
- (NSString*)ISOcountryCode;
- (NSString*)country;
- (NSString*)postalCode;
- (NSString*)administrativeArea;
- (NSString*)locality;
- (NSString*)subLocality;
- (NSString*)thoroughfare;
@end

#if __has_feature(blocks)
using CLGeocodeCompletionHandler = void (^)(NSArray* placemarks, NSError* error);
#else
using CLGeocodeCompletionHandler = id;  // an object that is laid out like a block
#endif

@interface CLGeocoder : NSObject
- (void)reverseGeocodeLocation:(CLLocation*)location completionHandler:(CLGeocodeCompletionHandler)completionHandler;
@end

#endif
