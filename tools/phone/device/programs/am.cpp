#include <cstdio>
#include <string>

#include "tools/phone/device/backup.h"
#include "tools/phone/device/programs/intent.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/records.h"
#include "tools/phone/device/users.h"

namespace darokleim::phone {

namespace {

// Before it says anything else. Old phones print how they are used, newer ones where in their code it happened.
int RefuseComponent(const std::string& component) {
  if (IsLegacyPhone()) {
    std::fprintf(stderr, "usage: am [subcommand] [options]\n\nError: Bad component name: %s\n",
                 component.c_str());
    return 1;
  }
  std::fprintf(stderr,
               "\nException occurred while executing 'start':\n"
               "java.lang.IllegalArgumentException: Bad component name: %s\n"
               "\tat android.content.Intent.parseCommandArgs(Intent.java:7793)\n"
               "\tat com.android.server.am.ActivityManagerShellCommand.makeIntent"
               "(ActivityManagerShellCommand.java:426)\n",
               component.c_str());
  return 255;
}

int Start(const Words& words) {
  const Intent intent = ParseIntent(words);
  if (HasBadComponent(intent)) return RefuseComponent(intent.component);
  std::printf("Starting: %s\n", Describe(intent).c_str());
  std::fflush(stdout);
  const std::string component = ResolveToStart(intent);
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
