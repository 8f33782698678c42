#include "tests/unit/support/device_output.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace darokleim::test {
namespace {

const std::filesystem::path kFolder = std::filesystem::path(DAROKLEIM_TEST_DATA) / "device-output";

}  // namespace

std::string DeviceOutput(const std::string& name) {
  std::ifstream file(kFolder / name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string DeviceProperty(const std::string& name, const std::string& property) {
  const std::string list = "\n" + DeviceOutput(name);
  const std::string before = "\n[" + property + "]: [";
  const std::size_t at = list.find(before);
  if (at == std::string::npos) {
    ADD_FAILURE() << name << " has no " << property;
    return "";
  }
  const std::size_t begin = at + before.size();
  return list.substr(begin, list.find("]\n", begin) - begin);
}

std::set<std::string> DeviceOutputsIn(const std::string& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kFolder / folder)) {
    names.insert(folder + "/" + entry.path().filename().string());
  }
  EXPECT_FALSE(names.empty()) << folder;
  return names;
}

}  // namespace darokleim::test
