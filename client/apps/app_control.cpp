// dk_app_uninstall, dk_app_start, dk_app_stop, dk_app_clear.
#include <string>

#include "base/shell_quoting.h"
#include "client/apps/package_dump.h"
#include "client/shell.h"

namespace darokleim::client {
namespace {

// Runs a command on a package whose name was checked, and gives what it printed.
Result<Collected> RunOn(dk_device* device, const char* package, const std::string& script,
                        const std::string& what, const Limits& limits) {
  if (device == nullptr || package == nullptr) return InvalidArgument("a null pointer");
  if (!IsPackageName(package)) return InvalidArgument("not the name of a package");
  return CollectScript(device, script, what, limits);
}

Error NotInstalled(const std::string& what, const Collected& collected) {
  Error error = CommandFailed(what, collected);
  error.code = DK_NO_PACKAGE;
  return error;
}

// The activity that a launcher shows. Before Android 7 only monkey finds it, which is made for tests: it unlocks the rotation
// of the screen, and takes a second.
std::string LaunchScript(const std::string& name) {
  return "a=$(cmd package resolve-activity --brief " + name + " 2>/dev/null | tail -n 1); case \"$a\" in " +
         name + "/*) am start -n \"$a\";; *) monkey -p " + name +
         " -c android.intent.category.LAUNCHER 1;; esac";
}

// `am` and `monkey` print their failures, and end with 0 on old phones.
bool HasLine(std::string_view text, std::string_view begin) {
  bool has = false;
  ForEachLine(text, [&](std::string_view line) {
    has = line.substr(0, begin.size()) == begin;
    return !has;
  });
  return has;
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Answer;
using client::Limits;
using client::Status;

dk_code dk_app_uninstall(dk_device* device, const char* package, bool keep_data, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    const std::string name = package == nullptr ? "" : package;
    const std::string what = "uninstall " + name;
    auto ran = client::RunOn(device, package, std::string("pm uninstall ") + (keep_data ? "-k " : "") + name,
                             what, limits);
    if (!ran.ok()) return ran.TakeError();
    const client::PackageAnswer answer = client::ReadPackageAnswer(ran->out + "\n" + ran->err);
    if (answer.success) return {};
    auto known = client::CollectScript(device, "pm path " + name, what, limits);
    if (!known.ok()) return known.TakeError();
    if (known->out.find("package:") == std::string::npos) return client::NotInstalled(what, *ran);
    client::Error error = client::CommandFailed(what, *ran);
    if (!answer.reason.empty()) error.reason = answer.reason;
    return error;
  });
}

dk_code dk_app_start(dk_device* device, const char* package, const char* activity, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    const std::string name = package == nullptr ? "" : package;
    const std::string what = "start " + name;
    const std::string script = activity == nullptr
                                   ? client::LaunchScript(name)
                                   : "am start -n " + base::QuoteForShell(name + "/" + activity);
    auto ran = client::RunOn(device, package, script, what, limits);
    if (!ran.ok()) return ran.TakeError();
    const std::string said = ran->out + "\n" + ran->err;
    if (client::HasLine(said, "** No activities found")) return client::NotInstalled(what, *ran);
    if (ran->exit_status != 0 || client::HasLine(said, "Error")) return client::CommandFailed(what, *ran);
    return {};
  });
}

dk_code dk_app_stop(dk_device* device, const char* package, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    const std::string name = package == nullptr ? "" : package;
    auto ran = client::RunOn(device, package, "am force-stop " + name, "stop " + name, limits);
    if (!ran.ok()) return ran.TakeError();
    if (ran->exit_status != 0) return client::CommandFailed("stop " + name, *ran);
    return {};
  });
}

dk_code dk_app_clear(dk_device* device, const char* package, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    const std::string name = package == nullptr ? "" : package;
    const std::string what = "delete the data of " + name;
    auto ran = client::RunOn(device, package, "pm clear " + name, what, limits);
    if (!ran.ok()) return ran.TakeError();
    if (client::ReadPackageAnswer(ran->out).success) return {};
    return client::NotInstalled(what, *ran);
  });
}
