// The files of this computer that are pushed and pulled, handled as adb handles them.
#ifndef DAROKLEIM_CHANNEL_DIRECT_HOST_FILE_H
#define DAROKLEIM_CHANNEL_DIRECT_HOST_FILE_H

#include <sys/stat.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "base/unique_fd.h"

namespace darokleim::channel::direct {

// As the functions of C: "/a/b/" has the folder "/a" and the name "b".
std::string FolderOf(std::string_view path);
std::string NameOf(std::string_view path);

// 0 or an errno.
int StatOf(const std::string& path, struct stat* status);

// Whether the system sends a signal to a process that makes a file too long: it is better sent to adb.
bool FileSizesAreLimited();

// A file that is being received. It takes the place of an older one at once, as with adb, and is removed again unless
// Keep() is called. Functions return 0 or an errno.
class ReceivedFile {
 public:
  explicit ReceivedFile(std::string path) : path_(std::move(path)) {}
  ~ReceivedFile();
  ReceivedFile(const ReceivedFile&) = delete;
  ReceivedFile& operator=(const ReceivedFile&) = delete;

  int Create();
  int Write(std::string_view bytes);
  void Keep();
  // The mode loses what the process's umask forbids.
  int SetTimeAndMode(int64_t seconds, mode_t mode);

 private:
  const std::string path_;
  base::UniqueFd file_;
  bool created_ = false;
  mode_t mask_ = 0;  // the umask; known if created_
  bool kept_ = false;
};

}  // namespace darokleim::channel::direct

#endif  // DAROKLEIM_CHANNEL_DIRECT_HOST_FILE_H
