// `darokleim complete`, and the completions of bash and zsh on top of it.
#include <gmock/gmock.h>
#include <stdlib.h>

#include <sstream>

#include "tests/cli/tool_run.h"
#include "tests/support/file_content.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::cli {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::UnorderedElementsAre;

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line.substr(0, line.find('\t')));
  return lines;
}

class CompletionTest : public ToolTest {
 protected:
  std::vector<std::string> Complete(Words words) const {
    words.insert(words.begin(), {"complete", "--"});
    const auto outcome = Run(words);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    return Lines(outcome.output);
  }
};

TEST_F(CompletionTest, OffersSubcommandsWithWhatTheyDo) {
  const auto outcome = Run({"complete", "--", "dev"});
  EXPECT_EQ(outcome.output, "devices\tList the attached devices\n");
  EXPECT_THAT(Complete({""}), IsSupersetOf({"devices", "info", "app", "logcat", "push", "ls"}));
  EXPECT_THAT(Complete({""}), Not(Contains("complete")));
  EXPECT_THAT(Complete({"app", "st"}), ElementsAre("start", "stop"));
  EXPECT_THAT(Complete({"forward", ""}), ElementsAre("list", "add", "remove"));
  EXPECT_THAT(Complete({"-s", "ABC", "--quiet", "dev"}), ElementsAre("devices"));
}

TEST_F(CompletionTest, OffersOptionsOfTheCommandAndOfTheTool) {
  EXPECT_THAT(Complete({"devices", "--"}),
              IsSupersetOf({"--json", "--help", "--serial", "--adb", "--quiet"}));
  EXPECT_THAT(Complete({"devices", "--js"}), ElementsAre("--json"));
  EXPECT_THAT(Complete({"--ver"}), ElementsAre("--version"));
  EXPECT_THAT(Complete({"app", "list", "--us"}), ElementsAre("--user"));
}

TEST_F(CompletionTest, OffersFilesOfThisComputerForHostPaths) {
  EXPECT_THAT(Complete({"--adb", ""}), ElementsAre(":files"));
  EXPECT_THAT(Complete({"--log-dir", ""}), ElementsAre(":directories"));
  EXPECT_THAT(Complete({"app", "install", ""}), ElementsAre(":files"));
  EXPECT_THAT(Complete({"app", "install", "a.apk", ""}), ElementsAre(":files"));
  EXPECT_THAT(Complete({"restore", ""}), ElementsAre(":files"));
  EXPECT_THAT(Complete({"forward", "add", ""}), IsEmpty());
  EXPECT_THAT(Complete({"push", ""}), ElementsAre(":files"));
  EXPECT_THAT(Complete({"pull", ""}), ElementsAre("/"));
  EXPECT_THAT(Complete({"pull", "/sdcard/a", ""}), UnorderedElementsAre("/", ":files"));
}

TEST_F(CompletionTest, OffersNamedValues) {
  EXPECT_THAT(Complete({"info", "mo"}), ElementsAre("model"));
  EXPECT_THAT(Complete({"info", "model", "androi"}), ElementsAre("android"));
}

TEST_F(CompletionTest, OffersSerialNumbers) {
  MakeAdb(kTwoDevices);
  EXPECT_EQ(Run({"complete", "--", "-s", ""}).output, "0123456789ABCDEF\tdevice\nFEDCBA98\tunauthorized\n");
  EXPECT_THAT(Complete({"devices", "--serial", "F"}), ElementsAre("FEDCBA98"));
  EXPECT_THAT(Complete({"--serial", "=", "F"}), ElementsAre("FEDCBA98"));
}

TEST_F(CompletionTest, OffersThePackagesOfTheNamedDevice) {
  MakeAdb(R"([ "$*" = '-s FEDCBA98 shell pm list packages' ] || exit 1
printf 'package:com.example.notes\r\npackage:org.other\r\n')");
  EXPECT_THAT(Complete({"-s", "FEDCBA98", "app", "uninstall", "com."}), ElementsAre("com.example.notes"));
  EXPECT_THAT(Complete({"app", "uninstall", "--serial=FEDCBA98", ""}),
              UnorderedElementsAre("com.example.notes", "org.other"));
}

