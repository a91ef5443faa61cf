/* Identifiers, position and address, resources, log export: over the host's own services where there are any. */
#include <stdio.h>
#include <string.h>

#include "Check.h"

static tavlo_geocode_request* asked = NULL;
static int presented = 0;

static bool yes(void* user) {
  (void)user;
  return true;
}
static int32_t always(void* user) {
  (void)user;
  return 3;
}
static bool position(void* user, tavlo_coordinate* newest) {
  (void)user;
  newest->latitude = -33.8688;
  newest->longitude = 151.2093;
  return true;
}
static void keepRequest(void* user, const tavlo_coordinate* where, tavlo_geocode_request* request) {
  (void)user;
  isNumber("the geocoder is asked for the position", where && where->latitude < -33.86, true);
  asked = request;
}
static bool neverOpens(void* user, tavlo_text url) {
  (void)user;
  (void)url;
  return false;
}
static bool present(void* user, tavlo_text url, tavlo_text window, bool animated) {
  (void)user;
  ++presented;
  isNumber("the menu is animated", animated, true);
  isNumber("the window goes through", window.size == 6 && memcmp(window.data, "x11:2a", 6) == 0, true);
  consoleLine(NULL, url);
  return false;
}

static void checkIdentifiers(void) {
  tavlo_string id;
  isNumber("setAppIdToUserDefault", tavlo_setAppIdToUserDefault(tavlo_text_of("app & co")), TAVLO_OK);
  isNumber("an absent one is ignored", tavlo_setAppIdToUserDefault(tavlo_text_of(NULL)), TAVLO_OK);
  isNumber("setOptionalIdToUserDefault", tavlo_setOptionalIdToUserDefault(tavlo_text_of("user")), TAVLO_OK);
  isNumber("setSecurityKeyToUserDefault", tavlo_setSecurityKeyToUserDefault(tavlo_text_of("key")), TAVLO_OK);
  gives("getAppIdFromUserDefault", tavlo_getAppIdFromUserDefault(&id), &id, "app & co");
  gives("getOptionalIdFromUserDefault", tavlo_getOptionalIdFromUserDefault(&id), &id, "user");
  gives("getSecurityKeyTFromUserDefault", tavlo_getSecurityKeyTFromUserDefault(&id), &id, "key");
}

static void checkLocation(void) {
  tavlo_session* const session = tavlo_session_new();
  tavlo_placemark placemark = {0};
  const tavlo_placemark* const placemarks[] = {&placemark};
  tavlo_string text;
  placemark.size = sizeof placemark;
  placemark.country = tavlo_text_of("Australia");
  placemark.locality = tavlo_text_of("Sydney");
  isNumber("install the session", tavlo_session_install(session), TAVLO_OK);

  isNumber("fetchCurrentLocation", tavlo_fetchCurrentLocation(), TAVLO_OK);
  gives("latitude", tavlo_session_text(session, TAVLO_PACKAGE_getLatitude, &text), &text, "-33.868800");
  gives("longitude", tavlo_session_text(session, TAVLO_PACKAGE_getLongitude, &text), &text, "151.209300");
  gives("address", tavlo_session_text(session, TAVLO_PACKAGE_getUserAddress, &text), &text, "");
  wrote("its line", "console: location authorization: 3\n");
  isNumber("answer", tavlo_geocode_request_answer(asked, placemarks, 1), TAVLO_OK);
  gives("address", tavlo_session_text(session, TAVLO_PACKAGE_getUserAddress, &text), &text,
        "{\"city\":\"Sydney\",\"country\":\"Australia\"}");
  wrote("its lines",
        "console: reverseGeocodeLocation:completionHandler: Completion Handler called!\n"
        "console: placemarks=Sydney, Australia\nconsole: Current Location\n"
        "console: placemark.ISOcountryCode =(null)\nconsole: placemark.country =Australia\n"
        "console: placemark.postalCode =(null)\nconsole: placemark.administrativeArea =(null)\n"
        "console: placemark.locality =Sydney\nconsole: placemark.subLocality =(null)\n"
        "console: placemark.subThoroughfare =(null)\n");

  tavlo_fetchCurrentLocation();
  isNumber("an empty list of placemarks", tavlo_geocode_request_answer(asked, placemarks, 0), TAVLO_FAILED);
  tavlo_fetchCurrentLocation();
  isNumber("an error", tavlo_geocode_request_fail(asked, tavlo_text_of("no one knows")), TAVLO_OK);
  wrote("lines of both",
        "console: location authorization: 3\n"
        "console: reverseGeocodeLocation:completionHandler: Completion Handler called!\n"
        "console: location authorization: 3\n"
        "console: reverseGeocodeLocation:completionHandler: Completion Handler called!\n"
        "console: Geocode failed with error: no one knows\n");
  tavlo_fetchCurrentLocation();
  tavlo_geocode_request_drop(asked);
  wrote("one line", "console: location authorization: 3\n");
  tavlo_session_free(session);
}

