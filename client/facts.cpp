#include "client/facts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "client/shell.h"

namespace darokleim::client {
namespace {

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kSpaces = " \t\r";
  const std::size_t begin = text.find_first_not_of(kSpaces);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kSpaces) - begin + 1);
}

// The text after "name:" in the line of that name, spaces around it aside.
std::optional<std::string_view> Field(std::string_view text, std::string_view name) {
  std::optional<std::string_view> found;
  ForEachLine(text, [&](std::string_view line) {
    line = Trimmed(line);
    if (line.substr(0, name.size()) != name || line.size() == name.size() || line[name.size()] != ':')
      return true;
    found = Trimmed(line.substr(name.size() + 1));
    return false;
  });
  return found;
}

template <typename Number>
std::optional<Number> LeadingNumber(std::string_view text) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  return number;
}

std::optional<int> IntField(std::string_view text, std::string_view name) {
  const auto field = Field(text, name);
  return field ? LeadingNumber<int>(*field) : std::nullopt;
}

std::optional<std::uint64_t> KibibytesField(std::string_view text, std::string_view name) {
  const auto field = Field(text, name);
  const auto number = field ? LeadingNumber<std::uint64_t>(*field) : std::nullopt;
  constexpr std::uint64_t kKibi = 1024;
  if (!number || *number > std::numeric_limits<std::uint64_t>::max() / kKibi) return std::nullopt;
  return *number * kKibi;
}

}  // namespace

bool ForEachProperty(std::string_view text,
                     const std::function<bool(const std::string& name, const std::string& value)>& use) {
  std::string name, value;
  bool inside = false;  // of a value that goes on in the next line
  bool go_on = true;
  ForEachLine(text, [&](std::string_view line) {
    constexpr std::string_view kBetween = "]: [";
    if (!inside) {
      const std::size_t between = line.find(kBetween);
      if (line.empty() || line.front() != '[' || between == std::string_view::npos) return true;
      name = line.substr(1, between - 1);
      value.clear();
      line.remove_prefix(between + kBetween.size());
    }
    inside = line.empty() || line.back() != ']';
    if (!inside) line.remove_suffix(1);
    value += line;
    if (inside) value += '\n';
    if (!inside) go_on = use(name, value);
    return go_on;
  });
  return go_on;
}

std::optional<dk_battery> ReadBattery(std::string_view text) {
  const auto level = IntField(text, "level");
  if (!level) return std::nullopt;
  dk_battery battery = {};
  constexpr std::int64_t kPercent = 100;
  const std::int64_t scale = IntField(text, "scale").value_or(kPercent);
  const std::int64_t percent = scale > 0 ? *level * kPercent / scale : *level;
  battery.level = static_cast<int>(std::clamp<std::int64_t>(percent, 0, kPercent));
  for (const std::string_view source : {"AC powered", "USB powered", "Wireless powered", "Dock powered"}) {
    battery.charging = battery.charging || Field(text, source) == "true";
  }
  constexpr double kTenths = 10;
  battery.temperature = IntField(text, "temperature").value_or(0) / kTenths;
  battery.voltage_mv = IntField(text, "voltage").value_or(0);
  return battery;
}

std::optional<dk_screen> ReadScreen(std::string_view text) {
  dk_screen screen = {};
  for (const std::string_view name : {"Physical size", "Override size"}) {
    const auto size = Field(text, name);
    if (!size) continue;
    const auto width = LeadingNumber<int>(*size);
    const std::size_t x = size->find('x');
    const auto height = x == std::string_view::npos ? std::nullopt : LeadingNumber<int>(size->substr(x + 1));
    if (width && height) {
      screen.width = *width;
      screen.height = *height;
    }
  }
  for (const std::string_view name : {"Physical density", "Override density"}) {
    screen.density = IntField(text, name).value_or(screen.density);
  }
  if (screen.width <= 0 || screen.height <= 0) return std::nullopt;
  return screen;
}

