// The manual page, which the tool makes of its own help.
#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <sstream>

#include "tests/cli/tool_run.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class ManualTest : public ToolTest {
 protected:
  std::string Page() const {
    const auto outcome = Run({"manual"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    return outcome.output;
  }

  std::vector<std::string> Complete(Words words) const {
    words.insert(words.begin(), {"complete", "--"});
    std::istringstream stream(Run(words).output);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line.substr(0, line.find('\t')));
    return lines;
  }

  // Every subcommand and long option below these words is in the page and has a --help with an example.
  void ExpectDescribed(const std::string& page, const Words& words) const {
    for (Words inner : Subcommands(words)) ExpectDescribed(page, inner);
    Words help = words;
    help.push_back("--help");
    const auto outcome = Run(help);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Examples:\n  darokleim ")) << Joined(words);
    Words options = words;
    options.push_back("--");
    for (std::string option : Complete(options)) {
      if (option == "--help") continue;
      EXPECT_THAT(page, HasSubstr(Escaped(option))) << Joined(words);
    }
    if (words.empty()) return;
    EXPECT_THAT(page, HasSubstr("\n.SS " + Escaped(Joined(words)) + "\n"));
  }

 private:
  // The subcommands of the command, each with the words that lead to it.
  std::vector<Words> Subcommands(const Words& words) const {
    std::vector<Words> all;
    Words unfinished = words;
    unfinished.push_back("");
    const bool may_have_subcommands = words.size() < 2;
    if (!may_have_subcommands) return all;
    for (const auto& name : Complete(unfinished)) {
      const auto help = Run(WithName(words, name, "--help"));
      if (help.output.find("Usage: darokleim " + Joined(WithName(words, name)) + " ") == std::string::npos)
        continue;
      all.push_back(WithName(words, name));
    }
    return all;
  }

  static Words WithName(Words words, const std::string& name, const std::string& option = "") {
    words.push_back(name);
    if (!option.empty()) words.push_back(option);
    return words;
  }

  static std::string Joined(const Words& words) {
    std::string text;
    for (const auto& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
  }

  static std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) escaped += c == '-' ? "\\-" : std::string(1, c);
    return escaped;
  }
};

TEST_F(ManualTest, DescribesEverySubcommandAndOption) {
  MakeAdb("exit 1");
  const std::string page = Page();
  EXPECT_THAT(page, StartsWith(".TH DAROKLEIM 1 "));
  ExpectDescribed(page, {});
}

TEST_F(ManualTest, IsTheOneThatIsInstalled) {
  EXPECT_EQ(test::ReadFile(DAROKLEIM_MANUAL), Page());
}

// The words of the program's help that name an option, a setting or a fault.
TEST_F(ManualTest, OfThePhoneNamesEverythingThatItsHelpDoes) {
  std::string page = test::ReadFile(DAROKLEIM_PHONE_MANUAL);
  page = std::regex_replace(page, std::regex(R"(\\(f[BIP]|&))"), "");
  page = std::regex_replace(page, std::regex(R"(\\-)"), "-");
  std::string help = RunProgram({DAROKLEIM_PHONE_PROGRAM}, {"--help"}).output;
  help += RunProgram({DAROKLEIM_PHONE_PROGRAM}, {"ctl", "--help"}).output;
  const std::regex named(R"((--[a-z-]+)|(\b[a-z]+=)|(\n +([a-z]+-[a-z-]+|slow):)|(SERIAL [a-z]+))");
  std::set<std::string> words;
  for (std::sregex_iterator found(help.begin(), help.end(), named), end; found != end; ++found) {
    std::string word = (*found)[4].matched ? (*found)[4].str() : found->str();
    if (word.rfind("SERIAL ", 0) == 0) word.erase(0, 7);
    words.insert(word);
  }
  for (const char* example : {"--help", "key="}) words.erase(example);
  EXPECT_THAT(words, testing::IsSupersetOf({"--port", "android=", "no-wifi", "unplug"}));
  for (const auto& word : words) EXPECT_THAT(page, HasSubstr(word));
}

struct Page {
  const char* name;
  const char* path;
};

void PrintTo(const Page& page, std::ostream* stream) {
  *stream << page.name;
}

class FormattedManualTest : public ManualTest, public testing::WithParamInterface<Page> {
 protected:
  // Formats the page without a warning.
  void ExpectNoWarning(const std::string& formatter) {
    Set("PATH", "/usr/bin:/bin");
    if (RunShell("command -v " + formatter.substr(0, formatter.find(' '))).status != 0) {
      GTEST_SKIP() << formatter << " is not installed";
    }
    const auto outcome = RunShell(formatter + " '" + std::string(GetParam().path) + "'");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
  }
};

TEST_P(FormattedManualTest, GroffHasNoWarning) {
  ExpectNoWarning("groff -man -ww -Tutf8 -z");
}

// Its only warning is that there is no date: a page must be the same whenever it is built.
TEST_P(FormattedManualTest, MandocFindsNoError) {
  ExpectNoWarning("mandoc -T lint -W error");
}

INSTANTIATE_TEST_SUITE_P(, FormattedManualTest,
                         testing::Values(Page{"tool", DAROKLEIM_MANUAL},
                                         Page{"phone", DAROKLEIM_PHONE_MANUAL}),
                         [](const auto& page) { return page.param.name; });

}  // namespace
}  // namespace darokleim::cli
