#import "tests/objc/PlainCaller.h"

#import "objc/TavloUtility.h"

static void keep(NSMutableDictionary* answers, NSString* selector, id answer) {
  [answers setObject:answer == nil ? [NSNull null] : answer forKey:selector];
}

NSDictionary* tavloAnswersInPlainObjectiveC(void) {
  NSMutableDictionary* answers = [NSMutableDictionary dictionary];
  [TavloUtility setAppIdToUserDefault:@"app"];
  [TavloUtility setOptionalIdToUserDefault:@"user"];
  [TavloUtility setSecurityKeyToUserDefault:@"key"];
  [TavloUtility fetchCurrentLocation];
  [TavloUtility getExportTavloSDKLog:nil];
  [TavloUtility cachedBannerImage:@"no url"];
  keep(answers, @"getAdditionalRequestingString:", [TavloUtility getAdditionalRequestingString:nil]);
  keep(answers, @"trackerNetworkSessionData", [TavloUtility trackerNetworkSessionData]);
  keep(answers, @"getInAppNotificationAdditionalRequest", [TavloUtility getInAppNotificationAdditionalRequest]);
  keep(answers, @"getUserInfoRequestString", [TavloUtility getUserInfoRequestString]);
  keep(answers, @"getDocumentDirectoryPath:", [TavloUtility getDocumentDirectoryPath:@"a"]);
  keep(answers, @"getCacheVideoDataPath:", [TavloUtility getCacheVideoDataPath:@"http://h/a.mp4"]);
  keep(answers, @"getCacheVideoPathOfSavedInDB:", [TavloUtility getCacheVideoPathOfSavedInDB:@"a.mp4"]);
  keep(answers, @"getCacheBannerImagePath:", [TavloUtility getCacheBannerImagePath:@"http://h/a.png"]);
  keep(answers, @"getCachedVideoList:", [TavloUtility getCachedVideoList:YES]);
  keep(answers, @"deleteCachedVideo:", [NSNumber numberWithBool:[TavloUtility deleteCachedVideo:@"/none"]]);
  keep(answers, @"sortCacahedVideoDates:", [TavloUtility sortCacahedVideoDates:[NSArray array]]);
  [TavloUtility clearCache];
  keep(answers, @"getAppIdFromUserDefault", [TavloUtility getAppIdFromUserDefault]);
  keep(answers, @"getOptionalIdFromUserDefault", [TavloUtility getOptionalIdFromUserDefault]);
  keep(answers, @"getSecurityKeyTFromUserDefault", [TavloUtility getSecurityKeyTFromUserDefault]);
  keep(answers, @"frameworkBundle", [TavloUtility frameworkBundle]);
  keep(answers, @"getVolumeImage", [TavloUtility getVolumeImage]);
  keep(answers, @"getMuteImage", [TavloUtility getMuteImage]);
  keep(answers, @"quillmixInstalledOnThisDevice",
       [NSNumber numberWithBool:[TavloUtility quillmixInstalledOnThisDevice]]);
  keep(answers, @"md5:", [TavloUtility md5:@"abc"]);
  keep(answers, @"getFileExtensionFromUrl:", [TavloUtility getFileExtensionFromUrl:@"http://h/a.mp4"]);
  return answers;
}
