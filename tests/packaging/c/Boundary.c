/* What must not crash: null pointers, texts that are none, tables of other sizes, values in one another. */
#include <stddef.h>
#include <string.h>

#include "Check.h"

static int released = 0;
static void countReleases(void* user) {
  (void)user;
  ++released;
}

static void checkMisuse(void) {
  const tavlo_text noData = {NULL, 5};
  tavlo_string text = {NULL, 7};
  isNumber("no result", tavlo_getUserInfoRequestString(NULL), TAVLO_MISUSE);
  isText("its error", tavlo_last_error(), "tavlo_getUserInfoRequestString: the result must not be a null pointer");
  isNumber("a size without data", tavlo_getCacheVideoDataPath(noData, &text), TAVLO_MISUSE);
  isText("its error", tavlo_last_error(),
         "tavlo_getCacheVideoDataPath: the data of the URL is a null pointer, but its size is 5");
  isNumber("the result is absent", text.data == NULL && text.size == 0, true);
  isNumber("no name", tavlo_getDocumentDirectoryPath(tavlo_text_of(NULL), &text), TAVLO_MISUSE);
  isNumber("no bundle", tavlo_bundle_path(NULL, tavlo_text_of("a"), tavlo_text_of("b"), &text), TAVLO_MISUSE);
  isNumber("no answer", tavlo_answer_text(NULL, tavlo_text_of("a")), TAVLO_MISUSE);
  isNumber("no records", tavlo_tracker_records_add(NULL, NULL, NULL, NULL), TAVLO_MISUSE);
  isNumber("no names", tavlo_names_add(NULL, tavlo_text_of("a")), TAVLO_MISUSE);
  isNumber("no task", tavlo_task_run(NULL), TAVLO_MISUSE);
  isNumber("no request", tavlo_geocode_request_fail(NULL, tavlo_text_of("a")), TAVLO_MISUSE);
  isNumber("no session", tavlo_session_install(NULL), TAVLO_MISUSE);
  isNumber("no callback", tavlo_request_authorization(NULL, NULL), TAVLO_MISUSE);
  isNumber("no image", (long)tavlo_image_pixels(NULL).size, 0);
  tavlo_string_free(NULL);
  tavlo_value_free(NULL);
  tavlo_session_free(NULL);
  tavlo_bundle_free(NULL);
  tavlo_image_free(NULL);
  tavlo_task_drop(NULL);
  tavlo_geocode_request_drop(NULL);
}

static void checkSizes(void) {
  struct {
    tavlo_exception_reporter table;
    void* later;
  } grown;
  memset(&grown, 0, sizeof grown);
  grown.table.released = countReleases;
  isNumber("no size", tavlo_exception_reporter_install(&grown.table), TAVLO_MISUSE);
  isText("its error", tavlo_last_error(),
         "tavlo_exception_reporter_install: the size of the tavlo_exception_reporter is 0; set it to sizeof");
  grown.table.size = sizeof grown;
  isNumber("a later table", tavlo_exception_reporter_install(&grown.table), TAVLO_OK);
  grown.later = &grown;
  isNumber("one with more in it", tavlo_exception_reporter_install(&grown.table), TAVLO_MISUSE);
  grown.table.size = offsetof(tavlo_exception_reporter, tavloException);
  isNumber("an earlier table", tavlo_exception_reporter_install(&grown.table), TAVLO_OK);
  isNumber("released", released, 1);
  isNumber("none", tavlo_exception_reporter_install(NULL), TAVLO_OK);
  isNumber("released", released, 2);
}

static void checkValues(void) {
  tavlo_value* value = tavlo_value_null();
  tavlo_value* outer = NULL;
  tavlo_value* const number = tavlo_value_from_uint64(UINT64_MAX);
  int64_t integer = 5;
  uint64_t natural = 0;
  int32_t order = 0;
  int levels = 0;
  isNumber("kind of nothing", tavlo_value_kind(NULL), TAVLO_KIND_ABSENT);
  isNumber("kind of null", tavlo_value_kind(value), TAVLO_KIND_NULL);
  isNumber("2^64 - 1 has no room in 63 bits", tavlo_value_int64(number, &integer), false);
  isNumber("and leaves the result", (long)integer, 5);
  isNumber("it has in 64", tavlo_value_uint64(number, &natural) && natural == UINT64_MAX, true);
  isNumber("null before a number", tavlo_value_compare(value, number, &order), TAVLO_OK);
  isNumber("the order", order, -1);
  isNumber("no item", tavlo_value_item(number, 0) == NULL && tavlo_value_text(number).data == NULL, true);
  isNumber("a list of a null pointer", tavlo_value_from_list((const tavlo_value* const*)&outer, 1) == NULL, true);
  isText("its error", tavlo_last_error(), "tavlo_value_from_list: an item must not be a null pointer");

  for (; levels < 2000; ++levels) {
    outer = tavlo_value_from_list((const tavlo_value* const*)&value, 1);
    if (!outer) break;
    tavlo_value_free(value);
    value = outer;
  }
  isNumber("lists in one another", levels, TAVLO_VALUE_DEEPEST);
  isText("its error", tavlo_last_error(), "tavlo_value_from_list: an item is nested deeper than 1023 levels");
  tavlo_value_free(value);
  tavlo_value_free(number);
}

void checkBoundary(void) {
  isText("no error yet", tavlo_last_error(), "");
  checkMisuse();
  checkSizes();
  checkValues();
}
