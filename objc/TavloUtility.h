// TavloUtility: the utility component of the SDK, as its components in Objective-C and Swift call it.
//
//   #import "TavloUtility.h"
//
//   NSString *query = [TavloUtility getAdditionalRequestingString:nil];
//
//   let query = TavloUtility.getAdditionalRequestingString(nil)          in Swift
//
// The SDK's own classes TavloPackage, TavloUniqueUserHandler, DataBaseHandler, Logger and TavloException are looked up
// by name when this class is first used; one that is missing is like one that knows nothing, and logs nothing.
//
// Values   texts as they come, lone surrogates and U+0000 included.
// Absent   nil. An argument of another class than declared counts by its text form.
// Logs     as the class of the same name in C++ says, whose header describes each operation.
// Threads  any thread that has an autorelease pool; the export on the main thread, the position on one with a run loop.
// Throws   NSInvalidArgumentException from getCachedVideoList: for bytes that are no keyed archive, NSRangeException
//          from the geocoder's answer without placemarks, and whatever the SDK's own classes raise. md5: turns what
//          its argument raises into a report.
//
// Results are the caller's as the platform's conventions say: autoreleased. All is run here over GNUstep Base, but for
// UIKit and CoreLocation, for which stand-ins are; Swift and the device's SDK are not there to be run.
#import <Foundation/Foundation.h>

@class UIImage;
@class UIViewController;

// Where the compiler has no such words, they say nothing.
#if defined(__has_feature)
#if __has_feature(nullability)
#define TAVLO_NULLABLE nullable
#endif
#if __has_feature(objc_generics)
#define TAVLO_OF(...) <__VA_ARGS__>
#endif
#endif
#ifndef TAVLO_NULLABLE
#define TAVLO_NULLABLE
#endif
#ifndef TAVLO_OF
#define TAVLO_OF(...)
#endif

NS_ASSUME_NONNULL_BEGIN

@interface TavloUtility : NSObject

// Requests
+ (NSString*)getAdditionalRequestingString:(TAVLO_NULLABLE id)ignored;
+ (NSDictionary TAVLO_OF(NSString*, id) *)trackerNetworkSessionData;
+ (NSString*)getInAppNotificationAdditionalRequest;
+ (NSString*)getUserInfoRequestString;

// Media cache. A nil name is an empty one. A list is what was archived under it, objects of the app's own classes
// included, where the archive has such and they can be read.
+ (TAVLO_NULLABLE NSString*)getDocumentDirectoryPath:(NSString*)fileName;
+ (TAVLO_NULLABLE NSString*)getCacheVideoDataPath:(TAVLO_NULLABLE NSString*)url;
+ (TAVLO_NULLABLE NSString*)getCacheVideoPathOfSavedInDB:(TAVLO_NULLABLE NSString*)name;
+ (TAVLO_NULLABLE id)getCachedVideoList:(BOOL)isVideo;
+ (BOOL)deleteCachedVideo:(TAVLO_NULLABLE NSString*)path;
+ (void)clearCache;
+ (TAVLO_NULLABLE NSArray*)sortCacahedVideoDates:(TAVLO_NULLABLE NSArray*)list;
+ (TAVLO_NULLABLE NSString*)getCacheBannerImagePath:(TAVLO_NULLABLE NSString*)url;
+ (void)cachedBannerImage:(TAVLO_NULLABLE NSString*)url;

// Identifiers
+ (void)setAppIdToUserDefault:(TAVLO_NULLABLE NSString*)value;
+ (void)setOptionalIdToUserDefault:(TAVLO_NULLABLE NSString*)value;
+ (void)setSecurityKeyToUserDefault:(TAVLO_NULLABLE NSString*)value;
+ (TAVLO_NULLABLE NSString*)getAppIdFromUserDefault;
+ (TAVLO_NULLABLE NSString*)getOptionalIdFromUserDefault;
+ (TAVLO_NULLABLE NSString*)getSecurityKeyTFromUserDefault;

// Location
+ (void)fetchCurrentLocation;

// Resources and diagnostics
+ (TAVLO_NULLABLE NSBundle*)frameworkBundle;
+ (TAVLO_NULLABLE UIImage*)getVolumeImage;
+ (TAVLO_NULLABLE UIImage*)getMuteImage;
+ (void)getExportTavloSDKLog:(TAVLO_NULLABLE UIViewController*)viewController;
+ (BOOL)quillmixInstalledOnThisDevice;

// Utilities
+ (TAVLO_NULLABLE NSString*)md5:(TAVLO_NULLABLE id)value;
+ (TAVLO_NULLABLE NSString*)getFileExtensionFromUrl:(TAVLO_NULLABLE NSString*)url;

@end

NS_ASSUME_NONNULL_END
