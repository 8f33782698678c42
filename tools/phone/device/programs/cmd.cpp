#include <cstdio>

#include "tools/phone/device/programs/programs.h"

namespace darokleim::phone {

// cmd SERVICE …: the newer way to what pm, am and settings do.
int RunCmd(const Words& words) {
  const std::string service = words.empty() ? "" : words[0];
  const Words rest(words.empty() ? words.end() : words.begin() + 1, words.end());
  if (service == "package") return RunPm(rest);
  if (service == "activity") return RunAm(rest);
  if (service == "settings") return RunSettings(rest);
  if (service == "window") return RunWm(rest);
  if (service == "-l") {
    std::printf("Currently running services:\n  activity\n  package\n  settings\n  window\n");
    return 0;
  }
  std::fprintf(stderr, "cmd: Can't find service: %s\n", service.c_str());
  return 20;
}

}  // namespace darokleim::phone
