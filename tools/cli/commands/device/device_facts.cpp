#include "tools/cli/commands/device/device_facts.h"

#include <algorithm>
#include <future>
#include <utility>

#include "base/signals_blocked.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json_text.h"

namespace darokleim::cli {
namespace {

constexpr char kAfterTime[] = "-- su --";
constexpr char kAfterSu[] = "-- ip --";

constexpr char kScript[] =
    "date '+%Y-%m-%d %H:%M:%S'; echo '-- su --'; ls /system/bin/su /system/xbin/su 2>/dev/null; "
    "echo '-- ip --'; ip address 2>/dev/null; true";

std::string_view TakeLine(std::string_view* text) {
  std::string_view line = text->substr(0, text->find('\n'));
  text->remove_prefix(std::min(line.size() + 1, text->size()));
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
  return line;
}

// The word after `name` in a line of words.
std::string WordAfter(std::string_view line, std::string_view name) {
  const std::string sought = std::string(name) + " ";
  const auto at = line.find(sought);
  if (at == std::string_view::npos) return "";
  line.remove_prefix(at + sought.size());
  return std::string(line.substr(0, line.find(' ')));
}

// "30: wlan0: <BROADCAST,MULTICAST,UP> mtu 1500 …" begins an interface.
bool BeginsInterface(std::string_view line) {
  return !line.empty() && line.front() >= '0' && line.front() <= '9';
}

void ReadAddresses(std::string_view text, DeviceAnswers* answers) {
  bool is_wlan = false;
  while (!text.empty()) {
    const auto line = TakeLine(&text);
    if (BeginsInterface(line)) is_wlan = line.find(": wlan") != std::string_view::npos;
    if (!is_wlan) continue;
    if (answers->mac_address.empty()) answers->mac_address = WordAfter(line, "link/ether");
    if (answers->address.empty()) answers->address = WordAfter(line, "inet");
  }
}

// A question on a thread of its own, which receives no signals.
template <typename Question>
auto InBackground(bool wanted, Question question) {
  const base::SignalsBlocked blocked;
  return std::async(wanted ? std::launch::async : std::launch::deferred, question);
}

bool IsUnknown(dk_code code) {
  return code == DK_COMMAND_FAILED || code == DK_ANSWER_UNREADABLE || code == DK_UNSUPPORTED;
}

// Nothing where the device does not report it.
template <typename Value>
std::optional<Value> KnownValue(dk::Result<Value> result) {
  if (!result.ok() && IsUnknown(result.code())) return std::nullopt;
  return std::move(result).value();
}

void NeedsNothing(DeviceQuestions&) {}
void NeedsProperties(DeviceQuestions& questions) {
  questions.properties = true;
}
void NeedsPrograms(DeviceQuestions& questions) {
  questions.programs = true;
}
void NeedsScreen(DeviceQuestions& questions) {
  questions.screen = true;
}
void NeedsMemory(DeviceQuestions& questions) {
  questions.memory = true;
}

FactValue KnownText(std::string text) {
  return text.empty() ? FactValue() : FactValue(std::move(text));
}

// The first of the properties that the device has.
FactValue FirstOf(const DeviceAnswers& answers, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    const auto found = answers.properties.find(name);
    if (found != answers.properties.end() && !found->second.empty()) return found->second;
  }
  return {};
}

std::string Property(const DeviceAnswers& answers, const char* name) {
  const auto value = FirstOf(answers, {name});
  return value.index() == 0 ? "" : std::get<std::string>(value);
}

// "V12.5.3.0.RKHCNXM" is version 12.5.3.0; "V11" is all that is known of some.
FactValue MiuiVersion(const DeviceAnswers& answers) {
  const std::string name = Property(answers, "ro.miui.ui.version.name");
  if (name.empty()) return {};
  const std::string build = Property(answers, "ro.build.version.incremental");
  if (build.size() < 2 || build.front() != 'V') return name;
  const auto end = std::min(build.find_first_not_of("0123456789.", 1), build.size());
  std::string version = build.substr(1, end - 1);
  while (!version.empty() && version.back() == '.') version.pop_back();
  return version.empty() ? name : version;
}

FactValue OneOrZero(const std::string& text, const char* one, const char* zero) {
  if (text == one) return true;
  return text == zero ? FactValue(false) : FactValue();
}

FactValue EncryptionType(const DeviceAnswers& answers) {
  const std::string type = Property(answers, "ro.crypto.type");
  return type == "file" || type == "block" ? FactValue(type) : FactValue();
}

FactValue ScreenSize(const DeviceAnswers& answers) {
  if (!answers.screen) return {};
  return std::to_string(answers.screen->width) + "x" + std::to_string(answers.screen->height);
}

FactValue ScreenDensity(const DeviceAnswers& answers) {
  if (!answers.screen || answers.screen->density <= 0) return {};
  return static_cast<std::uint64_t>(answers.screen->density);
}

FactValue MemoryTotal(const DeviceAnswers& answers) {
  return answers.memory ? FactValue(ByteCount{answers.memory->total}) : FactValue();
}

FactValue MemoryAvailable(const DeviceAnswers& answers) {
  return answers.memory ? FactValue(ByteCount{answers.memory->available}) : FactValue();
}

#define DAROKLEIM_PROPERTY(property) \
  NeedsProperties, [](const DeviceAnswers& answers) { return FirstOf(answers, {property}); }

}  // namespace

