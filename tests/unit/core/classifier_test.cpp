#include "src/core/classifier.h"

#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

static_assert(std::is_same_v<decltype(CheckOutbufErrorWithRet), int(const std::string&, int, bool)>);
static_assert(std::is_same_v<decltype(IsOutbufSuccess), bool(const std::string&)>);

class ClassifierTest : public SdkTest {};

struct Case {
  std::string text;
  int code;
};

// One text for every rule that can decide, in the order of the rules.
const std::vector<Case>& EveryRule() {
  static const std::vector<Case> cases = {
      {"error: no devices/emulators found", ADB_RESULT_NO_DEVICE},
      {"adb: cannot connect to daemon", ADB_RESULT_CANNOT_CONNECT_DAEMON},
      {"ls: /x: No such file or directory", ADB_RESULT_NO_SUCH_FILE},
      {"cp: Can't open non-file '/x'", ADB_RESULT_NO_SUCH_FILE},
      {"error: device 'S1' not found", ADB_RESULT_NO_DEVICE},
      {"error: unknown host service", ADB_RESULT_UNKNOWN_HOST_SERVICE},
      {"Failure [INSTALL_FAILED_ALREADY_EXISTS]", ADB_RESULT_INSTALL_ALREADY_EXISTS},
      {"Failure [-99]", ADB_RESULT_INSTALL_FAILURE_99},
      {"Failure [INSTALL_FAILED_VERSION_DOWNGRADE: x]", ADB_RESULT_INSTALL_VERSION_DOWNGRADE},
      {"Failure [INSTALL_FAILED_USER_RESTRICTED: Install canceled by user]",
       ADB_RESULT_INSTALL_CANCELED_BY_USER},
      {"Failure [INSTALL_FAILED_CANCELLED_BY_USER]", ADB_RESULT_INSTALL_CANCELLED_BY_USER},
      {"Failure [INSTALL_FAILED_USER_RESTRICTED]", ADB_RESULT_INSTALL_USER_RESTRICTED},
      {"Failure [INSTALL_CANCELED_BY_USER]", ADB_RESULT_INSTALL_USER_RESTRICTED},
      {"Failure [INSTALL_PARSE_FAILED_NO_CERTIFICATES]", ADB_RESULT_INSTALL_NO_CERTIFICATES},
      {"grep: /x: Permission denied", ADB_RESULT_PERMISSION_DENIED},
      {"find: /x: Permission denied", ADB_RESULT_PERMISSION_DENIED},
      {"Failure [DELETE_FAILED_INTERNAL_ERROR]", ADB_RESULT_FAILURE},
      {"* daemon still not running", ADB_RESULT_DAEMON_NOT_RUNNING},
      {"/system/bin/sh: no closing quote", ADB_RESULT_NO_CLOSING_QUOTE},
      {"/system/bin/sh: stat: not found", ADB_RESULT_SHELL_NOT_FOUND},
      {"error: protocol fault (no status)", ADB_RESULT_PROTOCOL_FAULT},
      {"error: device unauthorized.", ADB_RESULT_DEVICE_UNAUTHORIZED},
      {"adb: error: not enough space", ADB_RESULT_NOT_ENOUGH_SPACE},
      {"java.lang.SecurityException: Shell does not have permission to access user 10",
       ADB_RESULT_USER_ACCESS_DENIED},
      {"write failed: No space left on device", ADB_RESULT_NO_SPACE_LEFT},
  };
  return cases;
}

TEST_F(ClassifierTest, EveryMessageHasItsCode) {
  for (const Case& c : EveryRule()) EXPECT_EQ(CheckOutbufErrorWithRet(c.text, 0, false), c.code) << c.text;
}

TEST_F(ClassifierTest, TheChannelsValueDoesNotMatterWhenAMessageIsKnown) {
  for (const Case& c : EveryRule()) EXPECT_EQ(CheckOutbufErrorWithRet(c.text, 1001, false), c.code) << c.text;
}

// The very text of each message, and what else its rule needs.
struct Message {
  std::string text;
  std::string rest;
  int code;
};

