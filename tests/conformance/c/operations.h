/* The operations that a case can call, by their names. */
#ifndef TAVLO_CONFORMANCE_OPERATIONS_H
#define TAVLO_CONFORMANCE_OPERATIONS_H

#include "world.h"

typedef struct outcome {
  tavlo_status status;
  json_t* answer; /* null where it is absent, and where the operation has none */
} outcome;

/* False: there is no such operation. */
bool call(const char* operation, const json_t* argument, const char* resources, outcome* result);

#endif
