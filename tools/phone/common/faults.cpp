#include "tools/phone/common/faults.h"

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "tools/phone/common/io.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

bool IsMissingCommand(const std::string& name) {
  const size_t prefix = fault::kMissingPrefix.size();
  return name.size() > prefix && name.compare(0, prefix, fault::kMissingPrefix) == 0 &&
         name.find('/') == std::string::npos;
}

bool IsKnown(const std::string& name) {
  if (IsMissingCommand(name)) return true;
  for (const auto& described : DescribedFaults()) {
    if (described.first == name) return true;
  }
  return false;
}

bool IsPositiveNumber(const std::string& text) {
  char* end = nullptr;
  return std::strtod(text.c_str(), &end) >= 0 && end != text.c_str() && *end == '\0';
}

void CheckValue(const Fault& fault) {
  const bool bandwidth = fault.name == fault::kBandwidth;
  const bool size = bandwidth || fault.name == fault::kFreeSpace || fault.name == fault::kDropAfter;
  if (size && !ParseSize(fault.value)) {
    throw std::invalid_argument("fault " + fault.name + " takes a size such as 4096, 100M or 1.5G");
  }
  if (bandwidth && *ParseSize(fault.value) == 0) {
    throw std::invalid_argument("fault bandwidth takes at least 1 byte a second");
  }
  if (fault.name == fault::kSlow && !IsPositiveNumber(fault.value)) {
    throw std::invalid_argument("fault slow takes a number of seconds");
  }
}

}  // namespace

std::optional<std::string> Faults::Value(std::string_view name) const {
  return ReadFile(folder_ + "/" + std::string(name));
}

void Faults::SwitchOn(const Fault& fault) const {
  if (!IsKnown(fault.name)) throw std::invalid_argument("unknown fault '" + fault.name + "'");
  CheckValue(fault);
  fs::create_directories(folder_);
  if (!WriteFile(folder_ + "/" + fault.name, fault.value)) {
    throw std::invalid_argument("cannot write to " + folder_);
  }
}

void Faults::SwitchOff(const std::string& name) const {
  if (!IsKnown(name)) throw std::invalid_argument("unknown fault '" + name + "'");
  std::error_code error;
  fs::remove(folder_ + "/" + name, error);
}

std::vector<Fault> Faults::All() const {
  std::vector<Fault> all;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder_, error)) {
    const std::string name = entry.path().filename().string();
    if (IsKnown(name)) all.push_back({name, Value(name).value_or("")});
  }
  return all;
}

Fault ParseFault(std::string_view text) {
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos) return {std::string(text), ""};
  return {std::string(text.substr(0, equals)), std::string(text.substr(equals + 1))};
}

const std::vector<std::pair<std::string, std::string>>& DescribedFaults() {
  static const std::vector<std::pair<std::string, std::string>> faults = {
      {fault::kFullStorage, "nothing more can be written: No space left on device"},
      {fault::kFreeSpace, "as =SIZE: what df reports to be free"},
      {fault::kInstallFailure, "as =TEXT: every installation fails with Failure [TEXT]"},
      {fault::kUserRestricted,
       "pm refuses to act for the phone's first user; as =ID: the current user is ID"},
      {fault::kSlow, "as =SECONDS: every command waits this long before it starts"},
      {fault::kDropAfter, "as =SIZE: each connection breaks after so many bytes"},
      {fault::kBandwidth, "as =SIZE: each connection carries at most so many bytes a second"},
      {fault::kNoWifi, "no wireless address"},
      {fault::kUnconfirmedBackup, "a backup or restore is not confirmed on the phone's screen"},
      {"no-COMMAND", "the phone does not have this command (no-find, no-stat, …)"},
  };
  return faults;
}

std::optional<uint64_t> ParseSize(std::string_view text) {
  const std::string number(text);
  char* end = nullptr;
  const double value = std::strtod(number.c_str(), &end);
  if (end == number.c_str() || !(value >= 0)) return std::nullopt;
  double factor = 1;
  const std::string_view unit = end;
  if (unit == "K") {
    factor = 1024;
  } else if (unit == "M") {
    factor = 1024.0 * 1024;
  } else if (unit == "G") {
    factor = 1024.0 * 1024 * 1024;
  } else if (!unit.empty()) {
    return std::nullopt;
  }
  constexpr double kLargest = 1e18;
  if (value * factor > kLargest) return std::nullopt;
  return static_cast<uint64_t>(value * factor);
}

}  // namespace darokleim::phone
