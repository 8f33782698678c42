// docs/json.md and the tool's commands: each has the other.
#include <gmock/gmock.h>

#include <set>
#include <sstream>

#include "tests/cli/tool_run.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

using Names = std::set<std::string>;

class JsonSectionsTest : public ToolTest {
 protected:
  JsonSectionsTest() { Set("ANDROID_ADB_SERVER_PORT", "1"); }

  // Below the group, or at the top: completion describes commands, unlike values.
  std::vector<std::string> CommandsOf(const Words& group) const {
    Words words = {"complete", "--"};
    words.insert(words.end(), group.begin(), group.end());
    words.emplace_back("");
    std::istringstream lines(Run(words).output);
    std::vector<std::string> names;
    for (std::string line; std::getline(lines, line);) {
      const auto tab = line.find('\t');
      if (tab != std::string::npos && line.front() != '-') names.push_back(line.substr(0, tab));
    }
    return names;
  }
  Names AllCommands() const {
    Names all;
    for (const auto& name : CommandsOf({})) {
      const auto below = CommandsOf({name});
      if (below.empty()) all.insert(name);
      for (const auto& subcommand : below) all.insert(name + " " + subcommand);
    }
    return all;
  }
};

// "app list, app info" is a section of two commands, "devices --watch" one of `devices`, "server" one of all below it.
Names SectionsOf(const std::string& title) {
  Names names;
  std::istringstream parts(title);
  for (std::string part; std::getline(parts, part, ',');) {
    part.erase(0, part.find_first_not_of(' '));
    for (const char* end : {" --watch", " without a function"}) {
      if (part.ends_with(end)) part.erase(part.size() - std::string_view(end).size());
    }
    names.insert(part);
  }
  return names;
}

TEST_F(JsonSectionsTest, AreThoseOfTheCommands) {
  Names sections;
  for (const std::string& line : test::ReadLines(DAROKLEIM_JSON_DOCUMENTATION)) {
    if (line.rfind("## ", 0) == 0) sections.merge(SectionsOf(line.substr(3)));
  }
  EXPECT_EQ(sections.erase("errors"), 1u);
  const Names without_json = {"help", "version"};
  Names met;
  for (const std::string& command : AllCommands()) {
    const std::string group = command.substr(0, command.find(' '));
    const std::string& section = sections.count(command) != 0 ? command : group;
    met.insert(section);
    EXPECT_NE(sections.count(section), without_json.count(command)) << command;
  }
  for (const std::string& section : sections)
    EXPECT_EQ(met.count(section), 1u) << section << " is not a command";
  EXPECT_GT(met.size(), 40u);
}

}  // namespace
}  // namespace darokleim::cli