std::optional<dk_memory> ReadMemory(std::string_view text) {
  const auto total = KibibytesField(text, "MemTotal");
  if (!total) return std::nullopt;
  auto available = KibibytesField(text, "MemAvailable");
  if (!available) {  // kernels before 3.14
    available = KibibytesField(text, "MemFree").value_or(0) + KibibytesField(text, "Cached").value_or(0);
  }
  return dk_memory{*total, *available};
}

std::optional<std::uint64_t> ReadRoundedSize(std::string_view text) {
  constexpr std::string_view kUnits = "KMGT";
  const std::size_t digits = std::min(text.find_first_not_of("0123456789."), text.size());
  const std::string number(text.substr(0, digits));
  if (number.empty() || number.front() == '.') return std::nullopt;
  std::uint64_t whole = 0;
  const char* const end = number.data() + number.size();
  const auto [after, error] = std::from_chars(number.data(), end, whole);
  if (error != std::errc()) return std::nullopt;
  double value = static_cast<double>(whole);
  double place = 1;
  for (const char* c = after; c != end; ++c) {
    if (c == after && *c == '.') continue;
    if (*c == '.') return std::nullopt;
    place /= 10;
    value += place * (*c - '0');
  }
  text.remove_prefix(digits);
  if (!text.empty()) {
    const std::size_t unit = kUnits.find(text.front());
    if (unit == std::string_view::npos || text.size() > 1) return std::nullopt;
    constexpr int kKibi = 10;  // as a power of two; pow would need the mathematical library in a static link
    value = std::ldexp(value, kKibi * static_cast<int>(unit + 1));
  }
  constexpr double kMost = 1e18;
  if (value > kMost) return std::nullopt;
  return static_cast<std::uint64_t>(value);
}

namespace {

// Runs `script` and hands what it prints to `read`.
template <typename Value>
Status AskFor(dk_device* device, std::string_view script, std::string_view what,
              std::optional<Value> (*read)(std::string_view), Value* value, const Limits& limits) {
  if (device == nullptr || value == nullptr) return InvalidArgument("a null pointer");
  *value = {};
  auto collected = CollectScript(device, script, what, limits);
  if (!collected.ok()) return collected.TakeError();
  const auto answer = read(collected->out);
  if (answer) {
    *value = *answer;
    return {};
  }
  if (collected->exit_status != 0) return CommandFailed(what, *collected);
  return Failed(DK_ANSWER_UNREADABLE, what, "the phone's answer has an unknown form");
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Answer;
using client::Limits;
using client::Status;

dk_code dk_properties(dk_device* device, dk_on_property on_property, void* user, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || on_property == nullptr) return client::InvalidArgument("a null pointer");
    constexpr std::string_view kWhat = "read the phone's properties";
    auto collected = client::CollectScript(device, "getprop", kWhat, limits);
    if (!collected.ok()) return collected.TakeError();
    if (collected->exit_status != 0) return client::CommandFailed(kWhat, *collected);
    const bool all =
        client::ForEachProperty(collected->out, [&](const std::string& name, const std::string& value) {
          return on_property(user, name.c_str(), value.c_str());
        });
    if (!all) return client::Stopped(kWhat);
    return {};
  });
}

dk_code dk_battery_get(dk_device* device, dk_battery* battery, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) {
    return client::AskFor(device, "dumpsys battery", "ask for the battery", client::ReadBattery, battery,
                          limits);
  });
}

dk_code dk_screen_get(dk_device* device, dk_screen* screen, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) {
    return client::AskFor(device, "wm size; wm density", "ask for the screen's size", client::ReadScreen,
                          screen, limits);
  });
}

dk_code dk_memory_get(dk_device* device, dk_memory* memory, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) {
    return client::AskFor(device, "cat /proc/meminfo", "ask for the memory", client::ReadMemory, memory,
                          limits);
  });
}
