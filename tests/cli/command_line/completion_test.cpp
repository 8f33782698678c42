// `darokleim complete`, and the completions of bash and zsh on top of it.
#include <gmock/gmock.h>
#include <stdlib.h>

#include <chrono>
#include <memory>
#include <sstream>

#include "base/shell_quoting.h"
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
  test::SimulatedPhones& Attach(const Words& phones) {
    phones_ = std::make_unique<test::SimulatedPhones>(phones);
    for (const auto& [variable, value] : test::AdbEnvironment(phones_->port())) Set(variable, value);
    return *phones_;
  }
  std::vector<std::string> Complete(Words words) const {
    words.insert(words.begin(), {"complete", "--"});
    const auto outcome = Run(words);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    return Lines(outcome.output);
  }

 private:
  std::unique_ptr<test::SimulatedPhones> phones_;
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
  Attach({"0123456789ABCDEF", "FEDCBA98,state=unauthorized", "192.168.1.5:5555"});
  EXPECT_EQ(Run({"complete", "--", "-s", ""}).output,
            "0123456789ABCDEF\tdevice\nFEDCBA98\tunauthorized\n192.168.1.5:5555\tdevice\n");
  EXPECT_THAT(Complete({"devices", "--serial", "F"}), ElementsAre("FEDCBA98"));
  EXPECT_THAT(Complete({"--serial", "=", "F"}), ElementsAre("FEDCBA98"));
  EXPECT_THAT(Complete({"--serial=F"}), ElementsAre("--serial=FEDCBA98"));
}

TEST_F(CompletionTest, OffersThePackagesOfTheNamedDevice) {
  Attach({"AAA111", "BBB222,android=legacy"});
  for (const char* serial : {"AAA111", "BBB222"}) {
    EXPECT_THAT(Complete({"-s", serial, "app", "uninstall", "com.android.set"}),
                ElementsAre("com.android.settings"));
    EXPECT_THAT(Complete({"app", "uninstall", "--serial=" + std::string(serial), ""}),
                Contains("com.android.settings"));
  }
  EXPECT_THAT(Complete({"app", "uninstall", ""}), IsEmpty()) << "several devices";
}

TEST_F(CompletionTest, OffersPathsOfTheDevice) {
  auto& phones = Attach({"AAA111"});
  phones.Adb({"shell", "touch '/sdcard/my file' /sdcard/other"});
  EXPECT_THAT(Complete({"ls", ""}), ElementsAre("/"));
  EXPECT_THAT(Complete({"ls", "/sdcard/D"}), UnorderedElementsAre("/sdcard/DCIM/", "/sdcard/Download/"));
  EXPECT_THAT(Complete({"push", "a", "/sdcard/my"}), Contains("/sdcard/my file"));
  EXPECT_THAT(Complete({"stat", "/none/"}), IsEmpty());
}

TEST_F(CompletionTest, OffersNothingThatAPhoneIsSlowToSay) {
  Attach({"AAA111"}).Control({"AAA111", "fault", "slow=5"});
  for (const Words& words : {Words{"ls", "/sdcard/D"}, Words{"app", "info", ""}}) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(Complete(words), IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  }
}

TEST_F(CompletionTest, StartsNoServer) {
  Set("ANDROID_ADB_SERVER_PORT", "1");
  MakeAdb("echo \"$*\" >>" + File("started"));
  EXPECT_THAT(Complete({"-s", ""}), IsEmpty());
  EXPECT_THAT(Complete({"app", "info", ""}), IsEmpty());
  EXPECT_THAT(Complete({"ls", "/"}), IsEmpty());
  EXPECT_THAT(Complete({"no-such-command", ""}), Not(Contains(":files")));
  EXPECT_EQ(test::ReadFile(File("started")), "");
}

class BashCompletionTest : public CompletionTest {
 protected:
  // What a real bash offers in place of the last of `words`, which are as they are typed.
  std::vector<std::string> Bash(const Words& words) const {
    std::string line = "darokleim";
    std::string script =
        "source '" DAROKLEIM_COMPLETIONS "/darokleim.bash'\ncd '" + File("") + "'\nCOMP_WORDS=(\"$TOOL\"";
    for (const auto& word : words) {
      script += " " + base::QuoteForShell(word);
      // bash ends words at = and :, which are words of their own.
      const bool is_joined = word == "=" || word == ":" || line.ends_with('=') || line.ends_with(':');
      line += (is_joined ? "" : " ") + word;
    }
    script += ")\nCOMP_LINE=" + base::QuoteForShell(line) + "\nCOMP_POINT=${#COMP_LINE}" +
              "\nCOMP_CWORD=" + std::to_string(words.size()) +
              "\n_darokleim\nfor reply in \"${COMPREPLY[@]}\"; do printf '%s\\n' \"$reply\"; done\n";
    const auto outcome = RunProgram({"/bin/bash", "--norc", "--noprofile", "-c"}, {script});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    return Lines(outcome.output);
  }
};

TEST_F(BashCompletionTest, OffersWhatTheToolKnows) {
  Attach({"FEDCBA98", "192.168.1.5:5555"});
  EXPECT_THAT(Bash({"dev"}), ElementsAre("devices"));
  EXPECT_THAT(Bash({"-s", ""}), ElementsAre("FEDCBA98", "192.168.1.5:5555"));
  EXPECT_THAT(Bash({"-s", "192.168.1.5", ":", "5"}), ElementsAre("5555")) << "after the colon";
  EXPECT_THAT(Bash({"--serial", "=", "F"}), ElementsAre("FEDCBA98"));
  EXPECT_THAT(Bash({"logcat", "--d"}), ElementsAre("--dump"));
}

