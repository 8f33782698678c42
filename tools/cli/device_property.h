#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_PROPERTY_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_PROPERTY_H

#include <string>

#include "tools/cli/device.h"

namespace darokleim::cli {

// The value of an Android system property, without blanks and line ends at its end; empty when the device has no
// such property.
std::string ReadProperty(const Device& device, const std::string& name);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_PROPERTY_H
