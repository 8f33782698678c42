// AdbGetDevices, AdbGetDevicesEx: which devices adb sees, as "serial-state;" entries.
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/call_log.h"
#include "src/core/handed_out.h"
#include "src/core/text.h"
#include "src/device/device_line.h"

namespace darokleim::sdk {
namespace {

constexpr char kListCommand[] = " devices";

// Calls visit with the entry of each listed device, in adb's order, until it returns false.
template <typename Visit>
void ForEachEntry(std::string_view listing, Visit visit) {
  ForEachPiece(listing, "\n", [&](std::string_view line) {
    const auto device = MatchDeviceLine(line);
    if (!device) return true;
    return visit(std::string(device->serial).append("-").append(device->state).append(";"));
  });
}

// A caller's buffer that is filled entry by entry; the entry that does not fit is cut and ends it.
class EntryBuffer {
 public:
  EntryBuffer(char* buffer, int size) : next_(buffer), room_(size < 0 ? 0 : static_cast<std::size_t>(size)) {}

  bool Append(std::string_view entry) {
    const bool fits = entry.size() < room_;
    if (!fits) entry = entry.substr(0, room_ == 0 ? 0 : room_ - 1);
    if (room_ > 0) *std::copy(entry.begin(), entry.end(), next_) = '\0';
    next_ += entry.size();
    room_ -= std::min(room_, entry.size());
    return fits;
  }

 private:
  char* next_;
  std::size_t room_;
};

}  // namespace
}  // namespace darokleim::sdk

int AdbGetDevices(char* buffer, int buffer_size, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetDevices", kDeviceListWording);
  if (AnyNull(buffer)) return log.InvalidParam();
  const AdbRun run(kListCommand, cancel);
  const int code = run.Classify();
  if (code != ADB_RESULT_OK) return log.Leave(code);
  EntryBuffer entries(buffer, buffer_size);
  ForEachEntry(run.output_as_c_text(), [&](const std::string& entry) { return entries.Append(entry); });
  return log.Leave(code);
}

int AdbGetDevicesEx(char** list, int* list_len, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetDevicesEx", kDeviceListWording);
  *list = nullptr;
  *list_len = 0;
  const AdbRun run(kListCommand, cancel);
  const int code = run.Classify();
  if (code != ADB_RESULT_OK) return log.Leave(code);
  std::string entries;
  ForEachEntry(run.output_as_c_text(), [&](const std::string& entry) {
    entries += entry;
    return true;
  });
  if (!entries.empty()) {
    *list = NewTerminatedBlock(entries);
    *list_len = static_cast<int>(entries.size()) + 1;
  }
  return log.Leave(code);
}
