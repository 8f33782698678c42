#ifndef DAROKLEIM_TESTS_ADB_WITHIN_H
#define DAROKLEIM_TESTS_ADB_WITHIN_H

#include <chrono>

#include "adb/limits.h"

namespace darokleim::adb_test {

// So many milliseconds from now.
inline adb::Limits Within(int milliseconds) {
  return {adb::Clock::now() + std::chrono::milliseconds(milliseconds), nullptr};
}

}  // namespace darokleim::adb_test

#endif  // DAROKLEIM_TESTS_ADB_WITHIN_H