TEST_F(CompletionTest, OffersPathsOfTheDevice) {
  const test::SimulatedPhones phones({"AAA111"});
  for (const auto& [variable, value] : test::AdbEnvironment(phones.port())) Set(variable, value);
  phones.Adb({"shell", "touch '/sdcard/my file' /sdcard/other"});
  EXPECT_THAT(Complete({"ls", ""}), ElementsAre("/"));
  EXPECT_THAT(Complete({"ls", "/sdcard/D"}), UnorderedElementsAre("/sdcard/DCIM/", "/sdcard/Download/"));
  EXPECT_THAT(Complete({"push", "a", "/sdcard/my"}), Contains("/sdcard/my file"));
  EXPECT_THAT(Complete({"stat", "/none/"}), IsEmpty());
  phones.Control({"AAA111", "fault", "slow=5000"});
  EXPECT_THAT(Complete({"ls", "/sdcard/D"}), IsEmpty());
}

TEST_F(CompletionTest, ReportsNoErrors) {
  MakeAdb("echo broken; exit 1");
  EXPECT_THAT(Complete({"-s", ""}), IsEmpty());
  EXPECT_THAT(Complete({"app", "info", ""}), IsEmpty());
  EXPECT_THAT(Complete({"no-such-command", ""}), Not(Contains(":files")));
}

class BashCompletionTest : public CompletionTest {
 protected:
  // The words that a real bash offers after `words`, the last of which is unfinished.
  std::vector<std::string> Bash(const Words& words) const {
    std::string script =
        "source '" DAROKLEIM_COMPLETIONS "/darokleim.bash'\ncd '" + File("") + "'\nCOMP_WORDS=(\"$TOOL\"";
    for (const auto& word : words) script += " '" + word + "'";
    script += ")\nCOMP_CWORD=" + std::to_string(words.size()) +
              "\n_darokleim\nfor reply in \"${COMPREPLY[@]}\"; do printf '%s\\n' \"$reply\"; done\n";
    const auto outcome = RunProgram({"/bin/bash", "--norc", "--noprofile", "-c"}, {script});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    return Lines(outcome.output);
  }
};

TEST_F(BashCompletionTest, OffersWhatTheToolKnows) {
  MakeAdb(kTwoDevices);
  EXPECT_THAT(Bash({"dev"}), ElementsAre("devices"));
  EXPECT_THAT(Bash({"-s", ""}), ElementsAre("0123456789ABCDEF", "FEDCBA98"));
  EXPECT_THAT(Bash({"logcat", "--d"}), ElementsAre("--dump"));
}

TEST_F(BashCompletionTest, OffersFilesWithSpacesInTheirNames) {
  test::WriteFile(File("my notes.apk"), "");
  EXPECT_THAT(Bash({"app", "install", "my"}), ElementsAre("my\\ notes.apk"));
  EXPECT_THAT(Bash({"--log-dir", "hom"}), ElementsAre("home"));
  EXPECT_THAT(Bash({"--adb", "=", "my"}), ElementsAre("my\\ notes.apk"));
}

// Names from the phone go into a command line of the user's own shell.
TEST_F(BashCompletionTest, RunsNothingThatAPhoneSays) {
  MakeAdb(
      R"(printf 'package:com.good.notes\npackage:com.evil.notes;touch${IFS}ran;#\npackage:com.evil.$(touch${IFS}ran)\n')");
  const auto offered = Bash({"-s", "A", "app", "uninstall", "com."});
  EXPECT_THAT(offered, ElementsAre("com.good.notes"));
  for (const auto& name : offered) {
    RunProgram({"/bin/bash", "-c"},
               {"cd '" + File("") + "'; eval \": darokleim app uninstall " + name + "\""});
  }
  EXPECT_NE(RunShell("test -e '" + File("ran") + "'").status, 0);
}

// A tool that offers a name with characters of the shell, as no tool should.
TEST_F(BashCompletionTest, QuotesEveryName) {
  MakeExecutable(File("loose-tool"), "#!/bin/sh\nprintf '%s\\n' 'a;touch ran' '$(b)'\n");
  Set("TOOL", File("loose-tool"));
  EXPECT_THAT(Bash({""}), ElementsAre("a\\;touch\\ ran", "\\$\\(b\\)"));
}

