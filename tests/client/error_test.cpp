// What becomes of an error on its way to the caller.
#include "client/error.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <string>
#include <vector>

#include "client/shell.h"

namespace darokleim::client {
namespace {

using ::testing::HasSubstr;

// By the header's own names: one that is missing in dk_code_name() is "unknown".
TEST(Codes, HaveTheirNames) {
#define DAROKLEIM_CODE(code) \
  { code, #code }
  const std::vector<std::pair<dk_code, std::string>> all = {
      DAROKLEIM_CODE(DK_OK),
      DAROKLEIM_CODE(DK_CANCELLED),
      DAROKLEIM_CODE(DK_TIMED_OUT),
      DAROKLEIM_CODE(DK_STOPPED),
      DAROKLEIM_CODE(DK_INVALID_ARGUMENT),
      DAROKLEIM_CODE(DK_OUT_OF_MEMORY),
      DAROKLEIM_CODE(DK_SYSTEM_REFUSED),
      DAROKLEIM_CODE(DK_NO_SERVER),
      DAROKLEIM_CODE(DK_SERVER_PROTOCOL),
      DAROKLEIM_CODE(DK_SERVER_REFUSED),
      DAROKLEIM_CODE(DK_NO_DEVICE),
      DAROKLEIM_CODE(DK_SEVERAL_DEVICES),
      DAROKLEIM_CODE(DK_DEVICE_OFFLINE),
      DAROKLEIM_CODE(DK_DEVICE_UNAUTHORIZED),
      DAROKLEIM_CODE(DK_DEVICE_NO_PERMISSIONS),
      DAROKLEIM_CODE(DK_CONNECTION_LOST),
      DAROKLEIM_CODE(DK_NOT_FOUND),
      DAROKLEIM_CODE(DK_ACCESS_DENIED),
      DAROKLEIM_CODE(DK_NOT_A_DIRECTORY),
      DAROKLEIM_CODE(DK_IS_A_DIRECTORY),
      DAROKLEIM_CODE(DK_EXISTS),
      DAROKLEIM_CODE(DK_NOT_EMPTY),
      DAROKLEIM_CODE(DK_NO_SPACE),
      DAROKLEIM_CODE(DK_READ_ONLY),
      DAROKLEIM_CODE(DK_LINK_LOOP),
      DAROKLEIM_CODE(DK_NAME_TOO_LONG),
      DAROKLEIM_CODE(DK_UNSAFE_NAME),
      DAROKLEIM_CODE(DK_FILE_ERROR),
      DAROKLEIM_CODE(DK_CHANGED),
      DAROKLEIM_CODE(DK_COMMAND_FAILED),
      DAROKLEIM_CODE(DK_INSTALL_FAILED),
      DAROKLEIM_CODE(DK_NO_PACKAGE),
      DAROKLEIM_CODE(DK_ANSWER_UNREADABLE),
      DAROKLEIM_CODE(DK_UNSUPPORTED),
      DAROKLEIM_CODE(DK_ADDRESS_IN_USE),
      DAROKLEIM_CODE(DK_PARTLY_DONE),
  };
#undef DAROKLEIM_CODE
  for (const auto& [code, name] : all) EXPECT_EQ(dk_code_name(code), name);
  EXPECT_STREQ(dk_code_name(static_cast<dk_code>(7)), "unknown");
}

TEST(ErrorOfThePhone, HasLinuxNumbers) {
  EXPECT_EQ(FromPhoneErrno(39, "remove /a", "/a").code, DK_NOT_EMPTY);
  EXPECT_EQ(FromPhoneErrno(39, "remove /a", "/a").message, "Cannot remove /a: Directory not empty.");
  EXPECT_EQ(FromPhoneErrno(122, "send /a", "/a").code, DK_NO_SPACE);
  const Error unknown = FromPhoneErrno(117, "read /a", "/a");
  EXPECT_EQ(unknown.code, DK_FILE_ERROR);
  EXPECT_EQ(unknown.system_error, 117);
  EXPECT_EQ(unknown.message, "Cannot read /a: error 117.");
  EXPECT_FALSE(unknown.on_host);
}

TEST(ErrorOfThisComputer, IsMarked) {
  EXPECT_EQ(FromHostErrno(EDQUOT, "write a", "a").code, DK_NO_SPACE);
  EXPECT_EQ(FromHostErrno(ENOMEM, "write a", "a").code, DK_OUT_OF_MEMORY);
  EXPECT_EQ(FromHostErrno(EMFILE, "write a", "a").code, DK_SYSTEM_REFUSED);
  const Error other = FromHostErrno(EIO, "write a", "a");
  EXPECT_EQ(other.code, DK_FILE_ERROR);
  EXPECT_EQ(other.system_error, EIO);
  EXPECT_TRUE(other.on_host);
}

TEST(ErrorOfTheProtocol, HasACodeAndASentence) {
  const auto code_of = [](adb::ErrorCode code) {
    const Error error = FromAdb({code, "words", 0}, "do it", "X");
    EXPECT_THAT(error.message, HasSubstr("Cannot do it: "));
    return error.code;
  };
  EXPECT_EQ(code_of(adb::ErrorCode::kInvalidAddress), DK_INVALID_ARGUMENT);
  EXPECT_EQ(code_of(adb::ErrorCode::kCannotConnect), DK_NO_SERVER);
  EXPECT_EQ(code_of(adb::ErrorCode::kRefused), DK_SERVER_REFUSED);
  EXPECT_EQ(code_of(adb::ErrorCode::kProtocolFault), DK_SERVER_PROTOCOL);
  EXPECT_EQ(code_of(adb::ErrorCode::kConnectionBroken), DK_CONNECTION_LOST);
  EXPECT_EQ(code_of(adb::ErrorCode::kTimedOut), DK_TIMED_OUT);
  EXPECT_EQ(code_of(adb::ErrorCode::kCancelled), DK_CANCELLED);
  EXPECT_EQ(code_of(adb::ErrorCode::kStopped), DK_STOPPED);
  EXPECT_EQ(code_of(adb::ErrorCode::kTooLong), DK_NAME_TOO_LONG);
  EXPECT_EQ(code_of(adb::ErrorCode::kUnsupported), DK_UNSUPPORTED);
  EXPECT_EQ(code_of(adb::ErrorCode::kMisuse), DK_SYSTEM_REFUSED);
  EXPECT_EQ(FromAdb({adb::ErrorCode::kSystem, "socket", EMFILE}, "do it", "X").system_error, EMFILE);
}

TEST(ErrorOfACommand, HasItsFirstWordsOrItsStatus) {
  const Error silent = CommandFailed("start it", {"", "", 3});
  EXPECT_EQ(silent.message, "Cannot start it: the phone's program ended with exit status 3.");
  EXPECT_FALSE(silent.words);
  EXPECT_EQ(silent.exit_status, 3);
  const Error spoken = CommandFailed("start it", {"output", "\r\nfirst\x1b\nsecond", 1});
  EXPECT_THAT(spoken.message, HasSubstr("first"));
  EXPECT_EQ(spoken.message.find('\x1b'), std::string::npos);
  EXPECT_EQ(spoken.words, "\r\nfirst\x1b\nsecond");
}

}  // namespace
}  // namespace darokleim::client
