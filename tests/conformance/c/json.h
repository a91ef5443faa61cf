/* The conformance files, read with jansson: their texts, bytes, and values of the component. A json_t* that a function
 * answers belongs to the caller unless it says "borrowed". */
#ifndef TAVLO_CONFORMANCE_JSON_H
#define TAVLO_CONFORMANCE_JSON_H

#include <jansson.h>
#include <tavlo.h>

/* Ends the program, naming the file and the place, when that is no JSON. "${documents}" and its like stand replaced. */
json_t* read_cases(const char* path, const char* resources);

/* Borrowed, and a null pointer when there is none. */
const json_t* member(const json_t* object, const char* name);

/* A text of whatever bytes; JSON's null is the absent one. */
json_t* json_of_text(tavlo_text text);
tavlo_text text_of_json(const json_t* json);

/* JSON's null for an absent text, which is freed. */
json_t* json_of_string(tavlo_string* string);

/* The bytes of a file: a text, or {"hex": "..."}. */
json_t* bytes_of(const json_t* given);

/* A null pointer for JSON's null. */
tavlo_value* value_of(const json_t* given);
json_t* json_of_value(const tavlo_value* value);

#endif
