// The fixture of every unit test: the SDK between a scripted channel and a recording log.
//
//     TEST_F(ConnectionTest, RebootsTheDevice) {
//       channel.Expect(" -s S1 reboot").Prints("");
//       EXPECT_EQ(AdbReboot("S1", &cancel), ADB_RESULT_OK);
//       EXPECT_THAT(journal(), ElementsAre(Info("AdbReboot Enter."), Ran(" -s S1 reboot"), GaveBack(),
//                                          Info("AdbReboot Leave, return 0.")));
//     }
//
// The fixture checks that every command comes with the test's cancel flag, unless its answer says otherwise, and that
// every buffer is released.
#ifndef DAROKLEIM_TESTS_UNIT_SUPPORT_SDK_TEST_H
#define DAROKLEIM_TESTS_UNIT_SUPPORT_SDK_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mutex>
#include <string>

#include "darokleim.h"
#include "tests/unit/support/journal.h"
#include "tests/unit/support/scripted_channel.h"

namespace darokleim::test {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class SdkTest : public ::testing::Test {
 public:
  SdkTest();
  ~SdkTest() override;

  // The running test, which the six platform symbols use.
  static SdkTest& Current();

  // Everything that happened so far, and the log lines alone.
  Journal journal() const;
  Journal log_lines() const;
  void Note(Event event);

  ScriptedChannel channel;
  // Passed to the functions under test.
  const bool cancel = false;
  // What InitLogEx answers; what it and the channel's start were given.
  bool log_opens = true;
  const void* log_context = nullptr;
  const void* channel_context = nullptr;

 private:
  mutable std::mutex mutex_;
  Journal journal_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_UNIT_SUPPORT_SDK_TEST_H
