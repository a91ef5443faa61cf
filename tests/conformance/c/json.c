#include "json.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define SECONDS_FROM_1970_TO_2001 978307200.0

static json_t* replaced(const char* text, size_t size, const char* name, const char* by) {
  const size_t length = strlen(name);
  char* out = malloc(size * (strlen(by) + 1) + 1);
  size_t at = 0;
  if (!out) abort();
  for (size_t i = 0; i < size;) {
    if (size - i >= length && memcmp(text + i, name, length) == 0) {
      memcpy(out + at, by, strlen(by));
      at += strlen(by);
      i += length;
    } else {
      out[at++] = text[i++];
    }
  }
  json_t* result = json_stringn_nocheck(out, at);
  free(out);
  return result;
}

static json_t* with_places(const char* text, size_t size, const char* resources) {
  const char* const names[][2] = {
      {"${documents}", "/app/Documents"}, {"${documentsUrl}", "file:///app/Documents/"}, {"${resources}", resources}};
  json_t* result = json_stringn_nocheck(text, size);
  for (size_t i = 0; i < sizeof names / sizeof *names; ++i) {
    json_t* next = replaced(json_string_value(result), json_string_length(result), names[i][0], names[i][1]);
    json_decref(result);
    result = next;
  }
  return result;
}

/* Dates become reals, so that 5 and 5.0 seconds are one. */
static json_t* resolved(json_t* given, const char* resources) {
  if (json_is_string(given)) return with_places(json_string_value(given), json_string_length(given), resources);
  if (json_is_array(given)) {
    json_t* list = json_array();
    for (size_t i = 0; i < json_array_size(given); ++i) {
      json_array_append_new(list, resolved(json_array_get(given, i), resources));
    }
    return list;
  }
  if (json_is_object(given)) {
    json_t* map = json_object();
    const char* key;
    json_t* value;
    json_object_foreach(given, key, value) {
      json_t* name = with_places(key, strlen(key), resources);
      json_t* item = strcmp(key, "$date") == 0 ? json_real(json_number_value(value)) : resolved(value, resources);
      json_object_set_new_nocheck(map, json_string_value(name), item);
      json_decref(name);
    }
    return map;
  }
  return json_incref(given);
}

json_t* read_cases(const char* path, const char* resources) {
  json_error_t error;
  json_t* raw = json_load_file(path, JSON_ALLOW_NUL, &error);
  if (!json_is_array(raw)) {
    fprintf(stderr, "%s:%d: %s\n", path, error.line, raw ? "this is no list of cases" : error.text);
    exit(2);
  }
  json_t* cases = resolved(raw, resources);
  json_decref(raw);
  return cases;
}

const json_t* member(const json_t* object, const char* name) { return json_object_get(object, name); }

json_t* json_of_text(tavlo_text text) { return text.data ? json_stringn_nocheck(text.data, text.size) : json_null(); }

tavlo_text text_of_json(const json_t* json) {
  tavlo_text text;
  text.data = json_string_value(json);
  text.size = json_string_length(json);
  return text;
}

json_t* json_of_string(tavlo_string* string) {
  json_t* json = string->data ? json_stringn_nocheck(string->data, string->size) : json_null();
  tavlo_string_free(string);
  return json;
}

json_t* bytes_of(const json_t* given) {
  const json_t* hex = member(given, "hex");
  if (!hex) return json_is_string(given) ? json_deep_copy(given) : json_stringn_nocheck("", 0);
  const size_t size = json_string_length(hex) / 2;
  char* bytes = malloc(size + 1);
  if (!bytes) abort();
  for (size_t i = 0; i < size; ++i) {
    const char digits[] = {json_string_value(hex)[2 * i], json_string_value(hex)[2 * i + 1], 0};
    bytes[i] = (char)strtol(digits, NULL, 16);
  }
  json_t* result = json_stringn_nocheck(bytes, size);
  free(bytes);
  return result;
}

static tavlo_value* container_of(const json_t* given) {
  const size_t count = json_is_array(given) ? json_array_size(given) : json_object_size(given);
  tavlo_value** keys = calloc(count + 1, sizeof *keys);
  tavlo_value** items = calloc(count + 1, sizeof *items);
  size_t i = 0;
  if (!keys || !items) abort();
  if (json_is_array(given)) {
    for (; i < count; ++i) items[i] = value_of(json_array_get(given, i));
  } else {
    const char* key;
    json_t* value;
    json_object_foreach((json_t*)given, key, value) {
      keys[i] = tavlo_value_from_text(tavlo_text_of(key));
      items[i++] = value_of(value);
    }
  }
  tavlo_value* result = json_is_array(given) ? tavlo_value_from_list((const tavlo_value* const*)items, count)
                                             : tavlo_value_from_map((const tavlo_value* const*)keys,
                                                                    (const tavlo_value* const*)items, count);
  for (i = 0; i < count; ++i) {
    tavlo_value_free(keys[i]);
    tavlo_value_free(items[i]);
  }
  free(keys);
  free(items);
  return result;
}

tavlo_value* value_of(const json_t* given) {
  if (!given || json_is_null(given)) return NULL;
  if (json_is_boolean(given)) return tavlo_value_from_boolean(json_is_true(given));
  if (json_is_integer(given)) return tavlo_value_from_int64(json_integer_value(given));
  if (json_is_real(given)) return tavlo_value_from_double(json_real_value(given));
  if (json_is_string(given)) return tavlo_value_from_text(text_of_json(given));
  const json_t* date = member(given, "$date");
  if (date) return tavlo_value_from_date(json_number_value(date) - SECONDS_FROM_1970_TO_2001);
  return container_of(given);
}

json_t* json_of_value(const tavlo_value* value) {
  bool truth;
  int64_t integer;
  double real;
  json_t* result;
  if (tavlo_value_boolean(value, &truth)) return json_boolean(truth);
  if (tavlo_value_int64(value, &integer)) return json_integer(integer);
  if (tavlo_value_double(value, &real)) return json_real(real);
  if (tavlo_value_date(value, &real)) return json_pack("{sf}", "$date", real + SECONDS_FROM_1970_TO_2001);
  switch (tavlo_value_kind(value)) {
    case TAVLO_KIND_TEXT: return json_of_text(tavlo_value_text(value));
    case TAVLO_KIND_LIST:
      result = json_array();
      for (size_t i = 0; i < tavlo_value_count(value); ++i) {
        json_array_append_new(result, json_of_value(tavlo_value_item(value, i)));
      }
      return result;
    case TAVLO_KIND_MAP:
      result = json_object();
      for (size_t i = 0; i < tavlo_value_count(value); ++i) {
        json_t* key = json_of_text(tavlo_value_text(tavlo_value_key(value, i)));
        json_object_set_new_nocheck(result, json_string_value(key), json_of_value(tavlo_value_entry(value, i)));
        json_decref(key);
      }
      return result;
    default: return json_null();
  }
}
