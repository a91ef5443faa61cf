// tavlo: the utility component of the SDK for C, and for whatever else calls C. 27 operations, and what they stand on.
//
//   #include <tavlo.h>
//
//   tavlo_session* session = tavlo_session_new();
//   tavlo_session_set_text(session, TAVLO_PACKAGE_device_model, tavlo_text_of("Phone 3"));
//   tavlo_session_install(session);
//
//   tavlo_string query;
//   if (tavlo_getAdditionalRequestingString(NULL, &query) != TAVLO_OK) fputs(tavlo_last_error(), stderr);
//   puts(query.data);
//   tavlo_string_free(&query);
//   tavlo_session_free(session);
//
// What it needs of the SDK is installed with tavlo_host.h; what it needs of the system comes with the library, for a
// container folder and with services of tavlo_platform.h in place of its own if wanted. Nothing has to be installed.
//
// Values   texts are UTF-8 and go through as they come (tavlo_types.h); lists and maps are a tavlo_value.h.
// Absent   in and out, a text whose data, or a handle that, is a null pointer: TAVLO_OK with an absent result is an
//          answer. An absent text in a request is the six characters "(null)".
// Logs     lines go to the installed logger, console lines to the platform's console, each exactly as stated.
// Threads  any operation on any thread, any time. Nothing is locked while a callback runs.
// Throws   nothing. Every operation may end with TAVLO_NO_MEMORY, and with TAVLO_MISUSE when a result is a null pointer
//          or a text has a size and no data; other statuses are named where they belong. Callbacks must neither throw
//          nor jump out. Should one written in C++ throw all the same, the operation ends with TAVLO_FAILED, whatever
//          was thrown, or with TAVLO_NO_MEMORY when that was std::bad_alloc.
//
// The operations keep the names of the contract, misspelt ones included; all else is named as C does. Texts and handles
// that a function puts into its results belong to the caller, who frees them. The library may be closed with dlclose(),
// but stays in the process. After fork() in a program of several threads the child must not use it before exec().
#ifndef TAVLO_H
#define TAVLO_H

#include "tavlo_host.h"
#include "tavlo_platform.h"
#include "tavlo_types.h"
#include "tavlo_value.h"

