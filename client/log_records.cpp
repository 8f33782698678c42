#include "client/log_records.h"

#include <algorithm>

#include "base/little_endian.h"

namespace darokleim::client {
namespace {

// Android's logger_entry: the length of what follows the header, the header's own length (0 in its first version), process,
// thread, seconds, nanoseconds; later versions go on.
constexpr std::size_t kFirstHeader = 20;
constexpr std::size_t kLongestHeader = 64;
constexpr std::size_t kLongestPayload = 64 * 1024 - 1;

char LevelOf(unsigned char priority) {
  constexpr std::string_view kLevels = "??VDIWEFS";
  return priority < kLevels.size() ? kLevels[priority] : '?';
}

// The priority, the tag and the text, each text with a zero byte at its end.
void UsePayload(const char* header, std::string payload, const LogRecords::Use& use) {
  payload.push_back('\0');  // also where the phone cut it
  const std::size_t tag_end = payload.find('\0', 1);
  dk_log_record record = {};
  record.process = base::GetLe32(header + 4);
  record.thread = base::GetLe32(header + 8);
  record.seconds = base::GetLe32(header + 12);
  record.nanoseconds = static_cast<std::int32_t>(base::GetLe32(header + 16));
  record.level = LevelOf(static_cast<unsigned char>(payload[0]));
  record.tag = payload.c_str() + 1;
  record.text = tag_end + 1 < payload.size() ? payload.c_str() + tag_end + 1 : "";
  use(record);
}

}  // namespace

bool LogRecords::Read(std::string_view data, const Use& use) {
  rest_.append(data);
  std::size_t at = 0;
  while (rest_.size() - at >= kFirstHeader) {
    const char* const header = rest_.data() + at;
    const std::size_t payload = base::GetLittleEndian<std::uint16_t>(header);
    const std::size_t size =
        std::max<std::size_t>(base::GetLittleEndian<std::uint16_t>(header + 2), kFirstHeader);
    if (size > kLongestHeader || payload > kLongestPayload || payload == 0) return false;
    if (rest_.size() - at < size + payload) break;
    UsePayload(header, rest_.substr(at + size, payload), use);
    at += size + payload;
  }
  rest_.erase(0, at);
  return true;
}

}  // namespace darokleim::client
