#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_SYNC_MESSAGES_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_SYNC_MESSAGES_H

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace darokleim::phone {

// A message of the sync service begins with four letters, here read as one little-endian number.
constexpr uint32_t SyncId(const char (&letters)[5]) {
  uint32_t id = 0;
  for (int i = 3; i >= 0; --i) id = (id << 8) | static_cast<unsigned char>(letters[i]);
  return id;
}

inline constexpr uint32_t kSyncLstat1 = SyncId("STAT");
inline constexpr uint32_t kSyncStat2 = SyncId("STA2");
inline constexpr uint32_t kSyncLstat2 = SyncId("LST2");
inline constexpr uint32_t kSyncList1 = SyncId("LIST");
inline constexpr uint32_t kSyncList2 = SyncId("LIS2");
inline constexpr uint32_t kSyncEntry1 = SyncId("DENT");
inline constexpr uint32_t kSyncEntry2 = SyncId("DNT2");
inline constexpr uint32_t kSyncSend = SyncId("SEND");
inline constexpr uint32_t kSyncReceive = SyncId("RECV");
inline constexpr uint32_t kSyncSend2 = SyncId("SND2");
inline constexpr uint32_t kSyncReceive2 = SyncId("RCV2");
inline constexpr uint32_t kSyncData = SyncId("DATA");
inline constexpr uint32_t kSyncDone = SyncId("DONE");
inline constexpr uint32_t kSyncOkay = SyncId("OKAY");
inline constexpr uint32_t kSyncFail = SyncId("FAIL");
inline constexpr uint32_t kSyncQuit = SyncId("QUIT");

// The most bytes of a file in one message, and the longest path.
inline constexpr size_t kSyncLargestData = 64 * 1024;
inline constexpr size_t kSyncLongestPath = 1024;

// Four letters and one number: a length, or the answer's time stamp.
struct SyncHeader {
  uint32_t id;
  uint32_t value;
};
inline constexpr size_t kSyncHeaderSize = 8;

SyncHeader ParseSyncHeader(const char* bytes);
std::string MakeSyncHeader(uint32_t id, uint32_t value);

// The first form of an answer to a stat: mode, size and time in 32 bits each; zeros for a missing file.
std::string MakeStat1(uint32_t id, const struct stat& status);
// The second: an error number of Linux and the whole status.
std::string MakeStat2(uint32_t id, int error, const struct stat& status);

// One entry of a listing, and the message of the same size that ends it.
std::string MakeEntry(bool second_form, int error, const struct stat& status, std::string_view name);
std::string MakeEndOfList(bool second_form);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_SYNC_MESSAGES_H
