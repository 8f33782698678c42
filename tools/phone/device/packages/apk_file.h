#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_APK_FILE_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_APK_FILE_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace darokleim::phone {

// What an installation needs to know of an application package.
struct ApkFile {
  std::string package;
  std::string split;  // empty for the base
  uint64_t version_code = 0;
  std::string version_name;
  uint32_t min_sdk = 1;
  uint32_t target_sdk = 1;
  bool test_only = false;
  std::vector<std::string> activities;  // full class names
  std::string main_activity;            // the one of the launcher; empty when it has none
  std::vector<std::string> abis;        // of its native libraries
};

// Reads the package, or says why it cannot be installed in the words of the package manager:
// INSTALL_PARSE_FAILED_… and a reason.
std::variant<ApkFile, std::string> ReadApk(const std::string& path);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_APK_FILE_H
