// darokleim info
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/device/device_facts.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(A single fact is printed without its name. Facts that the device does not report are left out, and null in JSON; some
devices do not report their MAC address, for example.

Examples:
  darokleim info                                     everything
  darokleim info model                               Pixel 7
  darokleim info android sdk --json
  darokleim info --property ro.build.fingerprint     any property of the system)";

struct Property {
  static constexpr ValueKind kKind = ValueKind::kText;
  static Property Parse(const std::string& word) {
    CheckWord(word, "._-:@", "property name");
    return {word};
  }
  std::string name;
};

struct Options {
  std::vector<std::string> names;
  std::vector<Property> properties;
};

void Describe(Command& command, Options& options) {
  std::vector<std::string> names;
  for (const auto& fact : DeviceFacts()) names.emplace_back(fact.name);
  command.Positional("NAME", options.names, "What to show; everything without a name").OneOf(names);
  command
      .Option("-p,--property", options.properties,
              "A property of the Android system, as `getprop` shows it; may be repeated")
      .Called("PROPERTY");
}

std::vector<DeviceFact> Wanted(const Options& options) {
  const auto& all = DeviceFacts();
  if (options.names.empty() && options.properties.empty()) return all;
  std::vector<DeviceFact> wanted;
  for (const auto& name : options.names) {
    wanted.push_back(
        *std::find_if(all.begin(), all.end(), [&name](const DeviceFact& fact) { return fact.name == name; }));
  }
  return wanted;
}

std::string PropertyOf(const DeviceAnswers& answers, const Property& property) {
  const auto found = answers.properties.find(property.name);
  return found == answers.properties.end() ? "" : found->second;
}

void PrintJson(Tool& tool, const std::vector<DeviceFact>& facts, const Options& options,
               const DeviceAnswers& answers) {
  for (const auto& fact : facts) tool.document().Member(fact.name, JsonOf(fact.read(answers)));
  if (options.properties.empty()) return;
  tool.document().BeginList("properties");
  for (const auto& property : options.properties) {
    const std::string value = PropertyOf(answers, property);
    JsonObject json;
    json.Text("name", property.name);
    tool.document().Add((value.empty() ? json.Null("value") : json.Text("value", value)).text());
  }
}

void PrintText(Tool& tool, const std::vector<DeviceFact>& facts, const Options& options,
               const DeviceAnswers& answers) {
  Output& output = tool.output();
  std::vector<std::pair<std::string, std::string>> lines;
  lines.reserve(facts.size() + options.properties.size());
  for (const auto& fact : facts) lines.emplace_back(fact.label, TextOf(fact.read(answers)));
  for (const auto& property : options.properties)
    lines.emplace_back(property.name, PropertyOf(answers, property));
  if (lines.size() == 1) {
    output.Write(output.Shown(lines.front().second) + "\n");
    return;
  }
  Table table;
  for (const auto& [label, text] : lines) {
    if (!text.empty()) table.AddRow({output.Painted(Colour::kFaint, label), output.Shown(text)});
  }
  output.Write(table.Text());
}

void Run(Tool& tool, const Options& options) {
  const auto facts = Wanted(options);
  DeviceQuestions questions;
  questions.properties = !options.properties.empty();
  for (const auto& fact : facts) fact.needs(questions);
  const auto answers = Ask(tool.phone(), questions, tool.limits());
  (tool.is_json() ? PrintJson : PrintText)(tool, facts, options, answers);
}

}  // namespace

void AddInfoCommand(Command& root) {
  AddCommand<Options>(root, {"info", "Show facts about a device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
