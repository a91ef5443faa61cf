#include <string.h>

#include "world.h"

static void ask(world* w, const char* what) { json_array_append_new(w->asks, json_string(what)); }

/* ---- Session package ---- */

static void package_text(void* user, tavlo_package_text which, tavlo_answer* answer) {
  world* w = user;
  const char* name = tavlo_package_text_name(which);
  ask(w, name);
  tavlo_answer_text(answer, text_of_json(member(w->package, name)));
}

static bool limit_ad_tracking(void* user) {
  world* w = user;
  ask(w, "limitAdTrackingEnabled");
  return json_is_true(member(w->package, "limitAdTrackingEnabled"));
}

static int32_t package_integer(world* w, const char* name) {
  ask(w, name);
  return (int32_t)json_integer_value(member(w->package, name));
}
static int32_t resolution(void* user) { return package_integer(user, "resolution"); }
static int32_t pre_roll(void* user) { return package_integer(user, "preRoll"); }

static void set_position(void* user, tavlo_text latitude, tavlo_text longitude) {
  world* w = user;
  ask(w, "setLatitude:AndLogitude:");
  json_object_set_new(w->package, "getLatitude", json_of_text(latitude));
  json_object_set_new(w->package, "getLongitude", json_of_text(longitude));
}
static void set_address(void* user, tavlo_text address) {
  world* w = user;
  ask(w, "setUserAddress:");
  json_object_set_new(w->package, "getUserAddress", json_of_text(address));
}

/* ---- Counters ---- */

static const json_t* counter(world* w, const char* name) {
  ask(w, name);
  return member(member(w->given, "counters"), name);
}
static int32_t number(void* user, const char* name) { return (int32_t)json_integer_value(counter(user, name)); }
static int32_t is_new(void* user) { return number(user, "getIsUserNew"); }
static int32_t day_value(void* user) { return number(user, "getUniqueUserDayValue"); }
static void day(void* user, tavlo_answer* answer) {
  tavlo_answer_text(answer, text_of_json(counter(user, "getUniqueUserDay")));
}
static int32_t week_value(void* user) { return number(user, "getUniqueUserWeekValue"); }
static int32_t week(void* user) { return number(user, "getNumberOfWeek"); }
static int32_t month_value(void* user) { return number(user, "getUniqueUserMonthValue"); }
static int32_t month(void* user) { return number(user, "getNumberOfMonth"); }

/* ---- Records, log, reports ---- */

static void details(void* user, tavlo_tracker_records* records) {
  world* w = user;
  size_t i;
  json_t* record;
  ask(w, "getNetworkTrackerDetails");
  json_array_foreach(member(w->given, "records"), i, record) {
    tavlo_value* network = value_of(member(record, "networkID"));
    tavlo_value* event = value_of(member(record, "event"));
    tavlo_value* count = value_of(member(record, "count"));
    tavlo_tracker_records_add(records, network, event, count);
    tavlo_value_free(network);
    tavlo_value_free(event);
    tavlo_value_free(count);
  }
}

static void print_log(void* user, tavlo_text message) {
  json_array_append_new(((world*)user)->log, json_of_text(message));
}

static bool report(void* user, tavlo_text message) {
  json_array_append_new(((world*)user)->reports, json_of_text(message));
  return true;
}

bool host_begin(world* w) {
  const tavlo_package package = {.size = sizeof package,
                                 .user = w,
                                 .text = package_text,
                                 .limitAdTrackingEnabled = limit_ad_tracking,
                                 .resolution = resolution,
                                 .preRoll = pre_roll,
                                 .setLatitudeAndLogitude = set_position,
                                 .setUserAddress = set_address};
  const tavlo_unique_user_handler counters = {.size = sizeof counters,
                                              .user = w,
                                              .getIsUserNew = is_new,
                                              .getUniqueUserDayValue = day_value,
                                              .getUniqueUserDay = day,
                                              .getUniqueUserWeekValue = week_value,
                                              .getNumberOfWeek = week,
                                              .getUniqueUserMonthValue = month_value,
                                              .getNumberOfMonth = month};
  const tavlo_database_handler database = {.size = sizeof database, .user = w, .getNetworkTrackerDetails = details};
  const tavlo_logger logger = {.size = sizeof logger, .user = w, .printLog = print_log};
  const tavlo_exception_reporter reporter = {.size = sizeof reporter, .user = w, .tavloException = report};
  const json_t* given = member(w->given, "package");
  w->package = json_is_object(given) ? json_deep_copy(given) : json_object();
  return tavlo_package_install(json_is_null(given) ? NULL : &package) == TAVLO_OK &&
         tavlo_unique_user_handler_install(json_is_null(member(w->given, "counters")) ? NULL : &counters) == TAVLO_OK &&
         tavlo_database_handler_install(&database) == TAVLO_OK && tavlo_logger_install(&logger) == TAVLO_OK &&
         tavlo_exception_reporter_install(&reporter) == TAVLO_OK;
}
