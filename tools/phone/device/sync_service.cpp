#include "tools/phone/device/sync_service.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "base/little_endian.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/sync_messages.h"

namespace darokleim::phone {

namespace {

// The folder a path is in, made with every folder above it. What exists is left as it is.
bool MakeFoldersFor(const std::string& path) {
  for (size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
    if (mkdir(path.substr(0, slash).c_str(), 0775) != 0 && errno != EEXIST) return false;
  }
  return true;
}

base::UniqueFd CreateFile(const std::string& path, mode_t mode) {
  base::UniqueFd file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (!file.valid() && errno == EEXIST) file.Reset(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  return file;
}

void SetTime(const std::string& path, uint32_t seconds) {
  timespec time = {};
  time.tv_sec = seconds;
  const timespec times[] = {time, time};
  utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

// A link, or a file that is replaced rather than written through. Devices and folders stay.
bool IsReplaced(const std::string& path, bool by_link) {
  struct stat status;
  if (lstat(path.c_str(), &status) != 0) return false;
  return S_ISREG(status.st_mode) || (S_ISLNK(status.st_mode) && !by_link);
}

}  // namespace

SyncService::SyncService(base::UniqueFd client, bool legacy)
    : client_(std::move(client)), legacy_(legacy), block_(kSyncHeaderSize + kSyncLargestData) {}

void SyncService::Run() {
  SendOkay(client_.get());
  std::array<char, kSyncHeaderSize> bytes;
  while (ReadExactly(client_.get(), bytes.data(), bytes.size())) {
    const SyncHeader request = ParseSyncHeader(bytes.data());
    if (request.value > kSyncLongestPath) {
      Refuse("path too long");
      break;
    }
    std::string path(request.value, '\0');
    if (!ReadExactly(client_.get(), path.data(), path.size())) return;
    if (request.id == kSyncQuit || !Answer(request.id, path)) break;
  }
  FinishStream(std::move(client_));
}

bool SyncService::Answer(uint32_t id, const std::string& path) {
  const bool second_form =
      id == kSyncStat2 || id == kSyncLstat2 || id == kSyncList2 || id == kSyncSend2 || id == kSyncReceive2;
  if (legacy_ && second_form) return Refuse("unknown command " + std::to_string(id));
  switch (id) {
    case kSyncLstat1:
    case kSyncStat2:
    case kSyncLstat2:
      return Stat(id, path);
    case kSyncList1:
    case kSyncList2:
      return List(id == kSyncList2, path);
    case kSyncSend:
      return Send(path);
    case kSyncSend2:
      return Send2(path);
    case kSyncReceive:
      return Receive(path);
    case kSyncReceive2:
      return Receive2(path);
    default:
      return Refuse("unknown command " + std::to_string(id));
  }
}

bool SyncService::Stat(uint32_t id, const std::string& path) {
  struct stat status = {};
  const int result = id == kSyncStat2 ? stat(path.c_str(), &status) : lstat(path.c_str(), &status);
  const int error = result == 0 ? 0 : errno;
  if (error != 0) status = {};
  return ReplyInTwoPieces(id == kSyncLstat1 ? MakeStat1(id, status) : MakeStat2(id, error, status));
}

// A folder that cannot be read lists nothing: the protocol has no word for it.
bool SyncService::List(bool second_form, const std::string& path) {
  std::string entries;
  if (DIR* folder = opendir(path.c_str())) {
    while (const dirent* entry = readdir(folder)) {
      struct stat status = {};
      const bool known = lstat((path + "/" + entry->d_name).c_str(), &status) == 0;
      const int error = known ? 0 : errno;
      if (!known && !second_form) continue;
      entries += MakeEntry(second_form, error, status, entry->d_name);
      if (entries.size() < kSyncLargestData) continue;
      if (!ReplyInTwoPieces(entries)) {
        closedir(folder);
        return false;
      }
      entries.clear();
    }
    closedir(folder);
  }
  return ReplyInTwoPieces(entries + MakeEndOfList(second_form));
}

bool SyncService::Send(const std::string& path_and_mode) {
  const size_t comma = path_and_mode.rfind(',');
  if (comma == std::string::npos) return Refuse("missing , in ID_SEND");
  const std::string path = path_and_mode.substr(0, comma);
  errno = 0;
  char* end = nullptr;
  const unsigned long mode = std::strtoul(path_and_mode.c_str() + comma + 1, &end, 0);
  if (errno != 0 || *end != '\0' || end == path_and_mode.c_str() + comma + 1) return Refuse("bad mode");
  return TakeEntry(path, static_cast<unsigned>(mode));
}

// The mode and flags follow in a message of their own. The flags name a compression; none is offered.
bool SyncService::Send2(const std::string& path) {
  std::array<char, kSyncHeaderSize + sizeof(uint32_t)> bytes;
  if (!ReadExactly(client_.get(), bytes.data(), bytes.size())) return false;
  const SyncHeader setup = ParseSyncHeader(bytes.data());
  if (setup.id != kSyncSend2) return Refuse("invalid send setup");
  if (base::GetLe32(bytes.data() + kSyncHeaderSize) != 0) return Refuse("unknown flags");
  return TakeEntry(path, setup.value);
}

bool SyncService::TakeEntry(const std::string& path, unsigned mode) {
  const bool is_link = S_ISLNK(static_cast<mode_t>(mode));
  if (IsReplaced(path, is_link)) unlink(path.c_str());
  return is_link ? TakeLink(path) : TakeFile(path, mode);
}

bool SyncService::TakeFile(const std::string& path, unsigned mode) {
  // What the owner may, the others may too, as the daemon of every phone has it.
  mode &= 0777;
  mode |= (mode >> 3) & 0070;
  mode |= (mode >> 3) & 0007;
  base::UniqueFd file = CreateFile(path, mode);
  if (!file.valid() && errno == ENOENT) {
    if (!MakeFoldersFor(path)) return RefuseRestOfFile("secure_mkdirs failed");
    file = CreateFile(path, mode);
  }
  if (!file.valid()) return RefuseRestOfFile("couldn't create file");
  fchmod(file.get(), mode);
  if (!TakeData(file.get())) {
    unlink(path.c_str());
    return false;
  }
  SetTime(path, base::GetLe32(block_.data() + 4));
  return Reply(MakeSyncHeader(kSyncOkay, 0));
}

// Leaves the last header, which holds the file's time, in the block.
bool SyncService::TakeData(int file) {
  for (;;) {
    if (!ReadExactly(client_.get(), block_.data(), kSyncHeaderSize)) return false;
    const SyncHeader header = ParseSyncHeader(block_.data());
    if (header.id == kSyncDone) return true;
    if (header.id != kSyncData) return Refuse("invalid data message");
    if (header.value > kSyncLargestData) return Refuse("oversize data message");
    if (!ReadExactly(client_.get(), block_.data(), header.value)) return false;
    if (!WriteAll(file, block_.data(), header.value)) return RefuseRestOfFile("write failed");
  }
}

bool SyncService::TakeLink(const std::string& path) {
  if (!ReadExactly(client_.get(), block_.data(), kSyncHeaderSize)) return false;
  SyncHeader header = ParseSyncHeader(block_.data());
  if (header.id != kSyncData) return Refuse("invalid data message: expected ID_DATA");
  if (header.value > kSyncLargestData) return Refuse("oversize data message");
  if (!ReadExactly(client_.get(), block_.data(), header.value)) return false;
  // The client sends the terminating NUL too.
  const std::string target(block_.data(), strnlen(block_.data(), header.value));

  unlink(path.c_str());
  if (symlink(target.c_str(), path.c_str()) != 0) {
    const bool made = errno == ENOENT && MakeFoldersFor(path) && symlink(target.c_str(), path.c_str()) == 0;
    if (!made) return RefuseRestOfFile("symlink failed");
  }
  if (!ReadExactly(client_.get(), block_.data(), kSyncHeaderSize)) return false;
  header = ParseSyncHeader(block_.data());
  if (header.id != kSyncDone) return Refuse("invalid data message: expected ID_DONE");
  SetTime(path, header.value);
  return Reply(MakeSyncHeader(kSyncOkay, 0));
}

bool SyncService::Receive(const std::string& path) {
  base::UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.valid()) return RefuseWithErrno("open failed");
  for (bool first = true;; first = false) {
    const ssize_t count = ReadSome(file.get(), block_.data() + kSyncHeaderSize, kSyncLargestData);
    if (count < 0) return RefuseWithErrno("read failed");
    if (count == 0) return Reply(MakeSyncHeader(kSyncDone, 0));
    const std::string header = MakeSyncHeader(kSyncData, static_cast<uint32_t>(count));
    std::memcpy(block_.data(), header.data(), kSyncHeaderSize);
    const std::string_view block(block_.data(), kSyncHeaderSize + static_cast<size_t>(count));
    if (!(first ? ReplyInTwoPieces(block) : Reply(block))) return false;
  }
}

// The flags follow in a message of their own.
bool SyncService::Receive2(const std::string& path) {
  std::array<char, kSyncHeaderSize> bytes;
  if (!ReadExactly(client_.get(), bytes.data(), bytes.size())) return false;
  const SyncHeader setup = ParseSyncHeader(bytes.data());
  if (setup.id != kSyncReceive2) return Refuse("invalid receive setup");
  if (setup.value != 0) return Refuse("unknown flags");
  return Receive(path);
}

bool SyncService::Refuse(const std::string& reason) {
  Reply(MakeSyncHeader(kSyncFail, static_cast<uint32_t>(reason.size())) + reason);
  return false;
}

bool SyncService::RefuseWithErrno(const std::string& reason) {
  return Refuse(reason + ": " + std::strerror(errno));
}

// Some clients read no answer before they have sent the whole file, so the rest is taken and thrown away.
bool SyncService::RefuseRestOfFile(const std::string& reason) {
  RefuseWithErrno(reason);
  while (ReadExactly(client_.get(), block_.data(), kSyncHeaderSize)) {
    const SyncHeader header = ParseSyncHeader(block_.data());
    if (header.id != kSyncData || header.value > kSyncLargestData) break;
    if (!ReadExactly(client_.get(), block_.data(), header.value)) break;
  }
  return false;
}

bool SyncService::Reply(std::string_view message) const {
  return WriteAll(client_.get(), message.data(), message.size());
}

bool SyncService::ReplyInTwoPieces(std::string_view message) const {
  constexpr size_t kWord = 4;
  return WriteAll(client_.get(), message.data(), kWord) &&
         WriteAll(client_.get(), message.data() + kWord, message.size() - kWord);
}

}  // namespace darokleim::phone
