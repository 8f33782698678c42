#include "tools/cli/command_line/argument_types.h"

#include <algorithm>

#include "base/ascii.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr std::size_t kMostDigits = 9;  // of a number that fits an int

bool IsWordOf(std::string_view word, std::string_view others) {
  const auto allowed = [others](char c) {
    return base::IsAsciiLetterOrDigit(c) || others.find(c) != std::string_view::npos;
  };
  return !word.empty() && word.front() != '-' && std::all_of(word.begin(), word.end(), allowed);
}

bool IsNumber(std::string_view word) {
  return !word.empty() && word.size() <= kMostDigits &&
         word.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string InQuotes(std::string_view word) {
  return "\"" + std::string(word) + "\"";
}

}  // namespace

const char* ValueName(ValueKind kind) {
  switch (kind) {
    case ValueKind::kText:
      return "TEXT";
    case ValueKind::kNumber:
      return "NUMBER";
    case ValueKind::kHostPath:
    case ValueKind::kDevicePath:
      return "PATH";
    case ValueKind::kHostDirectory:
      return "DIRECTORY";
    case ValueKind::kPackage:
      return "PACKAGE";
    case ValueKind::kSerial:
      return "SERIAL";
    case ValueKind::kPort:
      return "PORT";
  }
  return "";
}

bool IsPackageName(std::string_view word) {
  return IsWordOf(word, "._-");
}

bool IsSerial(std::string_view word) {
  return IsWordOf(word, "._:-[]%@+=/,#~");
}

void CheckWord(std::string_view word, std::string_view others, const char* what) {
  if (!IsWordOf(word, others)) throw UsageError(InQuotes(word) + " is not a valid " + what + ".");
}

Package Package::Parse(const std::string& word) {
  if (!IsPackageName(word)) {
    throw UsageError(InQuotes(word) + " is not a valid package name, for example com.example.app.");
  }
  return {word};
}

Serial Serial::Parse(const std::string& word) {
  if (!word.empty() && !IsSerial(word)) {
    throw UsageError(InQuotes(word) + " is not a valid serial number. See `darokleim devices`.");
  }
  return {word};
}

Seconds Seconds::Parse(const std::string& word) {
  constexpr int kMost = 86400;  // a day
  constexpr std::size_t kDecimals = 3;
  const auto point = word.find('.');
  const std::string whole = word.substr(0, point);
  std::string decimals = point == std::string::npos ? "" : word.substr(point + 1);
  const bool is_number = IsNumber(whole) && (point == std::string::npos || IsNumber(decimals));
  decimals.resize(kDecimals, '0');
  if (is_number) {
    const std::chrono::milliseconds value(std::stoll(whole) * 1000 + std::stoll(decimals));
    if (value.count() > 0 && value <= std::chrono::seconds(kMost)) return {value};
  }
  throw UsageError(InQuotes(word) + " is not a number of seconds, 0.001 to 86400.");
}

Port Port::Parse(const std::string& word) {
  constexpr int kLast = 65535;
  const bool is_port = IsNumber(word) && std::stoi(word) >= 1 && std::stoi(word) <= kLast;
  if (!is_port) throw UsageError(InQuotes(word) + " is not a TCP port, 1 to 65535.");
  return {word};
}

int ParsedAs<int>::Parse(const std::string& word) {
  if (!IsNumber(word)) throw UsageError(InQuotes(word) + " is not a number.");
  return std::stoi(word);
}

}  // namespace darokleim::cli
