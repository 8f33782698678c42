#include "tools/phone/device/properties.h"

#include <cstdio>

#include "tools/phone/device/programs/programs.h"

namespace darokleim::phone {

// getprop [NAME [DEFAULT]]
int RunGetprop(const Words& words) {
  if (words.empty()) {
    for (const auto& [name, value] : AllProperties())
      std::printf("[%s]: [%s]\n", name.c_str(), value.c_str());
    return 0;
  }
  std::string value = Property(words[0]);
  if (value.empty() && words.size() > 1) value = words[1];
  std::printf("%s\n", value.c_str());
  return 0;
}

int RunSetprop(const Words& words) {
  if (words.size() != 2) {
    std::fprintf(stderr, "usage: setprop NAME VALUE\n");
    return 1;
  }
  if (SetProperty(words[0], words[1])) return 0;
  // Old phones keep quiet about it.
  if (!IsLegacyPhone()) {
    std::fprintf(stderr, "Failed to set property '%s' to '%s'.\n", words[0].c_str(), words[1].c_str());
  }
  return 1;
}

}  // namespace darokleim::phone
