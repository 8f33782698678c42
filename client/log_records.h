// The phone's log in its own form, as `logcat -B` passes it on.
#ifndef DAROKLEIM_CLIENT_LOG_RECORDS_H
#define DAROKLEIM_CLIENT_LOG_RECORDS_H

#include <functional>
#include <string>
#include <string_view>

#include "darokleim/client.h"

namespace darokleim::client {

// Finds the records in a stream of bytes that comes in pieces.
class LogRecords {
 public:
  using Use = std::function<void(const dk_log_record& record)>;

  // False for bytes that are no log: nothing after them can be read.
  bool Read(std::string_view data, const Use& use);

 private:
  std::string rest_;
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_LOG_RECORDS_H
