// dk_apps, dk_app_get: what is installed.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/apps/package_dump.h"
#include "client/context.h"
#include "client/phone_path.h"
#include "client/shell.h"
#include "client/sync.h"

namespace darokleim::client {
namespace {

// An application with the texts that it points to.
struct OwnedApp {
  dk_app app = {};
  std::string package;
  bool is_described = false;  // there are facts
  PackageFacts facts;
  std::vector<std::string> paths;
  std::vector<const char*> path_texts;

  // Points the plain structure at the texts.
  void Bind() {
    path_texts.clear();
    for (const std::string& path : paths) path_texts.push_back(path.c_str());
    app.package = package.c_str();
    app.version_name = facts.version_name.c_str();
    app.version_code = facts.version_code;
    app.system = facts.system;
    app.enabled = facts.enabled;
    app.apk_paths = path_texts.data();
    app.apk_count = path_texts.size();
  }
};

// The base APK is listed; those of the splits are beside it.
std::vector<std::string> ApkPaths(const std::string& base, const PackageFacts& facts) {
  std::vector<std::string> paths = {base};
  for (const std::string& split : facts.splits)
    paths.push_back(Joined(ParentOf(base), "split_" + split + ".apk"));
  return paths;
}

// Asked together, however many there are.
Status AddSizes(dk_device* device, std::vector<OwnedApp>* apps, std::string_view what, const Limits& limits) {
  auto sync = OpenSync(device, what, limits);
  if (!sync.ok()) return sync.TakeError();
  std::vector<std::string> paths;
  for (const OwnedApp& app : *apps) paths.insert(paths.end(), app.paths.begin(), app.paths.end());
  auto statuses = StatMany(device, &*sync, paths, what, limits);
  if (!statuses.ok()) return statuses.TakeError();
  auto status = statuses->begin();
  for (OwnedApp& app : *apps) {
    for (std::size_t i = 0; i < app.paths.size(); ++i) app.app.size += (status++)->size;
  }
  return {};
}

// The names and what is known of them in one command: the list, a line that no list has, and the dump.
constexpr std::string_view kBetween = "\n--- the dump ---\n";

Result<std::vector<OwnedApp>> ListApps(dk_device* device, const std::string& list_options,
                                       const std::string& dump_of, std::string_view what,
                                       const Limits& limits) {
  const std::string script =
      "pm list packages -f" + list_options + "; echo; echo '--- the dump ---'; dumpsys package " + dump_of;
  auto printed = CollectScript(device, script, what, limits);
  if (!printed.ok()) return printed.TakeError();
  const std::size_t between = printed->out.find(kBetween);
  if (between == std::string::npos) return CommandFailed(what, *printed);
  const std::string_view text = printed->out;
  const auto facts = ReadPackageDump(text.substr(between + kBetween.size()));
  std::vector<OwnedApp> apps;
  for (auto& [name, path] : ReadPackageList(text.substr(0, between + 1))) {
    OwnedApp app;
    const auto known = facts.find(name);
    app.is_described = known != facts.end();
    if (app.is_described) app.facts = known->second;
    app.paths = ApkPaths(path, app.facts);
    app.package = std::move(name);
    apps.push_back(std::move(app));
  }
  if (apps.empty() && printed->exit_status != 0) return CommandFailed(what, *printed);
  return apps;
}

// The application of this name; nothing where it is not installed.
Result<std::optional<OwnedApp>> FindApp(dk_device* device, const std::string& name, const std::string& what,
                                        const Limits& limits) {
  auto apps = ListApps(device, " " + name, name, what, limits);
  if (!apps.ok()) return apps.TakeError();
  for (OwnedApp& app : *apps) {  // the phone lists every name that holds this one
    if (app.package == name) return std::optional<OwnedApp>(std::move(app));
  }
  return std::optional<OwnedApp>();
}

const char* OptionOf(dk_app_set set) {
  switch (set) {
    case DK_USER_APPS:
      return " -3";
    case DK_SYSTEM_APPS:
      return " -s";
    case DK_ALL_APPS:
      break;
  }
  return "";
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Answer;
using client::Limits;
using client::Status;

dk_code dk_apps(dk_device* device, dk_app_set set, bool sizes, dk_on_app on_app, void* user,
                const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || on_app == nullptr) return client::InvalidArgument("a null pointer");
    constexpr std::string_view kWhat = "list the applications";
    auto apps = client::ListApps(device, client::OptionOf(set), "packages", kWhat, limits);
    if (!apps.ok()) return apps.TakeError();
    if (sizes) {
      if (Status added = client::AddSizes(device, &*apps, kWhat, limits); !added.ok()) return added;
    }
    for (client::OwnedApp& app : *apps) {
      app.Bind();
      if (!on_app(user, &app.app)) return client::Stopped(kWhat);
    }
    return {};
  });
}

dk_code dk_app_get(dk_device* device, const char* package, dk_app** app, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (app == nullptr) return client::InvalidArgument("no place for the application");
    *app = nullptr;
    if (device == nullptr || package == nullptr) return client::InvalidArgument("a null pointer");
    if (!client::IsPackageName(package)) return client::InvalidArgument("not the name of a package");
    const std::string name = package;
    const std::string what = "ask for " + name;
    auto found = client::FindApp(device, name, what, limits);
    // One that is being removed may be listed and not described any more.
    if (found.ok() && *found && !(*found)->is_described) found = client::FindApp(device, name, what, limits);
    if (!found.ok()) return found.TakeError();
    if (!*found) return client::Failed(DK_NO_PACKAGE, what, "it is not installed");
    std::vector<client::OwnedApp> one(1);
    one.front() = **std::move(found);
    if (Status added = client::AddSizes(device, &one, what, limits); !added.ok()) return added;
    auto owned = std::make_unique<client::OwnedApp>(std::move(one.front()));
    owned->Bind();
    *app = &owned.release()->app;
    return {};
  });
}

// The application is the first member of what it points into.
void dk_app_free(dk_app* app) {
  delete reinterpret_cast<client::OwnedApp*>(app);
}
