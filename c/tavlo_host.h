// What a host app brings: its session package, unique-user counters, tracker records, log and exception reporter.
//
// Each is a table of callbacks with a pointer of the host's own, which every callback gets first:
//
//   static void print(void* user, tavlo_text message) { fprintf(user, "%.*s\n", (int)message.size, message.data); }
//
//   tavlo_logger logger = {0};
//   logger.size = sizeof logger;
//   logger.user = stderr;
//   logger.printLog = print;
//   tavlo_logger_install(&logger);
//
// Values   `size` is sizeof the table. A shorter one, of an older header, has no callbacks beyond its end; a longer one
//          is TAVLO_MISUSE unless all that this library does not know of it is zero. The table is copied.
// Absent   a callback that is a null pointer answers absent, false or 0 and does nothing. A null pointer instead of a
//          table takes out what is installed, and with nothing installed everything is absent and nothing is logged.
// Threads  a callback may be called on any thread, and by several at once, with no lock held; what it is given ends
//          with the call. The last one that is installed counts. `released` is called once for each table that was
//          installed, by whichever thread was the last to use it, and nothing of that table is called after it.
// Throws   no callback may (tavlo.h).
#ifndef TAVLO_HOST_H
#define TAVLO_HOST_H

#include "tavlo_value.h"