#ifdef __cplusplus
extern "C" {
#endif

// ---- Requests ----

// The ad request: 41 pairs "key=value" joined by "&", without a leading "?" or "&". Every pair is always there. The
// first argument is ignored.
TAVLO_API tavlo_status tavlo_getAdditionalRequestingString(const void* ignored, tavlo_string* query);

// The tracker payload: a map of 35 keys, 34 texts and under "network_event_count" a list of maps with "network_id",
// "event" and "count". Of two stored records or more each is written to the console as
// "<networkID>  <event>  <count>" and kept when its count reads as an integer above 0. A lone record is not reported;
// that is deliberate.
TAVLO_API tavlo_status tavlo_trackerNetworkSessionData(tavlo_value** payload);

// The in-app notification request: 24 pairs, the app id and the optional id from the identifier store.
TAVLO_API tavlo_status tavlo_getInAppNotificationAdditionalRequest(tavlo_string* query);

// The unique-user fragment: 8 pairs, each with a leading "&", nothing encoded, "ru_n" always empty.
TAVLO_API tavlo_status tavlo_getUserInfoRequestString(tavlo_string* fragment);

// ---- Media cache: the directory Documents/TavloCache ----
//
// The look-ups log "Cached directory path : <path>", after "TavloCache directory created!" when the directory was
// missing, and after "TavloCache directory is actually a file! .. removing it" when a plain file was in its way. All of
// them are absent when the directory cannot be made usable, after "TavloCache directory is actually a file! .. but
// failed removing it error: <description>" or "Couldn't create directory TavloCache error: <description>". Of two
// threads that both find it missing, the slower one gets absent that once.

// The path of a name inside the cache directory, which is made when it is missing; whether there is such a file is not
// looked at. An absent name is TAVLO_MISUSE.
TAVLO_API tavlo_status tavlo_getDocumentDirectoryPath(tavlo_text fileName, tavlo_string* path);

// The path of the cached video of a URL, or of the name that the SDK's database holds for it. Absent when there is no
// such file, after "<operation>() - ERROR: Cache Video Data  does not exist", and when the argument is absent or empty,
// after "<operation>() - ERROR: Passed file url parameter is nil". A video's name is the digest of the URL without
// U+000A and without blanks and newlines at its ends, a dot, and the extension of the URL as it was passed: "(null)"
// when that is no URL reference.
TAVLO_API tavlo_status tavlo_getCacheVideoDataPath(tavlo_text url, tavlo_string* path);
TAVLO_API tavlo_status tavlo_getCacheVideoPathOfSavedInDB(tavlo_text name, tavlo_string* path);

// The archived video list, or the interstitial list. When there is no such file, clears the whole cache, logs
// "getFileData() - ERROR: This file  does not exist" and is absent. Absent without a line of its own when the file
// cannot be read or the archive holds nothing. TAVLO_NO_ARCHIVE, with an error that names the file, when its bytes are
// no keyed archive.
TAVLO_API tavlo_status tavlo_getCachedVideoList(bool isVideo, tavlo_value** list);

// Removes the item at exactly this path, a directory with all that is in it. True when it was removed. It need not lie
// in the cache.
TAVLO_API tavlo_status tavlo_deleteCachedVideo(tavlo_text path, bool* removed);

// Removes everything in the cache directory but "TavloLogFile.txt", as far as it can be removed. Makes no directory and
// logs nothing.
TAVLO_API tavlo_status tavlo_clearCache(void);

// A new list of the same records, ordered by "startdate". A set gives a list, no value and any other give none.
TAVLO_API tavlo_status tavlo_sortCacahedVideoDates(const tavlo_value* list, tavlo_value** sorted);

// The path of the cached banner image of a URL, absent when there is none (yet), after "getCacheBannerImagePath() -
// ERROR: Cache Banner Image Data  does not exist", also when the directory cannot be made usable; or after
// "getCacheBannerImagePath() - ERROR: Passed file url parameter is nil" when the URL is absent or blank.
TAVLO_API tavlo_status tavlo_getCacheBannerImagePath(tavlo_text url, tavlo_string* path);

// Downloads a banner image on a background queue and returns at once. The queue's worker logs
//   "getAndSaveBannerImage(): Passed data is empty"      no data: no URL, or a failed fetch
//   "getAndSaveBannerImage() - write successfully"       after what the look-ups log
//   "getAndSaveBannerImage(): ERROR - write failed"      the same, or out of memory; an earlier image stands
// Every call downloads again. Newlines in the URL stay, so that such an image is never found; that is deliberate.
TAVLO_API tavlo_status tavlo_cachedBannerImage(tavlo_text url);

// ---- Identifiers: three texts in the host app's user settings ----

// Absent or empty is ignored: the old value stays. Else the value is stored as it comes and on disk when the call
// returns (a failure to write it goes unnoticed, and the next setter writes it out).
TAVLO_API tavlo_status tavlo_setAppIdToUserDefault(tavlo_text value);
TAVLO_API tavlo_status tavlo_setOptionalIdToUserDefault(tavlo_text value);
TAVLO_API tavlo_status tavlo_setSecurityKeyToUserDefault(tavlo_text value);

// Absent until the first set. A value of another kind that the host app left there is answered in its text form.
TAVLO_API tavlo_status tavlo_getAppIdFromUserDefault(tavlo_string* value);
TAVLO_API tavlo_status tavlo_getOptionalIdFromUserDefault(tavlo_string* value);
TAVLO_API tavlo_status tavlo_getSecurityKeyTFromUserDefault(tavlo_string* value);

// ---- Location ----

// Stores the position in the session package, in degrees with six decimals ("0.000000" twice while there is no fix),
// empties the address, asks the geocoder for it and returns. Does nothing when location services are off; logs
// "location authorization: <status>" to the console, and does no more unless the status is 3 or 4. Never asks for
// permission: tavlo_request_authorization() of tavlo_platform.h does.
//
// The answer comes on a thread of the platform's. It logs to the console that it came, and then its error, after which
// the address stays empty; or nine lines about the first placemark, whose address then is stored as one JSON object
// ("{}" for an absent list). The answer that comes last counts, whichever fetch asked for it.
TAVLO_API tavlo_status tavlo_fetchCurrentLocation(void);

// ---- Resources and diagnostics ----

// A directory of resources, and an image that never changes. Two handles may be of one bundle.
typedef struct tavlo_bundle tavlo_bundle;
typedef struct tavlo_image tavlo_image;

// The SDK's resource bundle, the directory "TavloSDKResource.bundle" of the host app's resources. Absent when it cannot
// be opened. Logs "Already Loaded framework bundle", or, each time until it could be opened, "Loading framework budle
// once ..." and "Loaded framework bundle .. with path <path>".
TAVLO_API tavlo_status tavlo_frameworkBundle(tavlo_bundle** bundle);

// The image "volume.png", or "mute.png", of the resource bundle, loaded anew each time. Absent when there is none that
// can be read. Both log "Calling Get volume Image first time" and what tavlo_frameworkBundle() logs.
TAVLO_API tavlo_status tavlo_getVolumeImage(tavlo_image** image);
TAVLO_API tavlo_status tavlo_getMuteImage(tavlo_image** image);

// Offers the SDK's log file, Documents/TavloCache/TavloLogFile.txt, to other apps in a menu over a window, named as
// the platform's services name it ("x11:" and the XID in hexadecimal, or "wayland:" and the exported handle); absent
// is no window. Whether there is such a file, and whether the menu appears, is not looked at. Logs
// "Documents Directory: <URL>" to the console and at the end "Log file is created"; without a Documents directory there
// is no menu and no second line.
TAVLO_API tavlo_status tavlo_getExportTavloSDKLog(tavlo_text window);

// Whether an app is installed that opens the URL "File Manager://". Its blank makes that no URL for a strict platform,
// and the answer false; that is deliberate.
TAVLO_API tavlo_status tavlo_quillmixInstalledOnThisDevice(bool* installed);

// The path of the file "name.type" in the bundle, absent when there is none. An absent name or type is TAVLO_MISUSE.
TAVLO_API tavlo_status tavlo_bundle_path(const tavlo_bundle* bundle, tavlo_text name, tavlo_text type,
                                         tavlo_string* path);
TAVLO_API bool tavlo_bundle_same(const tavlo_bundle* a, const tavlo_bundle* b);
TAVLO_API void tavlo_bundle_free(tavlo_bundle* bundle);  // a null pointer is fine

// In pixels; four bytes a pixel (red, green, blue, alpha, not multiplied by it), row by row from the top left, without
// padding, which live as long as the image. Of a null pointer: 0, and absent.
TAVLO_API size_t tavlo_image_width(const tavlo_image* image);
TAVLO_API size_t tavlo_image_height(const tavlo_image* image);
TAVLO_API tavlo_text tavlo_image_pixels(const tavlo_image* image);
TAVLO_API void tavlo_image_free(tavlo_image* image);  // a null pointer is fine

// ---- Utilities ----

// The MD5 digest of a text's bytes up to its first U+0000, as 32 lowercase hexadecimal digits. No value gives absent. A
// value that is no text gives absent, after a report to the exception reporter; TAVLO_REPORTED when that fails.
TAVLO_API tavlo_status tavlo_md5(const tavlo_value* value, tavlo_string* digest);

// The extension of a URL's path, percent-decoded, without the dot; "" when there is none. Absent when the text is
// absent or no URL reference.
TAVLO_API tavlo_status tavlo_getFileExtensionFromUrl(tavlo_text url, tavlo_string* extension);

// How the requests encode a value: letters, digits, "-", ".", "_" and "~" stay, every other byte becomes "%" and two
// upper-case hexadecimal digits. Absent gives absent. No operation of the 27, but what hosts need to add pairs.
TAVLO_API tavlo_status tavlo_url_encode(tavlo_text value, tavlo_string* encoded);

#ifdef __cplusplus
}
#endif

#endif
