#include "tools/cli/commands/device/log_text.h"

#include <gtest/gtest.h>

namespace darokleim::cli {
namespace {

LogRecord Record(const char* tag, const char* text) {
  dk_log_record record = {};
  record.seconds = 1'700'000'000;  // 2023-11-14 22:13:20 UTC
  record.nanoseconds = 45'999'999;
  record.level = 'W';
  record.process = 1234;
  record.thread = 25;
  record.tag = tag;
  record.text = text;
  return LogRecord(record);
}

const Output kOutput(-1);

TEST(TextOfLogRecord, IsALine) {
  EXPECT_EQ(TextOf(kOutput, Record("My Tag", "a: message"), true),
            "11-14 22:13:20.045  1234    25 W My Tag: a: message\n");
}

TEST(TextOfLogRecord, RepeatsTheHeadForEachLine) {
  EXPECT_EQ(TextOf(kOutput, Record("T", "one\r\n\ntwo\n"), true),
            "11-14 22:13:20.045  1234    25 W T: one\n"
            "11-14 22:13:20.045  1234    25 W T: \n"
            "11-14 22:13:20.045  1234    25 W T: two\n");
  EXPECT_EQ(TextOf(kOutput, Record("", ""), true), "11-14 22:13:20.045  1234    25 W : \n");
}

TEST(JsonOfLogRecord, HasEveryByte) {
  EXPECT_EQ(JsonOf(Record("T\xff", "one\ntwo")),
            "{\"time\": 1700000000, \"nanoseconds\": 45999999, \"level\": \"W\", \"process\": 1234, "
            "\"thread\": 25, \"tag\": \"T\\udcff\", \"text\": \"one\\ntwo\"}");
}

}  // namespace
}  // namespace darokleim::cli
