// Whether a test runs under a sanitizer: their memory is added to a program's own.
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

#endif  // DAROKLEIM_TESTS_SUPPORT_SANITIZERS_H
