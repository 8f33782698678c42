#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "tools/phone/device/packages/installer.h"
#include "tools/phone/device/packages/package_store.h"
#include "tools/phone/device/programs/intent.h"
#include "tools/phone/device/programs/pm_sessions.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/users.h"

namespace darokleim::phone {

namespace {

// The words after the subcommand: the requested user, and whatever is not an option.
struct PmWords {
  std::string user = "0";
  std::string options;  // the letters of -f, -3 …
  Words long_options;   // --show-versioncode …
  Words names;

  bool Has(char letter) const { return options.find(letter) != std::string::npos; }
};

PmWords SortPmWords(const Words& words) {
  PmWords sorted;
  for (size_t i = 1; i < words.size(); ++i) {
    if (words[i] == "--user") {
      if (i + 1 < words.size()) sorted.user = words[++i];
    } else if (words[i].rfind("--", 0) == 0) {
      sorted.long_options.push_back(words[i]);
    } else if (!words[i].empty() && words[i][0] == '-') {
      sorted.options += words[i].substr(1);
    } else {
      sorted.names.push_back(words[i]);
    }
  }
  return sorted;
}

int ListPackages(const PmWords& words) {
  bool with_version = false;
  for (const std::string& option : words.long_options) {
    with_version = option == "--show-versioncode" && !IsLegacyPhone();  // since Android 8
    if (with_version) continue;
    std::fprintf(stderr, "Error: Unknown option: %s\n", option.c_str());
    return IsLegacyPhone() ? 1 : 255;
  }
  if (!MayActFor(words.user)) return 255;
  const std::string filter = words.names.size() > 1 ? words.names[1] : "";
  for (const Package& package : PackageStore().Installed()) {
    if (package.name.find(filter) == std::string::npos) continue;
    if ((words.Has('3') && package.system) || (words.Has('s') && !package.system) || words.Has('d')) continue;
    std::string line = "package:";
    if (words.Has('f')) line += package.apk_paths.front() + "=";
    line += package.name;
    if (with_version) line += " versionCode:" + std::to_string(package.version_code);
    if (words.Has('U')) line += " uid:" + std::to_string(package.user_id);
    std::printf("%s\n", line.c_str());
  }
  return 0;
}

int ListUsers() {
  const std::string current = CurrentUser();
  std::printf("Users:\n\tUserInfo{0:Owner:4c13} running\n");
  if (current != "0") std::printf("\tUserInfo{%s:Second:410} running\n", current.c_str());
  return 0;
}

int List(const PmWords& words) {
  const std::string what = words.names.empty() ? "" : words.names[0];
  if (what == "packages" || what == "package") return ListPackages(words);
  if (what == "users") return ListUsers();
  std::fprintf(stderr, "Error: unknown list type '%s'\n", what.c_str());
  return 255;
}

int Path(const PmWords& words) {
  if (words.names.empty()) {
    std::fprintf(stderr, "Error: no package specified\n");
    return 1;
  }
  if (!MayActFor(words.user)) return 255;
  const auto package = PackageStore().Find(words.names[0]);
  if (!package || !package->installed) return 1;
  for (const std::string& path : package->apk_paths) std::printf("package:%s\n", path.c_str());
  return 0;
}

int ResolveActivity(const Words& words) {
  Words rest;
  bool brief = false, component_alone = false;
  for (const std::string& word : words) {
    brief = brief || word == "--brief";
    component_alone = component_alone || word == "--components";
    if (word != "--brief" && word != "--components") rest.push_back(word);
  }
  const std::string component = ResolveForQuery(ParseIntent(rest));
  if (component.empty()) {
    std::printf("No activity found\n");
    return 0;
  }
  if (!component_alone)
    std::printf("priority=0 preferredOrder=0 match=0x108000 specificIndex=-1 isDefault=false\n");
  if (brief || component_alone) {
    std::printf("%s\n", ShortComponent(component).c_str());
    return 0;
  }
  std::printf(
      "ActivityInfo:\n  name=%s\n  packageName=%s\n  enabled=true exported=true directBootAware=false\n",
      ClassOf(component).c_str(), PackageOf(component).c_str());
  return 0;
}

int Remove(const PmWords& words) {
  if (words.names.empty()) {
    std::fprintf(stderr, "Error: package name not specified\n");
    return 1;
  }
  if (!MayActFor(words.user)) return 255;
  const auto package = PackageStore().Find(words.names[0]);
  const bool unknown = !package || (!package->installed && words.Has('k'));
  std::string failure = unknown && !IsLegacyPhone() ? "not installed for " + words.user
                                                    : Uninstall(words.names[0], words.Has('k'));
  if (failure.empty()) {
    std::printf("Success\n");
    return 0;
  }
  std::printf("Failure [%s]\n", failure.c_str());
  return 1;
}

int Clear(const PmWords& words) {
  const bool cleared = !words.names.empty() && ClearData(words.names[0]);
  std::printf("%s\n", cleared ? "Success" : "Failed");
  return cleared ? 0 : 1;
}

}  // namespace

int RunPm(const Words& words) {
  const std::string command = words.empty() ? "" : words[0];
  if (const auto status = RunPmInstall(words)) return *status;
  if (command == "resolve-activity" && !IsLegacyPhone()) return ResolveActivity(words);
  const PmWords sorted = SortPmWords(words);
  if (command == "list") return List(sorted);
  if (command == "path") return Path(sorted);
  if (command == "uninstall") return Remove(sorted);
  if (command == "clear") return Clear(sorted);
  if (command == "get-install-location") {
    std::printf("0[auto]\n");
    return 0;
  }
  std::fprintf(stderr, "Error: unknown command '%s'\n", command.c_str());
  return 255;
}

}  // namespace darokleim::phone
