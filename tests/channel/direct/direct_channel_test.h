// The channel where it speaks to the adb server itself, and has no adb.
#ifndef DAROKLEIM_TESTS_CHANNEL_DIRECT_DIRECT_CHANNEL_TEST_H
#define DAROKLEIM_TESTS_CHANNEL_DIRECT_DIRECT_CHANNEL_TEST_H

#include "tests/channel/channel_run.h"

namespace darokleim::channel {

class DirectChannelTest : public ChannelTest {
 protected:
  DirectChannelTest() {
    setenv("DAROKLEIM_CHANNEL", "direct", 1);
    UseAdb(File("no-adb"));  // a command that is left to adb has the status 3002
  }
  ~DirectChannelTest() override {
    unsetenv("DAROKLEIM_CHANNEL");
    unsetenv("DAROKLEIM_CHANNEL_TIMEOUT");
    unsetenv("ANDROID_ADB_SERVER_PORT");
    UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  }
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_TESTS_CHANNEL_DIRECT_DIRECT_CHANNEL_TEST_H
