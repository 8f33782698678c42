// The status values, and what is handed out with them.
#include <sys/stat.h>

#include "tests/channel/channel_run.h"
#include "tests/support/file_content.h"

namespace darokleim::channel {
namespace {

class StatusTest : public ChannelTest {
 protected:
  std::string Program(const std::string& name, const std::string& content, mode_t mode) {
    test::WriteFile(File(name), content);
    chmod(File(name).c_str(), mode);
    return File(name);
  }
  void ExpectNotStarted(const std::string& adb) {
    UseAdb(adb);
    const Result result = RunAdb(" devices");
    EXPECT_EQ(result.status, 3002) << adb;
    EXPECT_FALSE(result.handed_out);
  }
};

TEST_F(StatusTest, ZeroIsADeliveredOutput) {
  const Result result = RunAdb(" print:List\\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "List\n");
}

TEST_F(StatusTest, AnEmptyOutputIsHandedOutToo) {
  const Result result = RunAdb(" exit:0");
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(result.handed_out);
  EXPECT_EQ(result.output, "");
}

TEST_F(StatusTest, OfAFailureIsTheExitStatus) {
  const Result result = RunAdb(" error:error:\\sdevice\\soffline\\n exit:1");
  EXPECT_EQ(result.status, 1001);
  EXPECT_EQ(result.output, "error: device offline\n");
  EXPECT_EQ(RunAdb(" exit:255").status, 1255);
  EXPECT_TRUE(RunAdb(" exit:255").handed_out);
}

TEST_F(StatusTest, OfACrashIsTheSignal) {
  const Result result = RunAdb(" print:half signal:9");
  EXPECT_EQ(result.status, 2009);
  EXPECT_EQ(result.output, "half");
  EXPECT_EQ(RunAdb(" signal:11").status, 2011);
}

TEST_F(StatusTest, OfAShellCommandIsTheTextsWhereItPrints) {
  const Result listing =
      RunAdbWhere("print:a\\nls:\\sb:\\sPermission\\sdenied\\n exit:1", " -s X shell ls -l /x");
  EXPECT_EQ(listing.status, 0);
  EXPECT_EQ(listing.output, "a\nls: b: Permission denied\n");
  EXPECT_EQ(RunAdbWhere("exit:1", " -s X shell pm path com.a").status, 0);
  EXPECT_EQ(RunAdbWhere("error:error:\\sclosed\\n exit:1", " -s X shell ls -l /x").status, 1001);
  EXPECT_EQ(RunAdbWhere("error:adb:\\sfoo\\n exit:3", " -s X shell getprop").status, 1003);
  EXPECT_EQ(RunAdbWhere("exit:1", " -s X shell rm /x").status, 1001);
}

TEST_F(StatusTest, OfAFileThatIsNotAProgram) {
  ExpectNotStarted(directory_.path());
  ExpectNotStarted(File("missing"));
  ExpectNotStarted(File("missing/adb"));
  ExpectNotStarted("");
  ExpectNotStarted(Program("not-executable", "#!/bin/sh\n", 0644));
  ExpectNotStarted(Program("bad-interpreter", "#!/no/such/interpreter\n", 0755));
  ExpectNotStarted(Program("no-format", "this is no program\n", 0755));
  ExpectNotStarted(Program("empty", "", 0755));
}

TEST_F(StatusTest, OfTooLongAnArgumentText) {
  const Result result = RunAdb(" " + std::string(4 * 1024 * 1024, 'x'));
  EXPECT_EQ(result.status, 3002);
}

TEST_F(StatusTest, OfANullPointer) {
  char* out = nullptr;
  int length = 0;
  EXPECT_EQ(ExecuteAdbCommandSynchronization(nullptr, nullptr, &out, &length), 3004);
  EXPECT_EQ(ExecuteAdbCommandSynchronization(" x", nullptr, nullptr, &length), 3004);
  EXPECT_EQ(ExecuteAdbCommandSynchronization(" x", nullptr, &out, nullptr), 3004);
  EXPECT_EQ(ExecuteAdbCommandAnsynchronization(nullptr, nullptr, nullptr, nullptr), 3004);
  EXPECT_EQ(InitAdbCommuncation2Server(nullptr, nullptr, nullptr), 3004);
  ReleaseAdbOutBuffer(nullptr);
  EXPECT_EQ(RunAdb(" exit:0").status, 0);
}

TEST_F(StatusTest, IsFineWithoutALog) {
  EXPECT_EQ(InitAdbCommuncation2Server(DAROKLEIM_MISBEHAVING_ADB, nullptr, nullptr), 0);
  EXPECT_EQ(RunAdb(" exit:0").status, 0);
  EXPECT_EQ(InitAdbCommuncation2Server(DAROKLEIM_MISBEHAVING_ADB, "/no/such/directory", nullptr), 0);
  EXPECT_EQ(RunAdb(" exit:0").status, 0);
}

}  // namespace
}  // namespace darokleim::channel
