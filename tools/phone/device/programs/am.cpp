#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "tools/phone/device/backup.h"
#include "tools/phone/device/packages/package_store.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/records.h"
#include "tools/phone/device/users.h"

namespace darokleim::phone {

namespace {

// What `am start` is to start.
struct Intent {
  std::string action;
  std::string data;
  std::string category;
  std::string component;
  bool wait = false;
  bool extras = false;
};

// The number of values that follow an option for an extra or another detail.
size_t ValuesOf(const std::string& option) {
  static const std::vector<std::string> with_two = {"-e",   "--es",  "--ez",  "--ei",  "--el",  "--ef",
                                                    "--eu", "--ecn", "--eia", "--ela", "--efa", "--esa"};
  static const std::vector<std::string> with_one = {"-f", "-t", "--esn",           "--user", "--display",
                                                    "-P", "-R", "--windowingMode", "-p"};
  if (std::find(with_two.begin(), with_two.end(), option) != with_two.end()) return 2;
  return std::find(with_one.begin(), with_one.end(), option) != with_one.end() ? 1 : 0;
}

Intent ParseIntent(const Words& words) {
  Intent intent;
  for (size_t i = 1; i < words.size(); ++i) {
    const std::string& word = words[i];
    const std::string value = i + 1 < words.size() ? words[i + 1] : "";
    std::string* place = word == "-n"   ? &intent.component
                         : word == "-a" ? &intent.action
                         : word == "-c" ? &intent.category
                         : word == "-d" ? &intent.data
                                        : nullptr;
    if (place != nullptr) {
      *place = value;
      ++i;
    } else if (word == "-W") {
      intent.wait = true;
    } else if (const size_t values = ValuesOf(word); values > 0) {
      intent.extras = intent.extras || values == 2;
      i += values;
    } else if (!word.empty() && word[0] != '-') {
      // A bare word is a component, a package or an address.
      (word.find("://") != std::string::npos ? intent.data : intent.component) = word;
    }
  }
  return intent;
}

std::string ClassOf(const std::string& component) {
  const size_t slash = component.find('/');
  if (slash == std::string::npos) return "";
  const std::string name = component.substr(slash + 1);
  return !name.empty() && name[0] == '.' ? component.substr(0, slash) + name : name;
}

std::string PackageOf(const std::string& component) {
  return component.substr(0, component.find('/'));
}

// The short form: the class begins with a dot when it is in the package.
std::string ShortComponent(const std::string& component) {
  const std::string package = PackageOf(component);
  const std::string name = ClassOf(component);
  if (name.rfind(package + ".", 0) == 0) return package + "/" + name.substr(package.size());
  return package + "/" + name;
}

std::string Describe(const Intent& intent) {
  std::string text = "Intent {";
  if (!intent.action.empty()) text += " act=" + intent.action;
  if (!intent.category.empty()) text += " cat=[" + intent.category + "]";
  if (!intent.data.empty()) {
    const size_t path = intent.data.find('/', intent.data.find("://") + 3);
    text += " dat=" + (path == std::string::npos ? intent.data : intent.data.substr(0, path) + "/...");
  }
  if (!intent.component.empty()) text += " cmp=" + ShortComponent(intent.component);
  if (intent.extras) text += " (has extras)";
  return text + " }";
}

// The component that Android would choose; empty when none fits.
std::string Resolve(const Intent& intent) {
  if (!intent.component.empty()) {
    const auto package = PackageStore().Find(PackageOf(intent.component));
    const std::string name = ClassOf(intent.component);
    const bool known =
        package && package->installed &&
        std::find(package->activities.begin(), package->activities.end(), name) != package->activities.end();
    return known ? PackageOf(intent.component) + "/" + name : "";
  }
  if (intent.action == "android.settings.SETTINGS")
    return "com.android.settings/com.android.settings.Settings";
  return "";
}

int Start(const Words& words) {
  Intent intent = ParseIntent(words);
  // A component without a class is a package: its launcher's activity.
  if (!intent.component.empty() && intent.component.find('/') == std::string::npos) {
    const auto package = PackageStore().Find(intent.component);
    if (package && !package->main_activity.empty()) intent.component += "/" + package->main_activity;
  }
  std::printf("Starting: %s\n", Describe(intent).c_str());
  std::fflush(stdout);
  const std::string component = Resolve(intent);
  if (component.empty()) {
    if (intent.component.empty()) {
      std::fprintf(stderr, "Error: Activity not started, unable to resolve %s\n", Describe(intent).c_str());
    } else {
      std::fprintf(stderr, "Error type 3\nError: Activity class {%s/%s} does not exist.\n",
                   PackageOf(intent.component).c_str(), ClassOf(intent.component).c_str());
    }
    return 1;
  }
  AppendRecord(kActivityRecord, "start " + component);
  WriteLog('I', "ActivityTaskManager", "START u0 {" + Describe(intent).substr(8) + " from uid 2000");
  if (intent.wait) {
    std::printf("Status: ok\nLaunchState: COLD\nActivity: %s\nTotalTime: 120\nWaitTime: 123\nComplete\n",
                ShortComponent(component).c_str());
  }
  return 0;
}

int ForceStop(const Words& words) {
  if (words.size() < 2) {
    std::fprintf(stderr, "Error: Argument expected after \"force-stop\"\n");
    return 1;
  }
  const std::string& name = words.back();
  AppendRecord(kActivityRecord, "force-stop " + name);
  if (name == kBackupConfirmation) CancelConfirmations();
  return 0;
}

}  // namespace

int RunAm(const Words& words) {
  const std::string command = words.empty() ? "" : words[0];
  if (command == "start" || command == "start-activity") return Start(words);
  if (command == "force-stop" || command == "kill") return ForceStop(words);
  if (command == "get-current-user") {
    std::printf("%s\n", CurrentUser().c_str());
    return 0;
  }
  if (command == "broadcast") {
    const Intent intent = ParseIntent(words);
    AppendRecord(kActivityRecord, "broadcast " + intent.action);
    std::printf("Broadcasting: %s\nBroadcast completed: result=0\n", Describe(intent).c_str());
    return 0;
  }
  std::fprintf(stderr, "Error: unknown command '%s'\n", command.c_str());
  return 255;
}

}  // namespace darokleim::phone
