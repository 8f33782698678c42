// The devices that the adb server knows, for people.
#ifndef DAROKLEIM_TOOLS_CLI_CONNECTION_DEVICE_TABLE_H
#define DAROKLEIM_TOOLS_CLI_CONNECTION_DEVICE_TABLE_H

#include <darokleim/client.hpp>
#include <string>
#include <vector>

namespace darokleim::cli {

// A line for each: serial, state and what to do about it. Not for an empty list.
std::string DeviceTable(const std::vector<dk::DeviceInfo>& devices);

// The same with what kind of connection it has and what it is.
std::string LongDeviceTable(const std::vector<dk::DeviceInfo>& devices);

// "usb", "network", "emulator", "unknown".
const char* LinkName(dk_link link);

// One word: "device", "no-permissions".
std::string StateName(const dk::DeviceInfo& device);

// What to do about a device that is not ready; empty when it is.
std::string AdviceFor(const dk::DeviceInfo& device);

// What to check when there is none; a few lines.
extern const char kNoDeviceAdvice[];

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_CONNECTION_DEVICE_TABLE_H
