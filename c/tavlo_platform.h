// The platform: the folder that the app keeps its files in, and services of the host's own in place of the library's.
//
//   tavlo_platform platform = {0};
//   platform.size = sizeof platform;
//   platform.container = tavlo_text_of("/data/player");
//   if (tavlo_platform_install(&platform) != TAVLO_OK) fputs(tavlo_last_error(), stderr);
//
// With none installed, the library's own platform is made on first use, with everything absent.
//
// Values   tables and their callbacks as in tavlo_host.h. Replaceable are the console, the fetch of URLs, the files,
//          the user settings, the background queue, position, geocoder and the asking of other apps; images and
//          resource bundles are always the library's own. Paths are the host's own bytes.
// Threads  as in tavlo_host.h: every callback on any thread, several at once.
#ifndef TAVLO_PLATFORM_H
#define TAVLO_PLATFORM_H

#include "tavlo_value.h"

#ifdef __cplusplus
extern "C" {
#endif

// ---- Console ----

typedef struct tavlo_console {
  size_t size;
  void* user;
  void (*released)(void* user);
  void (*log)(void* user, tavlo_text message);  // the console adds the newline
} tavlo_console;

// ---- URLs ----

typedef struct tavlo_url_data {
  size_t size;
  void* user;
  void (*released)(void* user);
  // Answers with the contents, whole; contents of length zero are data. Absent: no URL, or a failed fetch. May block.
  void (*dataWithContentsOfURL)(void* user, tavlo_text url, tavlo_answer* data);
} tavlo_url_data;

// ---- Files ----

typedef int32_t tavlo_existence;
enum { TAVLO_EXISTENCE_MISSING = 0, TAVLO_EXISTENCE_FILE = 1, TAVLO_EXISTENCE_DIRECTORY = 2 };

// Where the names of a directory go. It is good during that callback only.
typedef struct tavlo_names tavlo_names;
TAVLO_API tavlo_status tavlo_names_add(tavlo_names* names, tavlo_text name);

// An absent path names nothing. A callback that is false has failed; it may answer with a description for people.
typedef struct tavlo_file_manager {
  size_t size;
  void* user;
  void (*released)(void* user);
  void (*documentDirectory)(void* user, tavlo_answer* path);
  tavlo_existence (*fileExistsAtPath)(void* user, tavlo_text path);  // links are followed
  // A directory with all that is in it, or, with `file_only`, anything but a directory. Links are not followed.
  bool (*removeItemAtPath)(void* user, tavlo_text path, bool file_only, tavlo_answer* error);
  bool (*createDirectoryAtPath)(void* user, tavlo_text path, tavlo_answer* error);  // the last component only
  bool (*contentsOfDirectoryAtPath)(void* user, tavlo_text path, tavlo_names* names);
  void (*dataWithContentsOfFile)(void* user, tavlo_text path, tavlo_answer* data);
  // In one step; with `durable_name` the file is found under its name after a crash of the machine, too.
  bool (*writeToFileAtomically)(void* user, tavlo_text bytes, tavlo_text path, bool durable_name, tavlo_answer* error);
} tavlo_file_manager;

// ---- User settings ----

typedef struct tavlo_user_defaults {
  size_t size;
  void* user;
  void (*released)(void* user);
  tavlo_value* (*objectForKey)(void* user, tavlo_text key);  // a value of its own, which the library frees
  void (*setObjectForKey)(void* user, const tavlo_value* value, tavlo_text key);
  bool (*synchronize)(void* user);
} tavlo_user_defaults;

// ---- Background queue ----

// One piece of work. Whoever is given it runs it or drops it, once, at any time and on any thread.
typedef struct tavlo_task tavlo_task;
TAVLO_API tavlo_status tavlo_task_run(tavlo_task* task);
TAVLO_API void tavlo_task_drop(tavlo_task* task);  // a null pointer is fine

typedef struct tavlo_background_queue {
  size_t size;
  void* user;
  void (*released)(void* user);
  void (*dispatchAsync)(void* user, tavlo_task* task);  // a null pointer as callback drops each task
} tavlo_background_queue;

// ---- Position ----

// Degrees, WGS 84, north and east positive. It never changes its form.
typedef struct tavlo_coordinate {
  double latitude;
  double longitude;
} tavlo_coordinate;

typedef struct tavlo_location_services {
  size_t size;
  void* user;
  void (*released)(void* user);
  bool (*locationServicesEnabled)(void* user);
  int32_t (*authorizationStatus)(void* user);  // 0 not determined, 1 restricted, 2 denied, 3 always, 4 when in use
  void (*startUpdatingLocation)(void* user);
  bool (*location)(void* user, tavlo_coordinate* newest);  // without waiting; false: no position is known
} tavlo_location_services;

// Asks the user for permission with the installed platform, where it is not determined yet. Answered once, with the
// status, on any thread, perhaps before the call returns. An absent callback is TAVLO_MISUSE.
TAVLO_API tavlo_status tavlo_request_authorization(void (*answered)(void* user, int32_t status), void* user);

// ---- Geocoder ----

typedef struct tavlo_placemark {
  size_t size;  // of this struct, as in tavlo_host.h
  tavlo_text ISOcountryCode;
  tavlo_text country;
  tavlo_text postalCode;
  tavlo_text administrativeArea;
  tavlo_text locality;
  tavlo_text subLocality;
  tavlo_text thoroughfare;
} tavlo_placemark;

// One question of where a position is. Whoever is given it answers, fails or drops it, once, at any time and on any
// thread; each of the three ends it, whatever its status.
typedef struct tavlo_geocode_request tavlo_geocode_request;

// The best placemark first. A null pointer for all of them is an absent list; a count of 0 with another pointer is an
// empty list, which the component does not bear: TAVLO_FAILED.
TAVLO_API tavlo_status tavlo_geocode_request_answer(tavlo_geocode_request* request,
                                                    const tavlo_placemark* const* placemarks, size_t count);
TAVLO_API tavlo_status tavlo_geocode_request_fail(tavlo_geocode_request* request, tavlo_text error);
TAVLO_API void tavlo_geocode_request_drop(tavlo_geocode_request* request);  // a null pointer is fine

typedef struct tavlo_geocoder {
  size_t size;
  void* user;
  void (*released)(void* user);
  // Must return at once. A null pointer as position is an absent one; as callback, every answer is an error.
  void (*reverseGeocodeLocation)(void* user, const tavlo_coordinate* position, tavlo_geocode_request* request);
} tavlo_geocoder;

// ---- Other apps ----

typedef struct tavlo_application {
  size_t size;
  void* user;
  void (*released)(void* user);
  bool (*canOpenURL)(void* user, tavlo_text url);
  // Shows the menu of apps that can open the file of the "file:" URL, over a window that may be absent, anchored on an
  // empty rectangle; whether it could be shown.
  bool (*presentOpenInMenu)(void* user, tavlo_text url, tavlo_text window, bool animated);
} tavlo_application;

// ---- All of it ----

typedef struct tavlo_platform {
  size_t size;
  tavlo_text container;                // absent: a folder of the domain's name under the user's XDG data home
  tavlo_text domain;                   // absent or empty: the name of the executable
  tavlo_text resources;                // what holds the app's bundles; absent: CONTAINER/Resources
  tavlo_text certificate_authorities;  // a PEM file to trust in place of the system's
  tavlo_text geocoding_url;            // a Nominatim-compatible service, http or https; absent: none
  bool quiet_console;                  // drops console lines instead of writing them to stderr
  // In place of the library's own where not a null pointer. Each table is copied.
  const tavlo_console* console;
  const tavlo_url_data* url_data;
  const tavlo_file_manager* file_manager;
  const tavlo_user_defaults* user_defaults;
  const tavlo_background_queue* background_queue;
  const tavlo_location_services* location_services;
  const tavlo_geocoder* geocoder;
  const tavlo_application* application;
} tavlo_platform;

// Puts the platform in place for the whole process; a null pointer takes it out again. TAVLO_MISUSE, with an error that
// names the option, when a name, a path or a URL is none, or a table is not one; then the platform before it stays. The
// end of a platform waits for its workers and drops background tasks that have not begun.
TAVLO_API tavlo_status tavlo_platform_install(const tavlo_platform* platform);

#ifdef __cplusplus
}
#endif

#endif
