// darokleim info
#include <json/value.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/device/device_facts.h"
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
  darokleim info android sdk --json                  {"android": "13", "sdk": "33"}
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
  bool json = false;
};

std::vector<std::string> NamesOfFacts() {
  std::vector<std::string> names;
  for (const auto& fact : DeviceFacts()) names.push_back(fact.name);
  return names;
}

void Describe(Command& command, Options& options) {
  command.Positional("NAME", options.names, "What to show; everything without a name").OneOf(NamesOfFacts());
  command
      .Option("-p,--property", options.properties,
              "A property of the Android system, as `getprop` shows it; may be repeated")
      .Called("PROPERTY");
  command.JsonFlag(options.json, "an object with a member for each fact");
}

std::vector<DeviceFact> Wanted(const Options& options) {
  std::vector<DeviceFact> wanted;
  if (options.names.empty() && options.properties.empty()) return DeviceFacts();
  for (const auto& name : options.names) {
    const auto& all = DeviceFacts();
    wanted.push_back(
        *std::find_if(all.begin(), all.end(), [&name](const DeviceFact& fact) { return fact.name == name; }));
  }
  for (const auto& property : options.properties) {
    wanted.push_back(PropertyFact(property.name, property.name, property.name));
  }
  return wanted;
}

std::string TextOf(const Json::Value& value) {
  if (value.isBool()) return value.asBool() ? "yes" : "no";
  return value.isNull() ? "" : value.asString();
}

void PrintJson(Tool& tool, const std::vector<DeviceFact>& facts) {
  Json::Value document(Json::objectValue);
  for (const auto& fact : facts) document[fact.name] = fact.read(tool.device());
  tool.output().WriteJson(document);
}

void PrintTable(Tool& tool, const std::vector<DeviceFact>& facts) {
  Table table;
  for (const auto& fact : facts) {
    const std::string text = TextOf(fact.read(tool.device()));
    if (!text.empty()) {
      table.AddRow({tool.output().Painted(Colour::kFaint, fact.label), tool.output().Shown(text)});
    }
  }
  tool.output().Write(table.Text());
}

void Run(Tool& tool, const Options& options) {
  const auto facts = Wanted(options);
  if (options.json) {
    PrintJson(tool, facts);
  } else if (facts.size() == 1) {
    tool.output().Write(tool.output().Shown(TextOf(facts.front().read(tool.device()))) + "\n");
  } else {
    PrintTable(tool, facts);
  }
}

}  // namespace

void AddInfoCommand(Command& root) {
  AddCommand<Options>(root, {"info", "Show facts about a device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
