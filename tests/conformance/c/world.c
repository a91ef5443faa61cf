#include "world.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void ask(world* w, const char* format, const char* what, size_t size) {
  char text[256];
  snprintf(text, sizeof text, format, (int)size, what);
  json_array_append_new(w->asks, json_string(text));
}

static void console_log(void* user, tavlo_text message) {
  json_array_append_new(((world*)user)->console, json_of_text(message));
}

/* ---- URLs, settings, queue ---- */

static void url_data(void* user, tavlo_text url, tavlo_answer* data) {
  json_t* key = json_of_text(url);
  const json_t* found = member(member(((world*)user)->given, "urls"), json_string_value(key));
  if (found) {
    json_t* bytes = bytes_of(found);
    tavlo_answer_text(data, text_of_json(bytes));
    json_decref(bytes);
  }
  json_decref(key);
}

static tavlo_value* object_for_key(void* user, tavlo_text key) {
  world* w = user;
  ask(w, "objectForKey:%.*s", key.data, key.size);
  json_t* name = json_of_text(key);
  const json_t* found = member(w->pending, json_string_value(name));
  if (!found) found = member(w->settings, json_string_value(name));
  json_decref(name);
  return value_of(found);
}

static void set_object(void* user, const tavlo_value* value, tavlo_text key) {
  world* w = user;
  ask(w, "setObject:forKey:%.*s", key.data, key.size);
  json_t* name = json_of_text(key);
  json_object_set_new_nocheck(w->pending, json_string_value(name), json_of_value(value));
  json_decref(name);
}

static bool synchronize(void* user) {
  world* w = user;
  ask(w, "%.*s", "synchronize", strlen("synchronize"));
  json_object_update(w->settings, w->pending);
  json_object_clear(w->pending);
  return true;
}

static void dispatch(void* user, tavlo_task* task) {
  world* w = user;
  if (w->task_count == MOST_WAITING) abort();
  w->tasks[w->task_count++] = task;
}

/* ---- Position and geocoder ---- */

static const json_t* location_of(const world* w, const char* name) {
  return member(member(w->given, "location"), name);
}

static bool enabled(void* user) {
  ask(user, "%.*s", "locationServicesEnabled", 99);
  return !json_is_false(location_of(user, "enabled"));
}
static int32_t status(void* user) {
  const json_t* given = location_of(user, "status");
  ask(user, "%.*s", "authorizationStatus", 99);
  return given ? (int32_t)json_integer_value(given) : 3;
}
static void start_updating(void* user) { ask(user, "%.*s", "startUpdatingLocation", 99); }

/* Each read takes the next fix; the last one stays. */
static bool location(void* user, tavlo_coordinate* newest) {
  world* w = user;
  const json_t* fix = location_of(w, "fix");
  const json_t* fixes = location_of(w, "fixes");
  ask(w, "%.*s", "location", 99);
  if (fixes) {
    fix = json_array_get(fixes, w->fix);
    if (w->fix + 1 < json_array_size(fixes)) ++w->fix;
  }
  if (!json_is_array(fix)) return false;
  newest->latitude = json_number_value(json_array_get(fix, 0));
  newest->longitude = json_number_value(json_array_get(fix, 1));
  return true;
}

static void reverse_geocode(void* user, const tavlo_coordinate* position, tavlo_geocode_request* request) {
  world* w = user;
  char place[64] = "(null)";
  if (position) snprintf(place, sizeof place, "%f,%f", position->latitude, position->longitude);
  ask(w, "reverseGeocodeLocation:%.*s", place, sizeof place);
  if (w->look_up_count == MOST_WAITING) abort();
  w->look_ups[w->look_up_count++] = request;
}

static bool answer(tavlo_geocode_request* request, const json_t* step) {
  const json_t* given = member(step, "placemarks");
  const json_t* error = member(step, "error");
  tavlo_placemark marks[4];
  const tavlo_placemark* list[4];
  const size_t count = json_array_size(given);
  if (error) return tavlo_geocode_request_fail(request, text_of_json(error)) == TAVLO_OK;
  if (count > 4) abort();
  for (size_t i = 0; i < count; ++i) {
    const json_t* mark = json_array_get(given, i);
    marks[i] = (tavlo_placemark){.size = sizeof *marks,
                                 .ISOcountryCode = text_of_json(member(mark, "ISOcountryCode")),
                                 .country = text_of_json(member(mark, "country")),
                                 .postalCode = text_of_json(member(mark, "postalCode")),
                                 .administrativeArea = text_of_json(member(mark, "administrativeArea")),
                                 .locality = text_of_json(member(mark, "locality")),
                                 .subLocality = text_of_json(member(mark, "subLocality")),
                                 .thoroughfare = text_of_json(member(mark, "thoroughfare"))};
    list[i] = &marks[i];
  }
  return tavlo_geocode_request_answer(request, json_is_array(given) ? list : NULL, count) == TAVLO_OK;
}

