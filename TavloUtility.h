// TavloUtility: the utility component of the SDK. One stateless class, 27 class operations.
//
//   #include "TavloUtility.h"
//   #include "host/SessionRecord.h"
//
//   auto session = std::make_shared<tavlo::host::SessionRecord>();
//   session->set(tavlo::PackageText::device_model, "Phone 3");
//   tavlo::TavloPackage::install(session);
//   std::string query = tavlo::TavloUtility::getAdditionalRequestingString();
//
// What it needs of the SDK it reaches through request/TavloPackage.h, request/TavloUniqueUserHandler.h,
// request/DataBaseHandler.h, common/Logger.h and common/TavloException.h; what it needs of the system through
// platform/Platform.h. A program that links the platform library has the default platform by itself.
//
// Values   texts are UTF-8 and go through as they come.
// Absent   std::nullopt. An absent text in a request is the six characters "(null)".
// Logs     lines go to Logger::printLog(), console lines to the platform's console, each exactly as stated.
// Threads  any operation on any thread, any time. Nothing is locked while a collaborator is called.
// Throws   std::bad_alloc, and three things more: getCachedVideoList() on a file that is no keyed archive,
//          the geocoder's answer with an empty list (std::out_of_range, from the handler), and whatever an
//          installed TavloException throws.
//
// Names are the contract's, misspelt ones included; a selector of several words is one name here.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "common/Text.h"
#include "common/Value.h"

namespace tavlo {

namespace platform {
class Bundle;
class Image;
class ViewController;
}  // namespace platform

class TavloUtility {
 public:
  TavloUtility() = delete;  // there are no instances

  // ---- Requests: request/Contracts.h has each one as a table ----

  // The ad request: 41 pairs "key=value" joined by "&", without a leading "?" or "&". Every pair is always
  // there. The argument is ignored.
  [[nodiscard]] static std::string getAdditionalRequestingString(const void* ignored = nullptr);

  // The tracker payload: a map of 35 keys, 34 texts and under "network_event_count" a list of maps with
  // "network_id", "event" and "count". Of two stored records or more each is written to the console as
  // "<networkID>  <event>  <count>" and kept when its count reads as an integer above 0. A lone record is not
  // reported; that is deliberate.
  [[nodiscard]] static Value trackerNetworkSessionData();

  // The in-app notification request: 24 pairs, the app id and the optional id from the identifier store.
  [[nodiscard]] static std::string getInAppNotificationAdditionalRequest();

  // The unique-user fragment: 8 pairs, each with a leading "&", nothing encoded, "ru_n" always empty.
  [[nodiscard]] static std::string getUserInfoRequestString();

  // ---- Media cache: the directory Documents/TavloCache; docs/cache.md describes it ----
  //
  // The look-ups log "Cached directory path : <path>", after "TavloCache directory created!" when the directory
  // was missing, and after "TavloCache directory is actually a file! .. removing it" when a plain file was in its
  // way. All of them are absent when the directory cannot be made usable, after "TavloCache directory is
  // actually a file! .. but failed removing it error: <description>" or "Couldn't create directory TavloCache
  // error: <description>". Of two threads that both find it missing, the slower one gets absent that once.

  // The path of a name inside the cache directory, which is made when it is missing; whether there is such a
  // file is not looked at. It is not the Documents directory, in spite of its name.
  [[nodiscard]] static Text getDocumentDirectoryPath(std::string_view fileName);

  // The path of the cached video of a URL, or of the name that the SDK's database holds for it. Absent when
  // there is no such file, after "<operation>() - ERROR: Cache Video Data  does not exist", and when the argument
  // is absent or empty, after "<operation>() - ERROR: Passed file url parameter is nil". A video's name is the
  // digest of the URL without U+000A and without blanks and newlines at its ends, a dot, and the extension of
  // the URL as it was passed: "(null)" when that is no URL reference.
  [[nodiscard]] static Text getCacheVideoDataPath(const Text& url);
  [[nodiscard]] static Text getCacheVideoPathOfSavedInDB(const Text& name);

  // The archived video list, or the interstitial list: the root of a keyed archive (cache/KeyedArchive.h). When
  // there is no such file, clears the whole cache, logs "getFileData() - ERROR: This file  does not exist" and
  // is absent. Absent without a line of its own when the file cannot be read or the archive holds nothing.
  // Throws ArchiveError, which names the file, when its bytes are no keyed archive.
  [[nodiscard]] static std::optional<Value> getCachedVideoList(bool isVideo);

  // Removes the item at exactly this path, a directory with all that is in it. True when it was removed. It
  // need not lie in the cache.
  [[nodiscard]] static bool deleteCachedVideo(const Text& path);

  // Removes everything in the cache directory but "TavloLogFile.txt", as far as it can be removed. Makes no
  // directory and logs nothing.
  static void clearCache();

