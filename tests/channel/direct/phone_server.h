#ifndef DAROKLEIM_TESTS_CHANNEL_DIRECT_PHONE_SERVER_H
#define DAROKLEIM_TESTS_CHANNEL_DIRECT_PHONE_SERVER_H

#include <cstdlib>
#include <string>

#include "tests/support/scripted_server.h"

namespace darokleim::channel {

using test::Number32;
using test::Number64;
using test::ReadBytes;
using test::WaitUntilClosed;
using test::WriteBytes;

// Scripted phones where the channel finds them: the environment names their port.
class PhoneServer : public test::ScriptedPhone {
 public:
  PhoneServer(std::string features, Serve serve) : ScriptedPhone(std::move(features), std::move(serve)) {
    setenv("ANDROID_ADB_SERVER_PORT", port().c_str(), 1);
  }
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_TESTS_CHANNEL_DIRECT_PHONE_SERVER_H
