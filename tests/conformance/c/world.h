/* What a case is run in: everything that a host and its platform bring, made of callbacks. */
#ifndef TAVLO_CONFORMANCE_WORLD_H
#define TAVLO_CONFORMANCE_WORLD_H

#include "json.h"

#define MOST_WAITING 16

typedef struct world {
  const json_t* given;
  const char* resources;
  /* What was seen since the last time. */
  json_t* log;
  json_t* console;
  json_t* reports;
  json_t* asks;
  json_t* menus;
  /* What there is. Files: paths to bytes, of directories to null. */
  json_t* package;
  json_t* settings;
  json_t* pending;
  json_t* files;
  size_t fix;
  tavlo_task* tasks[MOST_WAITING];
  size_t task_count;
  tavlo_geocode_request* look_ups[MOST_WAITING];
  size_t look_up_count;
} world;

/* Puts it all in place, for the rest of the process. False: something was refused, and tavlo_last_error() says what. */
bool world_begin(world* w, const json_t* given, const char* resources);

/* Forgets what was seen. */
void world_forget(world* w);

/* What a step says beside a call. False: it failed. */
bool world_act(world* w, const char* what, const json_t* step);

/* The files as a case gives them. */
json_t* world_tree(const world* w);

/* world_files.c */
extern const tavlo_file_manager kFileManager;
void files_begin(world* w);
void files_remove(world* w, const char* path);

/* world_host.c */
bool host_begin(world* w);

/* world_bundle.c: the directory of the resource bundle, on the disk. */
void bundle_write(const world* w, const json_t* images);

#endif
