// tavlo_value: one property-list value of any kind, made once and never changed.
//
//   tavlo_value* name = tavlo_value_from_text(tavlo_text_of("network-7"));
//   const tavlo_value* items[] = {name};
//   tavlo_value* list = tavlo_value_from_list(items, 1);
//   tavlo_value_free(name);
//   tavlo_value_free(list);
//
// Values   who makes a value, or is given a `tavlo_value*`, frees it. A `const tavlo_value*` belongs to the value that
//          it was read from and lives as long. Copies share their contents, so they are cheap.
// Absent   a null pointer is no value at all: every reader takes it and answers "absent", "false" or 0. The null value
//          is a value of its own.
// Threads  any number of threads may read and copy one value at once; the last one that uses it frees it.
//
// A maker gives a null pointer when it is misused or there is no memory: tavlo_last_error() says which. It is misuse to
// nest values deeper than TAVLO_VALUE_DEEPEST lists, sets, maps and objects in one another.
#ifndef TAVLO_VALUE_H
#define TAVLO_VALUE_H

#include "tavlo_types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct tavlo_value tavlo_value;

#define TAVLO_VALUE_DEEPEST 1024

typedef int32_t tavlo_kind;
enum {
  TAVLO_KIND_ABSENT = -1,  // of a null pointer
  TAVLO_KIND_NULL = 0,
  TAVLO_KIND_BOOLEAN = 1,
  TAVLO_KIND_INTEGER = 2,
  TAVLO_KIND_REAL = 3,
  TAVLO_KIND_DATE = 4,
  TAVLO_KIND_TEXT = 5,
  TAVLO_KIND_DATA = 6,
  TAVLO_KIND_URL = 7,
  TAVLO_KIND_UID = 8,
  TAVLO_KIND_LIST = 9,
  TAVLO_KIND_SET = 10,
  TAVLO_KIND_MAP = 11,
  TAVLO_KIND_OBJECT = 12
};

// ---- Making ----

TAVLO_API tavlo_value* tavlo_value_null(void);
TAVLO_API tavlo_value* tavlo_value_from_boolean(bool boolean);
TAVLO_API tavlo_value* tavlo_value_from_int64(int64_t integer);
TAVLO_API tavlo_value* tavlo_value_from_uint64(uint64_t integer);
TAVLO_API tavlo_value* tavlo_value_from_int128(int64_t high, uint64_t low);  // two's complement in two halves
TAVLO_API tavlo_value* tavlo_value_from_double(double real);
TAVLO_API tavlo_value* tavlo_value_from_float(float real);      // kept apart: it is stored in 32 bits again
TAVLO_API tavlo_value* tavlo_value_from_date(double seconds);   // since 2001-01-01 00:00:00 UTC
TAVLO_API tavlo_value* tavlo_value_from_uid(uint64_t index);    // a keyed archive's reference
TAVLO_API tavlo_value* tavlo_value_from_text(tavlo_text text);  // absent: misuse
TAVLO_API tavlo_value* tavlo_value_from_data(tavlo_text bytes);

// A URL and the one that it builds on, which is a URL or a null pointer.
TAVLO_API tavlo_value* tavlo_value_from_url(tavlo_text text, const tavlo_value* base);

// Containers of copies of these values. `items` may be a null pointer when the count is 0; no item may be one.
TAVLO_API tavlo_value* tavlo_value_from_list(const tavlo_value* const* items, size_t count);
TAVLO_API tavlo_value* tavlo_value_from_set(const tavlo_value* const* items, size_t count);

// Of several entries with one key the last value counts, at the first one's place. Keys are values of any kind.
TAVLO_API tavlo_value* tavlo_value_from_map(const tavlo_value* const* keys, const tavlo_value* const* values,
                                            size_t count);

// An object of a class that is known by name only, with its fields as a map.
TAVLO_API tavlo_value* tavlo_value_from_object(tavlo_text className, const tavlo_value* fields);

TAVLO_API tavlo_value* tavlo_value_copy(const tavlo_value* value);  // a null pointer gives one
TAVLO_API void tavlo_value_free(tavlo_value* value);                // a null pointer is fine

// ---- Reading ----

TAVLO_API tavlo_kind tavlo_value_kind(const tavlo_value* value);

// Each is false, and leaves the result as it is, when the value is of another kind, when the number has no room in the
// result, and when a pointer is null.
TAVLO_API bool tavlo_value_boolean(const tavlo_value* value, bool* boolean);
TAVLO_API bool tavlo_value_int64(const tavlo_value* value, int64_t* integer);
TAVLO_API bool tavlo_value_uint64(const tavlo_value* value, uint64_t* integer);
TAVLO_API bool tavlo_value_int128(const tavlo_value* value, int64_t* high, uint64_t* low);
TAVLO_API bool tavlo_value_double(const tavlo_value* value, double* real);  // of 32 bits as well
TAVLO_API bool tavlo_value_is_float(const tavlo_value* value);              // a real that is stored in 32 bits
TAVLO_API bool tavlo_value_date(const tavlo_value* value, double* seconds);
TAVLO_API bool tavlo_value_uid(const tavlo_value* value, uint64_t* index);

// Each is the absent text when the value is of another kind; it lives as long as the value.
TAVLO_API tavlo_text tavlo_value_text(const tavlo_value* value);
TAVLO_API tavlo_text tavlo_value_data(const tavlo_value* value);
TAVLO_API tavlo_text tavlo_value_url(const tavlo_value* value);
TAVLO_API tavlo_text tavlo_value_class_name(const tavlo_value* value);

// A null pointer when the value is no URL, or one that builds on none.
TAVLO_API const tavlo_value* tavlo_value_url_base(const tavlo_value* value);

// How many items a list or set, or entries a map or an object, has; 0 for any other kind.
TAVLO_API size_t tavlo_value_count(const tavlo_value* value);

// An item of a list or set; the key or the value of an entry of a map or object, in their order. A null pointer when
// there is none.
TAVLO_API const tavlo_value* tavlo_value_item(const tavlo_value* value, size_t index);
TAVLO_API const tavlo_value* tavlo_value_key(const tavlo_value* value, size_t index);
TAVLO_API const tavlo_value* tavlo_value_entry(const tavlo_value* value, size_t index);

// The value under a text key of a map or object. A null pointer when there is none.
TAVLO_API const tavlo_value* tavlo_value_find(const tavlo_value* value, tavlo_text key);

// -1, 0 or 1: `a` comes before `b`, equals it in kind and content, comes after it. No value comes first.
TAVLO_API tavlo_status tavlo_value_compare(const tavlo_value* a, const tavlo_value* b, int32_t* order);

// As the component writes it into requests and log lines: "(null)" for no value.
TAVLO_API tavlo_status tavlo_value_text_form(const tavlo_value* value, tavlo_string* text);

// ---- Files ----

// Keyed archives, which hold the lists of the media cache, and binary property lists, which hold the user settings.
// TAVLO_NO_ARCHIVE says, with an error that tells what and where, that the bytes are none or that none can hold the
// value. A null pointer as value is an archive whose root is nothing at all, and so comes back; a property list needs a
// value.
TAVLO_API tavlo_status tavlo_archive_encode(const tavlo_value* root, tavlo_string* bytes);
TAVLO_API tavlo_status tavlo_archive_decode(tavlo_text bytes, tavlo_value** root);
TAVLO_API tavlo_status tavlo_property_list_encode(const tavlo_value* value, tavlo_string* bytes);
TAVLO_API tavlo_status tavlo_property_list_decode(tavlo_text bytes, tavlo_value** value);

#ifdef __cplusplus
}
#endif

#endif
