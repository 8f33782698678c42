#include "client/apps/package_dump.h"

#include <algorithm>
#include <charconv>

#include "base/ascii.h"
#include "client/shell.h"

namespace darokleim::client {
namespace {

std::string_view WithoutIndent(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  return line;
}

// The text after "name=" up to a space; nothing for a line that does not begin with it.
std::optional<std::string_view> Value(std::string_view line, std::string_view name) {
  if (!line.starts_with(name) || line.size() <= name.size() || line[name.size()] != '=') return std::nullopt;
  return line.substr(name.size() + 1);
}

std::string_view FirstWord(std::string_view text) {
  return text.substr(0, text.find(' '));
}

std::optional<std::int64_t> Number(std::string_view text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

// "[base, config.en]"
std::vector<std::string> Splits(std::string_view list) {
  std::vector<std::string> splits;
  if (list.empty() || list.front() != '[') return splits;
  list.remove_prefix(1);
  list = list.substr(0, list.find(']'));
  while (!list.empty()) {
    std::string_view name = list.substr(0, list.find(','));
    list.remove_prefix(std::min(name.size() + 1, list.size()));
    name = WithoutIndent(name);
    if (!name.empty() && name != "base") splits.emplace_back(name);
  }
  return splits;
}

// One line inside a package's part of the dump.
void ReadFact(std::string_view line, PackageFacts* facts) {
  if (const auto name = Value(line, "versionName")) facts->version_name = *name;
  if (const auto code = Value(line, "versionCode")) facts->version_code = Number(*code).value_or(-1);
  if (const auto path = Value(line, "codePath")) facts->code_path = *path;
  if (const auto splits = Value(line, "splits")) facts->splits = Splits(*splits);
  for (const std::string_view flags : {"flags", "pkgFlags"}) {
    if (const auto set = Value(line, flags))
      facts->system = facts->system || set->find(" SYSTEM ") != std::string_view::npos;
  }
  if (line.starts_with("User 0:")) {
    // 0: as the application itself says; 1: enabled; 2 to 4: disabled, by the user or until it is used.
    constexpr std::string_view kEnabled = " enabled=";
    const std::size_t at = line.find(kEnabled);
    if (at != std::string_view::npos)
      facts->enabled = Number(FirstWord(line.substr(at + kEnabled.size()))).value_or(0) < 2;
  }
}

}  // namespace

bool IsPackageName(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return base::IsAsciiLetterOrDigit(c) || c == '_' || c == '.';
  });
}

std::vector<std::pair<std::string, std::string>> ReadPackageList(std::string_view text) {
  std::vector<std::pair<std::string, std::string>> packages;
  ForEachLine(text, [&](std::string_view line) {
    constexpr std::string_view kBegin = "package:";
    const std::size_t equals = line.rfind('=');
    if (!line.starts_with(kBegin) || equals == std::string_view::npos) return true;
    const std::string_view name = line.substr(equals + 1);
    if (IsPackageName(name)) packages.emplace_back(name, line.substr(kBegin.size(), equals - kBegin.size()));
    return true;
  });
  return packages;
}

std::map<std::string, PackageFacts> ReadPackageDump(std::string_view text) {
  std::map<std::string, PackageFacts> packages;
  PackageFacts* current = nullptr;
  bool in_packages = false;
  ForEachLine(text, [&](std::string_view line) {
    // Sections begin at the margin; packages are indented by two spaces, their facts by more.
    if (!line.empty() && line.front() != ' ') {
      in_packages = line == "Packages:";
      current = nullptr;
      return true;
    }
    if (!in_packages) return true;
    constexpr std::string_view kPackage = "  Package [";
    if (line.starts_with(kPackage)) {
      const std::string_view name =
          line.substr(kPackage.size(), line.find(']') - std::min(line.find(']'), kPackage.size()));
      current = IsPackageName(name) ? &packages[std::string(name)] : nullptr;
      return true;
    }
    if (current != nullptr) ReadFact(WithoutIndent(line), current);
    return true;
  });
  return packages;
}

PackageAnswer ReadPackageAnswer(std::string_view text) {
  PackageAnswer answer;
  ForEachLine(text, [&](std::string_view line) {
    constexpr std::string_view kFailure = "Failure [";
    if (line.starts_with("Success")) answer.success = true;
    if (!line.starts_with(kFailure)) return true;
    line.remove_prefix(kFailure.size());
    const std::size_t end =
        std::min(line.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_"), line.size());
    answer.reason = line.substr(0, end);
    answer.success = false;
    return false;
  });
  return answer;
}

std::optional<std::string> ReadSession(std::string_view text) {
  const std::size_t open = text.find('[');
  const std::size_t close = text.find(']', open == std::string_view::npos ? 0 : open);
  if (!text.starts_with("Success") || open == std::string_view::npos || close == std::string_view::npos)
    return std::nullopt;
  const std::string_view number = text.substr(open + 1, close - open - 1);
  if (number.empty() || number.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  return std::string(number);
}

}  // namespace darokleim::client
