#include <cstdio>
#include <string>

#include "tools/phone/device/packages/package_store.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/records.h"

namespace darokleim::phone {

// monkey -p PACKAGE [-c CATEGORY] COUNT: what starts an application as the launcher would.
int RunMonkey(const Words& words) {
  std::string name;
  for (size_t i = 0; i + 1 < words.size(); ++i) {
    if (words[i] == "-p") name = words[i + 1];
  }
  const auto package = PackageStore().Find(name);
  if (!package || !package->installed || package->main_activity.empty()) {
    std::printf("** No activities found to run, monkey aborted.\n");
    return 252;
  }
  AppendRecord(kActivityRecord, "start " + package->name + "/" + package->main_activity);
  std::printf(
      "Events injected: 1\n## Network stats: elapsed time=12ms (0ms mobile, 0ms wifi, 12ms not connected)\n");
  return 0;
}

}  // namespace darokleim::phone
