#include "channel/command/command.h"

#include <gmock/gmock.h>

#include "base/shell_quoting.h"

namespace darokleim::channel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Command Plain(std::string_view arguments) {
  return ReadCommand(arguments, Assist::kOff);
}
Command Assisted(std::string_view arguments) {
  return ReadCommand(arguments, Assist::kOn);
}

TEST(Command, IsTheFirstWordAfterAdbsOwnOptions) {
  for (const char* arguments :
       {"shell ls", " -s X shell ls", "-s shell shell ls", "-d shell ls", "-e shell ls", "-a shell ls",
        "-t 4 shell ls", "-t4 shell ls", "-P 5038 shell ls", "-P5038 shell ls", "-H host -P 1 -s X shell ls",
        "-Hhost shell ls", "-L tcp:host:1 shell ls", "-p product shell ls", "--one-device X shell ls",
        "--reply-fd 7 shell ls", "--exit-on-write-error shell ls"}) {
    EXPECT_EQ(Plain(arguments).name, "shell") << arguments;
    EXPECT_EQ(Plain(arguments).words.back(), "ls") << arguments;
    EXPECT_EQ(Plain(arguments).answer(), Answer::kText) << arguments;
  }
}

TEST(Command, MayBeMissing) {
  for (const char* arguments : {"", " ", "-s", "-s X", "-d"})
    EXPECT_EQ(Plain(arguments).name, "") << arguments;
  EXPECT_THAT(Plain("").words, IsEmpty());
  EXPECT_THAT(Plain(" -s").words, ElementsAre("-s"));
}

TEST(Command, IsSplitAtItsFirstSpace) {
  EXPECT_THAT(Plain(R"( -s X 'shell date +"%Y-%m-%d %H:%M:%S"')").words,
              ElementsAre("-s", "X", "shell", R"(date +"%Y-%m-%d %H:%M:%S")"));
  EXPECT_EQ(Plain(R"( -s X 'shell date +"%Y"')").answer(), Answer::kText);
  EXPECT_THAT(Plain("'shell '").words, ElementsAre("shell"));
  EXPECT_THAT(Plain("' shell ls'").words, ElementsAre("shell", "ls"));
  EXPECT_THAT(Plain("push 'a b'").words, ElementsAre("push", "a b"));
  EXPECT_THAT(Plain("''").words, ElementsAre(""));
}

TEST(Command, KnowsWhichAnswerByText) {
  for (const char* word :
       {"ls", "find", "du", "df", "stat", "getprop", "ip", "date", "pm", "am", "dumpsys"}) {
    EXPECT_EQ(Plain(std::string("-s X shell ") + word + " x").answer(), Answer::kText) << word;
    EXPECT_EQ(Plain(std::string("-s X ") + word + " x").answer(), Answer::kExitStatus) << word;
  }
  for (const char* word : {"cp", "rm", "mv", "mkdir", "chmod", "screencap", "input", "unheard-of", ""}) {
    EXPECT_EQ(Plain(std::string("-s X shell ") + word).answer(), Answer::kExitStatus) << word;
  }
  EXPECT_EQ(Plain("shell -T -n ls").answer(), Answer::kText);
  EXPECT_EQ(Plain("shell -e none ls").answer(), Answer::kText);
}

TEST(Command, IsNotTouchedWithoutTheAssist) {
  const Command command = Plain(R"(shell mv "'/a b'" ""/c"")");
  EXPECT_THAT(command.words, ElementsAre("shell", "mv", "'/a b'", "/c"));
  EXPECT_EQ(command.line_ends, LineEnds::kAsPrinted);
}