  // A new list of the same records, ordered by "startdate" (cache/SortByStartDate.h). A set gives a list, absent
  // and any other value give absent.
  [[nodiscard]] static std::optional<Value> sortCacahedVideoDates(const std::optional<Value>& list);

  // The path of the cached banner image of a URL, absent when there is none (yet), after
  // "getCacheBannerImagePath() - ERROR: Cache Banner Image Data  does not exist", also when the directory cannot
  // be made usable; or after "getCacheBannerImagePath() - ERROR: Passed file url parameter is nil" when the URL
  // is absent or blank. An image's name is the digest of the URL, cleaned as for a video.
  [[nodiscard]] static Text getCacheBannerImagePath(const Text& url);

  // Downloads a banner image on a background queue and returns at once. The queue's worker logs
  //   "getAndSaveBannerImage(): Passed data is empty"      no data: no URL, or a failed fetch
  //   "getAndSaveBannerImage() - write successfully"       after what the look-ups log
  //   "getAndSaveBannerImage(): ERROR - write failed"      the same, or out of memory; an earlier image stands
  // Every call downloads again. The image's name is the digest of the URL without blanks at its ends. Newlines
  // stay, so that such a URL is never found again; that is deliberate. A download ends with its platform: when
  // that is replaced, what has not begun is dropped.
  static void cachedBannerImage(const Text& url);

  // ---- Identifiers: three texts in the host app's user settings ----

  // Absent or empty is ignored: the old value stays. Else the value is stored as it comes and on disk when
  // the call returns (a failure to write it goes unnoticed, and the next setter writes it out).
  static void setAppIdToUserDefault(const Text& value);
  static void setOptionalIdToUserDefault(const Text& value);
  static void setSecurityKeyToUserDefault(const Text& value);

  // Absent until the first set. A value of another kind that the host app left there is answered in its text
  // form (common/Format.h).
  [[nodiscard]] static Text getAppIdFromUserDefault();
  [[nodiscard]] static Text getOptionalIdFromUserDefault();
  [[nodiscard]] static Text getSecurityKeyTFromUserDefault();

  // ---- Location: platform/Location.h and platform/Geocoder.h; location/LocationSlots.h has the shared slots ----

  // Stores the position in the session package, in degrees with six decimals ("0.000000" twice while there is
  // no fix), empties the address, asks the geocoder for it and returns. Does nothing when location services are
  // off; logs "location authorization: <status>" to the console, and does no more unless the status is 3 or 4.
  // Never asks for permission. Its location manager takes the place of the last one in the shared slot.
  //
  // The answer comes on a thread of the platform's. It logs to the console that it came, and then its error,
  // after which the address stays empty; or nine lines about the first placemark, whose address then is stored
  // as one JSON object (location/Address.h; "{}" for an absent list). The answer that comes last counts,
  // whichever fetch asked for it.
  static void fetchCurrentLocation();

  // ---- Resources and diagnostics ----

  // The SDK's resource bundle, the directory "TavloSDKResource.bundle" of the host app's resources. Absent
  // (nullptr) when it cannot be opened. Logs "Already Loaded framework bundle", or, each time until it could be
  // opened, "Loading framework budle once ..." and "Loaded framework bundle .. with path <path>".
  [[nodiscard]] static std::shared_ptr<platform::Bundle> frameworkBundle();

  // The image "volume.png", or "mute.png", of the resource bundle, loaded anew each time. Absent (nullptr) when
  // there is none that can be read. Both log "Calling Get volume Image first time" and what frameworkBundle() logs.
  [[nodiscard]] static std::shared_ptr<const platform::Image> getVolumeImage();
  [[nodiscard]] static std::shared_ptr<const platform::Image> getMuteImage();

  // Offers the SDK's log file, Documents/TavloCache/TavloLogFile.txt, to other apps in a menu over the
  // controller's view; nullptr is no view. Whether there is such a file, and whether the menu appears, is not
  // looked at. Logs "Documents Directory: <URL>" to the console and at the end "Log file is created"; without a
  // Documents directory there is no menu and no second line. Views may ask for the host's own thread.
  static void getExportTavloSDKLog(platform::ViewController* viewController);

  // Whether an app is installed that opens the URL "File Manager://". Its blank makes that no URL for a strict
  // platform, and the answer false; that is deliberate.
  [[nodiscard]] static bool quillmixInstalledOnThisDevice();

  // ---- Utilities ----

  // The MD5 digest of a text's bytes up to its first U+0000, as 32 lowercase hexadecimal digits. Absent
  // gives absent. A value that is no text gives absent, after a report to TavloException.
  [[nodiscard]] static Text md5(const std::optional<Value>& value);

  // The extension of a URL's path, percent-decoded, without the dot; "" when there is none. Absent when the
  // text is absent or no URL reference (common/UrlGrammar.h has the grammar).
  [[nodiscard]] static Text getFileExtensionFromUrl(const Text& url);
};

}  // namespace tavlo
