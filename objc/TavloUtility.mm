#import "objc/TavloUtility.h"

#include <memory>
#include <optional>
#include <string>

#include "../TavloUtility.h"
#include "common/TavloException.h"
#import "objc/Collaborators.h"
#import "objc/Lists.h"
#import "platform/apple/AppleApplication.h"
#import "platform/apple/AppleBundles.h"
#import "platform/apple/ApplePlatform.h"
#import "platform/apple/Bridge.h"
#include "platform/apple/ErrorGuard.h"
#import "platform/apple/ExceptionGuard.h"

using tavlo::Text;
using tavlo::Value;
using tavlo::apple_platform::objectOf;
using tavlo::apple_platform::stringOf;
using tavlo::apple_platform::stringOfText;
using tavlo::apple_platform::textOf;
using tavlo::apple_platform::valueOf;
using Component = tavlo::TavloUtility;

namespace {

constexpr std::string_view kNotAText = "md5:() Invalid string for passed for hash";

// nil for an image that is not the platform's own.
UIImage* imageOf(const std::shared_ptr<const tavlo::platform::Image>& image) {
  const auto* const own = dynamic_cast<const tavlo::apple_platform::AppleImage*>(image.get());
  return own ? own->object() : nil;
}

}  // namespace

@implementation TavloUtility

+ (void)initialize {
  if (self != [TavloUtility class]) return;
  tavlo::platform::setDefaultFactory([] { return tavlo::apple_platform::make(); });
  tavlo::objc::adoptCollaborators();
}

+ (NSString*)getAdditionalRequestingString:(id)ignored {
  static_cast<void>(ignored);
  return stringOf(Component::getAdditionalRequestingString());
}

+ (NSDictionary*)trackerNetworkSessionData {
  return objectOf(Component::trackerNetworkSessionData());
}

+ (NSString*)getInAppNotificationAdditionalRequest {
  return stringOf(Component::getInAppNotificationAdditionalRequest());
}

+ (NSString*)getUserInfoRequestString {
  return stringOf(Component::getUserInfoRequestString());
}

+ (NSString*)getDocumentDirectoryPath:(NSString*)fileName {
  return stringOfText(Component::getDocumentDirectoryPath(textOf(fileName).value_or("")));
}

+ (NSString*)getCacheVideoDataPath:(NSString*)url {
  return stringOfText(Component::getCacheVideoDataPath(textOf(url)));
}

+ (NSString*)getCacheVideoPathOfSavedInDB:(NSString*)name {
  return stringOfText(Component::getCacheVideoPathOfSavedInDB(textOf(name)));
}

+ (id)getCachedVideoList:(BOOL)isVideo {
  std::optional<Value> list;
  const auto read = [&] { list = Component::getCachedVideoList(isVideo != NO); };
  const Text noArchive = tavlo::apple_platform::errorThrownBy(read);
  if (noArchive) [NSException raise:NSInvalidArgumentException format:@"%@", stringOf(*noArchive)];
  return list ? tavlo::objc::listOf(*list, isVideo != NO) : nil;
}

+ (BOOL)deleteCachedVideo:(NSString*)path {
  return Component::deleteCachedVideo(textOf(path)) ? YES : NO;
}

+ (void)clearCache {
  Component::clearCache();
}

+ (NSArray*)sortCacahedVideoDates:(NSArray*)list {
  return tavlo::objc::sortedByStartDate(list);
}

+ (NSString*)getCacheBannerImagePath:(NSString*)url {
  return stringOfText(Component::getCacheBannerImagePath(textOf(url)));
}

+ (void)cachedBannerImage:(NSString*)url {
  Component::cachedBannerImage(textOf(url));
}

+ (void)setAppIdToUserDefault:(NSString*)value {
  Component::setAppIdToUserDefault(textOf(value));
}

+ (void)setOptionalIdToUserDefault:(NSString*)value {
  Component::setOptionalIdToUserDefault(textOf(value));
}

+ (void)setSecurityKeyToUserDefault:(NSString*)value {
  Component::setSecurityKeyToUserDefault(textOf(value));
}

+ (NSString*)getAppIdFromUserDefault {
  return stringOfText(Component::getAppIdFromUserDefault());
}

+ (NSString*)getOptionalIdFromUserDefault {
  return stringOfText(Component::getOptionalIdFromUserDefault());
}

+ (NSString*)getSecurityKeyTFromUserDefault {
  return stringOfText(Component::getSecurityKeyTFromUserDefault());
}

+ (void)fetchCurrentLocation {
  Component::fetchCurrentLocation();
}

+ (NSBundle*)frameworkBundle {
  const auto bundle = Component::frameworkBundle();
  const auto* const own = dynamic_cast<const tavlo::apple_platform::AppleBundle*>(bundle.get());
  return own ? own->object() : nil;
}

+ (UIImage*)getVolumeImage {
  return imageOf(Component::getVolumeImage());
}

+ (UIImage*)getMuteImage {
  return imageOf(Component::getMuteImage());
}

+ (void)getExportTavloSDKLog:(UIViewController*)viewController {
  tavlo::apple_platform::AppleViewController controller(viewController);
  Component::getExportTavloSDKLog(viewController == nil ? nullptr : &controller);
}

+ (BOOL)quillmixInstalledOnThisDevice {
  return Component::quillmixInstalledOnThisDevice() ? YES : NO;
}

// What the argument raises while it is read is a report; what the reporter raises passes.
+ (NSString*)md5:(id)value {
  std::optional<Value> read;
  NSException* const raised = tavlo::apple_platform::exceptionRaisedBy([&] { read = valueOf(value); });
  if (raised == nil) return stringOfText(Component::md5(read));
  tavlo::TavloException::tavloException(kNotAText);
  return nil;
}

+ (NSString*)getFileExtensionFromUrl:(NSString*)url {
  return stringOfText(Component::getFileExtensionFromUrl(textOf(url)));
}

@end
