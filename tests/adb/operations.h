// One call of the library for each service, with the conversation that it has with a server.
#ifndef DAROKLEIM_TESTS_ADB_OPERATIONS_H
#define DAROKLEIM_TESTS_ADB_OPERATIONS_H

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "adb/limits.h"
#include "tests/support/scripted_server.h"

namespace darokleim::adb_test {

struct Operation {
  std::string name;
  std::vector<test::Exchange> conversation;
  // Fails too when the result is not what the conversation says.
  std::function<adb::Status(const adb::ServerAddress& server, const adb::Limits& limits)> call;
  // Whether an answer that is cut off at this number of bytes is complete all the same.
  std::function<bool(std::size_t cut)> is_whole_at = [](std::size_t) { return false; };
};
std::ostream& operator<<(std::ostream& out, const Operation& operation);

std::size_t ReplyBytes(const Operation& operation);

const std::vector<Operation>& Operations();

}  // namespace darokleim::adb_test

#endif  // DAROKLEIM_TESTS_ADB_OPERATIONS_H