#ifdef __cplusplus
extern "C" {
#endif

// ---- The session package ----

// The texts of a session package, named like the operations of the contract that read them.
typedef int32_t tavlo_package_text;
enum {
  TAVLO_PACKAGE_applicationId = 0,
  TAVLO_PACKAGE_os_version = 1,
  TAVLO_PACKAGE_app_version = 2,
  TAVLO_PACKAGE_device_id = 3,
  TAVLO_PACKAGE_timestamp = 4,
  TAVLO_PACKAGE_app_bundle_name = 5,
  TAVLO_PACKAGE_token = 6,
  TAVLO_PACKAGE_advertisingID = 7,
  TAVLO_PACKAGE_mac_address = 8,
  TAVLO_PACKAGE_device_type = 9,
  TAVLO_PACKAGE_mobile_no = 10,
  TAVLO_PACKAGE_email_address = 11,
  TAVLO_PACKAGE_connection_type = 12,
  TAVLO_PACKAGE_screen_density_x = 13,
  TAVLO_PACKAGE_screen_density_y = 14,
  TAVLO_PACKAGE_screen_width = 15,
  TAVLO_PACKAGE_screen_height = 16,
  TAVLO_PACKAGE_carrier_name = 17,
  TAVLO_PACKAGE_screen_density_category = 18,
  TAVLO_PACKAGE_device_model = 19,
  TAVLO_PACKAGE_language = 20,
  TAVLO_PACKAGE_maturity_rating = 21,
  TAVLO_PACKAGE_asset_value = 22,
  TAVLO_PACKAGE_thirdPartyUserId = 23,
  TAVLO_PACKAGE_source = 24,
  TAVLO_PACKAGE_name = 25,
  TAVLO_PACKAGE_age = 26,
  TAVLO_PACKAGE_sex = 27,
  TAVLO_PACKAGE_location = 28,
  TAVLO_PACKAGE_maritalStatus = 29,
  TAVLO_PACKAGE_birthday = 30,
  TAVLO_PACKAGE_facebook_id = 31,
  TAVLO_PACKAGE_twitter_handle = 32,
  TAVLO_PACKAGE_education = 33,
  TAVLO_PACKAGE_nationality = 34,
  TAVLO_PACKAGE_page = 35,
  TAVLO_PACKAGE_getLatitude = 36,
  TAVLO_PACKAGE_getLongitude = 37,
  TAVLO_PACKAGE_getUserAddress = 38,
  TAVLO_PACKAGE_iosID = 39,  // the session id
  TAVLO_PACKAGE_accesskey = 40,
  TAVLO_PACKAGE_TEXTS = 41  // how many there are
};

// The name of the operation that reads the text, and the text of a name; a null pointer, and -1, when there is none.
TAVLO_API const char* tavlo_package_text_name(tavlo_package_text text);
TAVLO_API tavlo_package_text tavlo_package_text_named(tavlo_text name);

// The record that requests are built from. Each value is read at the moment when its own pair is written.
typedef struct tavlo_package {
  size_t size;
  void* user;
  void (*released)(void* user);
  void (*text)(void* user, tavlo_package_text which, tavlo_answer* answer);
  bool (*limitAdTrackingEnabled)(void* user);
  int32_t (*resolution)(void* user);
  int32_t (*preRoll)(void* user);  // a number, not a truth value
  // What the location fetch writes: degrees as text, and the address.
  void (*setLatitudeAndLogitude)(void* user, tavlo_text latitude, tavlo_text longitude);
  void (*setUserAddress)(void* user, tavlo_text address);
} tavlo_package;

TAVLO_API tavlo_status tavlo_package_install(const tavlo_package* package);

// A session package that is ready to use: it keeps its values in memory. Each value has a guard of its own.
//
// Who makes one frees it; installed, it stays in place when its maker has freed it.
typedef struct tavlo_session tavlo_session;
TAVLO_API tavlo_session* tavlo_session_new(void);           // a null pointer: no memory
TAVLO_API void tavlo_session_free(tavlo_session* session);  // a null pointer is fine
TAVLO_API tavlo_status tavlo_session_install(tavlo_session* session);
// Absent takes the text out. No such text is TAVLO_MISUSE, as a null pointer is everywhere here.
TAVLO_API tavlo_status tavlo_session_set_text(tavlo_session* session, tavlo_package_text which, tavlo_text text);
TAVLO_API tavlo_status tavlo_session_text(const tavlo_session* session, tavlo_package_text which, tavlo_string* text);
TAVLO_API tavlo_status tavlo_session_set_limitAdTrackingEnabled(tavlo_session* session, bool enabled);
TAVLO_API tavlo_status tavlo_session_set_resolution(tavlo_session* session, int32_t resolution);
TAVLO_API tavlo_status tavlo_session_set_preRoll(tavlo_session* session, int32_t preRoll);

// ---- The unique-user counters ----

typedef struct tavlo_unique_user_handler {
  size_t size;
  void* user;
  void (*released)(void* user);
  int32_t (*getIsUserNew)(void* user);
  int32_t (*getUniqueUserDayValue)(void* user);
  void (*getUniqueUserDay)(void* user, tavlo_answer* answer);  // the marker of the day of the day value
  int32_t (*getUniqueUserWeekValue)(void* user);
  int32_t (*getNumberOfWeek)(void* user);
  int32_t (*getUniqueUserMonthValue)(void* user);
  int32_t (*getNumberOfMonth)(void* user);
} tavlo_unique_user_handler;

TAVLO_API tavlo_status tavlo_unique_user_handler_install(const tavlo_unique_user_handler* handler);

// ---- The tracker records ----

// Where the callback puts its records. It is good during that callback only.
typedef struct tavlo_tracker_records tavlo_tracker_records;

// Adds a record after those added before. Its values are texts or numbers, are copied, and may be null pointers: an
// absent one is logged as "(null)" and left out of the payload.
TAVLO_API tavlo_status tavlo_tracker_records_add(tavlo_tracker_records* records, const tavlo_value* networkId,
                                                 const tavlo_value* event, const tavlo_value* count);

typedef struct tavlo_database_handler {
  size_t size;
  void* user;
  void (*released)(void* user);
  void (*getNetworkTrackerDetails)(void* user, tavlo_tracker_records* records);
} tavlo_database_handler;

TAVLO_API tavlo_status tavlo_database_handler_install(const tavlo_database_handler* handler);

// ---- The log and the exception reporter ----

typedef struct tavlo_logger {
  size_t size;
  void* user;
  void (*released)(void* user);
  void (*printLog)(void* user, tavlo_text message);  // no level, no prefix, no newline at the end
} tavlo_logger;

TAVLO_API tavlo_status tavlo_logger_install(const tavlo_logger* logger);

// The contract's class operation: hands the message to the installed logger. An absent one is TAVLO_MISUSE.
TAVLO_API tavlo_status tavlo_print_log(tavlo_text message);

typedef struct tavlo_exception_reporter {
  size_t size;
  void* user;
  void (*released)(void* user);
  // true: done. false: the reporter fails on purpose, and the operation that reported ends with TAVLO_REPORTED.
  bool (*tavloException)(void* user, tavlo_text message);
} tavlo_exception_reporter;

TAVLO_API tavlo_status tavlo_exception_reporter_install(const tavlo_exception_reporter* reporter);

#ifdef __cplusplus
}
#endif

#endif
