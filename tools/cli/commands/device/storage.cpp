// darokleim battery, storage
#include <cstdio>
#include <string>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kBatteryFooter[] = R"(Examples:
  darokleim battery
  darokleim battery --json)";

constexpr char kStorageFooter[] = R"(Shows the internal storage and each card or USB stick.

Examples:
  darokleim storage
  darokleim storage --json)";

// "21.5"
std::string Tenths(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", number);
  return text;
}

void RunBattery(Tool& tool) {
  const dk_battery battery = tool.phone().battery(tool.limits()).value();
  if (tool.is_json()) {
    Document& document = tool.document();
    document.Member("level", battery.level < 0 ? "null" : std::to_string(battery.level));
    document.Member("charging", battery.charging ? "true" : "false");
    document.Member("temperature", Tenths(battery.temperature));
    document.Member("voltage_mv", battery.voltage_mv == 0 ? "null" : std::to_string(battery.voltage_mv));
    return;
  }
  Table table;
  table.AddRow({"Level", battery.level < 0 ? "unknown" : std::to_string(battery.level) + "%"});
  table.AddRow({"Charging", battery.charging ? "yes" : "no"});
  table.AddRow({"Temperature", Tenths(battery.temperature) + " °C"});
  if (battery.voltage_mv != 0) table.AddRow({"Voltage", std::to_string(battery.voltage_mv) + " mV"});
  tool.output().Write(table.Text());
}

std::string ToJson(const dk::Volume& volume) {
  JsonObject json;
  json.Text("path", volume.path).Bool("internal", volume.internal);
  return json.Unsigned("total", volume.total)
      .Unsigned("used", volume.used)
      .Unsigned("free", volume.free)
      .text();
}

void RunStorage(Tool& tool) {
  if (tool.is_json()) tool.document().BeginList("volumes");
  const auto volumes = tool.phone().volumes(tool.limits()).value();
  if (tool.is_json()) {
    for (const auto& volume : volumes) tool.document().Add(ToJson(volume));
    return;
  }
  Table table;
  table.AddRow({"PATH", "KIND", "TOTAL", "USED", "FREE"});
  for (const auto& volume : volumes) {
    table.AddRow({tool.output().Shown(volume.path), volume.internal ? "internal" : "card",
                  SizeText(volume.total), SizeText(volume.used), SizeText(volume.free)});
  }
  tool.output().Write(table.Text());
}

}  // namespace

void AddBatteryCommand(Command& root) {
  AddCommand(root, {"battery", "Show the battery of the device", kBatteryFooter}, RunBattery);
}

void AddStorageCommand(Command& root) {
  AddCommand(root, {"storage", "Show the storage of the device: total, used, free", kStorageFooter},
             RunStorage);
}

}  // namespace darokleim::cli
