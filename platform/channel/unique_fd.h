// A descriptor that is closed when its owner goes out of scope.
#ifndef DAROKLEIM_PLATFORM_CHANNEL_UNIQUE_FD_H
#define DAROKLEIM_PLATFORM_CHANNEL_UNIQUE_FD_H

#include <unistd.h>

#include <utility>

namespace darokleim::channel {

class UniqueFd {
 public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    Reset(std::exchange(other.fd_, -1));
    return *this;
  }
  ~UniqueFd() { Reset(); }

  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }

  // An interrupted close has closed all the same: it must not be repeated.
  void Reset(int fd = -1) {
    if (fd_ >= 0) close(fd_);
    fd_ = fd;
  }

 private:
  int fd_ = -1;
};

}  // namespace darokleim::channel

#endif  // DAROKLEIM_PLATFORM_CHANNEL_UNIQUE_FD_H
