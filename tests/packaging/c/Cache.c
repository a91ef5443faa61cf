/* The media cache: its nine operations on files of the library's own platform, downloads from a table. */
#include <stdio.h>
#include <string.h>

#include "Check.h"

static tavlo_task* waiting = NULL;

static void keepTask(void* user, tavlo_task* task) {
  (void)user;
  waiting = task;
}

static void fetch(void* user, tavlo_text url, tavlo_answer* data) {
  tavlo_text bytes = {"P\0NG", 4};
  (void)user;
  if (url.size == 16 && memcmp(url.data, "http://h/img.png", 16) == 0) tavlo_answer_text(data, bytes);
}

static void writeFile(const char* name, const char* data, size_t size) {
  char path[4096];
  FILE* file;
  sprintf(path, "%s/Documents/TavloCache/%s", container, name);
  file = fopen(path, "wb");
  if (!file || fwrite(data, 1, size, file) != size || fclose(file) != 0) isText(path, "cannot be written", "written");
}

static void checkPaths(void) {
  tavlo_string path;
  bool removed = false;
  gives("getDocumentDirectoryPath", tavlo_getDocumentDirectoryPath(tavlo_text_of("a b"), &path), &path,
        "C:/Documents/TavloCache/a b");
  wrote("its lines", "log: TavloCache directory created!\nlog: Cached directory path : C:/Documents/TavloCache/a b\n");

  writeFile("d41b4ed42b5cec0e1794ba03120ab39d.mp4", "video", 5);
  gives("getCacheVideoDataPath", tavlo_getCacheVideoDataPath(tavlo_text_of("http://h/v.mp4"), &path), &path,
        "C:/Documents/TavloCache/d41b4ed42b5cec0e1794ba03120ab39d.mp4");
  wrote("its line", "log: Cached directory path : C:/Documents/TavloCache/d41b4ed42b5cec0e1794ba03120ab39d.mp4\n");
  gives("getCacheVideoDataPath of nothing", tavlo_getCacheVideoDataPath(tavlo_text_of(NULL), &path), &path, "absent");
  wrote("its line", "log: getCacheVideoDataPath() - ERROR: Passed file url parameter is nil\n");
  gives("getCacheVideoPathOfSavedInDB", tavlo_getCacheVideoPathOfSavedInDB(tavlo_text_of("none"), &path), &path,
        "absent");
  wrote("its lines",
        "log: Cached directory path : C:/Documents/TavloCache/none\n"
        "log: getCacheVideoPathOfSavedInDB() - ERROR: Cache Video Data  does not exist\n");

  if (tavlo_getCacheVideoDataPath(tavlo_text_of("http://h/v.mp4"), &path) == TAVLO_OK && path.data) {
    isNumber("deleteCachedVideo", tavlo_deleteCachedVideo(tavlo_text_of(path.data), &removed), TAVLO_OK);
    isNumber("it is removed", removed, true);
    isNumber("deleteCachedVideo again", tavlo_deleteCachedVideo(tavlo_text_of(path.data), &removed), TAVLO_OK);
    isNumber("it was gone", removed, false);
  }
  tavlo_string_free(&path);
  wrote("one line", "log: Cached directory path : C:/Documents/TavloCache/d41b4ed42b5cec0e1794ba03120ab39d.mp4\n");
}

