// What the whole C interface builds on: texts, statuses, the latest error, the version.
//
// Values   texts are UTF-8 and go through as they come, with whatever bytes they hold, U+0000 included.
// Absent   a text whose data is a null pointer. The empty text is a value: its data points somewhere, its size is 0.
// Threads  any function on any thread, any time, unless it says otherwise.
// Throws   nothing. What cannot be done is told by a status, or by an answer that the function names.
//
// Each struct of the interface either begins with its own size or never changes; those that never change say so.
// Headers compile as C99 and later, and as C++.
#ifndef TAVLO_TYPES_H
#define TAVLO_TYPES_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "TavloVersion.h"

#if defined(__GNUC__)
#define TAVLO_API __attribute__((visibility("default")))
#else
#define TAVLO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

// ---- Version ----

// Of these headers, as TavloVersion.h has it: 2.3.4 is 2003004.
#define TAVLO_VERSION_NUMBER (TAVLO_VERSION_MAJOR * 1000000 + TAVLO_VERSION_MINOR * 1000 + TAVLO_VERSION_PATCH)

// The same of the library that runs, which may be newer than the headers; and as a text, "2.3.4".
TAVLO_API int32_t tavlo_version_number(void);
TAVLO_API const char* tavlo_version(void);

// ---- Texts ----

// A text, or bytes, that somebody else owns. Given to a function or to a callback, it is read during that call only;
// whoever keeps it copies it. It never changes its form.
typedef struct tavlo_text {
  const char* data;  // need not end in a NUL
  size_t size;       // in bytes
} tavlo_text;

// A text, or bytes, that a function gives to its caller, who frees it. It never changes its form.
typedef struct tavlo_string {
  char* data;   // a NUL follows its last byte
  size_t size;  // in bytes, without that NUL
} tavlo_string;

// Frees the text and makes it absent. A null pointer and an absent text are fine.
TAVLO_API void tavlo_string_free(tavlo_string* string);

// A C string as a text; a null pointer is the absent one.
static inline tavlo_text tavlo_text_of(const char* string) {
  tavlo_text text;
  text.data = string;
  text.size = string ? strlen(string) : 0;
  return text;
}

// ---- Statuses ----

// How a call ended. With any status but TAVLO_OK nothing was done, unless the function says otherwise, and what it
// would have put into its results is absent, false or a null pointer.
typedef int32_t tavlo_status;
enum {
  TAVLO_OK = 0,
  TAVLO_MISUSE = 1,      // an argument that no call may have, such as a null pointer for a result
  TAVLO_NO_MEMORY = 2,   // there was none left
  TAVLO_NO_ARCHIVE = 3,  // bytes that are no archive or property list, or a value that none can hold
  TAVLO_REPORTED = 4,    // the exception reporter passed its failure on (tavlo_host.h)
  TAVLO_FAILED = 5       // something else; tavlo_last_error() has what is known
};

// What went wrong in this thread's latest call that went wrong, for people: what, where and what to do. "" before there
// was any. It stays until that thread's next call that goes wrong; a longer one than 1,000 bytes is cut.
TAVLO_API const char* tavlo_last_error(void);

// ---- Answers ----

// Where a callback puts the text or the bytes that it answers. It is good during that callback only.
typedef struct tavlo_answer tavlo_answer;

// Answers with a copy of the text; of several answers the last one counts. A callback that never answers has answered
// with the absent text. Not TAVLO_OK: without memory, and then the operation that asked ends so; or misused.
TAVLO_API tavlo_status tavlo_answer_text(tavlo_answer* answer, tavlo_text text);

#ifdef __cplusplus
}
#endif

#endif
