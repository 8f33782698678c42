#include "src/device/miui_texts.h"

#include <algorithm>

#include "src/core/text.h"

namespace darokleim::sdk {

std::string_view AfterFirstV(std::string_view text) {
  const std::size_t v = text.find('V');
  return v == std::string_view::npos ? text : text.substr(v + 1);
}

bool IsDatedName(std::string_view name) {
  constexpr long long kFirstUndated = 101;
  return LeadingInteger(name) < kFirstUndated;
}

std::optional<std::string_view> VersionInBuildNumber(std::string_view build_number) {
  const std::size_t last_dot = build_number.rfind('.');
  if (last_dot == std::string_view::npos) return std::nullopt;
  return AfterFirstV(build_number.substr(0, last_dot));
}

std::size_t ShownLength(std::string_view version) {
  constexpr int kDotsShown = 3;
  if (!Contains(version, "12.")) return version.size();
  std::size_t after_dot = 0;
  for (int i = 0; i < kDotsShown; ++i) {
    const std::size_t dot = version.find('.', after_dot);
    if (dot == std::string_view::npos) return version.size();
    after_dot = dot + 1;
  }
  return std::min(after_dot + 1, version.size());
}

}  // namespace darokleim::sdk
