// Read by the leak sanitizer when the tests are built with it.
extern "C" const char* __lsan_default_suppressions();

// glibc 2.36 never frees the path that LOCPATH gives to setlocale.
extern "C" const char* __lsan_default_suppressions() { return "leak:__argz_add_sep\n"; }
