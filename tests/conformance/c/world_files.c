#include <stdio.h>
#include <string.h>

#include "world.h"

#define DOCUMENTS "/app/Documents"

typedef struct path {
  char text[512]; /* "" for an absent one, which names nothing */
} path;

static path path_of(tavlo_text text) {
  path p = {""};
  if (text.data) snprintf(p.text, sizeof p.text, "%.*s", (int)text.size, text.data);
  return p;
}

static json_t* entry(world* w, path p) { return json_object_get(w->files, p.text); }

/* False, and the description is the answer, when the case says so. */
static bool may(const world* w, const char* operation, path p, tavlo_answer* error) {
  size_t i;
  json_t* failing;
  json_array_foreach(member(w->given, "failing"), i, failing) {
    const json_t* only = member(failing, "path");
    char place[512];
    snprintf(place, sizeof place, DOCUMENTS "/%s", only ? json_string_value(only) : "");
    if (strcmp(json_string_value(member(failing, "operation")), operation) != 0) continue;
    if (only && strcmp(place, p.text) != 0) continue;
    if (error) tavlo_answer_text(error, text_of_json(member(failing, "description")));
    return false;
  }
  return true;
}

static bool is_below(const char* each, const char* folder) {
  const size_t length = strlen(folder);
  return strncmp(each, folder, length) == 0 && each[length] == '/';
}

static bool has_folder_above(world* w, const char* below) {
  const char* slash = strrchr(below, '/');
  if (!slash) return false;
  const tavlo_text above = {below, (size_t)(slash - below)};
  return json_is_null(entry(w, path_of(above)));
}

static void document_directory(void* user, tavlo_answer* answer) {
  (void)user;
  tavlo_answer_text(answer, tavlo_text_of(DOCUMENTS));
}

static tavlo_existence file_exists(void* user, tavlo_text text) {
  const json_t* found = entry(user, path_of(text));
  if (!found) return TAVLO_EXISTENCE_MISSING;
  return json_is_null(found) ? TAVLO_EXISTENCE_DIRECTORY : TAVLO_EXISTENCE_FILE;
}

void files_remove(world* w, const char* gone) {
  const char* each;
  json_t* found;
  void* next;
  json_object_foreach_safe(w->files, next, each, found) {
    if (strcmp(each, gone) == 0 || is_below(each, gone)) json_object_del(w->files, each);
  }
}

static bool remove_item(void* user, tavlo_text text, bool file_only, tavlo_answer* error) {
  const path p = path_of(text);
  if (!may(user, "removeItemAtPath", p, error)) return false;
  const json_t* found = entry(user, p);
  if (!found || (file_only && json_is_null(found))) return false;
  files_remove(user, p.text);
  return true;
}

static bool create_directory(void* user, tavlo_text text, tavlo_answer* error) {
  world* w = user;
  const path p = path_of(text);
  if (!may(w, "createDirectoryAtPath", p, error)) return false;
  if (entry(w, p) || !has_folder_above(w, p.text)) return false;
  json_object_set_new_nocheck(w->files, p.text, json_null());
  return true;
}

static bool contents_of_directory(void* user, tavlo_text text, tavlo_names* names) {
  world* w = user;
  const path p = path_of(text);
  if (!may(w, "contentsOfDirectoryAtPath", p, NULL) || !json_is_null(entry(w, p))) return false;
  const char* each;
  json_t* found;
  json_object_foreach(w->files, each, found) {
    if (!is_below(each, p.text)) continue;
    const char* name = each + strlen(p.text) + 1;
    if (!strchr(name, '/')) tavlo_names_add(names, tavlo_text_of(name));
  }
  return true;
}

static void data_of_file(void* user, tavlo_text text, tavlo_answer* data) {
  const path p = path_of(text);
  if (may(user, "dataWithContentsOfFile", p, NULL)) tavlo_answer_text(data, text_of_json(entry(user, p)));
}

static bool write_to_file(void* user, tavlo_text bytes, tavlo_text text, bool durable_name, tavlo_answer* error) {
  world* w = user;
  const path p = path_of(text);
  (void)durable_name;
  if (!may(w, "writeToFileAtomically", p, error)) return false;
  if (json_is_null(entry(w, p)) || !has_folder_above(w, p.text)) return false;
  json_object_set_new_nocheck(w->files, p.text, json_of_text(bytes));
  return true;
}

const tavlo_file_manager kFileManager = {
    .size = sizeof(tavlo_file_manager),
    .documentDirectory = document_directory,
    .fileExistsAtPath = file_exists,
    .removeItemAtPath = remove_item,
    .createDirectoryAtPath = create_directory,
    .contentsOfDirectoryAtPath = contents_of_directory,
    .dataWithContentsOfFile = data_of_file,
    .writeToFileAtomically = write_to_file,
};

static void put_folders_above(world* w, const char* below) {
  for (const char* slash = strchr(below + strlen(DOCUMENTS) + 1, '/'); slash; slash = strchr(slash + 1, '/')) {
    const tavlo_text folder = {below, (size_t)(slash - below)};
    json_object_set_new_nocheck(w->files, path_of(folder).text, json_null());
  }
}

void files_begin(world* w) {
  const char* name;
  json_t* bytes;
  w->files = json_pack("{sn}", DOCUMENTS);
  json_object_foreach((json_t*)member(w->given, "files"), name, bytes) {
    path place;
    snprintf(place.text, sizeof place.text, DOCUMENTS "/%s", name);
    put_folders_above(w, place.text);
    if (name[strlen(name) - 1] != '/') json_object_set_new_nocheck(w->files, place.text, bytes_of(bytes));
  }
}

static bool holds_nothing(const world* w, const char* folder) {
  const char* each;
  json_t* ignored;
  json_object_foreach(w->files, each, ignored) {
    if (is_below(each, folder)) return false;
  }
  return true;
}

json_t* world_tree(const world* w) {
  json_t* tree = json_object();
  const char* each;
  json_t* bytes;
  json_object_foreach(w->files, each, bytes) {
    if (strcmp(each, DOCUMENTS) == 0 || (json_is_null(bytes) && !holds_nothing(w, each))) continue;
    path name;
    snprintf(name.text, sizeof name.text, "%s%s", each + strlen(DOCUMENTS) + 1, json_is_null(bytes) ? "/" : "");
    json_object_set_nocheck(tree, name.text, bytes);
  }
  return tree;
}