const Message kMessages[] = {
    {"no devices/emulators found", "", ADB_RESULT_NO_DEVICE},
    {"cannot connect to daemon", "", ADB_RESULT_CANNOT_CONNECT_DAEMON},
    {"No such file or directory", "", ADB_RESULT_NO_SUCH_FILE},
    {"Can't open non-file", "", ADB_RESULT_NO_SUCH_FILE},
    {"device", " not found", ADB_RESULT_NO_DEVICE},
    {"not found", " device", ADB_RESULT_NO_DEVICE},
    {"error: unknown host service", "", ADB_RESULT_UNKNOWN_HOST_SERVICE},
    {"[INSTALL_FAILED_ALREADY_EXISTS]", "", ADB_RESULT_INSTALL_ALREADY_EXISTS},
    {"Failure [-99]", "", ADB_RESULT_INSTALL_FAILURE_99},
    {"INSTALL_FAILED_VERSION_DOWNGRADE", "", ADB_RESULT_INSTALL_VERSION_DOWNGRADE},
    {"[INSTALL_FAILED_USER_RESTRICTED: Install canceled by user]", "", ADB_RESULT_INSTALL_CANCELED_BY_USER},
    {"[INSTALL_FAILED_CANCELLED_BY_USER]", "", ADB_RESULT_INSTALL_CANCELLED_BY_USER},
    {"[INSTALL_FAILED_USER_RESTRICTED]", "", ADB_RESULT_INSTALL_USER_RESTRICTED},
    {"[INSTALL_CANCELED_BY_USER]", "", ADB_RESULT_INSTALL_USER_RESTRICTED},
    {"[INSTALL_PARSE_FAILED_NO_CERTIFICATES]", "", ADB_RESULT_INSTALL_NO_CERTIFICATES},
    {"Permission denied", " grep", ADB_RESULT_PERMISSION_DENIED},
    {"grep", " Permission denied", ADB_RESULT_PERMISSION_DENIED},
    {"find:", " Permission denied", ADB_RESULT_PERMISSION_DENIED},
    {"Failure", "", ADB_RESULT_FAILURE},
    {"daemon still not running", "", ADB_RESULT_DAEMON_NOT_RUNNING},
    {"no closing quote", "", ADB_RESULT_NO_CLOSING_QUOTE},
    {"/system/bin/sh", " not found", ADB_RESULT_SHELL_NOT_FOUND},
    {"not found", " /system/bin/sh", ADB_RESULT_SHELL_NOT_FOUND},
    {"protocol fault", "", ADB_RESULT_PROTOCOL_FAULT},
    {"device unauthorized", "", ADB_RESULT_DEVICE_UNAUTHORIZED},
    {"not enough space", "", ADB_RESULT_NOT_ENOUGH_SPACE},
    {"Shell does not have permission to access user", "", ADB_RESULT_USER_ACCESS_DENIED},
    {"No space left on device", "", ADB_RESULT_NO_SPACE_LEFT},
};

TEST_F(ClassifierTest, AMessageIsRecognisedByItsWholeText) {
  for (const Message& message : kMessages) {
    const auto code_of = [&](const std::string& text) {
      return CheckOutbufErrorWithRet(text + "|" + message.rest, 0, false);
    };
    EXPECT_EQ(code_of(message.text), message.code) << message.text;
    EXPECT_NE(code_of(message.text.substr(1)), message.code)
        << message.text << " without its first character";
    EXPECT_NE(code_of(message.text.substr(0, message.text.size() - 1)), message.code)
        << message.text << " without its last character";
  }
}

TEST_F(ClassifierTest, OfTwoMessagesTheEarlierRuleDecidesWhateverTheirOrder) {
  const auto& cases = EveryRule();
  for (std::size_t i = 0; i < cases.size(); ++i) {
    for (std::size_t j = i; j < cases.size(); ++j) {
      // A later text can complete an earlier rule of two parts ("device" … "not found"), so the expected
      // code is that of the first rule that the joined text satisfies by itself.
      const bool device_rule = (cases[i].text + cases[j].text).find("not found") != std::string::npos &&
                               (cases[i].text + cases[j].text).find("device") != std::string::npos;
      const int expected = device_rule && i > 3 ? static_cast<int>(ADB_RESULT_NO_DEVICE) : cases[i].code;
      EXPECT_EQ(CheckOutbufErrorWithRet(cases[j].text + "\n" + cases[i].text, 0, false), expected)
          << cases[j].text << " + " << cases[i].text;
    }
  }
}

