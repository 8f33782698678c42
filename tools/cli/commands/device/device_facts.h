// Facts that a device reports about itself.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_DEVICE_FACTS_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_DEVICE_FACTS_H

#include <darokleim/client.hpp>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace darokleim::cli {

// What to ask the device for.
struct DeviceQuestions {
  bool properties = false;
  bool programs = false;  // clock, network, su
  bool screen = false;
  bool memory = false;
};

struct DeviceAnswers {
  std::string serial;
  std::map<std::string, std::string> properties;
  std::string time;         // as the device shows it: "2024-05-01 12:00:00"
  std::string address;      // IPv4 in the Wi-Fi network, with the length of the prefix
  std::string mac_address;  // of Wi-Fi
  bool has_su = false;      // a program to become root
  std::optional<dk_screen> screen;
  std::optional<dk_memory> memory;
};

// Asks all questions at the same time. Throws dk::Error; screen and memory that the device does not report are left out.
DeviceAnswers Ask(const dk::Device& device, const DeviceQuestions& questions, const dk::Limits& limits);

// What the script of Ask prints: the clock, the paths of su, `ip address`, apart by lines that none of them has.
void ReadPrograms(std::string_view text, DeviceAnswers* answers);

struct ByteCount {
  std::uint64_t bytes;
};

// Nothing when the device does not report it.
using FactValue = std::variant<std::monostate, std::string, bool, std::uint64_t, ByteCount>;

struct DeviceFact {
  const char* name;   // as in JSON and on the command line
  const char* label;  // for people
  void (*needs)(DeviceQuestions& questions);
  FactValue (*read)(const DeviceAnswers& answers);
};

// In the order to show them in.
const std::vector<DeviceFact>& DeviceFacts();

std::string TextOf(const FactValue& value);  // empty for nothing
std::string JsonOf(const FactValue& value);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_DEVICE_FACTS_H
