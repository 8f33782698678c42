#include "tools/phone/device/backup.h"

#include <poll.h>
#include <unistd.h>
#include <zlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tools/phone/common/faults.h"
#include "tools/phone/common/io.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/records.h"

namespace darokleim::phone {

namespace {

constexpr char kMagic[] = "ANDROID BACKUP";
constexpr char kNotEncrypted[] = "none";
constexpr size_t kChunk = 64 * 1024;
constexpr size_t kLongestLine = 64;

// One line of the head, read byte by byte so that nothing of the archive is taken.
std::string ReadLine(int fd) {
  std::string line;
  char byte;
  while (line.size() < kLongestLine && ReadExactly(fd, &byte, 1) && byte != '\n') line += byte;
  return line;
}

// Everything that the stream gives for the input it has.
int PassThrough(int (*step)(z_stream*, int), z_stream* stream, int flush, std::vector<char>* out, int to) {
  int result;
  do {
    stream->next_out = reinterpret_cast<Bytef*>(out->data());
    stream->avail_out = static_cast<uInt>(out->size());
    result = step(stream, flush);
    if (result < 0 && result != Z_BUF_ERROR) return result;
    if (!WriteAll(to, out->data(), out->size() - stream->avail_out)) return Z_ERRNO;
  } while (stream->avail_out == 0);
  return result == Z_BUF_ERROR ? Z_OK : result;
}

// The client ends every file with this many zero bytes and then waits for the phone. Inside a file they may
// occur too, but more follows them at once.
class EndMark {
 public:
  void Count(const char* bytes, size_t count) {
    size_t zeros = 0;
    while (zeros < count && bytes[count - 1 - zeros] == '\0') ++zeros;
    zeros_ = zeros == count ? zeros_ + zeros : zeros;
  }
  bool WasTheLast(int input) const {
    pollfd end = {input, POLLIN, 0};
    return zeros_ >= kMarkSize && poll(&end, 1, kPatienceMilliseconds) == 0;
  }

 private:
  static constexpr size_t kMarkSize = 1024;
  static constexpr int kPatienceMilliseconds = 500;

  size_t zeros_ = 0;
};

// Until the stream ends, or the input does.
int PassAll(int (*step)(z_stream*, int), z_stream* stream, int from, int to, int flush_at_end) {
  std::vector<char> in(kChunk);
  std::vector<char> out(kChunk);
  EndMark mark;
  for (;;) {
    if (mark.WasTheLast(from)) return Z_DATA_ERROR;
    const ssize_t count = ReadSome(from, in.data(), in.size());
    if (count < 0) return Z_ERRNO;
    mark.Count(in.data(), static_cast<size_t>(count));
    stream->next_in = reinterpret_cast<Bytef*>(in.data());
    stream->avail_in = static_cast<uInt>(count);
    const int result = PassThrough(step, stream, count == 0 ? flush_at_end : Z_NO_FLUSH, &out, to);
    if (result != Z_OK || count == 0) return result;
  }
}

namespace fs = std::filesystem;

constexpr useconds_t kAskAgainMicroseconds = 20 * 1000;

// One file for each question on the screen.
std::string Questions() {
  return std::string(kStateFolder) + "/backup-questions";
}

}  // namespace

bool WriteBackupFile(int archive, int backup) {
  const std::string head = std::string(kMagic) + "\n5\n1\n" + kNotEncrypted + "\n";
  if (!WriteAll(backup, head.data(), head.size())) return false;
  z_stream stream = {};
  if (deflateInit(&stream, Z_BEST_SPEED) != Z_OK) return false;
  const int result = PassAll(deflate, &stream, archive, backup, Z_FINISH);
  deflateEnd(&stream);
  return result == Z_STREAM_END;
}

bool ReadBackupFile(int backup, int archive) {
  if (ReadLine(backup) != kMagic) return false;
  ReadLine(backup);  // the version: the archive is the same in all
  const bool compressed = ReadLine(backup) == "1";
  if (ReadLine(backup) != kNotEncrypted) return false;
  if (!compressed) return CopyUntilEnd(backup, archive);
  z_stream stream = {};
  if (inflateInit(&stream) != Z_OK) return false;
  const int result = PassAll(inflate, &stream, backup, archive, Z_NO_FLUSH);
  inflateEnd(&stream);
  return result == Z_STREAM_END;
}

bool WaitForConfirmation() {
  const Faults faults(kSetupFolder);
  std::error_code error;
  fs::create_directories(Questions(), error);
  const std::string question = Questions() + "/" + std::to_string(getpid());
  WriteFile(question, "");
  bool asking = true;
  if (faults.Has(fault::kUnconfirmedBackup)) {
    AppendRecord(kActivityRecord, std::string("start ") + kBackupConfirmation + "/" + kBackupConfirmation +
                                      ".BackupRestoreConfirmation");
  }
  while (faults.Has(fault::kUnconfirmedBackup) && (asking = fs::exists(question, error))) {
    usleep(kAskAgainMicroseconds);
  }
  fs::remove(question, error);
  return asking;
}

void CancelConfirmations() {
  std::error_code error;
  fs::remove_all(Questions(), error);
}

}  // namespace darokleim::phone
