// What the sanitizers need to know when this program is built with one of them; empty otherwise.

// A phone's programs have the file system view loaded before everything else, and many of them end each second.
#if defined(__has_feature)
#define DAROKLEIM_HAS_FEATURE(feature) __has_feature(feature)
#else
#define DAROKLEIM_HAS_FEATURE(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || DAROKLEIM_HAS_FEATURE(address_sanitizer)
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "verify_asan_link_order=0:detect_leaks=0";
}
#endif

#if defined(__SANITIZE_THREAD__) || DAROKLEIM_HAS_FEATURE(thread_sanitizer)
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {
  return "atexit_sleep_ms=0";
}
#endif
