#ifndef DAROKLEIM_TESTS_PHONE_SDK_ON_PHONE_H
#define DAROKLEIM_TESTS_PHONE_SDK_ON_PHONE_H

#include <darokleim.h>

#include <string>

#include "tests/phone/phone_under_test.h"

namespace darokleim::test {

inline constexpr int kOk = ADB_RESULT_OK;

// Whether the channel assists the library in this test program.
inline constexpr bool kAssisted = DAROKLEIM_TEST_ASSISTED;

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
