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
  UseMode("direct");
  EXPECT_TRUE(IsAssisted());
}

TEST_F(SettingsTest, AnUnknownModeIsPlainAndALineInTheLog) {
  UseMode("Assist");
  EXPECT_FALSE(IsAssisted());
  const std::string log = test::ReadFile(LogDirectory().File("adb_channel.log"));
  EXPECT_NE(log.find("DAROKLEIM_CHANNEL=Assist is ignored: it is not plain, assist or direct"),
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

TEST_F(SettingsTest, ALaterInitialisationUsesItsOwnAdb) {
  UseAdb(File("missing"));
  EXPECT_EQ(RunAdb(" exit:0").status, 3002);
  UseAdb(DAROKLEIM_MISBEHAVING_ADB);
  EXPECT_EQ(RunAdb(" exit:0").status, 0);
}

}  // namespace
}  // namespace darokleim::channel
