#include "log/rotating_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace darokleim::log {
namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kDirectoryOfOwnerOnly = 0700;
constexpr mode_t kOfOthers = 0077;

// What cannot be created is noticed when the file is opened.
void CreateDirectoriesOf(const std::string& path) {
  for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
    mkdir(path.substr(0, slash).c_str(), kDirectoryOfOwnerOnly);
  }
}

// An older version of this library, or another program, may have created the file.
void WithdrawFromOthers(int file, const struct stat& status) {
  if (S_ISREG(status.st_mode) && (status.st_mode & kOfOthers) != 0 && status.st_uid == geteuid()) {
    fchmod(file, kOwnerOnly);
  }
}

bool WriteWhole(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(file, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

std::unique_ptr<RotatingFile> RotatingFile::Open(const std::string& path, const Limits& limits) {
  std::unique_ptr<RotatingFile> file(new RotatingFile(path, limits));
  if (!file->OpenCurrent()) return nullptr;
  return file;
}

bool RotatingFile::OpenCurrent() {
  // Without O_NONBLOCK, opening a pipe would wait for its reader.
  constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  CreateDirectoriesOf(path_);
  file_.Reset(open(path_.c_str(), kFlags, kOwnerOnly));
  struct stat status;
  if (!file_.valid() || fstat(file_.get(), &status) != 0) return false;
  if (!S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode)) return false;
  if (fcntl(file_.get(), F_SETFL, O_APPEND) != 0) return false;
  WithdrawFromOthers(file_.get(), status);
  size_ = static_cast<std::size_t>(status.st_size);
  return true;
}

bool RotatingFile::Append(std::string_view entry) {
  if (size_ > 0 && size_ + entry.size() > limits_.bytes && !Rotate()) return false;
  size_ += entry.size();
  return WriteWhole(file_.get(), entry);
}

bool RotatingFile::Rotate() {
  for (std::size_t part = limits_.old_parts; part > 0; --part) {
    if (rename(NameOfPart(part - 1).c_str(), NameOfPart(part).c_str()) != 0 && errno != ENOENT) return false;
  }
  return OpenCurrent();
}

// The number is put before the extension, if there is one.
std::string RotatingFile::NameOfPart(std::size_t number) const {
  if (number == 0) return path_;
  const std::size_t name = path_.rfind('/') + 1;  // 0 without a slash
  std::size_t dot = path_.rfind('.');
  if (dot == std::string::npos || dot <= name || dot + 1 == path_.size()) dot = path_.size();
  return path_.substr(0, dot) + '.' + std::to_string(number) + path_.substr(dot);
}

}  // namespace darokleim::log
