#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_RECORDS_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_RECORDS_H

#include <string>

namespace darokleim::phone {

// What happened to the phone, a line each, for the tests that ask afterwards.
inline constexpr char kInputRecord[] = "input";          // typed, pressed, touched
inline constexpr char kActivityRecord[] = "activities";  // started and stopped
// Also the phone's log, see event_log.h.

void AppendRecord(const std::string& record, std::string line);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_RECORDS_H
