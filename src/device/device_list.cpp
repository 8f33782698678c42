// AdbGetDevices, AdbGetDevicesEx: the attached devices as "serial-state;" entries.
#include "src/device/device_list.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "base/ascii.h"
#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"
#include "src/core/text.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

constexpr bool IsListedState(std::string_view word) {
  return word == "device" || word == "offline" || word == "unauthorized";
}

}  // namespace

std::optional<DeviceLine> MatchDeviceLine(std::string_view line) {
  std::size_t serial_end = 0;
  while (serial_end < line.size() && base::IsAsciiLetterOrDigit(line[serial_end])) ++serial_end;
  const std::size_t state_begin = line.find_first_not_of(kWhiteSpace, serial_end);
  if (serial_end == 0 || state_begin == std::string_view::npos || state_begin == serial_end)
    return std::nullopt;
  const DeviceLine device{line.substr(0, serial_end), line.substr(state_begin)};
  if (!IsListedState(device.state)) return std::nullopt;
  return device;
}

namespace {

constexpr char kDevicesCommand[] = " devices";

// Calls visit with the entry of each listed device, in adb's order, until it returns false.
template <typename Visit>
void ForEachEntry(std::string_view listing, Visit visit) {
  ForEachPiece(listing, "\n", [&](std::string_view line) {
    const auto device = MatchDeviceLine(line);
    if (!device) return true;
    return visit(std::string(device->serial).append("-").append(device->state).append(";"));
  });
}

// A caller's buffer that is filled entry by entry; an entry that does not fit is cut and is the last one.
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

std::string convert_connect_string(const std::string& state) {
  if (state == "unauthorized") return "unauthor";
  if (state == "offline") return "offline";
  return "author";
}

int AdbGetDevices(char* buffer, int buffer_size, const bool* cancel) {
  CallLog log(__func__, kDeviceListWording);
  if (AnyNull(buffer)) return log.InvalidParam();
  const AdbRun run(kDevicesCommand, cancel);
  const int code = run.Classify();
  if (code != ADB_RESULT_OK) return log.Leave(code);
  EntryBuffer entries(buffer, buffer_size);
  ForEachEntry(run.output_as_c_text(), [&](const std::string& entry) { return entries.Append(entry); });
  return log.Leave(code);
}

int AdbGetDevicesEx(char** list, int* list_len, const bool* cancel) {
  CallLog log(__func__, kDeviceListWording);
  *list = nullptr;
  *list_len = 0;
  std::string entries;
  {
    const AdbRun run(kDevicesCommand, cancel);
    const int code = run.Classify();
    if (code != ADB_RESULT_OK) return log.Leave(code);
    entries.reserve(run.output_as_c_text().size());  // an entry is not longer than its line
    ForEachEntry(run.output_as_c_text(), [&](const std::string& entry) {
      entries += entry;
      return true;
    });
  }  // The output is given back before the entries are copied.
  if (!entries.empty()) {
    *list = NewTerminatedBlock(entries);
    *list_len = static_cast<int>(entries.size()) + 1;
  }
  return log.Leave(ADB_RESULT_OK);
}
