#include "tools/phone/device/programs/intent.h"

#include <algorithm>
#include <vector>

#include "tools/phone/device/packages/package_store.h"

namespace darokleim::phone {

namespace {

constexpr char kMain[] = "android.intent.action.MAIN";
constexpr char kLauncher[] = "android.intent.category.LAUNCHER";

// The number of values that follow an option for an extra or another detail.
size_t ValuesOf(const std::string& option) {
  static const std::vector<std::string> with_two = {"-e",   "--es",  "--ez",  "--ei",  "--el",  "--ef",
                                                    "--eu", "--ecn", "--eia", "--ela", "--efa", "--esa"};
  static const std::vector<std::string> with_one = {"-f",        "-t", "--esn", "--user",
                                                    "--display", "-P", "-R",    "--windowingMode"};
  if (std::find(with_two.begin(), with_two.end(), option) != with_two.end()) return 2;
  return std::find(with_one.begin(), with_one.end(), option) != with_one.end() ? 1 : 0;
}

// An address, or what a launcher would start: a component or a package.
void AddBareWord(const std::string& word, Intent* intent) {
  if (word.find(':') != std::string::npos) {
    intent->data = word;
    return;
  }
  (word.find('/') != std::string::npos ? intent->component : intent->package) = word;
  if (intent->action.empty()) intent->action = kMain;
  if (intent->category.empty()) intent->category = kLauncher;
}

}  // namespace

Intent ParseIntent(const Words& words) {
  Intent intent;
  for (size_t i = 1; i < words.size(); ++i) {
    const std::string& word = words[i];
    const std::string value = i + 1 < words.size() ? words[i + 1] : "";
    std::string* place = word == "-n"   ? &intent.component
                         : word == "-a" ? &intent.action
                         : word == "-c" ? &intent.category
                         : word == "-d" ? &intent.data
                         : word == "-p" ? &intent.package
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
      AddBareWord(word, &intent);
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
  if (!intent.package.empty()) text += " pkg=" + intent.package;
  if (!intent.component.empty()) text += " cmp=" + ShortComponent(intent.component);
  if (intent.extras) text += " (has extras)";
  return text + " }";
}

std::string ResolveToStart(const Intent& intent) {
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

std::string ResolveForQuery(const Intent& intent) {
  if (intent.package.empty() || !intent.component.empty()) return ResolveToStart(intent);
  const auto package = PackageStore().Find(intent.package);
  const bool is_launchers =
      intent.action == kMain && (intent.category.empty() || intent.category == kLauncher);
  if (!package || !package->installed || !is_launchers || package->main_activity.empty()) return "";
  return package->name + "/" + package->main_activity;
}

bool HasBadComponent(const Intent& intent) {
  const size_t slash = intent.component.find('/');
  return !intent.component.empty() && (slash == std::string::npos || slash + 1 == intent.component.size());
}

}  // namespace darokleim::phone
