// What phones print about themselves.
#ifndef DAROKLEIM_CLIENT_FACTS_H
#define DAROKLEIM_CLIENT_FACTS_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "darokleim/client.h"

namespace darokleim::client {

// Each property of what `getprop` prints, `[name]: [value]`; values may have line breaks. False from `use` ends the loop
// and is returned.
bool ForEachProperty(std::string_view text,
                     const std::function<bool(const std::string& name, const std::string& value)>& use);

// Of `dumpsys battery`; nothing without a level.
std::optional<dk_battery> ReadBattery(std::string_view text);

// Of `wm size` and `wm density`: what is in force, an override before the screen's own. Nothing without a size.
std::optional<dk_screen> ReadScreen(std::string_view text);

// Of /proc/meminfo; nothing without a total.
std::optional<dk_memory> ReadMemory(std::string_view text);

// Bytes as `df` of old phones prints them: 11.7G, 512K, 0. Nothing for anything else.
std::optional<std::uint64_t> ReadRoundedSize(std::string_view text);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_FACTS_H
