// A descriptor that is closed when its owner goes out of scope.
#ifndef DAROKLEIM_BASE_UNIQUE_FD_H
#define DAROKLEIM_BASE_UNIQUE_FD_H

#include <unistd.h>

#include <utility>

namespace darokleim::base {

class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(other.Release()) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  ~UniqueFd() { Reset(); }

  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }
  int Release() { return std::exchange(fd_, -1); }
  // An interrupted close has closed all the same: it must not be repeated.
  void Reset(int fd = -1) {
    if (fd_ >= 0) close(fd_);
    fd_ = fd;
  }

 private:
  int fd_ = -1;
};

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_UNIQUE_FD_H
