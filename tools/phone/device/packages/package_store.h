#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_PACKAGE_STORE_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_PACKAGE_STORE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace darokleim::phone {

// One application of the phone.
struct Package {
  std::string name;
  std::string code_path;               // a folder, or the file of an old system application
  std::vector<std::string> apk_paths;  // the base first
  uint64_t version_code = 0;
  std::string version_name;
  uint32_t min_sdk = 1;
  uint32_t target_sdk = 1;
  bool system = false;
  bool installed = true;  // false: removed, with its data kept
  std::vector<std::string> activities;
  std::string main_activity;
  int user_id = 0;  // the Linux user that a phone would give it
  long long first_install = 0;
  long long last_update = 0;

  std::string data_folder() const { return "/data/data/" + name; }
};

// The phone's packages: those that came with it, and those installed since, a file each.
class PackageStore {
 public:
  // Sorted by name.
  std::vector<Package> Installed() const;
  // Also one whose data only was kept.
  std::optional<Package> Find(const std::string& name) const;
  bool Save(const Package& package) const;
  void Forget(const std::string& name) const;
  int NextUserId() const;

 private:
  std::vector<Package> All() const;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_PACKAGE_STORE_H
