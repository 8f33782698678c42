// Calls of the library over many of its functions, each with the code that it must return on any phone.
#ifndef DAROKLEIM_TESTS_ENDURANCE_CALLS_H
#define DAROKLEIM_TESTS_ENDURANCE_CALLS_H

#include <cstddef>
#include <string>

namespace darokleim::endurance {

struct Place {
  std::string serial;
  std::string device_file;  // exists
  std::string device_folder;
  std::string host_file;  // exists
  int thread;             // counted from 0; names what a thread makes
};

struct Call {
  const char* name;
  int expected;
  int (*run)(const Place& place);
};

// Starts a log stream and stops it after 20 ms; returns when it has ended.
int FollowLog(const Place& place);

extern const Call kCalls[];
extern const std::size_t kCallCount;

}  // namespace darokleim::endurance

#endif  // DAROKLEIM_TESTS_ENDURANCE_CALLS_H
