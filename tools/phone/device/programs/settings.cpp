#include <cstdio>
#include <string>

#include "tools/phone/common/key_values.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/properties.h"

namespace darokleim::phone {

namespace {

int Usage() {
  std::fprintf(stderr, "usage: settings get|put|delete|list system|secure|global [KEY [VALUE]]\n");
  return 255;
}

int List(const std::string& prefix, const KeyValues& all) {
  for (const auto& [key, value] : all) {
    if (key.rfind(prefix, 0) == 0) std::printf("%s=%s\n", key.c_str() + prefix.size(), value.c_str());
  }
  return 0;
}

}  // namespace

int RunSettings(const Words& words) {
  if (words.size() < 2) return Usage();
  const std::string path = std::string(kStateFolder) + "/" + kSettings;
  const StateLock lock(kStateFolder);
  KeyValues all = ReadKeyValues(path);
  const std::string prefix = words[1] + "/";
  if (words[0] == "list") return List(prefix, all);
  if (words.size() < 3) return Usage();
  const std::string key = prefix + words[2];
  if (words[0] == "get") {
    const auto found = all.find(key);
    std::printf("%s\n", found == all.end() ? "null" : found->second.c_str());
    return 0;
  }
  if (words[0] == "delete") {
    std::printf("Deleted %zu rows\n", all.erase(key));
  } else if (words[0] == "put" && words.size() > 3) {
    all[key] = words[3];
  } else {
    return Usage();
  }
  return WriteKeyValues(path, all) ? 0 : 1;
}

}  // namespace darokleim::phone
