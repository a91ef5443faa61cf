/* Runs the conformance cases through the C interface.
 *
 *   tavlo_conformance_c FOLDER    prints each difference; status 1 when there is any, 2 when something cannot be run
 *
 * Each case has a process of its own: what the library keeps for the process can be emptied in no other way. */
#define _POSIX_C_SOURCE 200809L
#include <dirent.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "operations.h"

typedef struct place {
  const char* file;
  const char* name;
  size_t step;
} place;

static int tell(const place* at, const char* what, const json_t* expected, const json_t* got) {
  char* wanted = json_dumps(expected, JSON_ENCODE_ANY | JSON_SORT_KEYS);
  char* came = json_dumps(got, JSON_ENCODE_ANY | JSON_SORT_KEYS);
  printf("%s: %s, step %zu: %s\n  expected: %s\n  got:      %s\n", at->file, at->name, at->step, what,
         wanted ? wanted : "(no UTF-8)", came ? came : "(no UTF-8)");
  free(wanted);
  free(came);
  return 1;
}

/* A text may end in "${any}", and {"$json": V} is a text that is V as JSON. */
static bool matches(const json_t* expected, const json_t* got) {
  static const char kAny[] = "${any}";
  const json_t* json = member(expected, "$json");
  const size_t length = json_string_length(expected);
  if (json && json_is_string(got)) {
    json_t* parsed = json_loadb(json_string_value(got), json_string_length(got), JSON_DECODE_ANY, NULL);
    const bool same = json_equal(json, parsed);
    json_decref(parsed);
    return same;
  }
  if (json_is_string(expected) && json_is_string(got) && length >= strlen(kAny)) {
    const size_t begin = length - strlen(kAny);
    if (strcmp(json_string_value(expected) + begin, kAny) == 0) {
      return strncmp(json_string_value(expected), json_string_value(got), begin) == 0;
    }
  }
  if (!json_is_array(expected) || !json_is_array(got)) return json_equal(expected, got);
  if (json_array_size(expected) != json_array_size(got)) return false;
  for (size_t i = 0; i < json_array_size(expected); ++i) {
    if (!matches(json_array_get(expected, i), json_array_get(got, i))) return false;
  }
  return true;
}

static int compare(const place* at, const char* what, const json_t* expected, const json_t* got) {
  return matches(expected, got) ? 0 : tell(at, what, expected, got);
}

/* What callbacks of the C interface never see: the two settings of a location manager, and the reads of a record. */
static json_t* seen_through_c(const json_t* asks) {
  static const char* const kUnseen[] = {"setDistanceFilter:", "setDesiredAccuracy:", "networkID", "event", "count"};
  json_t* seen = json_array();
  for (size_t i = 0; i < json_array_size(asks); ++i) {
    bool unseen = false;
    for (size_t k = 0; k < sizeof kUnseen / sizeof *kUnseen; ++k) {
      unseen |= strncmp(json_string_value(json_array_get(asks, i)), kUnseen[k], strlen(kUnseen[k])) == 0;
    }
    if (!unseen) json_array_append(seen, json_array_get(asks, i));
  }
  return seen;
}

static int compare_events(const place* at, const world* w, const json_t* step) {
  const struct {
    const char* name;
    const json_t* got;
  } lines[] = {{"log", w->log}, {"console", w->console}, {"reports", w->reports}, {"menus", w->menus}};
  json_t* none = json_array();
  int differences = 0;
  for (size_t i = 0; i < sizeof lines / sizeof *lines; ++i) {
    const json_t* expected = member(step, lines[i].name);
    differences += compare(at, lines[i].name, expected ? expected : none, lines[i].got);
  }
  json_decref(none);
  const json_t* asks = member(step, "asks");
  if (!asks) return differences;
  json_t* expected = seen_through_c(asks);
  differences += compare(at, "asks", expected, w->asks);
  json_decref(expected);
  return differences;
}

