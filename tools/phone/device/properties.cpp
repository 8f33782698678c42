#include "tools/phone/device/properties.h"

#include "tools/phone/common/numbers.h"
#include "tools/phone/device/layout.h"

namespace darokleim::phone {

namespace {

constexpr int kFirstModernSdk = 24;

const std::string& SetPropertiesPath() {
  static const std::string path = std::string(kStateFolder) + "/" + kSetProperties;
  return path;
}

}  // namespace

KeyValues AllProperties() {
  KeyValues all = ReadKeyValues(kBuildProperties);
  for (const auto& [name, value] : ReadKeyValues(SetPropertiesPath())) all[name] = value;
  return all;
}

std::string Property(const std::string& name) {
  return ValueOf(AllProperties(), name);
}

bool SetProperty(const std::string& name, const std::string& value) {
  const bool read_only = name.rfind("ro.", 0) == 0;
  if (name.empty() || name.find_first_of("= \n") != std::string::npos ||
      (read_only && !Property(name).empty())) {
    return false;
  }
  const StateLock lock(kStateFolder);
  KeyValues set = ReadKeyValues(SetPropertiesPath());
  set[name] = value;
  return WriteKeyValues(SetPropertiesPath(), set);
}

void RemovePropertiesOfLastBoot() {
  KeyValues kept;
  for (const auto& [name, value] : ReadKeyValues(SetPropertiesPath())) {
    if (name.rfind("persist.", 0) == 0) kept[name] = value;
  }
  WriteKeyValues(SetPropertiesPath(), kept);
}

bool IsLegacyPhone() {
  return ParseNumber<int>(Property("ro.build.version.sdk")).value_or(0) < kFirstModernSdk;
}

}  // namespace darokleim::phone
