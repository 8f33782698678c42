#include "src/filesystem/adb_ls_listing.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "src/core/argument_text.h"
#include "src/core/text.h"
#include "src/filesystem/device_path.h"
#include "src/filesystem/local_time_text.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

constexpr int kBase = 16;
constexpr std::size_t kDigits = 8;
constexpr std::size_t kColumn = kDigits + 1;
constexpr std::size_t kNameAt = 3 * kColumn;

constexpr std::uint32_t kNoDigit = 0x80000000U;

constexpr std::array<std::uint32_t, 256> kDigitValues = [] {
  std::array<std::uint32_t, 256> values{};
  for (auto& value : values) value = kNoDigit;
  for (unsigned i = 0; i < 10; ++i) values['0' + i] = i;
  for (unsigned i = 0; i < 6; ++i) values['a' + i] = values['A' + i] = 10 + i;
  return values;
}();

constexpr std::uint32_t DigitValue(char c) {
  return kDigitValues[static_cast<unsigned char>(c)];
}

std::optional<std::uint32_t> EightDigits(const char* text) {
  std::uint32_t number = 0;
  std::uint32_t all = 0;
  for (std::size_t i = 0; i < kDigits; ++i) {
    const std::uint32_t value = DigitValue(text[i]);
    all |= value;
    number = number << 4 | value;
  }
  if ((all & kNoDigit) != 0) return std::nullopt;
  return number;
}

// A line in adb's own format; nothing for any other line.
std::optional<AdbLsLine> ReadRegularLine(std::string_view line) {
  const char* const text = line.data();
  if (text[kDigits] != ' ' || text[kColumn + kDigits] != ' ') return std::nullopt;
  if (DigitValue(text[kNameAt - 1]) != kNoDigit) return std::nullopt;
  const auto mode = EightDigits(text);
  const auto size = EightDigits(text + kColumn);
  const auto time = EightDigits(text + 2 * kColumn);
  if (!mode || !size || !time) return std::nullopt;
  return AdbLsLine{*mode, *size, *time, line.substr(kNameAt)};
}

// Copies the line: strtoul needs a terminating zero, or it would read on in the next line.
AdbLsLine ReadAnyLine(std::string_view line) {
  const std::string text(line);
  char* end = nullptr;
  const auto mode = static_cast<std::uint32_t>(std::strtoul(text.c_str(), &end, kBase));
  const std::uint64_t size = std::strtoul(end, &end, kBase);
  const std::uint64_t time = std::strtoul(end, &end, kBase);
  const auto name_at = static_cast<std::size_t>(end - text.c_str()) + 1;
  return {mode, size, time, name_at < line.size() ? line.substr(name_at) : std::string_view()};
}

// An upper limit close to the number of records, so that the vector is allocated once.
std::size_t LineCount(std::string_view text) {
  std::size_t lines = 1;
  for (std::size_t end = 0; (end = text.find('\n', end)) != std::string_view::npos; ++end) ++lines;
  return std::min(lines, text.size() / kShortestAdbLsLine);
}

}  // namespace

AdbRun RunAdbLs(const char* serial, std::string_view directory, const bool* cancel) {
  return AdbRun(Measured(" -s %s ls \"%s\"", serial, std::string(directory).c_str()), cancel);
}

bool IsSkippedAdbLsLine(std::string_view line) {
  if (line.size() < kShortestAdbLsLine) return true;
  if (line.size() == kShortestAdbLsLine) return line.back() == '.';
  // Meant for "..", but callers rely on it for every line of this length that holds a dot.
  return line.size() == kShortestAdbLsLine + 1 && Contains(line, ".");
}

AdbLsLine ReadAdbLsLine(std::string_view line) {
  if (const auto regular = ReadRegularLine(line)) return *regular;
  return ReadAnyLine(line);
}

}  // namespace darokleim::sdk

std::vector<FileInfo> DecodeADBLSOut(const std::string& dir, const char* out, int len) {
  const std::string_view text = TextOf(out, len);
  const std::size_t most = LineCount(text);
  std::vector<FileInfo> files;
  files.reserve(most);
  LocalTimeText local_time(most);
  ForEachPiece(text, "\n", [&](std::string_view line) {
    if (IsSkippedAdbLsLine(line)) return true;
    const AdbLsLine columns = ReadAdbLsLine(line);
    FileInfo& info = files.emplace_back();
    info.mode = columns.mode;
    info.size = columns.size;
    info.utc_timestamp = columns.time;
    info.time = local_time.Of(columns.time);
    info.file = JoinPath(dir, columns.name);
    return true;
  });
  return files;
}

bool CheckIsDir(unsigned int mode) {
  constexpr unsigned int kDirectoryBit = 0x4000;
  return (mode & kDirectoryBit) != 0;
}
