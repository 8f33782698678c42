// Facts that a device reports about itself.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_DEVICE_FACTS_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_DEVICE_FACTS_H

#include <json/forwards.h>

#include <functional>
#include <string>
#include <vector>

#include "tools/cli/device/device.h"

namespace darokleim::cli {

struct DeviceFact {
  std::string name;   // as in JSON and on the command line
  std::string label;  // for people
  // A text, true or false; null when the device does not report it. Asks the device; throws as Device::Check.
  std::function<Json::Value(const Device&)> read;
};

// In the order to show them in.
const std::vector<DeviceFact>& DeviceFacts();

// Any system property, under its own name.
DeviceFact PropertyFact(const std::string& name, const std::string& property, const std::string& label);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_DEVICE_DEVICE_FACTS_H
