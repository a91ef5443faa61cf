#include "operations.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef tavlo_status text_of_text(tavlo_text, tavlo_string*);
typedef tavlo_status text_of_nothing(tavlo_string*);
typedef tavlo_status nothing_of_text(tavlo_text);
typedef tavlo_status nothing_of_nothing(void);

static const struct {
  const char* name;
  text_of_text* call;
} kTextsOfTexts[] = {
    {"urlEncode", tavlo_url_encode},
    {"getDocumentDirectoryPath", tavlo_getDocumentDirectoryPath},
    {"getCacheVideoDataPath", tavlo_getCacheVideoDataPath},
    {"getCacheVideoPathOfSavedInDB", tavlo_getCacheVideoPathOfSavedInDB},
    {"getCacheBannerImagePath", tavlo_getCacheBannerImagePath},
    {"getFileExtensionFromUrl", tavlo_getFileExtensionFromUrl},
};

static const struct {
  const char* name;
  text_of_nothing* call;
} kTexts[] = {
    {"getInAppNotificationAdditionalRequest", tavlo_getInAppNotificationAdditionalRequest},
    {"getUserInfoRequestString", tavlo_getUserInfoRequestString},
    {"getAppIdFromUserDefault", tavlo_getAppIdFromUserDefault},
    {"getOptionalIdFromUserDefault", tavlo_getOptionalIdFromUserDefault},
    {"getSecurityKeyTFromUserDefault", tavlo_getSecurityKeyTFromUserDefault},
};

static const struct {
  const char* name;
  nothing_of_text* call;
} kTakers[] = {
    {"cachedBannerImage", tavlo_cachedBannerImage},
    {"setAppIdToUserDefault", tavlo_setAppIdToUserDefault},
    {"setOptionalIdToUserDefault", tavlo_setOptionalIdToUserDefault},
    {"setSecurityKeyToUserDefault", tavlo_setSecurityKeyToUserDefault},
};

static const struct {
  const char* name;
  nothing_of_nothing* call;
} kActions[] = {{"clearCache", tavlo_clearCache}, {"fetchCurrentLocation", tavlo_fetchCurrentLocation}};

#define COUNT(table) (sizeof(table) / sizeof *(table))

static bool call_by_table(const char* name, tavlo_text text, outcome* result) {
  tavlo_string answer = {NULL, 0};
  for (size_t i = 0; i < COUNT(kTextsOfTexts); ++i) {
    if (strcmp(kTextsOfTexts[i].name, name) != 0) continue;
    result->status = kTextsOfTexts[i].call(text, &answer);
    return result->answer = json_of_string(&answer), true;
  }
  for (size_t i = 0; i < COUNT(kTexts); ++i) {
    if (strcmp(kTexts[i].name, name) != 0) continue;
    result->status = kTexts[i].call(&answer);
    return result->answer = json_of_string(&answer), true;
  }
  for (size_t i = 0; i < COUNT(kTakers); ++i) {
    if (strcmp(kTakers[i].name, name) == 0) return result->status = kTakers[i].call(text), true;
  }
  for (size_t i = 0; i < COUNT(kActions); ++i) {
    if (strcmp(kActions[i].name, name) == 0) return result->status = kActions[i].call(), true;
  }
  return false;
}

/* Takes the value over. */
static json_t* json_of_taken(tavlo_value* value) {
  json_t* json = json_of_value(value);
  tavlo_value_free(value);
  return json;
}

/* The world's images are known by their width. */
static json_t* name_of(tavlo_image* image) {
  const size_t width = tavlo_image_width(image);
  tavlo_image_free(image);
  return width == 0 ? json_null() : json_string(width == 1 ? "volume.png" : "mute.png");
}

/* A bundle tells the paths of what is in it; the world's always have one of these. */
static json_t* path_of(tavlo_bundle* bundle, const char* resources) {
  char path[512];
  if (!bundle) return json_null();
  snprintf(path, sizeof path, "%s/TavloSDKResource.bundle", resources);
  tavlo_bundle_free(bundle);
  return json_string(path);
}

static bool call_resources(const char* name, const char* resources, outcome* result) {
  tavlo_bundle* bundle = NULL;
  tavlo_image* image = NULL;
  if (strcmp(name, "frameworkBundle") == 0) {
    result->status = tavlo_frameworkBundle(&bundle);
    return result->answer = path_of(bundle, resources), true;
  }
  if (strcmp(name, "getVolumeImage") != 0 && strcmp(name, "getMuteImage") != 0) return false;
  result->status = strcmp(name, "getMuteImage") == 0 ? tavlo_getMuteImage(&image) : tavlo_getVolumeImage(&image);
  return result->answer = name_of(image), true;
}

static bool call_with_value(const char* name, const tavlo_value* argument, outcome* result) {
  tavlo_value* answer = NULL;
  tavlo_string text = {NULL, 0};
  bool truth = false;
  if (strcmp(name, "md5") == 0) {
    result->status = tavlo_md5(argument, &text);
    return result->answer = json_of_string(&text), true;
  }
  if (strcmp(name, "getAdditionalRequestingString") == 0) {
    result->status = tavlo_getAdditionalRequestingString(argument, &text);
    return result->answer = json_of_string(&text), true;
  }
  if (strcmp(name, "trackerNetworkSessionData") == 0) {
    result->status = tavlo_trackerNetworkSessionData(&answer);
    return result->answer = json_of_taken(answer), true;
  }
  if (strcmp(name, "getCachedVideoList") == 0) {
    tavlo_value_boolean(argument, &truth);
    result->status = tavlo_getCachedVideoList(truth, &answer);
    return result->answer = json_of_taken(answer), true;
  }
  if (strcmp(name, "sortCacahedVideoDates") == 0) {
    result->status = tavlo_sortCacahedVideoDates(argument, &answer);
    return result->answer = json_of_taken(answer), true;
  }
  if (strcmp(name, "deleteCachedVideo") == 0) {
    result->status = tavlo_deleteCachedVideo(tavlo_value_text(argument), &truth);
    return result->answer = json_boolean(truth), true;
  }
  if (strcmp(name, "quillmixInstalledOnThisDevice") == 0) {
    result->status = tavlo_quillmixInstalledOnThisDevice(&truth);
    return result->answer = json_boolean(truth), true;
  }
  if (strcmp(name, "getExportTavloSDKLog") == 0) {
    return result->status = tavlo_getExportTavloSDKLog(tavlo_text_of(argument ? "x11:1" : NULL)), true;
  }
  return false;
}

bool call(const char* operation, const json_t* argument, const char* resources, outcome* result) {
  result->status = TAVLO_OK;
  result->answer = NULL;
  bool known = call_by_table(operation, text_of_json(argument), result) || call_resources(operation, resources, result);
  if (!known) {
    tavlo_value* value = value_of(argument);
    known = call_with_value(operation, value, result);
    tavlo_value_free(value);
  }
  if (!result->answer) result->answer = json_null();
  return known;
}