void ReadPrograms(std::string_view text, DeviceAnswers* answers) {
  answers->time = TakeLine(&text);
  while (!text.empty() && TakeLine(&text) != kAfterTime) {
  }
  while (!text.empty()) {
    const auto line = TakeLine(&text);
    if (line == kAfterSu) break;
    const bool names_su = line == "/system/bin/su" || line == "/system/xbin/su";
    answers->has_su = answers->has_su || names_su;
  }
  ReadAddresses(text, answers);
}

DeviceAnswers Ask(const dk::Device& device, const DeviceQuestions& questions, const dk::Limits& limits) {
  DeviceAnswers answers;
  answers.serial = device.serial();
  auto properties = InBackground(questions.properties, [&] { return device.properties(limits); });
  auto programs = InBackground(questions.programs, [&] { return device.run_script(kScript, limits); });
  auto screen = InBackground(questions.screen, [&] { return device.screen(limits); });
  auto memory = InBackground(questions.memory, [&] { return device.memory(limits); });
  if (questions.properties) {
    for (auto& [name, value] : properties.get().value()) answers.properties[name] = value;
  }
  if (questions.programs) ReadPrograms(programs.get().value().out, &answers);
  if (questions.screen) answers.screen = KnownValue(screen.get());
  if (questions.memory) answers.memory = KnownValue(memory.get());
  return answers;
}

const std::vector<DeviceFact>& DeviceFacts() {
  static const std::vector<DeviceFact> facts = {
      {"serial", "Serial number", NeedsNothing,
       [](const DeviceAnswers& answers) { return KnownText(answers.serial); }},
      {"manufacturer", "Manufacturer", DAROKLEIM_PROPERTY("ro.product.manufacturer")},
      {"brand", "Brand", DAROKLEIM_PROPERTY("ro.product.brand")},
      {"model", "Model", DAROKLEIM_PROPERTY("ro.product.model")},
      {"device", "Device name", DAROKLEIM_PROPERTY("ro.product.device")},
      {"android", "Android", DAROKLEIM_PROPERTY("ro.build.version.release")},
      {"sdk", "Android SDK", DAROKLEIM_PROPERTY("ro.build.version.sdk")},
      {"security_patch", "Security patch", DAROKLEIM_PROPERTY("ro.build.version.security_patch")},
      {"build", "Build", DAROKLEIM_PROPERTY("ro.build.display.id")},
      {"abi", "Processor", DAROKLEIM_PROPERTY("ro.product.cpu.abi")},
      {"miui_version", "MIUI", NeedsProperties, MiuiVersion},
      {"miui_region", "MIUI region", DAROKLEIM_PROPERTY("ro.miui.build.region")},
      {"harmony", "HarmonyOS", NeedsProperties,
       [](const DeviceAnswers& answers) {
         return FactValue(Property(answers, "ro.config.ringtone").find("Harmony") != std::string::npos);
       }},
      {"language", "Language", NeedsProperties,
       [](const DeviceAnswers& answers) {
         return FirstOf(answers, {"persist.sys.locale", "ro.product.locale", "persist.sys.language"});
       }},
      {"time_zone", "Time zone", DAROKLEIM_PROPERTY("persist.sys.timezone")},
      {"time", "Device time", NeedsPrograms,
       [](const DeviceAnswers& answers) { return KnownText(answers.time); }},
      {"ip_address", "Wi-Fi address", NeedsPrograms,
       [](const DeviceAnswers& answers) { return KnownText(answers.address); }},
      {"mac_address", "Wi-Fi MAC address", NeedsPrograms,
       [](const DeviceAnswers& answers) { return KnownText(answers.mac_address); }},
      {"screen", "Screen", NeedsScreen, ScreenSize},
      {"screen_density", "Dots per inch", NeedsScreen, ScreenDensity},
      {"memory", "Memory", NeedsMemory, MemoryTotal},
      {"memory_available", "Memory available", NeedsMemory, MemoryAvailable},
      {"boot_loader_locked", "Boot loader locked", NeedsProperties,
       [](const DeviceAnswers& answers) {
         return OneOrZero(Property(answers, "ro.boot.flash.locked"), "1", "0");
       }},
      {"encrypted", "Encrypted", NeedsProperties,
       [](const DeviceAnswers& answers) {
         return OneOrZero(Property(answers, "ro.crypto.state"), "encrypted", "unencrypted");
       }},
      {"encryption_type", "Encryption", NeedsProperties, EncryptionType},
      {"rooted", "Rooted", NeedsPrograms,
       [](const DeviceAnswers& answers) { return FactValue(answers.has_su); }},
  };
  return facts;
}

#undef DAROKLEIM_PROPERTY

std::string TextOf(const FactValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "yes" : "no";
  if (const auto* number = std::get_if<std::uint64_t>(&value)) return std::to_string(*number);
  if (const auto* count = std::get_if<ByteCount>(&value)) return SizeText(count->bytes);
  return "";
}

std::string JsonOf(const FactValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return JsonString(*text);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
  if (const auto* number = std::get_if<std::uint64_t>(&value)) return std::to_string(*number);
  if (const auto* count = std::get_if<ByteCount>(&value)) return std::to_string(count->bytes);
  return "null";
}

}  // namespace darokleim::cli
