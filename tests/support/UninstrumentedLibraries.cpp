// For programs whose libraries have threads of their own and are not built with ThreadSanitizer: it cannot see how
// those threads wait for each other, and so is told not to judge what the libraries do among themselves. What the
// project's own code does is judged as everywhere.
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() { return "ignore_noninstrumented_modules=1"; }
