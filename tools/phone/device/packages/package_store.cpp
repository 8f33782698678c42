#include "tools/phone/device/packages/package_store.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "tools/phone/common/key_values.h"
#include "tools/phone/common/numbers.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/layout.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

constexpr int kFirstApplicationUser = 10100;

std::string StoreFolder() {
  return std::string(kStateFolder) + "/packages";
}

Package SystemPackage(const std::string& name, const std::string& apk, const std::string& activity,
                      int user_id) {
  Package package;
  package.name = name;
  package.code_path = apk.substr(0, apk.rfind('/'));
  package.apk_paths = {apk};
  package.version_code = 33;
  package.version_name = "13";
  package.min_sdk = package.target_sdk = 33;
  package.system = true;
  if (!activity.empty()) package.activities = {activity};
  package.main_activity = activity;
  package.user_id = user_id;
  package.first_install = package.last_update = 1230768000;
  return package;
}

const std::vector<Package>& SystemPackages() {
  static const std::vector<Package> packages = {
      SystemPackage("android", "/system/framework/framework-res.apk", "", 1000),
      SystemPackage("com.android.backupconfirm",
                    "/system/priv-app/BackupRestoreConfirmation/BackupRestoreConfirmation.apk",
                    "com.android.backupconfirm.BackupRestoreConfirmation", 10010),
      SystemPackage("com.android.calculator2", "/system/app/Calculator/Calculator.apk",
                    "com.android.calculator2.Calculator", 10011),
      SystemPackage("com.android.providers.media", "/system/priv-app/MediaProvider/MediaProvider.apk", "",
                    10012),
      SystemPackage("com.android.settings", "/system/priv-app/Settings/Settings.apk",
                    "com.android.settings.Settings", 1000),
      SystemPackage("com.android.shell", "/system/priv-app/Shell/Shell.apk", "", 2000),
      SystemPackage("com.android.systemui", "/system/priv-app/SystemUI/SystemUI.apk", "", 10013),
  };
  return packages;
}

std::string Joined(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& piece : pieces) text += (text.empty() ? "" : ";") + piece;
  return text;
}

std::vector<std::string> Pieces(const std::string& text) {
  return text.empty() ? std::vector<std::string>() : Split(text, ';');
}

KeyValues ToKeyValues(const Package& package) {
  return {{"codePath", package.code_path},
          {"apks", Joined(package.apk_paths)},
          {"versionCode", std::to_string(package.version_code)},
          {"versionName", package.version_name},
          {"minSdk", std::to_string(package.min_sdk)},
          {"targetSdk", std::to_string(package.target_sdk)},
          {"installed", package.installed ? "1" : "0"},
          {"activities", Joined(package.activities)},
          {"mainActivity", package.main_activity},
          {"userId", std::to_string(package.user_id)},
          {"firstInstall", std::to_string(package.first_install)},
          {"lastUpdate", std::to_string(package.last_update)}};
}

Package FromKeyValues(const std::string& name, const KeyValues& values) {
  const auto number = [&values](const char* key) {
    return ParseNumber<uint64_t>(ValueOf(values, key)).value_or(0);
  };
  Package package;
  package.name = name;
  package.code_path = ValueOf(values, "codePath");
  package.apk_paths = Pieces(ValueOf(values, "apks"));
  package.version_code = number("versionCode");
  package.version_name = ValueOf(values, "versionName");
  package.min_sdk = static_cast<uint32_t>(number("minSdk"));
  package.target_sdk = static_cast<uint32_t>(number("targetSdk"));
  package.installed = number("installed") != 0;
  package.activities = Pieces(ValueOf(values, "activities"));
  package.main_activity = ValueOf(values, "mainActivity");
  package.user_id = static_cast<int>(number("userId"));
  package.first_install = static_cast<long long>(number("firstInstall"));
  package.last_update = static_cast<long long>(number("lastUpdate"));
  return package;
}

}  // namespace

std::vector<Package> PackageStore::All() const {
  std::map<std::string, Package> by_name;
  for (const Package& package : SystemPackages()) by_name[package.name] = package;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(StoreFolder(), error)) {
    const std::string name = entry.path().filename().string();
    const KeyValues values = ReadKeyValues(entry.path().string());
    if (!values.empty()) by_name[name] = FromKeyValues(name, values);
  }
  std::vector<Package> all;
  all.reserve(by_name.size());
  for (auto& [name, package] : by_name) all.push_back(std::move(package));
  return all;
}

std::vector<Package> PackageStore::Installed() const {
  std::vector<Package> packages = All();
  packages.erase(std::remove_if(packages.begin(), packages.end(),
                                [](const Package& package) { return !package.installed; }),
                 packages.end());
  return packages;
}

std::optional<Package> PackageStore::Find(const std::string& name) const {
  for (Package& package : All()) {
    if (package.name == name) return std::move(package);
  }
  return std::nullopt;
}

bool PackageStore::Save(const Package& package) const {
  std::error_code error;
  fs::create_directories(StoreFolder(), error);
  return WriteKeyValues(StoreFolder() + "/" + package.name, ToKeyValues(package));
}

void PackageStore::Forget(const std::string& name) const {
  std::error_code error;
  fs::remove(StoreFolder() + "/" + name, error);
}

int PackageStore::NextUserId() const {
  int next = kFirstApplicationUser;
  for (const Package& package : All()) next = std::max(next, package.user_id + 1);
  return next;
}

}  // namespace darokleim::phone
