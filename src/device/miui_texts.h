// The texts that a MIUI version is made of.
#ifndef DAROKLEIM_SRC_DEVICE_MIUI_TEXTS_H
#define DAROKLEIM_SRC_DEVICE_MIUI_TEXTS_H

#include <cstddef>
#include <optional>
#include <string_view>

namespace darokleim::sdk {

// "12" of "V12"; the whole text when it holds no V.
std::string_view AfterFirstV(std::string_view text);

// Names such as "12" date the build; from "101" on ("125", "130") the build number tells the version.
bool IsDatedName(std::string_view name);

// "12.5.3.0" of the build number "V12.5.3.0.RKHCNXM"; nothing for one without a dot.
std::optional<std::string_view> VersionInBuildNumber(std::string_view build_number);

// How much of a version applications get to see: all of it, but of one that holds "12." no more than one
// character behind its third dot.
std::size_t ShownLength(std::string_view version);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_DEVICE_MIUI_TEXTS_H
