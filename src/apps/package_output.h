// The output of pm and dumpsys.
#ifndef DAROKLEIM_SRC_APPS_PACKAGE_OUTPUT_H
#define DAROKLEIM_SRC_APPS_PACKAGE_OUTPUT_H

#include <optional>
#include <string_view>

namespace darokleim::sdk {

// The name or path in a line of `pm list packages` or `pm path`: group 1 of a whole line that matches
//     ^[^:]*:(\S+)\s*$
// A carriage return at the end is not part of it, and a line with white space inside does not match.
std::optional<std::string_view> MatchPackageLine(std::string_view line);

// The version in a line of `dumpsys package`: the part after the equals sign of the first match of
//     versionName=[0-9\.]+
std::optional<std::string_view> FindVersion(std::string_view line);

// The number of the current user in `dumpsys user`, as text: group 1 of the first match of
//     Current user: (\d+)
std::optional<std::string_view> FindCurrentUser(std::string_view dump);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_APPS_PACKAGE_OUTPUT_H
