/* The four requests, over tables of callbacks; the digest with its reporter, and the extension. */
#include <stdio.h>
#include <string.h>

#include "Check.h"

/* Answers with the number that the text has in the package, but for three: absent, empty and with a NUL inside. */
static void packageText(void* user, tavlo_package_text which, tavlo_answer* answer) {
  char number[16];
  tavlo_text withNul = {"a\0b", 3};
  (void)user;
  if (which == TAVLO_PACKAGE_token) return;
  if (which == TAVLO_PACKAGE_carrier_name) {
    tavlo_answer_text(answer, withNul);
    return;
  }
  sprintf(number, "%d %%", (int)which);
  tavlo_answer_text(answer, tavlo_text_of(which == TAVLO_PACKAGE_page ? "" : number));
}

static bool yes(void* user) {
  (void)user;
  return true;
}
static int32_t numberAt(void* user) { return *(int32_t*)user; }
static int32_t minusOne(void* user) {
  (void)user;
  return -1;
}

static void dayMarker(void* user, tavlo_answer* answer) {
  (void)user;
  tavlo_answer_text(answer, tavlo_text_of("320"));
}

static void addRecord(tavlo_tracker_records* records, const char* network, const char* event, int64_t count) {
  tavlo_value* const networkId = textValue(network);
  tavlo_value* const name = event ? textValue(event) : NULL;
  tavlo_value* const number = tavlo_value_from_int64(count);
  isNumber("add a record", tavlo_tracker_records_add(records, networkId, name, number), TAVLO_OK);
  tavlo_value_free(networkId);
  tavlo_value_free(name);
  tavlo_value_free(number);
}

static void records(void* user, tavlo_tracker_records* added) {
  (void)user;
  addRecord(added, "n1", "click", 3);
  addRecord(added, "n2", "click", 0);
  addRecord(added, "n3", NULL, 7);
}

static int reports = 0;
static bool report(void* user, tavlo_text message) {
  ++reports;
  isNumber("the report",
           message.size == 41 && memcmp(message.data, "md5:() Invalid string for passed for hash", 41) == 0, 1);
  return user == NULL;
}

static void checkStrings(void) {
  tavlo_string text;
  gives("getAdditionalRequestingString", tavlo_getAdditionalRequestingString("ignored", &text), &text,
        "appId=0%20%25&os_version=1%20%25&app_version=2 %&device_id=3 %&timestamp=4 %&app_bundle_name=5%20%25&"
        "sdk_version=4.1.0&token=(null)&advertisingID=7%20%25&limitedTracking=1&mac_address=8%20%25&"
        "device_type=9%20%25&mobile_no=10%20%25&email_address=11%20%25&connection_type=12%20%25&"
        "screen_density_x=13 %&screen_density_y=14 %&screen_height=16 %&carrier_name=a\\0b&"
        "screen_density_category=18%20%25&device_model=19%20%25&language=20%20%25&maturity_rating=21%20%25&"
        "asset_value=22%20%25&opt_userid=23%20%25&source=24%20%25&name=25%20%25&age=26%20%25&sex=27%20%25&"
        "location=28%20%25&marital_status=29%20%25&birthday=30%20%25&facebook_id=31%20%25&"
        "twitter_handle=32%20%25&education=33%20%25&nationality=34%20%25&Page=&lat=36%20%25&long=37%20%25&"
        "address=38%20%25&sessionId=39%20%25");
  gives("getInAppNotificationAdditionalRequest", tavlo_getInAppNotificationAdditionalRequest(&text), &text,
        "app_id=(null)&os_version=1%20%25&app_version=2 %&device_id=3 %&timestamp=4 %&app_bundle_name=5%20%25&"
        "sdk_version=4.1.0&token=(null)&advertisingID=7%20%25&limitedTracking=1&device_type=9%20%25&"
        "connection_type=12%20%25&screen_density_x=13 %&screen_density_y=14 %&swidth=15 %&sheight=16 %&"
        "carrier_name=a\\0b&screen_density_category=18%20%25&device_model=19%20%25&language=20%20%25&"
        "opt_userid=(null)&os_id=3 %&Page=&sessionId=39 %");
  gives("getUserInfoRequestString", tavlo_getUserInfoRequestString(&text), &text,
        "&ru=-1&ru_n=&uud=-1&uud_n=320&uuw=-1&uuw_n=46&uum=-1&uum_n=46");
}

