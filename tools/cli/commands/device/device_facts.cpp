#include "tools/cli/commands/device/device_facts.h"

#include <darokleim.h>
#include <json/value.h>

#include <array>

#include "src/platform/command_channel.h"
#include "tools/cli/device/library_block.h"

namespace darokleim::cli {
namespace {

using TextFunction = int (*)(const char* serial, char* buffer, int buffer_size, const bool* cancel);
using FlagFunction = int (*)(const char* serial, bool* flag, const bool* cancel);

// Properties hold 91 bytes, long ones of Android 8 and later any number; none of those read here is long.
constexpr int kTextRoom = 4096;

// The text belongs to the command channel, not to the library.
class ChannelText {
 public:
  ChannelText() = default;
  ~ChannelText() { ReleaseAdbOutBuffer(text_); }
  ChannelText(const ChannelText&) = delete;
  ChannelText& operator=(const ChannelText&) = delete;

  char** text() { return &text_; }
  int* length() { return &length_; }
  std::string Text() const { return text_ == nullptr ? "" : text_; }

 private:
  char* text_ = nullptr;
  int length_ = 0;
};

// The value of an Android system property, without spaces and line breaks at its end; empty when the device does not
// have it.
std::string ReadProperty(const Device& device, const std::string& name) {
  ChannelText value;
  device.Check(GetPropInfo(device.serial(), name.c_str(), value.text(), value.length(), device.cancel()),
               "read the property " + name);
  std::string text = value.Text();
  text.erase(text.find_last_not_of(" \t\r\n") + 1);
  return text;
}

Json::Value TextOrNull(const std::string& text) {
  return text.empty() ? Json::Value() : Json::Value(text);
}

// Codes in `no_answer` mean that the device does not have the fact.
Json::Value ReadText(const Device& device, TextFunction function, const std::string& what,
                     const std::vector<int>& no_answer = {}) {
  std::array<char, kTextRoom> text{};
  const int code = function(device.serial(), text.data(), kTextRoom, device.cancel());
  for (const int expected : no_answer) {
    if (code == expected) return {};
  }
  device.Check(code, "read \"" + what + "\"");
  return TextOrNull(text.data());
}

bool ReadFlag(const Device& device, FlagFunction function, const std::string& what, bool flag) {
  device.Check(function(device.serial(), &flag, device.cancel()), "read \"" + what + "\"");
  return flag;
}

// The library leaves the flag unchanged when the device does not report it.
Json::Value ReadAnsweredFlag(const Device& device, FlagFunction function, const std::string& what) {
  const bool from_false = ReadFlag(device, function, what, false);
  if (from_false) return true;
  return ReadFlag(device, function, what, true) ? Json::Value() : Json::Value(false);
}

DeviceFact TextFact(const std::string& name, const std::string& label, TextFunction function) {
  return {name, label, [=](const Device& device) { return ReadText(device, function, label); }};
}

DeviceFact FlagFact(const std::string& name, const std::string& label, FlagFunction function) {
  return {name, label, [=](const Device& device) { return ReadFlag(device, function, label, false); }};
}

DeviceFact AnsweredFlagFact(const std::string& name, const std::string& label, FlagFunction function) {
  return {name, label, [=](const Device& device) { return ReadAnsweredFlag(device, function, label); }};
}

// The first of the properties that the device has.
DeviceFact FirstPropertyFact(const std::string& name, const std::string& label,
                             const std::vector<std::string>& properties) {
  return {name, label, [=](const Device& device) {
            for (const auto& property : properties) {
              const std::string value = ReadProperty(device, property);
              if (!value.empty()) return Json::Value(value);
            }
            return Json::Value();
          }};
}

Json::Value ReadMiuiVersion(const Device& device) {
  return ReadText(device, AdbGetMiuiVersion, "MIUI version",
                  {ADB_RESULT_MIUI_TIME_CODE_FAILED, ADB_RESULT_MIUI_VERSION_NAME_FAILED});
}

Json::Value ReadMiuiBuildDate(const Device& device) {
  std::string date;
  const std::string time_code = ReadProperty(device, "ro.miui.version.code_time");
  return AppendMiuiVersionByTimeCode(time_code, date) ? TextOrNull(date) : Json::Value();
}

Json::Value ReadEncryptionType(const Device& device) {
  int type = -1;
  device.Check(AdbGetEncryptType(device.serial(), &type, device.cancel()), "read \"Encryption\"");
  if (type < 0) return {};
  return type == 0 ? "file" : "block";
}

Json::Value ReadIpAddress(const Device& device) {
  LibraryBlock address;
  const int code = AdbGetIPAddress(device.serial(), address.text(), address.length(), device.cancel());
  if (code == ADB_RESULT_NO_IP_ADDRESS) return {};
  device.Check(code, "read \"Wi-Fi address\"");
  return TextOrNull(std::string(address.Text()));
}

}  // namespace

DeviceFact PropertyFact(const std::string& name, const std::string& property, const std::string& label) {
  return FirstPropertyFact(name, label, {property});
}

const std::vector<DeviceFact>& DeviceFacts() {
  static const std::vector<DeviceFact> facts = {
      {"serial", "Serial number", [](const Device& device) { return Json::Value(device.serial()); }},
      TextFact("manufacturer", "Manufacturer", AdbGetPhoneManufacturer),
      PropertyFact("brand", "ro.product.brand", "Brand"),
      TextFact("model", "Model", AdbGetPhoneProductModel),
      PropertyFact("device", "ro.product.device", "Device name"),
      TextFact("android", "Android", AdbGetPhoneSoftVersion),
      PropertyFact("sdk", "ro.build.version.sdk", "Android SDK"),
      PropertyFact("security_patch", "ro.build.version.security_patch", "Security patch"),
      PropertyFact("build", "ro.build.display.id", "Build"),
      PropertyFact("abi", "ro.product.cpu.abi", "Processor"),
      {"miui_version", "MIUI", ReadMiuiVersion},
      {"miui_build", "MIUI build", ReadMiuiBuildDate},
      TextFact("miui_region", "MIUI region", AdbGetMiuiBuildRegin),
      FlagFact("harmony", "HarmonyOS", AdbCheckIsHarmony),
      FirstPropertyFact("language", "Language",
                        {"persist.sys.locale", "ro.product.locale", "persist.sys.language"}),
      PropertyFact("time_zone", "persist.sys.timezone", "Time zone"),
      TextFact("time", "Device time", AdbGetDeviceCurrentTime),
      {"ip_address", "Wi-Fi address", ReadIpAddress},
      FirstPropertyFact("mac_address", "Wi-Fi MAC address", {"ro.boot.wifimacaddr", "wlan.driver.macaddr"}),
      AnsweredFlagFact("boot_loader_locked", "Boot loader locked", AdbCheckLockedState),
      AnsweredFlagFact("encrypted", "Encrypted", AdbCheckEncryptState),
      {"encryption_type", "Encryption", ReadEncryptionType},
      FlagFact("rooted", "Rooted", IsDeviceHadBeenRooted),
  };
  return facts;
}

}  // namespace darokleim::cli
