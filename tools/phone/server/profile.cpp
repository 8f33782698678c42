#include "tools/phone/server/profile.h"

#include <functional>
#include <map>

namespace darokleim::phone {

namespace {

const KeyValues& CommonProperties() {
  static const KeyValues common = {
      {"ro.adb.secure", "1"},
      {"ro.boot.flash.locked", "1"},
      {"ro.boot.verifiedbootstate", "green"},
      {"ro.build.characteristics", "nosdcard"},
      {"ro.build.tags", "release-keys"},
      {"ro.build.type", "user"},
      {"ro.build.user", "android-build"},
      {"ro.config.ringtone", "Ring_Synth_04.ogg"},
      {"ro.debuggable", "0"},
      {"ro.product.locale", "en-US"},
      {"ro.secure", "1"},
      {"persist.sys.timezone", "GMT"},
      {"persist.sys.usb.config", "adb"},
      {"sys.boot_completed", "1"},
      {"init.svc.adbd", "running"},
  };
  return common;
}

const KeyValues& GenerationProperties(Generation generation) {
  static const KeyValues legacy = {
      {"ro.build.version.release", "6.0.1"},       {"ro.build.version.sdk", "23"},
      {"ro.build.version.incremental", "3020158"}, {"ro.build.id", "MMB29M"},
      {"ro.product.cpu.abi", "armeabi-v7a"},       {"ro.product.cpu.abilist", "armeabi-v7a,armeabi"},
  };
  static const KeyValues modern = {
      {"ro.build.version.release", "13"},
      {"ro.build.version.sdk", "33"},
      {"ro.build.version.incremental", "9545218"},
      {"ro.build.id", "TQ1A.230205.002"},
      {"ro.product.cpu.abi", "arm64-v8a"},
      {"ro.product.cpu.abilist", "arm64-v8a,armeabi-v7a,armeabi"},
  };
  return generation == Generation::kLegacy ? legacy : modern;
}

KeyValues Product(const std::string& maker, const std::string& brand, const std::string& model,
                  const std::string& device) {
  return {{"ro.product.manufacturer", maker},
          {"ro.product.brand", brand},
          {"ro.product.model", model},
          {"ro.product.device", device},
          {"ro.product.name", device}};
}

KeyValues With(KeyValues values, const KeyValues& more) {
  for (const auto& [key, value] : more) values[key] = value;
  return values;
}

// MIUI up to 12 names its version by the major number and its build by a time; later ones by the whole number.
const std::map<std::string, KeyValues>& Profiles() {
  static const KeyValues xiaomi = With(Product("Xiaomi", "Xiaomi", "MI 9", "cepheus"),
                                       {{"ro.miui.build.region", "cn"}, {"ro.miui.region", "CN"}});
  static const std::map<std::string, KeyValues> profiles = {
      {"plain", Product("Google", "google", "Pixel 7", "panther")},
      {"samsung", Product("samsung", "samsung", "SM-S901B", "r0s")},
      {"miui12", With(xiaomi, {{"ro.miui.ui.version.name", "V12"},
                               {"ro.miui.ui.version.code", "10"},
                               {"ro.miui.version.code_time", "1592409600"},
                               {"ro.build.version.incremental", "V12.0.3.0.QFACNXM"}})},
      {"miui125", With(xiaomi, {{"ro.miui.ui.version.name", "V125"},
                                {"ro.miui.ui.version.code", "11"},
                                {"ro.build.version.incremental", "V12.5.3.0.RKHCNXM"}})},
      {"miui13", With(xiaomi, {{"ro.miui.ui.version.name", "V130"},
                               {"ro.miui.ui.version.code", "13"},
                               {"ro.build.version.incremental", "V13.0.4.0.SKHMIXM"}})},
      {"harmony", With(Product("HUAWEI", "HUAWEI", "NOH-AN00", "HWNOH"),
                       {{"ro.config.ringtone", "Harmony.ogg"},
                        {"hw_sc.build.platform.version", "2.0.0"},
                        {"ro.huawei.build.display.id", "NOH-AN00 2.0.0.185(C00E185R1P5)"}})},
  };
  return profiles;
}

KeyValues Encryption(const std::string& type) {
  if (type == "none") return {{"ro.crypto.state", "unencrypted"}};
  return {{"ro.crypto.state", "encrypted"}, {"ro.crypto.type", type}};
}

// A wireless address of its own for each serial.
std::string WirelessAddress(const std::string& serial) {
  constexpr size_t kFirst = 2;
  constexpr size_t kCount = 250;
  return "192.168.1." + std::to_string(kFirst + std::hash<std::string>()(serial) % kCount);
}

std::string Fingerprint(const KeyValues& values) {
  return ValueOf(values, "ro.product.brand") + "/" + ValueOf(values, "ro.product.name") + "/" +
         ValueOf(values, "ro.product.device") + ":" + ValueOf(values, "ro.build.version.release") + "/" +
         ValueOf(values, "ro.build.id") + "/" + ValueOf(values, "ro.build.version.incremental") +
         ":user/release-keys";
}

}  // namespace

KeyValues BuildProperties(const PhoneOptions& options) {
  KeyValues values = With(CommonProperties(), GenerationProperties(options.generation));
  values = With(values, Profiles().at(options.profile));
  values = With(values, Encryption(options.encryption));
  values["ro.serialno"] = options.serial;
  values["dhcp.wlan0.ipaddress"] = WirelessAddress(options.serial);
  values["ro.build.fingerprint"] = Fingerprint(values);
  return With(values, options.properties);
}

std::vector<std::string> ProfileNames() {
  std::vector<std::string> names;
  for (const auto& profile : Profiles()) names.push_back(profile.first);
  return names;
}

}  // namespace darokleim::phone
