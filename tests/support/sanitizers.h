// Whether a test runs under a sanitizer: their memory is added to a program's own, and their time.
#ifndef DAROKLEIM_TESTS_SUPPORT_SANITIZERS_H
#define DAROKLEIM_TESTS_SUPPORT_SANITIZERS_H

#if defined(__SANITIZE_ADDRESS__)
#define DAROKLEIM_SANITIZED 1
#elif defined(__SANITIZE_THREAD__)
#define DAROKLEIM_SANITIZED 1
#define DAROKLEIM_THREAD_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define DAROKLEIM_SANITIZED 1
#elif __has_feature(thread_sanitizer)
#define DAROKLEIM_SANITIZED 1
#define DAROKLEIM_THREAD_SANITIZED 1
#endif
#endif

namespace darokleim::test {

// How many made-up inputs to try where each is compared with what std::regex says of it, which under a sanitizer takes
// minutes for all of them.
constexpr int InputsToCompare(int all) {
#if defined(DAROKLEIM_SANITIZED)
  return all / 10;
#else
  return all;
#endif
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_SANITIZERS_H
