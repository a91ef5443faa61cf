// A header of the project's own that has the same name as one of the library's.
#define OWN_COMMON_TEXT_H 1
