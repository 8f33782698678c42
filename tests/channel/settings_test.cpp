// How the environment and the initialisation decide how commands run.
#include "tests/channel/channel_run.h"
#include "tests/support/file_content.h"

namespace darokleim::channel {
namespace {

// The environment is read when the channel is initialised.
class SettingsTest : public ChannelTest {
 protected:
  void SetUp() override { Unset(); }
  void TearDown() override { Unset(); }

  void UseMode(const char* mode) {
    setenv("DAROKLEIM_CHANNEL", mode, 1);
    UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  }
  void UseOlderAssistSwitch(const char* value) {
    setenv("DAROKLEIM_CHANNEL_ASSIST", value, 1);
    UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  }
  void UseTimeout(const char* seconds) {
    setenv("DAROKLEIM_CHANNEL_TIMEOUT", seconds, 1);
    UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  }
  static std::string Log() { return test::ReadFile(LogDirectory().File("adb_channel.log")); }
  static bool IsAssisted() {
    const std::string words = RunAdbWhere("words", R"(shell rm "/a b")").output;
    if (words == "<shell><rm><'/a b'>") return true;
    EXPECT_EQ(words, "<shell><rm></a b>");
    return false;
  }

 private:
  static void Unset() {
    unsetenv("DAROKLEIM_CHANNEL");
    unsetenv("DAROKLEIM_CHANNEL_ASSIST");
    unsetenv("DAROKLEIM_CHANNEL_TIMEOUT");
  }
};

TEST_F(SettingsTest, AssistQuotesPathsForTheDevice) {
  UseMode("assist");
  EXPECT_EQ(RunAdbWhere("words", R"( -s X shell cp "/a b" "/it's")").output,
            R"(<-s><X><shell><cp><'/a b'><'/it'\''s'>)");
}

TEST_F(SettingsTest, AssistGivesTheLineBreaksThatAreRead) {
  UseMode("assist");
  EXPECT_EQ(RunAdbWhere("print:a\\nb\\r\\n", R"( -s X shell stat "/x")").output, "a\r\nb\r\n");
  EXPECT_EQ(RunAdbWhere("print:a\\nb\\r\\n", " -s X shell ls -l /storage").output, "a\nb\n");
  EXPECT_EQ(RunAdbWhere("print:a\\nb\\r\\n", " devices").output, "a\nb\r\n");
}

TEST_F(SettingsTest, TheModeIsReadWhenTheChannelIsInitialised) {
  EXPECT_FALSE(IsAssisted());
  setenv("DAROKLEIM_CHANNEL", "assist", 1);
  EXPECT_FALSE(IsAssisted());
  UseMode("assist");
  EXPECT_TRUE(IsAssisted());
  UseMode("plain");
  EXPECT_FALSE(IsAssisted());
  setenv("ANDROID_ADB_SERVER_PORT", "1", 1);  // where no server listens, so that adb runs
  UseMode("direct");
  EXPECT_TRUE(IsAssisted());
  unsetenv("ANDROID_ADB_SERVER_PORT");
}

TEST_F(SettingsTest, AnUnknownModeIsPlainAndALineInTheLog) {
  UseMode("Assist");
  EXPECT_FALSE(IsAssisted());
  EXPECT_NE(Log().find("DAROKLEIM_CHANNEL=Assist is ignored: it is not plain, assist or direct"),
            std::string::npos);
}

TEST_F(SettingsTest, TheOlderSwitchTurnsTheAssistOn) {
  UseOlderAssistSwitch("1");
  EXPECT_TRUE(IsAssisted());
  UseOlderAssistSwitch("0");
  EXPECT_FALSE(IsAssisted());
}

TEST_F(SettingsTest, TheModeOverrulesTheOlderSwitch) {
  UseOlderAssistSwitch("1");
  UseMode("plain");
  EXPECT_FALSE(IsAssisted());
  UseMode("");
  EXPECT_TRUE(IsAssisted()) << "an empty name is none";
}

TEST_F(SettingsTest, ATimeoutEndsACommandOfAnyKind) {
  UseTimeout("0.3");
  const bool cancel = false;
  for (const char* orders :
       {" sleep:60000", " flood-for-ever", " close sleep:60000", " ignore:15 sleep:60000"}) {
    for (const bool* flag : {&cancel, static_cast<const bool*>(nullptr)}) {
      const Clock::time_point start = Clock::now();
      const Result result = RunAdb(orders, flag);
      EXPECT_EQ(result.status, 3003) << orders;
      EXPECT_FALSE(result.handed_out);
      EXPECT_GE(Since(start), milliseconds(300)) << orders;
      EXPECT_LT(Since(start), milliseconds(20000)) << orders;
    }
  }
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no adb is left";
  EXPECT_NE(Log().find("ended: DAROKLEIM_CHANNEL_TIMEOUT has passed"), std::string::npos);
}

TEST_F(SettingsTest, ATimeoutLeavesShorterCommandsAlone) {
  UseTimeout("20");
  EXPECT_EQ(RunAdb(" print:a sleep:30 print:b close sleep:30 exit:3").status, 1003);
  UseTimeout("5.5");
  EXPECT_EQ(RunAdb(" print:a exit:3").output, "a");
}

TEST_F(SettingsTest, ATimeoutStillLetsTheCallerCancel) {
  UseTimeout("60");
  bool cancel = false;
  std::thread other([&] {
    std::this_thread::sleep_for(milliseconds(50));
    __atomic_store_n(&cancel, true, __ATOMIC_RELEASE);
  });
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(RunAdb(" sleep:60000", &cancel).status, 3003);
  EXPECT_LT(Since(start), milliseconds(20000));
  other.join();
}

TEST_F(SettingsTest, ATimeoutDoesNotEndAStream) {
  UseTimeout("0.05");
  std::atomic<int> status = -1;
  ASSERT_EQ(ExecuteAdbCommandAnsynchronization(
                " sleep:400 exit:4", nullptr, &status,
                reinterpret_cast<void*>(+[](void* context, const char* data, int length) {
                  if (data == nullptr) *static_cast<std::atomic<int>*>(context) = length;
                })),
            0);
  for (const Clock::time_point start = Clock::now(); status == -1 && Since(start) < milliseconds(20000);)
    std::this_thread::sleep_for(milliseconds(2));
  EXPECT_EQ(status, 1004);
}

TEST_F(SettingsTest, ATimeoutThatIsNotANumberOfSecondsIsIgnoredWithALineInTheLog) {
  for (const char* value : {"soon", "-1", "1e1", "0x1", ".5", "1.", "1.2.3", "1,5", " 1", "1s", "nan", "inf",
                            "1000001", "99999999999999999999999"}) {
    UseTimeout(value);
    EXPECT_NE(Log().find(std::string("DAROKLEIM_CHANNEL_TIMEOUT=") + value +
                         " is ignored: it is not a number of seconds, for example 30 or 0.5"),
              std::string::npos);
    EXPECT_EQ(RunAdb(" sleep:20 exit:3").status, 1003) << value;
  }
  UseTimeout("0");
  EXPECT_EQ(RunAdb(" sleep:20 exit:3").status, 1003) << "0 is no limit";
  EXPECT_EQ(Log().find("DAROKLEIM_CHANNEL_TIMEOUT=0 is ignored"), std::string::npos);
  UseTimeout("0.0001");
  EXPECT_EQ(RunAdb(" sleep:5000").status, 3003) << "less than a millisecond is a limit";
}

TEST_F(SettingsTest, ALaterInitialisationUsesItsOwnAdb) {
  UseAdb(File("missing"));
  EXPECT_EQ(RunAdb(" exit:0").status, 3002);
  UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  EXPECT_EQ(RunAdb(" exit:0").status, 0);
}

}  // namespace
}  // namespace darokleim::channel
