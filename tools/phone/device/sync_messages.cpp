#include "tools/phone/device/sync_messages.h"

#include "base/little_endian.h"
#include "tools/phone/common/wire.h"

namespace darokleim::phone {

namespace {

constexpr size_t kEntry1Size = 20;
constexpr size_t kEntry2Size = 76;

uint32_t Low32(uint64_t value) {
  return static_cast<uint32_t>(value);
}

uint64_t Seconds(time_t time) {
  return static_cast<uint64_t>(time);
}

}  // namespace

SyncHeader ParseSyncHeader(const char* bytes) {
  return {base::GetLe32(bytes), base::GetLe32(bytes + 4)};
}

std::string MakeSyncHeader(uint32_t id, uint32_t value) {
  std::string message;
  base::PutLe32(&message, id);
  base::PutLe32(&message, value);
  return message;
}

std::string MakeStat1(uint32_t id, const struct stat& status) {
  std::string message;
  base::PutLe32(&message, id);
  base::PutLe32(&message, status.st_mode);
  base::PutLe32(&message, Low32(static_cast<uint64_t>(status.st_size)));
  base::PutLe32(&message, Low32(Seconds(status.st_mtime)));
  return message;
}

std::string MakeStat2(uint32_t id, int error, const struct stat& status) {
  std::string message;
  base::PutLe32(&message, id);
  base::PutLe32(&message, static_cast<uint32_t>(error));
  base::PutLe64(&message, static_cast<uint64_t>(status.st_dev));
  base::PutLe64(&message, status.st_ino);
  base::PutLe32(&message, status.st_mode);
  base::PutLe32(&message, Low32(status.st_nlink));
  base::PutLe32(&message, status.st_uid);
  base::PutLe32(&message, status.st_gid);
  base::PutLe64(&message, static_cast<uint64_t>(status.st_size));
  base::PutLe64(&message, Seconds(status.st_atime));
  base::PutLe64(&message, Seconds(status.st_mtime));
  base::PutLe64(&message, Seconds(status.st_ctime));
  return message;
}

std::string MakeEntry(bool second_form, int error, const struct stat& status, std::string_view name) {
  std::string message = second_form ? MakeStat2(kSyncEntry2, error, status) : MakeStat1(kSyncEntry1, status);
  base::PutLe32(&message, Low32(name.size()));
  return message.append(name);
}

std::string MakeEndOfList(bool second_form) {
  std::string message = MakeSyncHeader(kSyncDone, 0);
  message.resize(second_form ? kEntry2Size : kEntry1Size);
  return message;
}

}  // namespace darokleim::phone