TEST(AssistedCommand, QuotesWhatWasQuoted) {
  EXPECT_THAT(Assisted(R"(-s X shell rm "/my photo.jpg")").words,
              ElementsAre("-s", "X", "shell", "rm", "'/my photo.jpg'"));
  EXPECT_THAT(Assisted(R"(shell mkdir -p ""/a $b (c) & d"")").words,
              ElementsAre("shell", "mkdir", "-p", "'/a $b (c) & d'"));
  EXPECT_THAT(Assisted(R"(shell mv "'/a b'" "'/it's'")").words,
              ElementsAre("shell", "mv", "'/a b'", R"('/it'\''s')"));
  EXPECT_THAT(Assisted(R"(shell pm install -r '"/a b.apk"')").words,
              ElementsAre("shell", "pm", "install", "-r", "'/a b.apk'"));
  EXPECT_THAT(Assisted(R"(shell ls "")").words, ElementsAre("shell", "ls", "''"));
}

// The text of each command that the SDK makes around a path, and the position of the path among the words.
struct Form {
  std::string before, after;
  size_t word;
};

TEST(AssistedCommand, KeepsAPathWhole) {
  const Form shell_forms[] = {{"shell rm \"", "\"", 2},
                              {"shell screencap -p \"", "\"", 3},
                              {"shell input text \"", "\"", 3},
                              {"shell mkdir -p \"\"", "\"\"", 3},
                              {"shell ls \"\"", "\"\"", 2},
                              {"shell ls -l -R  \"\"", "\"\"", 4},
                              {"shell stat \"\"", "\"\"", 2},
                              {"shell stat -c %Y \"\"", "\"\"", 4},
                              {"shell du -s \"\"", "\"\"", 3},
                              {"shell pm install -r '\"", "\"'", 4},
                              {"shell cp \"", "\" \"/to\"", 2},
                              {"shell cp \"/from\" \"", "\"", 3},
                              {"shell mv \"'", "'\" \"'/to'\"", 2},
                              {"shell mv \"'/from'\" \"'", "'\"", 3}};
  const Form adb_forms[] = {{"push --sync \"", "\" \"/to\"", 2},
                            {"push --sync \"/from\" \"", "\"", 3},
                            {"pull -a \"", "\" \"/to\"", 2},
                            {"pull -a \"/from\" \"", "\"", 3},
                            {"ls \"", "\"", 1},
                            {"backup -f \"", "\" -noapk -nosystem com.example", 2},
                            {"restore \"", "\"", 1},
                            {"install-multiple -r \"", "\" \"/split.apk\"", 2},
                            {"install-multiple -r \"/base.apk\" \"", "\"", 3}};
  for (const char* path :
       {"/a", "/5\" disk", "/5\" disk \"x", "/a\"", "/a\" ", "/\"a\" b", "/it's", "/'a' b", "/a\\", "/a\\\\b",
        "/a\\\" b", "/a $x & (b); *", "/a\nb\"\nc", "/ ", "/a\"\" b", "/a'\" b", "/a\"' b", "/a\xff"}) {
    for (const Form& form : shell_forms) {
      const Command command = Assisted("-s X " + form.before + path + form.after);
      ASSERT_GT(command.words.size(), form.word + 2) << form.before << path;
      EXPECT_EQ(command.words[form.word + 2], base::QuoteForShell(path)) << form.before;
    }
    for (const Form& form : adb_forms) {
      // Among any number of paths the end of this one cannot be known.
      if (form.before.rfind("install-multiple", 0) == 0 && std::string_view(path) == "/a\" ") continue;
      const Command command = Assisted("-s X " + form.before + path + form.after);
      ASSERT_GT(command.words.size(), form.word + 2) << form.before << path;
      EXPECT_EQ(command.words[form.word + 2], path) << form.before;
    }
  }
}

TEST(AssistedCommand, KeepsTheWordsAfterAPath) {
  EXPECT_THAT(Assisted(R"(backup -f "/my "5" b.ab" -noapk -nosystem com.example)").words,
              ElementsAre("backup", "-f", R"(/my "5" b.ab)", "-noapk", "-nosystem", "com.example"));
  EXPECT_THAT(Assisted(R"(install-multiple -r "/a" b" "/c d" "/e")").words,
              ElementsAre("install-multiple", "-r", R"(/a" b)", "/c d", "/e"));
  EXPECT_THAT(Assisted(R"(shell rm "/a b" )").words, ElementsAre("shell", "rm", "'/a b'"));
}

TEST(AssistedCommand, EndsAPathOnlyWhereAWordEnds) {
  EXPECT_THAT(Assisted(R"(shell rm "/a" b"c"d)").words, ElementsAre("shell", "rm", "'/a'", "'bcd'"));
}

TEST(AssistedCommand, HasOneOperandWhereTheSdkGivesOne) {
  EXPECT_THAT(Assisted(R"(shell rm "/a" "/b")").words, ElementsAre("shell", "rm", R"('/a" "/b')"))
      << "no other file is removed";
  EXPECT_THAT(Assisted(R"(shell rm "'/a b'")").words, ElementsAre("shell", "rm", "'/a b'"))
      << "but quotes around it are for the device";
  EXPECT_THAT(Assisted(R"(shell cp "'/a b'" "'/c d'")").words, ElementsAre("shell", "cp", "'/a b'", "'/c d'"))
      << "and so they are around each of two";
  EXPECT_THAT(Assisted(R"(shell rm "" "")").words, ElementsAre("shell", "rm", "' '"));
}

TEST(AssistedCommand, SeparatesTwoPathsWhereOnlyOnePlaceIsPossible) {
  EXPECT_THAT(Assisted(R"(shell cp "/a" "b" "/c")").words, ElementsAre("shell", "cp", R"('/a" "b')", "'/c'"))
      << "both are absolute";
  EXPECT_THAT(Assisted(R"(shell cp "a" "b")").words, ElementsAre("shell", "cp", "'a'", "'b'"));
  EXPECT_THAT(Assisted(R"(shell cp "/a" "/b" "/c")").words,
              ElementsAre("shell", "cp", "'/a'", "'/b'", "'/c'"))
      << "the end of the first cannot be known";
  EXPECT_THAT(Assisted(R"(shell cp "/a b" /c)").words, ElementsAre("shell", "cp", "'/a b'", "/c"));
}

TEST(AssistedCommand, LeavesTheRestAlone) {
  EXPECT_THAT(Assisted(R"(shell find /x/ -type f -and \( -iname *.jpg \))").words,
              ElementsAre("shell", "find", "/x/", "-type", "f", "-and", R"(\()", "-iname", "*.jpg", R"(\))"));
  EXPECT_THAT(Assisted(R"( -s X 'shell date +"%Y %H"')").words,
              ElementsAre("-s", "X", "shell", R"(date +"%Y %H")"));
  EXPECT_THAT(Assisted(R"(push "/a b" "/c'd")").words, ElementsAre("push", "/a b", "/c'd"));
  EXPECT_EQ(Assisted("push a b").line_ends, LineEnds::kAsPrinted);
  EXPECT_EQ(Assisted("logcat").line_ends, LineEnds::kAsPrinted);
}

TEST(AssistedCommand, HasTheLineEndsThatAreRead) {
  for (const char* arguments :
       {R"(shell ls -l   ""/sdcard"")", R"(shell ls -l -R -a ""/sdcard"")", "shell ls -la /x",
        R"(shell ls -l   ""/storage"")", R"(shell stat ""/x"")", R"(shell stat -c %Y ""/x"")",
        "shell getprop ro.x", "shell getprop", "'shell getprop ro.x'"}) {
    EXPECT_EQ(Assisted(arguments).line_ends, LineEnds::kCrLf) << arguments;
  }
  for (const char* arguments :
       {"shell ls -l /storage", R"(shell ls ""/sdcard"")", "shell ls /system/bin/find ",
        "shell df /x | grep /", "shell pm path x", "shell find /x", "shell rm x", "shell",
        R"('shell date +"%Y"')", "shell ls /a | wc -l"}) {
    EXPECT_EQ(Assisted(arguments).line_ends, LineEnds::kLf) << arguments;
  }
}

}  // namespace
}  // namespace darokleim::channel
