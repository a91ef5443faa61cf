// For test programs that call GLib, which is not built with ThreadSanitizer: its locks are atomics that the sanitizer
// does not see, so what its own threads do with malloc() and strlen() looks like races of theirs. What such libraries
// do is left out; what this code does, and whatever two threads of it share, is watched as ever.
extern "C" const char* __tsan_default_options();

extern "C" const char* __tsan_default_options() { return "ignore_noninstrumented_modules=1"; }
