// darokleim forward, darokleim reverse
#include <algorithm>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

#define DAROKLEIM_ADDRESSES                                                                      \
  "An address is a TCP port, or one of tcp:PORT, localabstract:NAME, localfilesystem:PATH, "     \
  "localreserved:NAME,\n"                                                                        \
  "jdwp:PID. A mapping lasts until it is removed, the device is disconnected or the adb server " \
  "ends.\n\nExamples:\n"

constexpr char kForwardFooter[] = DAROKLEIM_ADDRESSES
    R"(  darokleim forward add 8080 80         http://localhost:8080 of this computer is port 80 of the device
  darokleim forward add 0 localabstract:chrome_devtools_remote      a free port, which is printed
  darokleim forward list
  darokleim forward remove 8080)";

constexpr char kReverseFooter[] = DAROKLEIM_ADDRESSES
    R"(  darokleim reverse add 3000 8080     http://localhost:3000 of the device is port 8080 of this computer
  darokleim reverse list
  darokleim reverse remove --all)";

#undef DAROKLEIM_ADDRESSES

// As adb has it: "tcp:8080".
struct Address {
  static constexpr ValueKind kKind = ValueKind::kText;
  static Address Parse(const std::string& word);
  std::string text;
};

bool IsNumber(const std::string& word) {
  return !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
}

bool IsPort(const std::string& word) {
  constexpr std::size_t kMostDigits = 5;
  constexpr int kLast = 65535;
  return IsNumber(word) && word.size() <= kMostDigits && std::stoi(word) <= kLast;
}

Address Address::Parse(const std::string& word) {
  if (IsPort(word)) return {"tcp:" + word};
  const auto colon = word.find(':');
  const std::string kind = word.substr(0, colon);
  const std::string rest = colon == std::string::npos ? "" : word.substr(colon + 1);
  if (kind == "tcp" && IsPort(rest)) return {word};
  if (kind == "jdwp" && IsNumber(rest)) return {word};
  const bool is_socket = kind == "localabstract" || kind == "localfilesystem" || kind == "localreserved";
  if (is_socket && !rest.empty()) return {word};
  throw UsageError("\"" + word + "\" is not an address: a TCP port, or for example localabstract:NAME.");
}

// What differs between the two directions.
struct Direction {
  dk::Result<int> (dk::Device::*add)(const std::string&, const std::string&, bool, const dk::Limits&) const;
  dk::Result<void> (dk::Device::*remove)(const std::string&, const dk::Limits&) const;
  dk::Result<std::vector<dk::Mapping>> (dk::Device::*list)(const dk::Limits&) const;
  const char* from_owner;  // who listens
  const char* to_owner;
};

constexpr Direction kForward = {&dk::Device::forward, &dk::Device::remove_forward, &dk::Device::forwards,
                                "this computer", "the device"};
constexpr Direction kReverse = {&dk::Device::reverse, &dk::Device::remove_reverse, &dk::Device::reverses,
                                "the device", "this computer"};

struct AddOptions {
  Address from, to;
  bool replace = false;
};

void DescribeAdd(Command& command, AddOptions& options) {
  command.Positional("FROM", options.from, "Address to listen at; port 0 takes a free one").Required();
  command.Positional("TO", options.to, "Address to connect to").Required();
  command.Flag("--replace", options.replace, "Replace a mapping of FROM");
}

template <const Direction& direction>
void RunAdd(Tool& tool, const AddOptions& options) {
  const int port =
      (tool.phone().*direction.add)(options.from.text, options.to.text, options.replace, tool.limits())
          .value();
  const std::string from = options.from.text == "tcp:0" ? "tcp:" + std::to_string(port) : options.from.text;
  if (tool.is_json()) {
    tool.document().Member("from", JsonString(from));
    tool.document().Member("to", JsonString(options.to.text));
  }
  tool.Report(from + " of " + direction.from_owner + " is " + options.to.text + " of " + direction.to_owner +
              ".");
}

template <const Direction& direction>
void RunList(Tool& tool) {
  if (tool.is_json()) tool.document().BeginList("mappings");
  const auto mappings = (tool.phone().*direction.list)(tool.limits()).value();
  Table table;
  for (const auto& mapping : mappings) {
    if (tool.is_json())
      tool.document().Add(JsonObject().Text("from", mapping.from).Text("to", mapping.to).text());
    table.AddRow({tool.output().Shown(mapping.from), tool.output().Shown(mapping.to)});
  }
  if (!tool.is_json()) tool.output().Write(table.Text());
}

struct RemoveOptions {
  std::vector<Address> addresses;
  bool all = false;
};

void DescribeRemove(Command& command, RemoveOptions& options) {
  auto& addresses = command.Positional("FROM", options.addresses, "Addresses that are listened at");
  command.Flag("--all", options.all, "Every mapping of the device").Excludes(addresses);
}

template <const Direction& direction>
void RunRemove(Tool& tool, const RemoveOptions& options) {
  if (options.addresses.empty() && !options.all) throw UsageError("FROM or --all is required.");
  if (tool.is_json()) tool.document().BeginList("removed");
  std::vector<Address> addresses = options.addresses;
  if (options.all) {
    for (auto& mapping : (tool.phone().*direction.list)(tool.limits()).value())
      addresses.push_back({mapping.from});
  }
  tool.ForEach(addresses, [&tool](const Address& address) {
    (tool.phone().*direction.remove)(address.text, tool.limits()).value();
    if (tool.is_json()) tool.document().Add(JsonString(address.text));
    tool.Report(address.text + " of " + direction.from_owner + " is free.");
  });
}

template <const Direction& direction>
void AddCommands(Command& group, const char* footer) {
  AddCommand(group, {"list", "List the mappings of the device", footer}, RunList<direction>);
  AddCommand<AddOptions>(group, {"add", "Add a mapping", footer}, DescribeAdd, RunAdd<direction>);
  AddCommand<RemoveOptions>(group, {"remove", "Remove mappings", footer}, DescribeRemove,
                            RunRemove<direction>);
}

}  // namespace

void AddForwardCommand(Command& root) {
  AddCommands<kForward>(
      root.Subcommand({"forward", "Let a port of this computer reach one of the device", kForwardFooter}),
      kForwardFooter);
}

void AddReverseCommand(Command& root) {
  AddCommands<kReverse>(
      root.Subcommand({"reverse", "Let a port of the device reach one of this computer", kReverseFooter}),
      kReverseFooter);
}

}  // namespace darokleim::cli