static void checkTracker(void) {
  tavlo_value* payload;
  const tavlo_status status = tavlo_trackerNetworkSessionData(&payload);
  isNumber("the payload's keys", (long)tavlo_value_count(payload), 35);
  isNumber("its counts", (long)tavlo_value_count(tavlo_value_find(payload, tavlo_text_of("network_event_count"))), 2);
  givesValue("trackerNetworkSessionData", status, payload,
             "{Key = 40 %; resolution = 46; preroll = 46; offerids = 0; appId = 0%20%25; os_version = 1%20%25; "
             "app_version = 2%20%25; device_id = 3%20%25; Page = ; token = (null); timestamp = 4%20%25; "
             "app_bundle_name = 5%20%25; sdk_version = 4.1.0; advertisingID = 7%20%25; limitedTracking = 1; "
             "device_type = 9%20%25; connection_type = 12%20%25; screen_density_x = 13%20%25; "
             "screen_density_y = 14%20%25; swidth = 720; sheight = 16 %; screen_density_category = 18%20%25; "
             "carrier_name = a%00b; device_model = 19%20%25; language = 20%20%25; ru = -1; uud = -1; uud_n = 320; "
             "uuw = -1; uuw_n = 46; uum = -1; uum_n = 46; user_id = 1234; track_id = 2423432432; "
             "network_event_count = ({network_id = n1; event = click; count = 3}, {network_id = n3; count = 7})}");
  wrote("the console's lines of the records", "console: n1  click  3\nconsole: n2  click  0\nconsole: n3  (null)  7\n");
}

static void checkUtilities(void) {
  tavlo_text abcAndMore = {"abc\0more", 8};
  tavlo_value* const text = tavlo_value_from_text(abcAndMore);
  tavlo_value* const number = tavlo_value_from_int64(7);
  tavlo_exception_reporter reporter = {0};
  tavlo_string digest;
  reporter.size = sizeof reporter;
  reporter.tavloException = report;

  gives("md5", tavlo_md5(text, &digest), &digest, "900150983cd24fb0d6963f7d28e17f72");
  gives("md5 of nothing", tavlo_md5(NULL, &digest), &digest, "absent");
  isNumber("install a reporter", tavlo_exception_reporter_install(&reporter), TAVLO_OK);
  gives("md5 of a number", tavlo_md5(number, &digest), &digest, "absent");
  reporter.user = &digest;
  isNumber("install a reporter that fails", tavlo_exception_reporter_install(&reporter), TAVLO_OK);
  isNumber("md5 with that reporter", tavlo_md5(number, &digest), TAVLO_REPORTED);
  isNumber("reports", reports, 2);
  tavlo_exception_reporter_install(NULL);
  tavlo_value_free(text);
  tavlo_value_free(number);

  gives("getFileExtensionFromUrl", tavlo_getFileExtensionFromUrl(tavlo_text_of("http://h/v/clip.MP4?q=1#f"), &digest),
        &digest, "MP4");
  gives("the extension of no URL", tavlo_getFileExtensionFromUrl(tavlo_text_of("a b"), &digest), &digest, "absent");
  gives("url_encode", tavlo_url_encode(tavlo_text_of("a b\xC3\xA9"), &digest), &digest, "a%20b%C3%A9");
}

void checkRequests(void) {
  static int32_t week = 46;
  tavlo_package package = {0};
  tavlo_unique_user_handler users = {0};
  tavlo_database_handler database = {0};
  tavlo_platform platform = {0};
  tavlo_console console = {0};
  package.size = sizeof package;
  package.user = &week;
  package.text = packageText;
  package.limitAdTrackingEnabled = yes;
  package.resolution = numberAt;
  package.preRoll = numberAt;
  users.size = sizeof users;
  users.user = &week;
  users.getIsUserNew = minusOne;
  users.getUniqueUserDayValue = minusOne;
  users.getUniqueUserDay = dayMarker;
  users.getUniqueUserWeekValue = minusOne;
  users.getNumberOfWeek = numberAt;
  users.getUniqueUserMonthValue = minusOne;
  users.getNumberOfMonth = numberAt;
  database.size = sizeof database;
  database.getNetworkTrackerDetails = records;
  console.size = sizeof console;
  console.log = consoleLine;
  platform.size = sizeof platform;
  platform.container = tavlo_text_of(container);
  platform.console = &console;
  isNumber("install the package", tavlo_package_install(&package), TAVLO_OK);
  isNumber("install the counters", tavlo_unique_user_handler_install(&users), TAVLO_OK);
  isNumber("install the database", tavlo_database_handler_install(&database), TAVLO_OK);
  isNumber("install the platform", tavlo_platform_install(&platform), TAVLO_OK);

  checkStrings();
  checkTracker();
  checkUtilities();

  tavlo_package_install(NULL);
  tavlo_unique_user_handler_install(NULL);
  tavlo_database_handler_install(NULL);
}