TEST_F(BashCompletionTest, UnderstandsQuotes) {
  Attach({"AAA111"}).Adb({"shell", "touch " + base::QuoteForShell("/sdcard/my $file's")});
  EXPECT_THAT(Bash({"ls", "/sdcard/my"}), ElementsAre("/sdcard/my\\ \\$file\\'s"));
  EXPECT_THAT(Bash({"ls", "/sdcard/my\\ "}), ElementsAre("/sdcard/my\\ \\$file\\'s"));
  EXPECT_THAT(Bash({"ls", "'/sdcard/my "}), ElementsAre("/sdcard/my $file'\\''s"));
  EXPECT_THAT(Bash({"ls", "\"/sdcard/my "}), ElementsAre("/sdcard/my \\$file's"));
  EXPECT_THAT(Bash({"ls", "/sdcard/'my f"}), IsEmpty());
  EXPECT_THAT(Bash({"ls", "/sdcard/'my "}), ElementsAre("my $file'\\''s")) << "after the quote";
}

TEST_F(BashCompletionTest, OffersFilesWithSpacesInTheirNames) {
  test::WriteFile(File("my notes.apk"), "");
  EXPECT_THAT(Bash({"app", "install", "my"}), ElementsAre("my\\ notes.apk"));
  EXPECT_THAT(Bash({"app", "install", "'my n"}), ElementsAre("my notes.apk"));
  EXPECT_THAT(Bash({"app", "install", "my\\ n"}), ElementsAre("my\\ notes.apk"));
  EXPECT_THAT(Bash({"--log-dir", "hom"}), ElementsAre("home"));
  EXPECT_THAT(Bash({"--adb", "=", "my"}), ElementsAre("my\\ notes.apk"));
}

// Names from the phone go into a command line of the user's own shell.
TEST_F(BashCompletionTest, RunsNothingThatAPhoneSays) {
  const Words names = {"/sdcard/evil;touch ran", "/sdcard/evil$(touch ran)", "/sdcard/evil`touch ran`"};
  auto& phones = Attach({"AAA111"});
  for (const auto& name : names) phones.Adb({"shell", "touch " + base::QuoteForShell(name)});
  for (const std::string quote : {"", "'", "\""}) {
    const auto offered = Bash({"ls", quote + "/sdcard/evil"});
    EXPECT_EQ(offered.size(), 3u) << quote;
    for (const auto& name : offered) {
      const auto outcome =
          RunProgram({"/bin/bash", "-c"}, {"cd '" + File("") + "'; printf '%s\\n' " + quote + name + quote});
      EXPECT_THAT(names, Contains(outcome.output.substr(0, outcome.output.size() - 1)));
    }
  }
  EXPECT_NE(RunShell("test -e '" + File("ran") + "'").status, 0);
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
  Attach({"0123456789ABCDEF", "FEDCBA98,state=unauthorized"});
  test::WriteFile(File("play"),
                  "_describe() { print -l -- \"${(@P)2}\" }\n_files() { print -- files \"$@\" }\n"
                  "words=(\"$TOOL\" \"$@\"); CURRENT=$#words; PREFIX=$words[CURRENT]; set --\nsource "
                  "'" DAROKLEIM_COMPLETIONS "/_darokleim'\n");
  const auto zsh = [this](const std::string& words) {
    return RunShell("zsh -f " + File("play") + " " + words).output;
  };
  EXPECT_EQ(zsh("dev"), "devices:List the attached devices\n");
  EXPECT_EQ(zsh("-s ''"), "0123456789ABCDEF:device\nFEDCBA98:unauthorized\n");
  EXPECT_EQ(zsh("--log-dir ''"), "files -/\n");
  EXPECT_EQ(zsh("app install ''"), "files\n");
}

class FishCompletionTest : public CompletionTest {
 protected:
  void SetUp() override {
    Set("PATH", File("bin") + ":/usr/bin:/bin");
    if (RunShell("command -v fish").status != 0) GTEST_SKIP() << "fish is not installed";
    MakeExecutable(File("bin/darokleim"), "#!/bin/sh\nexec \"$TOOL\" \"$@\"\n");
  }
  // What a real fish offers for the line.
  std::string Fish(const std::string& line) {
    Set("LINE", line);
    return RunShell("cd " + File("") +
                    " && fish --no-config -c 'source " DAROKLEIM_COMPLETIONS
                    "/darokleim.fish; complete -C \"$LINE\"' </dev/null")
        .output;
  }
};

TEST_F(FishCompletionTest, OffersWhatTheToolKnows) {
  Attach({"AAA111,state=unauthorized"});
  test::WriteFile(File("my notes.apk"), "");
  EXPECT_EQ(Fish("darokleim dev"), "devices\tList the attached devices\n");
  EXPECT_EQ(Fish("darokleim -s "), "AAA111\tunauthorized\n");
  EXPECT_EQ(Fish("darokleim devices --js"),
            "--json\tPrint one JSON document, as docs/json.md describes it\n");
  EXPECT_EQ(Fish("darokleim app install m"), "my notes.apk\n");
}

TEST_F(FishCompletionTest, UnderstandsQuotes) {
  Attach({"AAA111"}).Adb({"shell", "touch '/sdcard/my file'"});
  for (const char* word : {"/sdcard/my", "'/sdcard/my ", "\"/sdcard/my ", "/sdcard/my\\ "}) {
    EXPECT_THAT(Fish(std::string("darokleim ls ") + word), testing::HasSubstr("file")) << word;
  }
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
