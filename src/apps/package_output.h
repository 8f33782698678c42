// What the device's package manager and its dumps print.
#ifndef DAROKLEIM_SRC_APPS_PACKAGE_OUTPUT_H
#define DAROKLEIM_SRC_APPS_PACKAGE_OUTPUT_H

#include <optional>
#include <string_view>

namespace darokleim::sdk {

// The name or path in a line of `pm list packages` or `pm path`: group 1 of a whole line that matches
//     ^[^:]*:(\S+)\s*$
// so a carriage return at the end is no part of it, and a line with a blank inside is no match.
std::optional<std::string_view> MatchPackageLine(std::string_view line);

// The version in a line of `dumpsys package`: what stands behind the equals sign of the first match of
//     versionName=[0-9\.]+
std::optional<std::string_view> FindVersion(std::string_view line);

// The user whom `dumpsys user` names as the current one, as text: group 1 of the first match of
//     Current user: (\d+)
std::optional<std::string_view> FindCurrentUser(std::string_view dump);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_APPS_PACKAGE_OUTPUT_H
