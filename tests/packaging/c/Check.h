/* What the checks of this program share: a count of what went wrong, and the lines that the component wrote. */
#ifndef CHECK_H
#define CHECK_H

#include <tavlo.h>

extern int failures;
extern const char* container; /* the folder that the program was given */
extern const char* resources; /* the folder that has TavloSDKResource.bundle */

void isText(const char* what, const char* text, const char* expected);
void isNumber(const char* what, long number, long expected);

/* The status, the text with the container as "C:" ("absent" for none), and frees it. */
void gives(const char* what, tavlo_status status, tavlo_string* string, const char* expected);

/* The value in its text form, and frees it. */
void givesValue(const char* what, tavlo_status status, tavlo_value* value, const char* expected);

/* Lines of log and console, each kind with its mark, since this was last asked. */
void wrote(const char* what, const char* lines);
void logLine(void* user, tavlo_text message);
void consoleLine(void* user, tavlo_text message);

tavlo_value* textValue(const char* text);

void checkRequests(void);
void checkCache(void);
void checkServices(void);
void checkBoundary(void);

#endif