static int compare_state(const place* at, const world* w, const json_t* step) {
  const json_t* settings = member(step, "settings");
  const json_t* files = member(step, "files");
  const json_t* act = member(step, "do");
  const bool is_set = act && strcmp(json_string_value(act), "set") == 0;
  int differences = settings ? compare(at, "settings", settings, w->settings) : 0;
  const char* name;
  json_t* value;
  if (files) {
    json_t* expected = json_object();
    json_object_foreach((json_t*)files, name, value) {
      json_object_set_new_nocheck(expected, name, json_is_null(value) ? json_null() : bytes_of(value));
    }
    json_t* got = world_tree(w);
    differences += compare(at, "files", expected, got);
    json_decref(expected);
    json_decref(got);
  }
  json_object_foreach(is_set ? NULL : (json_t*)member(step, "package"), name, value) {
    const json_t* got = member(w->package, name);
    json_t* absent = json_null();
    differences += compare(at, name, value, got ? got : absent);
  }
  return differences;
}

static int run_step(const place* at, world* w, const json_t* step, const char* resources) {
  const json_t* operation = member(step, "call");
  outcome result = {TAVLO_OK, json_null()};
  int differences = 0;
  if (!operation) {
    const json_t* what = member(step, "do");
    result.status = what && world_act(w, json_string_value(what), step) ? TAVLO_OK : TAVLO_FAILED;
  } else if (!call(json_string_value(operation), member(step, "with"), resources, &result)) {
    return tell(at, "there is no such operation", operation, NULL);
  }
  const bool raises = json_is_true(member(step, "raises"));
  if (raises != (result.status != TAVLO_OK)) {
    differences += tell(at, "raises", json_boolean(raises), json_integer(result.status));
  }
  if (member(step, "gives")) differences += compare(at, "gives", member(step, "gives"), result.answer);
  json_decref(result.answer);
  differences += compare_events(at, w, step) + compare_state(at, w, step);
  world_forget(w);
  return differences;
}

static int run_case(const char* file, const json_t* one, const char* resources) {
  static world w;
  static const json_t* nothing;
  if (!nothing) nothing = json_object();
  const json_t* given = member(one, "given");
  place at = {file, json_string_value(member(one, "name")), 0};
  if (!world_begin(&w, given ? given : nothing, resources)) {
    printf("%s: %s: %s\n", file, at.name, tavlo_last_error());
    return 1;
  }
  int differences = 0;
  const json_t* steps = member(one, "steps");
  for (size_t i = 0; i < json_array_size(steps); ++i) {
    at.step = i + 1;
    differences += run_step(&at, &w, json_array_get(steps, i), resources);
  }
  return differences;
}

/* Whether the case holds. */
static bool holds(const char* file, const json_t* one, const char* resources) {
  int status = 0;
  fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    const int differences = run_case(file, one, resources);
    fflush(stdout);
    exit(differences ? 1 : 0);
  }
  if (child < 0 || waitpid(child, &status, 0) != child) abort();
  if (WIFSIGNALED(status)) {
    printf("%s: %s: ended by signal %d\n", file, json_string_value(member(one, "name")), WTERMSIG(status));
  }
  return status == 0;
}

static int is_json(const struct dirent* entry) {
  const char* dot = strrchr(entry->d_name, '.');
  return dot && strcmp(dot, ".json") == 0;
}

int main(int count, char** arguments) {
  char resources[] = "/tmp/tavlo-conformance-XXXXXX";
  struct dirent** files;
  const int found = count == 2 ? scandir(arguments[1], &files, is_json, alphasort) : -1;
  if (found <= 0 || !mkdtemp(resources)) {
    fprintf(stderr, "usage: tavlo_conformance_c FOLDER    a folder of conformance cases\n");
    return 2;
  }
  size_t cases = 0;
  size_t failed = 0;
  for (int i = 0; i < found; ++i) {
    char path[1024];
    snprintf(path, sizeof path, "%s/%s", arguments[1], files[i]->d_name);
    json_t* all = read_cases(path, resources);
    *strrchr(files[i]->d_name, '.') = 0;
    for (size_t k = 0; k < json_array_size(all); ++k) {
      ++cases;
      if (!holds(files[i]->d_name, json_array_get(all, k), resources)) ++failed;
    }
    json_decref(all);
    free(files[i]);
  }
  free(files);
  const world end = {.resources = resources};
  bundle_write(&end, NULL);
  rmdir(resources);
  printf("%zu of %zu cases hold\n", cases - failed, cases);
  return failed ? 1 : 0;
}
