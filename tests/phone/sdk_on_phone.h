#ifndef DAROKLEIM_TESTS_PHONE_SDK_ON_PHONE_H
#define DAROKLEIM_TESTS_PHONE_SDK_ON_PHONE_H

#include <darokleim.h>

#include <string>
#include <string_view>

#include "tests/phone/phone_under_test.h"

namespace darokleim::test {

inline constexpr int kOk = ADB_RESULT_OK;

// How the channel runs commands in this test program: plain, assist or direct.
inline constexpr std::string_view kMode = DAROKLEIM_TEST_MODE;
inline constexpr bool kAssisted = kMode != "plain";
inline constexpr bool kDirect = kMode == "direct";

// When the connection to the phone breaks before it has answered.
inline constexpr int kBrokenOff =
    kDirect ? int{ADB_CHANNEL_CONNECTION_BROKEN} : int{ADB_RESULT_PROTOCOL_FAULT};
// And in the middle of a file.
inline constexpr int kCutTransfer = kDirect ? int{ADB_CHANNEL_CONNECTION_BROKEN} : 1001;

// The whole way: the library, our channel, the real adb client, a phone.
class SdkOnPhone : public PhoneUnderTest {
 protected:
  void SetUp() override;

  const char* phone() const { return serial().c_str(); }
  std::string OnPhone(const std::string& name) const { return storage_folder() + "/" + name; }
  std::string OnHost(const std::string& name) const { return host_folder() + "/" + name; }

  // A text that the library handed out, given back.
  static std::string Taken(char** text, int length);

  const bool running_ = false;
  const bool* cancel_ = &running_;
  char buffer_[256] = {};
  char* text_ = nullptr;
  int length_ = 0;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_SDK_ON_PHONE_H