TEST_F(ClassifierTest, NothingKnownKeepsTheChannelsValue) {
  EXPECT_EQ(CheckOutbufErrorWithRet("", 0, false), 0);
  EXPECT_EQ(CheckOutbufErrorWithRet("all is well\n", 0, true), 0);
  EXPECT_EQ(CheckOutbufErrorWithRet("all is well\n", -5, false), -5);
  EXPECT_EQ(CheckOutbufErrorWithRet("NO DEVICES/EMULATORS FOUND", 9, false), 9) << "case matters";
}

TEST_F(ClassifierTest, AZeroValueLogsNothing) {
  CheckOutbufErrorWithRet("all is well", 0, false);
  CheckOutbufErrorWithRet("No such file or directory", 0, false);
  EXPECT_THAT(journal(), IsEmpty());
}

TEST_F(ClassifierTest, AnotherValueIsLoggedFirstWithTheText) {
  EXPECT_EQ(CheckOutbufErrorWithRet("", 7, false), 7);
  EXPECT_EQ(CheckOutbufErrorWithRet("Failure", 8, false), ADB_RESULT_FAILURE);
  EXPECT_THAT(journal(), ElementsAre(Error("ret is 7,outbuf is:"), Error("ret is 8,outbuf is:Failure"),
                                     Info("Failure")));
}