static void checkBanner(void) {
  tavlo_string path;
  isNumber("cachedBannerImage", tavlo_cachedBannerImage(tavlo_text_of(" http://h/img.png ")), TAVLO_OK);
  wrote("nothing yet", "");
  isNumber("run the download", tavlo_task_run(waiting), TAVLO_OK);
  wrote("its lines",
        "log: Cached directory path : C:/Documents/TavloCache/993e6d6c4ed327f44c74d7397ed229ad\n"
        "log: getAndSaveBannerImage() - write successfully\n");
  gives("getCacheBannerImagePath", tavlo_getCacheBannerImagePath(tavlo_text_of("http://h/img.png"), &path), &path,
        "C:/Documents/TavloCache/993e6d6c4ed327f44c74d7397ed229ad");
  wrote("its line", "log: Cached directory path : C:/Documents/TavloCache/993e6d6c4ed327f44c74d7397ed229ad\n");

  isNumber("cachedBannerImage of nothing", tavlo_cachedBannerImage(tavlo_text_of("http://h/none")), TAVLO_OK);
  isNumber("run that download", tavlo_task_run(waiting), TAVLO_OK);
  wrote("its line", "log: getAndSaveBannerImage(): Passed data is empty\n");
  isNumber("cachedBannerImage that is dropped", tavlo_cachedBannerImage(tavlo_text_of("http://h/img.png")), TAVLO_OK);
  tavlo_task_drop(waiting);
  wrote("nothing", "");
}

static tavlo_value* recordOf(const char* name, double startDate) {
  tavlo_value* const keys[] = {textValue("name"), textValue("startdate")};
  tavlo_value* const values[] = {textValue(name), tavlo_value_from_date(startDate)};
  tavlo_value* const record =
      tavlo_value_from_map((const tavlo_value* const*)keys, (const tavlo_value* const*)values, 2);
  tavlo_value_free(keys[0]);
  tavlo_value_free(keys[1]);
  tavlo_value_free(values[0]);
  tavlo_value_free(values[1]);
  return record;
}

static void checkLists(void) {
  tavlo_value* const items[] = {recordOf("late", 86400), recordOf("early", 0)};
  tavlo_value* list = tavlo_value_from_list((const tavlo_value* const*)items, 2);
  tavlo_value* answered = NULL;
  tavlo_string bytes;
  tavlo_status status;
  isNumber("encode an archive", tavlo_archive_encode(list, &bytes), TAVLO_OK);
  writeFile("VideoListAPI", bytes.data, bytes.size);
  tavlo_string_free(&bytes);

  status = tavlo_getCachedVideoList(true, &answered);
  givesValue(
      "getCachedVideoList", status, answered,
      "({name = late; startdate = 2001-01-02 00:00:00 +0000}, {name = early; startdate = 2001-01-01 00:00:00 +0000})");
  wrote("its line", "log: Cached directory path : C:/Documents/TavloCache/VideoListAPI\n");
  status = tavlo_sortCacahedVideoDates(list, &answered);
  givesValue(
      "sortCacahedVideoDates", status, answered,
      "({name = early; startdate = 2001-01-01 00:00:00 +0000}, {name = late; startdate = 2001-01-02 00:00:00 +0000})");

  writeFile("InterstitialListAPI", "no archive", 10);
  isNumber("getCachedVideoList of no archive", tavlo_getCachedVideoList(false, &answered), TAVLO_NO_ARCHIVE);
  isNumber("it gives nothing", answered == NULL, true);
  isNumber("clearCache", tavlo_clearCache(), TAVLO_OK);
  status = tavlo_getCachedVideoList(false, &answered);
  givesValue("getCachedVideoList of none", status, answered, "(null)");
  wrote("lines of both",
        "log: Cached directory path : C:/Documents/TavloCache/InterstitialListAPI\n"
        "log: Cached directory path : C:/Documents/TavloCache/InterstitialListAPI\n"
        "log: getFileData() - ERROR: This file  does not exist\n");
  tavlo_value_free(items[0]);
  tavlo_value_free(items[1]);
  tavlo_value_free(list);
}

void checkCache(void) {
  tavlo_platform platform = {0};
  tavlo_background_queue queue = {0};
  tavlo_url_data urls = {0};
  queue.size = sizeof queue;
  queue.dispatchAsync = keepTask;
  urls.size = sizeof urls;
  urls.dataWithContentsOfURL = fetch;
  platform.size = sizeof platform;
  platform.container = tavlo_text_of(container);
  platform.background_queue = &queue;
  platform.url_data = &urls;
  isNumber("install the platform", tavlo_platform_install(&platform), TAVLO_OK);

  checkPaths();
  checkBanner();
  checkLists();
}