/* ---- Other apps ---- */

static bool can_open(void* user, tavlo_text url) {
  ask(user, "canOpenURL:%.*s", url.data, url.size);
  return json_is_true(member(member(((world*)user)->given, "apps"), "opens"));
}

/* The rectangle is always the empty one here. */
static bool present(void* user, tavlo_text url, tavlo_text window, bool animated) {
  world* w = user;
  json_array_append_new(w->menus, json_pack("{so s[iiii] sb sb}", "url", json_of_text(url), "rect", 0, 0, 0, 0, "view",
                                            window.data != NULL, "animated", animated));
  return !json_is_false(member(member(w->given, "apps"), "shows"));
}

/* ---- All of it ---- */

static bool platform_begin(world* w) {
  const tavlo_console console = {.size = sizeof console, .user = w, .log = console_log};
  const tavlo_url_data urls = {.size = sizeof urls, .user = w, .dataWithContentsOfURL = url_data};
  tavlo_file_manager files = kFileManager;
  const tavlo_user_defaults defaults = {.size = sizeof defaults,
                                        .user = w,
                                        .objectForKey = object_for_key,
                                        .setObjectForKey = set_object,
                                        .synchronize = synchronize};
  const tavlo_background_queue queue = {.size = sizeof queue, .user = w, .dispatchAsync = dispatch};
  const tavlo_location_services services = {.size = sizeof services,
                                            .user = w,
                                            .locationServicesEnabled = enabled,
                                            .authorizationStatus = status,
                                            .startUpdatingLocation = start_updating,
                                            .location = location};
  const tavlo_geocoder geocoder = {.size = sizeof geocoder, .user = w, .reverseGeocodeLocation = reverse_geocode};
  const tavlo_application application = {
      .size = sizeof application, .user = w, .canOpenURL = can_open, .presentOpenInMenu = present};
  files.user = w;
  const tavlo_platform platform = {.size = sizeof platform,
                                   .container = tavlo_text_of(w->resources),
                                   .resources = tavlo_text_of(w->resources),
                                   .console = &console,
                                   .url_data = &urls,
                                   .file_manager = &files,
                                   .user_defaults = &defaults,
                                   .background_queue = &queue,
                                   .location_services = &services,
                                   .geocoder = &geocoder,
                                   .application = &application};
  return tavlo_platform_install(&platform) == TAVLO_OK;
}

void world_forget(world* w) {
  json_array_clear(w->log);
  json_array_clear(w->console);
  json_array_clear(w->reports);
  json_array_clear(w->asks);
  json_array_clear(w->menus);
}

bool world_begin(world* w, const json_t* given, const char* resources) {
  const json_t* settings = member(given, "settings");
  memset(w, 0, sizeof *w);
  w->given = given;
  w->resources = resources;
  w->log = json_array();
  w->console = json_array();
  w->reports = json_array();
  w->asks = json_array();
  w->menus = json_array();
  w->settings = settings ? json_deep_copy(settings) : json_object();
  w->pending = json_object();
  files_begin(w);
  json_t* both = json_pack("[ss]", "volume.png", "mute.png");
  bundle_write(w, member(given, "bundle") ? member(given, "bundle") : both);
  json_decref(both);
  return host_begin(w) && platform_begin(w);
}

bool world_act(world* w, const char* what, const json_t* step) {
  if (strcmp(what, "runTasks") == 0) {
    for (size_t i = 0; i < w->task_count; ++i) tavlo_task_run(w->tasks[i]);
    w->task_count = 0;
  } else if (strcmp(what, "answer") == 0) {
    return answer(w->look_ups[json_integer_value(member(step, "lookUp"))], step);
  } else if (strcmp(what, "restart") == 0) {
    json_object_clear(w->pending);
  } else if (strcmp(what, "set") == 0) {
    json_object_update(w->package, (json_t*)member(step, "package"));
  } else if (strcmp(what, "remove") == 0) {
    char path[512];
    snprintf(path, sizeof path, "/app/Documents/%s", json_string_value(member(step, "path")));
    files_remove(w, path);
  } else if (strcmp(what, "bundle") == 0) {
    bundle_write(w, member(step, "images"));
  } else {
    return false;
  }
  return true;
}
