#ifndef DAROKLEIM_TESTS_PHONE_SDK_ON_PHONE_H
#define DAROKLEIM_TESTS_PHONE_SDK_ON_PHONE_H

#include <darokleim.h>

#include <string>
#include <string_view>

#include "tests/phone/phone_under_test.h"

namespace darokleim::test {

inline constexpr int kOk = ADB_RESULT_OK;

// The application of the tests, and a file of its data.
inline constexpr char kNotes[] = "com.example.notes";
inline constexpr char kNote[] = "/data/data/com.example.notes/files/note";

// How the channel runs commands in this test program: plain, assist or direct. Defined in sdk_mode.cpp.
extern const std::string_view kMode;
extern const bool kAssisted;
extern const bool kDirect;

// When the connection to the phone breaks before it has answered.
extern const int kBrokenOff;
// And in the middle of a file.
extern const int kCutTransfer;

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
