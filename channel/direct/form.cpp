#include "channel/direct/form.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace darokleim::channel::direct {
namespace {

constexpr size_t kAnyNumber = std::numeric_limits<size_t>::max();

// What adb accepts as the operands of a form, or less: whatever is left to adb is answered by adb as well.
enum class Operands {
  kAny,
  kShellWords,  // the first is not an option of adb's shell
  kPaths,       // neither empty nor options
  kAddresses,   // where a connection is accepted and where it leads; adb looks at the numbers of TCP ports
  kRebootMode,
};

struct FormRow {
  std::string_view name;    // adb's command word
  std::string_view option;  // empty: none
  size_t fewest, most;      // operands
  Form form;
  Operands operands;
};

// For `-s SERIAL NAME [OPTION] OPERANDS…`; only `devices` comes without a serial.
constexpr FormRow kForms[] = {
    {"devices", "", 0, 0, Form::kDevices, Operands::kAny},
    {"shell", "", 1, kAnyNumber, Form::kShell, Operands::kShellWords},
    {"logcat", "", 0, kAnyNumber, Form::kLogcat, Operands::kAny},
    {"ls", "", 1, 1, Form::kList, Operands::kAny},
    {"pull", "", 2, 2, Form::kPull, Operands::kPaths},
    {"pull", "-a", 2, 2, Form::kPull, Operands::kPaths},
    {"push", "", 2, 2, Form::kPush, Operands::kPaths},
    {"push", "--sync", 2, 2, Form::kPush, Operands::kPaths},
    {"forward", "", 2, 2, Form::kForward, Operands::kAddresses},
    {"forward", "--remove", 1, 1, Form::kForward, Operands::kAny},
    {"reverse", "", 2, 2, Form::kReverse, Operands::kAddresses},
    {"reverse", "--remove", 1, 1, Form::kReverse, Operands::kAny},
    {"reconnect", "", 0, 0, Form::kReconnect, Operands::kAny},
    {"reboot", "", 0, 1, Form::kReboot, Operands::kRebootMode},
};

bool IsOption(const std::string& word) {
  return !word.empty() && word.front() == '-';
}

// An address without a port, such as localabstract:NAME, is for the server or the phone to judge. adb itself refuses
// odd ports; 0 means a free one, which only the listening side can have.
bool IsAddress(std::string_view address, int lowest_port) {
  constexpr std::string_view kTcp = "tcp:";
  if (address.empty() || address.front() == '-') return false;
  if (address.substr(0, kTcp.size()) != kTcp) return true;
  const std::string_view digits = address.substr(kTcp.size());
  if (digits.empty() || digits.size() > 5) return false;
  int port = 0;
  for (const char digit : digits) {
    if (digit < '0' || digit > '9') return false;
    port = port * 10 + (digit - '0');
  }
  return port >= lowest_port && port <= 65535;
}

bool Accepts(Operands operands, std::span<const std::string> words) {
  switch (operands) {
    case Operands::kAny:
      return true;
    case Operands::kShellWords:
      return !IsOption(words[0]);
    case Operands::kPaths:
      return std::none_of(words.begin(), words.end(),
                          [](const std::string& word) { return word.empty() || IsOption(word); });
    case Operands::kAddresses:
      return IsAddress(words[0], 0) && IsAddress(words[1], 1);
    case Operands::kRebootMode:
      return words.empty() || (!words[0].empty() && !IsOption(words[0]));
  }
  return false;  // there are no others
}

}  // namespace

std::optional<FormCall> MatchForm(const Command& command) {
  std::span<const std::string> words = command.words;
  std::string serial;
  if (words.size() >= 3 && words[0] == "-s" && !words[1].empty()) {
    serial = words[1];
    words = words.subspan(2);
  }
  if (words.empty()) return std::nullopt;
  const bool server_form = words[0] == "devices";
  if (server_form != serial.empty()) return std::nullopt;
  const bool has_option = words.size() > 1 && IsOption(words[1]);
  for (const FormRow& row : kForms) {
    const bool option = !row.option.empty();
    if (row.name != words[0] || (option && (!has_option || words[1] != row.option))) continue;
    const auto operands = words.subspan(option ? 2 : 1);
    if (operands.size() < row.fewest || operands.size() > row.most || !Accepts(row.operands, operands))
      continue;
    return FormCall{row.form, std::move(serial), option, operands};
  }
  return std::nullopt;
}

}  // namespace darokleim::channel::direct
