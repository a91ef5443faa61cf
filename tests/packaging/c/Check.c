#include "Check.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int failures = 0;
static char lines[65536];

void isText(const char* what, const char* text, const char* expected) {
  if (strcmp(text, expected) == 0) return;
  ++failures;
  printf("%s\n  is       \"%s\"\n  expected \"%s\"\n", what, text, expected);
}

void isNumber(const char* what, long number, long expected) {
  if (number == expected) return;
  ++failures;
  printf("%s\n  is       %ld\n  expected %ld\n", what, number, expected);
}

/* Appends the bytes, with the container as "C:" and NUL as "\0". */
static void append(char* to, size_t room, const char* data, size_t size) {
  size_t at = strlen(to);
  const size_t prefix = strlen(container);
  size_t i;
  for (i = 0; i < size && at + 3 < room;) {
    if (size - i >= prefix && memcmp(data + i, container, prefix) == 0) {
      to[at++] = 'C';
      to[at++] = ':';
      i += prefix;
    } else if (data[i] == '\0') {
      to[at++] = '\\';
      to[at++] = '0';
      ++i;
    } else {
      to[at++] = data[i++];
    }
  }
  to[at] = '\0';
}

void gives(const char* what, tavlo_status status, tavlo_string* string, const char* expected) {
  static char text[65536];
  isNumber(what, status, TAVLO_OK);
  if (status != TAVLO_OK) printf("  %s\n", tavlo_last_error());
  text[0] = '\0';
  if (string->data) {
    append(text, sizeof text, string->data, string->size);
  } else {
    strcpy(text, "absent");
  }
  isText(what, text, expected);
  tavlo_string_free(string);
}

void givesValue(const char* what, tavlo_status status, tavlo_value* value, const char* expected) {
  tavlo_string form;
  const tavlo_status formed = tavlo_value_text_form(value, &form);
  isNumber(what, status, TAVLO_OK);
  gives(what, formed, &form, expected);
  tavlo_value_free(value);
}

static void addLine(const char* mark, tavlo_text message) {
  append(lines, sizeof lines, mark, strlen(mark));
  append(lines, sizeof lines, message.data, message.size);
  append(lines, sizeof lines, "\n", 1);
}

void logLine(void* user, tavlo_text message) {
  (void)user;
  addLine("log: ", message);
}

void consoleLine(void* user, tavlo_text message) {
  (void)user;
  addLine("console: ", message);
}

void wrote(const char* what, const char* expected) {
  isText(what, lines, expected);
  lines[0] = '\0';
}

tavlo_value* textValue(const char* text) { return tavlo_value_from_text(tavlo_text_of(text)); }
