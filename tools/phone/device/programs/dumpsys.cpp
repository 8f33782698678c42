#include <array>
#include <cstdio>
#include <ctime>
#include <string>

#include "tools/phone/device/packages/package_store.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/users.h"

namespace darokleim::phone {

namespace {

std::string LocalTime(long long seconds) {
  const time_t time = static_cast<time_t>(seconds);
  tm local = {};
  localtime_r(&time, &local);
  std::array<char, 32> text;
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
  return text.data();
}

std::string SplitNames(const Package& package) {
  std::string names = "base";
  for (size_t i = 1; i < package.apk_paths.size(); ++i) {
    std::string name = package.apk_paths[i].substr(package.apk_paths[i].rfind('/') + 1);
    name = name.substr(0, name.rfind(".apk"));
    names += ", " + (name.rfind("split_", 0) == 0 ? name.substr(6) : name);
  }
  return names;
}

void DumpPackage(const Package& package) {
  std::printf("  Package [%s] (d64f8e0):\n    userId=%d\n", package.name.c_str(), package.user_id);
  std::printf("    codePath=%s\n    resourcePath=%s\n", package.code_path.c_str(), package.code_path.c_str());
  std::printf("    versionCode=%llu minSdk=%u targetSdk=%u\n    versionName=%s\n",
              static_cast<unsigned long long>(package.version_code), package.min_sdk, package.target_sdk,
              package.version_name.c_str());
  std::printf("    splits=[%s]\n    flags=[ %sHAS_CODE ALLOW_CLEAR_USER_DATA ALLOW_BACKUP ]\n",
              SplitNames(package).c_str(), package.system ? "SYSTEM " : "");
  std::printf(
      "    dataDir=/data/user/0/%s\n    timeStamp=%s\n    firstInstallTime=%s\n    lastUpdateTime=%s\n",
      package.name.c_str(), LocalTime(package.last_update).c_str(), LocalTime(package.first_install).c_str(),
      LocalTime(package.last_update).c_str());
  std::printf("    User 0: installed=%s hidden=false stopped=false enabled=0\n",
              package.installed ? "true" : "false");
}

// `only`: a package, or a section of the dump.
int DumpPackages(const std::string& only) {
  if (!only.empty() && only != "p" && only != "packages") {
    const auto package = PackageStore().Find(only);
    if (!package || !package->installed) {
      std::printf("Dexopt state:\n  Unable to find package: %s\n", only.c_str());
      return 0;
    }
    if (!package->main_activity.empty()) {
      std::printf(
          "Activity Resolver Table:\n  Non-Data Actions:\n      android.intent.action.MAIN:\n"
          "        310a0bd8 %s/%s\n\n",
          package->name.c_str(), package->main_activity.c_str());
    }
    std::printf("Packages:\n");
    DumpPackage(*package);
    return 0;
  }
  std::printf("Packages:\n");
  for (const Package& package : PackageStore().Installed()) DumpPackage(package);
  return 0;
}

int DumpUsers() {
  const std::string current = CurrentUser();
  std::printf("Current user: %s\n\nUsers:\n  UserInfo{0:Owner:4c13} serialNo=0 isPrimary=true\n",
              current.c_str());
  std::printf("    State: RUNNING_UNLOCKED\n    Created: <unknown>\n");
  if (current != "0") {
    std::printf("  UserInfo{%s:Second:410} serialNo=%s isPrimary=false\n    State: RUNNING_UNLOCKED\n",
                current.c_str(), current.c_str());
  }
  return 0;
}

int DumpBattery() {
  std::printf(
      "Current Battery Service state:\n  AC powered: false\n  USB powered: true\n  Wireless powered: "
      "false\n");
  if (IsLegacyPhone()) {
    std::printf("  Max charging current: 0\n");
  } else {
    std::printf(
        "  Dock powered: false\n  Max charging current: 500000\n  Max charging voltage: 5000000\n"
        "  Charge counter: 2610000\n");
  }
  std::printf(
      "  status: 2\n  health: 2\n  present: true\n  level: 87\n  scale: 100\n  voltage: 4120\n"
      "  temperature: 281\n  technology: Li-ion\n");
  return 0;
}

}  // namespace

int RunDumpsys(const Words& words) {
  const std::string service = words.empty() ? "" : words[0];
  if (service == "package") return DumpPackages(words.size() > 1 ? words[1] : "");
  if (service == "user") return DumpUsers();
  if (service == "battery") return DumpBattery();
  if (service.empty() || service == "-l") {
    std::printf("Currently running services:\n  battery\n  package\n  user\n");
    return 0;
  }
  std::fprintf(stderr, "Can't find service: %s\n", service.c_str());
  return 0;
}

}  // namespace darokleim::phone
