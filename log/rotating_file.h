// A file of limited size that only its owner may read, with its older parts beside it.
#ifndef DAROKLEIM_LOG_ROTATING_FILE_H
#define DAROKLEIM_LOG_ROTATING_FILE_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "base/unique_fd.h"

namespace darokleim::log {

// name.log becomes name.1.log before it would exceed the limit, name.1.log becomes name.2.log, and so on; the oldest
// part is dropped. A single entry that is larger than the limit is written whole.
class RotatingFile {
 public:
  struct Limits {
    std::size_t bytes;      // of each part
    std::size_t old_parts;  // beside the current one
  };

  // Appends to the file or creates it with mode 0600, and missing directories of its path with mode 0700. A regular file
  // of the caller's loses the permissions of others. Null when the file cannot be opened, or when path is a symbolic
  // link, a pipe or a socket: a link is not followed, and nothing waits for a reader.
  static std::unique_ptr<RotatingFile> Open(const std::string& path, const Limits& limits);

  // False when the entry could not be written; discard the object then.
  bool Append(std::string_view entry);

 private:
  RotatingFile(std::string path, const Limits& limits) : path_(std::move(path)), limits_(limits) {}

  bool OpenCurrent();
  bool Rotate();
  std::string NameOfPart(std::size_t number) const;

  const std::string path_;
  const Limits limits_;
  base::UniqueFd file_;
  std::size_t size_ = 0;
};

}  // namespace darokleim::log

#endif  // DAROKLEIM_LOG_ROTATING_FILE_H
