// AdbGetIPAddress: the address of the device in its Wi-Fi network.
#include "src/device/ip_address.h"

#include <algorithm>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"
#include "src/core/text.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {

bool IsAddressWithPrefix(std::string_view text) {
  // What follows each of the five numbers.
  constexpr std::string_view kMarks = ".../";
  for (std::size_t number = 0; number <= kMarks.size(); ++number) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0) return false;
    text.remove_prefix(digits);
    if (number == kMarks.size()) break;
    if (text.empty() || text[0] != kMarks[number]) return false;
    text.remove_prefix(1);
  }
  return text.empty();
}

std::optional<std::string_view> FindAddress(std::string_view output) {
  std::string_view second;
  int pieces = 0;
  ForEachPiece(output, " ", [&](std::string_view piece) {
    second = piece;
    return ++pieces < 2;
  });
  if (pieces < 2 || !IsAddressWithPrefix(second)) return std::nullopt;
  return second;
}

}  // namespace darokleim::sdk

int AdbGetIPAddress(const char* serial, char** ip, int* ip_len, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial)) return log.InvalidParam();
  const AdbRun run(Cut(256, " -s %s shell ip address | grep wlan | grep inet", serial), cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
  const auto address = FindAddress(run.output());
  if (!address) return log.Leave(ADB_RESULT_NO_IP_ADDRESS);
  *ip_len = static_cast<int>(address->size());
  *ip = NewTerminatedBlock(*address);
  return log.Leave(ADB_RESULT_OK);
}
