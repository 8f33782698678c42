// The parts of a MIUI version.
#ifndef DAROKLEIM_SRC_DEVICE_MIUI_TEXTS_H
#define DAROKLEIM_SRC_DEVICE_MIUI_TEXTS_H

#include <cstddef>
#include <optional>
#include <string_view>

namespace darokleim::sdk {

// "12" of "V12"; the whole text when it holds no V.
std::string_view AfterFirstV(std::string_view text);

// Versions with a name such as "12" end in the date of the build; from "101" on ("125", "130") the version is in the
// build number.
bool IsDatedName(std::string_view name);

// "12.5.3.0" of the build number "V12.5.3.0.RKHCNXM"; nothing for one without a dot.
std::optional<std::string_view> VersionInBuildNumber(std::string_view build_number);

// The length of the part of a version that applications get: all of it, but of a version that holds "12." at most one
// character after its third dot.
std::size_t ShownLength(std::string_view version);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_DEVICE_MIUI_TEXTS_H
