// The messages of the sync service, by which files are listed and copied: four letters, numbers with the lowest byte
// first, and names or data after them.
#ifndef DAROKLEIM_ADB_SYNC_MESSAGES_H
#define DAROKLEIM_ADB_SYNC_MESSAGES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace darokleim::adb {

// A message's four letters as they are read and written: as one number.
constexpr std::uint32_t SyncId(const char (&letters)[5]) {
  std::uint32_t id = 0;
  for (int i = 3; i >= 0; --i) id = (id << 8) | static_cast<unsigned char>(letters[i]);
  return id;
}

namespace sync_id {
inline constexpr std::uint32_t kStat1 = SyncId("STAT");        // of a link itself
inline constexpr std::uint32_t kStatLink2 = SyncId("LST2");    // of a link itself
inline constexpr std::uint32_t kStatTarget2 = SyncId("STA2");  // of what a link leads to
inline constexpr std::uint32_t kList1 = SyncId("LIST");
inline constexpr std::uint32_t kList2 = SyncId("LIS2");
inline constexpr std::uint32_t kEntry1 = SyncId("DENT");
inline constexpr std::uint32_t kEntry2 = SyncId("DNT2");
inline constexpr std::uint32_t kSend1 = SyncId("SEND");
inline constexpr std::uint32_t kSend2 = SyncId("SND2");
inline constexpr std::uint32_t kReceive1 = SyncId("RECV");
inline constexpr std::uint32_t kReceive2 = SyncId("RCV2");
inline constexpr std::uint32_t kData = SyncId("DATA");
inline constexpr std::uint32_t kDone = SyncId("DONE");
inline constexpr std::uint32_t kOkay = SyncId("OKAY");
inline constexpr std::uint32_t kFail = SyncId("FAIL");
inline constexpr std::uint32_t kQuit = SyncId("QUIT");
}  // namespace sync_id

// The type of a file in the mode that SEND carries, in an Android's numbers.
inline constexpr std::uint32_t kRegularFile = 0100000;

// The four letters and one number: a length, a time or nothing.
inline constexpr std::size_t kSyncHeader = 8;
// The most bytes of a file in one message.
inline constexpr std::size_t kLongestSyncData = 64 * 1024;
// Daemons refuse longer paths.
inline constexpr std::size_t kLongestSyncPath = 1024;
// Of one name in a list. File systems have at most 255 characters in one.
inline constexpr std::size_t kLongestSyncName = 1024;

// Whether a folder can have an entry of this name: it is not empty and has no slash and no zero byte. "." and ".." are such names.
bool IsEntryName(std::string_view name);

// What the phone says of a file.
struct FileStatus {
  // Whether it came in the second form of the message. The first has 32 bits for size and time (larger ones lose their
  // upper bits), and nothing but mode, size and time; these are then all 0 for a file that is missing or unreadable.
  bool second_form = false;

  std::uint32_t error = 0;  // an errno of Linux; in the second form alone
  std::uint32_t mode = 0;   // type and permissions, as Linux has them
  std::uint64_t size = 0;
  std::int64_t modified = 0;  // seconds since 1970

  // In the second form alone.
  std::int64_t accessed = 0;
  std::int64_t changed = 0;
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint32_t links = 0;
  std::uint32_t user = 0;
  std::uint32_t group = 0;

  bool exists() const { return second_form ? error == 0 : mode != 0; }
};

// Sizes of answers, with their four letters.
inline constexpr std::size_t kStat1Size = 16;
inline constexpr std::size_t kStat2Size = 72;
// Of an entry of a list up to its name, and of the message that ends a list.
inline constexpr std::size_t kEntry1Size = kStat1Size + 4;
inline constexpr std::size_t kEntry2Size = kStat2Size + 4;

// Reads an answer, or the same part of an entry; `message` has at least that many bytes.
FileStatus ParseStat(bool second_form, const char* message);

// The four letters, the length of the path, and the path.
std::string SyncRequest(std::uint32_t id, std::string_view path);
std::string SyncHeader(std::uint32_t id, std::uint32_t value);

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_SYNC_MESSAGES_H