TEST_F(BashCompletionTest, IsRegisteredForTheTool) {
  const auto outcome = RunProgram(
      {"/bin/bash", "-c"}, {"source '" DAROKLEIM_COMPLETIONS "/darokleim.bash' && complete -p darokleim"});
  EXPECT_EQ(outcome.output, "complete -F _darokleim darokleim\n");
}

class ZshCompletionTest : public CompletionTest {
 protected:
  void SetUp() override {
    Set("PATH", File("bin") + ":/usr/bin:/bin");
    if (RunShell("command -v zsh").status != 0) GTEST_SKIP() << "zsh is not installed";
  }
};

TEST_F(ZshCompletionTest, IsValid) {
  const auto outcome = RunShell("zsh -n '" DAROKLEIM_COMPLETIONS "/_darokleim'");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
}

// The functions of zsh's completion system are replaced by some that print what they are given.
TEST_F(ZshCompletionTest, DescribesWhatTheToolOffers) {
  MakeAdb(kTwoDevices);
  test::WriteFile(File("play"),
                  "_describe() { print -l -- \"${(@P)2}\" }\n_files() { print -- files \"$@\" }\n"
                  "words=(\"$TOOL\" \"$@\"); CURRENT=$#words; set --\nsource '" DAROKLEIM_COMPLETIONS
                  "/_darokleim'\n");
  const auto zsh = [this](const std::string& words) {
    return RunShell("zsh -f " + File("play") + " " + words).output;
  };
  EXPECT_EQ(zsh("dev"), "devices:List the attached devices\n");
  EXPECT_EQ(zsh("-s ''"), "0123456789ABCDEF:device\nFEDCBA98:unauthorized\n");
  EXPECT_EQ(zsh("--log-dir ''"), "files -/\n");
  EXPECT_EQ(zsh("app install ''"), "files\n");
}

// In the line editor of a real zsh, on a terminal of its own.
class ZshLineTest : public ZshCompletionTest {
 protected:
  // The line as it is after TAB; then it is entered. The tool of this zsh offers `name` and does nothing else.
  std::string CompletedAndEntered(const std::string& line, const std::string& name) const {
    MakeExecutable(File("bin/darokleim"), "#!/bin/sh\n[ \"$1\" != complete ] || cat offered\n");
    test::WriteFile(File("offered"), name + "\n");
    test::WriteFile(File("start"), "fpath=('" DAROKLEIM_COMPLETIONS
                                   "' $fpath)\nautoload -Uz compinit\ncompinit -u -D\n"
                                   "keep-line() { print -r -- \"$BUFFER\" >line }\nzle -N keep-line\n"
                                   "bindkey '^X' keep-line\n");
    test::WriteFile(File("play"),
                    "zmodload zsh/zpty\nzpty shell zsh -f -i\nzpty -w shell 'source ./start'\n"
                    "zpty -w -n shell '" +
                        line + "'$'\\t\\x18'\n" + WaitFor("line") +
                        "zpty -w -n shell $'\\n'\nzpty -w shell 'print >ended'\n" + WaitFor("ended") +
                        "zpty -d shell\n");
    const auto outcome = RunShell("cd '" + File("") + "' && TERM=dumb zsh -f play");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_NE(test::ReadFile(File("ended")), "");
    return test::ReadFile(File("line"));
  }

 private:
  static std::string WaitFor(const std::string& file) {
    return "for i in {1..400}; do [[ -s " + file + " ]] && break; sleep 0.05; done\n";
  }
};

TEST_F(ZshLineTest, QuotesEveryName) {
  EXPECT_EQ(CompletedAndEntered("darokleim app uninstall com.", "com.evil;touch${IFS}ran;$(touch ran)"),
            "darokleim app uninstall com.evil\\;touch\\$\\{IFS\\}ran\\;\\$\\(touch\\ ran\\) \n");
  EXPECT_NE(RunShell("test -e '" + File("ran") + "'").status, 0);
}

}  // namespace
}  // namespace darokleim::cli
