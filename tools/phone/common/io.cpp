#include "tools/phone/common/io.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <vector>

namespace darokleim::phone {

namespace {

constexpr size_t kCopyChunk = 64 * 1024;
constexpr int kDrainMilliseconds = 5000;

std::optional<std::string> ReadUntilEnd(int file) {
  std::string content;
  std::vector<char> buffer(kCopyChunk);
  for (;;) {
    const ssize_t count = ReadSome(file, buffer.data(), buffer.size());
    if (count < 0) return std::nullopt;
    if (count == 0) return content;
    content.append(buffer.data(), static_cast<size_t>(count));
  }
}

// One step of a relay; false at the end of the input.
bool PassOn(int from, int to, std::vector<char>* buffer) {
  const ssize_t count = ReadSome(from, buffer->data(), buffer->size());
  return count > 0 && WriteAll(to, buffer->data(), static_cast<size_t>(count));
}

}  // namespace

bool WriteAll(int fd, const void* data, size_t size) {
  const char* next = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t count = write(fd, next, size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    next += count;
    size -= static_cast<size_t>(count);
  }
  return true;
}

bool ReadExactly(int fd, void* data, size_t size) {
  char* next = static_cast<char*>(data);
  while (size > 0) {
    const ssize_t count = ReadSome(fd, next, size);
    if (count <= 0) return false;
    next += count;
    size -= static_cast<size_t>(count);
  }
  return true;
}

bool CopyUntilEnd(int from, int to) {
  std::vector<char> buffer(kCopyChunk);
  for (;;) {
    const ssize_t count = ReadSome(from, buffer.data(), buffer.size());
    if (count <= 0) return count == 0;
    if (!WriteAll(to, buffer.data(), static_cast<size_t>(count))) return false;
  }
}

void Relay(int one, int other) {
  std::vector<char> buffer(kCopyChunk);
  std::array<pollfd, 2> ends = {{{one, POLLIN, 0}, {other, POLLIN, 0}}};
  while (ends[0].events != 0 || ends[1].events != 0) {
    if (poll(ends.data(), ends.size(), -1) < 0) {
      if (errno == EINTR) continue;
      return;
    }
    for (size_t i = 0; i < ends.size(); ++i) {
      const int to = ends[1 - i].fd;
      if ((ends[i].revents & POLLIN) != 0) {
        if (PassOn(ends[i].fd, to, &buffer)) continue;
        ends[i].events = 0;
        shutdown(to, SHUT_WR);
      } else if (ends[i].revents != 0) {
        return;  // closed in both directions
      }
    }
  }
}

void SetCloseOnExec(int fd) {
  fcntl(fd, F_SETFD, FD_CLOEXEC);
}

std::optional<FdPair> MakePipe() {
  int ends[2];
#if defined(__linux__)
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
#else
  if (pipe(ends) != 0) return std::nullopt;
  SetCloseOnExec(ends[0]);
  SetCloseOnExec(ends[1]);
#endif
  return FdPair{base::UniqueFd(ends[0]), base::UniqueFd(ends[1])};
}

std::optional<FdPair> MakeSocketPair(int type) {
  int ends[2];
#if defined(__linux__)
  if (socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends) != 0) return std::nullopt;
#else
  if (socketpair(AF_UNIX, type, 0, ends) != 0) return std::nullopt;
  SetCloseOnExec(ends[0]);
  SetCloseOnExec(ends[1]);
#endif
  return FdPair{base::UniqueFd(ends[0]), base::UniqueFd(ends[1])};
}

void FinishStream(base::UniqueFd stream) {
  shutdown(stream.get(), SHUT_WR);
  std::vector<char> unread(kCopyChunk);
  for (;;) {
    pollfd end = {stream.get(), POLLIN, 0};
    const int ready = poll(&end, 1, kDrainMilliseconds);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0 || ReadSome(stream.get(), unread.data(), unread.size()) <= 0) return;
  }
}

std::optional<std::string> ReadFile(const std::string& path) {
  const base::UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  return ReadUntilEnd(file.get());
}

std::optional<std::string> ReadRegularFile(const std::string& folder, const std::string& name) {
  const base::UniqueFd parent(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  // A FIFO would keep the opening program waiting.
  const base::UniqueFd file(
      openat(parent.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status;
  if (!file.valid() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return ReadUntilEnd(file.get());
}

bool WriteFile(const std::string& path, const std::string& content) {
  const std::string unfinished = path + ".new." + std::to_string(getpid());
  unlink(unfinished.c_str());
  {
    // A file of its own: nothing that somebody put there is written to.
    base::UniqueFd file(open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (!file.valid() || !WriteAll(file.get(), content.data(), content.size())) {
      unlink(unfinished.c_str());
      return false;
    }
  }
  return rename(unfinished.c_str(), path.c_str()) == 0;
}

}  // namespace darokleim::phone