TEST_F(ClassifierTest, DeviceAndNotFoundMayBeApart) {
  EXPECT_EQ(CheckOutbufErrorWithRet("error: device not found", 0, false), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(CheckOutbufErrorWithRet("x not found\ny device", 0, false), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(CheckOutbufErrorWithRet("error:device 'S1' not found", 0, false), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(CheckOutbufErrorWithRet("error:devices 'S1' found not", 0, false), ADB_RESULT_OK);
  EXPECT_EQ(CheckOutbufErrorWithRet("error:devic 'S1' not found", 0, false), ADB_RESULT_OK);
  EXPECT_THAT(journal(), IsEmpty()) << "the rule without a space comes too late to log";
}

TEST_F(ClassifierTest, DeniedPermissionDecidesNothingWithoutASearchTool) {
  EXPECT_EQ(CheckOutbufErrorWithRet("cp: /x: Permission denied", 1001, false), 1001);
  EXPECT_EQ(CheckOutbufErrorWithRet("Permission denied, find /x", 0, false), 0) << "no colon";
  EXPECT_EQ(CheckOutbufErrorWithRet("Permission denied\nno closing quote", 0, false),
            ADB_RESULT_NO_CLOSING_QUOTE);
}

TEST_F(ClassifierTest, AReasonAfterAlreadyExistsIsAPlainFailure) {
  const std::string text = "Failure [INSTALL_FAILED_ALREADY_EXISTS: Attempt to re-install x]";
  EXPECT_EQ(CheckOutbufErrorWithRet(text, 0, false), ADB_RESULT_FAILURE);
  EXPECT_THAT(journal(), ElementsAre(Info(text)));
}

TEST_F(ClassifierTest, FailureMinus200IsAPlainFailure) {
  EXPECT_EQ(CheckOutbufErrorWithRet("Failure [-200]", 5, false), ADB_RESULT_FAILURE);
  EXPECT_EQ(CheckOutbufErrorWithRet("Failure [-200]", 5, true), 5);
}

TEST_F(ClassifierTest, FailureHidesEveryLaterRule) {
  EXPECT_EQ(CheckOutbufErrorWithRet("Failure: No space left on device", 0, false), ADB_RESULT_FAILURE);
  EXPECT_EQ(CheckOutbufErrorWithRet("Failure: No space left on device", 6, true), 6);
}

TEST_F(ClassifierTest, InLineModeOnePackageAloneMakesAFailure) {
  const std::string text =
      "Failure of something\n\njp.naver.line.android alone\na Failure of jp.naver.line.android here\r\n"
      "again Failure jp.naver.line.android\n";
  EXPECT_EQ(CheckOutbufErrorWithRet(text, 0, true), ADB_RESULT_FAILURE);
  EXPECT_THAT(journal(), ElementsAre(Info("a Failure of jp.naver.line.android here\r")));
}

TEST_F(ClassifierTest, InLineModeBothWordsMustShareALine) {
  EXPECT_EQ(CheckOutbufErrorWithRet("Failure\njp.naver.line.android", 3, true), 3);
  EXPECT_THAT(journal(), ElementsAre(Error("ret is 3,outbuf is:Failure\njp.naver.line.android")));
}

TEST_F(ClassifierTest, LineModeLeavesTheOtherRulesAlone) {
  for (const Case& c : EveryRule()) {
    if (c.code == ADB_RESULT_FAILURE) continue;
    EXPECT_EQ(CheckOutbufErrorWithRet(c.text, 0, true), c.code) << c.text;
  }
}

TEST_F(ClassifierTest, TextsAreBytes) {
  using namespace std::string_literals;
  EXPECT_EQ(CheckOutbufErrorWithRet("\xff\0\xfe No space left on device"s, 0, false),
            ADB_RESULT_NO_SPACE_LEFT);
}

// Messages of adb about its server.
TEST_F(ClassifierTest, AMessageIsFoundWhereverALongTextHoldsIt) {
  constexpr std::size_t kBlock = 32 * 1024;  // of which the text is searched one after the other
  const std::string filler(2 * kBlock, 'S');
  const auto is_near_an_end = [](std::size_t at) { return (at + 100) % kBlock < 200; };
  for (std::size_t at = 0; at < filler.size(); at += is_near_an_end(at) ? 1 : 997) {
    const std::string text =
        filler.substr(at) + "Shell does not have permission to access user" + filler.substr(0, at);
    ASSERT_EQ(Classify(text, 0), ADB_RESULT_USER_ACCESS_DENIED) << filler.size() - at;
  }
  EXPECT_EQ(Classify(filler, 0), 0);
}

TEST_F(ClassifierTest, TheTwoPartsOfAMessageMayBeFarApartInEitherOrder) {
  const std::string far(100'000, ' ');
  EXPECT_EQ(Classify("device" + far + "not found", 0), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(Classify("not found" + far + "device", 0), ADB_RESULT_NO_DEVICE);
}

TEST_F(ClassifierTest, RealOutputs) {
  constexpr int kNothingKnown = 1001;
  const std::map<std::string, int> codes = {
      {"adb-server/awesome-adb-protocol-fault.txt", ADB_RESULT_PROTOCOL_FAULT},
      {"adb-server/awesome-adb-unauthorized-hint.txt", ADB_RESULT_DEVICE_UNAUTHORIZED},
      {"adb-server/mismatch-cannot-connect.txt", ADB_RESULT_CANNOT_CONNECT_DAEMON},
      {"adb-server/out-of-date-device-offline.txt", kNothingKnown},
      {"adb-server/protocol-fault-no-error.txt", ADB_RESULT_PROTOCOL_FAULT},
      {"adb-server/protocol-fault-success.txt", ADB_RESULT_PROTOCOL_FAULT},
      {"adb-server/root-production.txt", kNothingKnown},
  };
  EXPECT_EQ(DeviceOutputsIn("adb-server").size(), codes.size());
  for (const auto& [sample, code] : codes) {
    EXPECT_EQ(CheckOutbufErrorWithRet(DeviceOutput(sample), kNothingKnown, false), code) << sample;
  }
}

TEST_F(ClassifierTest, SuccessIsFoundAnywhereAsItIsWritten) {
  EXPECT_TRUE(IsOutbufSuccess("Success"));
  EXPECT_TRUE(IsOutbufSuccess("pkg: /x\r\nSuccess\r\n"));
  EXPECT_TRUE(IsOutbufSuccess("Successfully"));
  EXPECT_FALSE(IsOutbufSuccess("success"));
  EXPECT_FALSE(IsOutbufSuccess("Succes"));
  EXPECT_FALSE(IsOutbufSuccess(""));
}

}  // namespace
}  // namespace darokleim::test