static void checkImage(const char* what, tavlo_status status, tavlo_image* image) {
  isNumber(what, status, TAVLO_OK);
  isNumber("width", (long)tavlo_image_width(image), 64);
  isNumber("height", (long)tavlo_image_height(image), 64);
  isNumber("pixels", (long)tavlo_image_pixels(image).size, 64 * 64 * 4);
  tavlo_image_free(image);
}

static void checkResources(void) {
  tavlo_bundle* bundle;
  tavlo_bundle* again;
  tavlo_image* image;
  tavlo_string path;
  tavlo_status status = tavlo_frameworkBundle(&bundle);
  char expected[4096];
  isNumber("frameworkBundle", status, TAVLO_OK);
  sprintf(expected, "log: Loading framework budle once ...\nlog: Loaded framework bundle .. with path %s/%s\n",
          resources, "TavloSDKResource.bundle");
  wrote("its lines", expected);
  sprintf(expected, "%s/TavloSDKResource.bundle/mute.png", resources);
  gives("a resource", tavlo_bundle_path(bundle, tavlo_text_of("mute"), tavlo_text_of("png"), &path), &path, expected);
  gives("no resource", tavlo_bundle_path(bundle, tavlo_text_of("mute"), tavlo_text_of("gif"), &path), &path, "absent");
  isNumber("frameworkBundle again", tavlo_frameworkBundle(&again), TAVLO_OK);
  isNumber("the same bundle", tavlo_bundle_same(bundle, again), true);
  tavlo_bundle_free(bundle);
  tavlo_bundle_free(again);

  status = tavlo_getVolumeImage(&image);
  checkImage("getVolumeImage", status, image);
  status = tavlo_getMuteImage(&image);
  checkImage("getMuteImage", status, image);
  wrote("lines of all three",
        "log: Already Loaded framework bundle\n"
        "log: Calling Get volume Image first time\nlog: Already Loaded framework bundle\n"
        "log: Calling Get volume Image first time\nlog: Already Loaded framework bundle\n");
}

static void checkExport(void) {
  bool installed = true;
  isNumber("getExportTavloSDKLog", tavlo_getExportTavloSDKLog(tavlo_text_of("x11:2a")), TAVLO_OK);
  isNumber("menus", presented, 1);
  wrote("its lines",
        "console: Documents Directory: file://C:/Documents/\n"
        "console: file://C:/Documents/TavloCache/TavloLogFile.txt\nlog: Log file is created\n");
  isNumber("quillmixInstalledOnThisDevice", tavlo_quillmixInstalledOnThisDevice(&installed), TAVLO_OK);
  isNumber("it is not", installed, false);
}

void checkServices(void) {
  tavlo_platform platform = {0};
  tavlo_console console = {0};
  tavlo_location_services location = {0};
  tavlo_geocoder geocoder = {0};
  tavlo_application application = {0};
  console.size = sizeof console;
  console.log = consoleLine;
  location.size = sizeof location;
  location.locationServicesEnabled = yes;
  location.authorizationStatus = always;
  location.location = position;
  geocoder.size = sizeof geocoder;
  geocoder.reverseGeocodeLocation = keepRequest;
  application.size = sizeof application;
  application.canOpenURL = neverOpens;
  application.presentOpenInMenu = present;
  platform.size = sizeof platform;
  platform.container = tavlo_text_of(container);
  platform.domain = tavlo_text_of("consumer");
  platform.resources = tavlo_text_of(resources);
  platform.console = &console;
  platform.location_services = &location;
  platform.geocoder = &geocoder;
  platform.application = &application;
  isNumber("install the platform", tavlo_platform_install(&platform), TAVLO_OK);

  checkIdentifiers();
  checkLocation();
  checkResources();
  checkExport();
}
