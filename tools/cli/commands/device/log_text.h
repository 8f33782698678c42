// Records of the phone's log, as text and as JSON.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_LOG_TEXT_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_LOG_TEXT_H

#include <cstdint>
#include <darokleim/client.hpp>
#include <string>

#include "tools/cli/output/output.h"

namespace darokleim::cli {

// A copy, which outlives the callback.
struct LogRecord {
  explicit LogRecord(const dk_log_record& record)
      : seconds(record.seconds),
        nanoseconds(record.nanoseconds),
        level(record.level),
        process(record.process),
        thread(record.thread),
        tag(record.tag),
        text(record.text) {}

  std::int64_t seconds;
  std::int32_t nanoseconds;
  char level;
  std::uint32_t process, thread;
  std::string tag, text;
};

// "11-21 10:20:30.456  1234  1250 I Tag: message", for each line of the message, with line breaks.
std::string TextOf(const Output& output, const LogRecord& record, bool utc);

// On one line, without a line break.
std::string JsonOf(const LogRecord& record);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_LOG_TEXT_H
