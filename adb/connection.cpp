#include "adb/connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <cstring>

#include "adb/system.h"

namespace darokleim::adb {

namespace {

// More is not kept of a queue's memory once it is written.
constexpr size_t kKeptQueue = 64 * 1024;

iovec Piece(char* data, size_t size) {
  iovec piece;
  piece.iov_base = data;
  piece.iov_len = size;
  return piece;
}

iovec Piece(std::string_view bytes) {
  return Piece(const_cast<char*>(bytes.data()), bytes.size());  // sendmsg does not write to it
}

bool WouldBlock(int error) {
  return error == EAGAIN || error == EWOULDBLOCK;
}

}  // namespace

Error Connection::Broken(std::string_view expected) const {
  return {ErrorCode::kConnectionBroken, "expected " + std::string(expected), broken_by_};
}

// --- Output

Connection::Progress Connection::WriteNow(std::string_view after_queue, size_t* taken) {
  std::array<iovec, 2> pieces = {Piece(std::string_view(queue_).substr(written_)), Piece(after_queue)};
  msghdr message = {};
  message.msg_iov = pieces.data();
  message.msg_iovlen = pieces.size();
  ssize_t count;
  do {
    count = sendmsg(socket_.get(), &message, kSendFlags);
  } while (count < 0 && errno == EINTR);
  if (count < 0 && (WouldBlock(errno) || errno == ENOBUFS)) return Progress::kNone;
  if (count < 0) {
    output_ended_ = true;
    broken_by_ = errno;
    queue_.clear();
    written_ = 0;
    return Progress::kEnd;
  }
  const size_t of_queue = std::min(static_cast<size_t>(count), queued());
  written_ += of_queue;
  if (queued() == 0) {
    queue_.clear();
    if (queue_.capacity() > kKeptQueue) queue_.shrink_to_fit();
    written_ = 0;
  }
  *taken = static_cast<size_t>(count) - of_queue;
  return Progress::kSome;
}

Status Connection::WriteAll(std::string_view after_queue, const Limits& limits) {
  while (queued() + after_queue.size() > 0) {
    if (Status status = Check(limits); !status.ok()) return status;
    if (output_ended_) return Broken("the server to take more");
    size_t taken = 0;
    switch (WriteNow(after_queue, &taken)) {
      case Progress::kSome:
        after_queue.remove_prefix(taken);
        break;
      case Progress::kEnd:
        break;
      case Progress::kNone:
        if (Status status = AwaitOutput(limits); !status.ok()) return status;
    }
  }
  return {};
}

void Connection::WriteSome() {
  size_t unused = 0;
  while (queued() > 0 && WriteNow({}, &unused) == Progress::kSome) {
  }
}

Status Connection::Flush(const Limits& limits) {
  return WriteAll({}, limits);
}

Status Connection::Send(std::string_view bytes, const Limits& limits) {
  return WriteAll(bytes, limits);
}

// --- Input

void Connection::GrowBuffer(size_t capacity) {
  if (capacity <= capacity_) return;
  if (buffer_ != nullptr) {
    std::unique_ptr<char[]> larger(new char[capacity]);
    std::memcpy(larger.get(), buffer_.get() + begin_, end_ - begin_);
    buffer_ = std::move(larger);
    end_ -= begin_;
    begin_ = 0;
  }
  capacity_ = capacity;
}

void Connection::MakeRoom() {
  if (buffer_ == nullptr) buffer_.reset(new char[capacity_]);
  if (begin_ == end_) {
    begin_ = end_ = 0;
  } else if (begin_ > 0 && capacity_ - end_ < capacity_ / 4) {
    std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
}

// Into `target`, and what it has no room for into the buffer.
Connection::Progress Connection::ReceiveNow(std::span<char> target, size_t* received) {
  if (ended_) return Progress::kEnd;
  MakeRoom();
  std::array<iovec, 2> pieces = {Piece(target.data(), target.size()),
                                 Piece(buffer_.get() + end_, capacity_ - end_)};
  ssize_t count;
  do {
    count = readv(socket_.get(), pieces.data(), static_cast<int>(pieces.size()));
  } while (count < 0 && errno == EINTR);
  if (count < 0 && WouldBlock(errno)) return Progress::kNone;
  if (count <= 0) {
    ended_ = true;
    if (count < 0) broken_by_ = errno;
    return Progress::kEnd;
  }
  *received = std::min(static_cast<size_t>(count), target.size());
  end_ += static_cast<size_t>(count) - *received;
  return Progress::kSome;
}

Status Connection::AwaitInput(const Limits& limits) {
  if (tcp_) AcknowledgeNow(socket_.get());
  const int events = POLLIN | (queued() > 0 ? POLLOUT : 0);
  Result<short> ready = WaitFor(socket_.get(), static_cast<short>(events), limits);
  return ready.ok() ? Status() : ready.TakeError();
}

Status Connection::AwaitOutput(const Limits& limits) {
  // Who has ended the stream reads nothing more, but may leave the connection open.
  if (ended_) return Broken("the server to take more");
  const int events = POLLOUT | (HasRoom() ? POLLIN : 0);
  Result<short> ready = WaitFor(socket_.get(), static_cast<short>(events), limits);
  if (!ready.ok()) return ready.TakeError();
  if ((*ready & ~POLLOUT) != 0) Poll();
  return {};
}

bool Connection::Poll() {
  size_t received = 0;
  if (HasRoom()) ReceiveNow({}, &received);
  return !ended_;
}

bool Connection::HasNews() {
  if (!socket_.valid() || ended_ || output_ended_ || end_ > begin_) return true;
  size_t received = 0;
  return ReceiveNow({}, &received) != Progress::kNone;
}

Result<size_t> Connection::Read(std::span<char> target, const Limits& limits) {
  assert(!target.empty());
  if (const size_t count = std::min(target.size(), end_ - begin_); count > 0) {
    std::memcpy(target.data(), buffer_.get() + begin_, count);
    begin_ += count;
    return count;
  }
  for (;;) {
    if (Status status = Check(limits); !status.ok()) return status.TakeError();
    WriteSome();
    size_t received = 0;
    switch (ReceiveNow(target, &received)) {
      case Progress::kSome:
        return received;
      case Progress::kEnd:
        return size_t{0};
      case Progress::kNone:
        if (Status status = AwaitInput(limits); !status.ok()) return status.TakeError();
    }
  }
}

Result<bool> Connection::Fill(const Limits& limits) {
  for (;;) {
    if (Status status = Check(limits); !status.ok()) return status.TakeError();
    WriteSome();
    size_t unused = 0;
    switch (ReceiveNow({}, &unused)) {
      case Progress::kSome:
        return true;
      case Progress::kEnd:
        return false;
      case Progress::kNone:
        if (Status status = AwaitInput(limits); !status.ok()) return status.TakeError();
    }
  }
}

Status Connection::Serve(const Limits& limits) {
  while (queued() > 0) {
    if (Status status = Check(limits); !status.ok()) return status;
    size_t unused = 0;
    const Progress written = WriteNow({}, &unused);
    if (HasRoom() && ReceiveNow({}, &unused) == Progress::kSome) return {};
    if (written != Progress::kNone) continue;
    const size_t before = buffered().size();
    if (Status status = AwaitOutput(limits); !status.ok() || buffered().size() > before) return status;
  }
  return {};
}

Status Connection::Buffer(size_t count, std::string_view expected, const Limits& limits) {
  assert(count <= capacity_);
  while (end_ - begin_ < count) {
    Result<bool> filled = Fill(limits);
    if (!filled.ok()) return filled.TakeError();
    if (!*filled) return Broken(expected);
  }
  return {};
}

Status Connection::ReadExactly(std::span<char> target, std::string_view expected, const Limits& limits) {
  while (!target.empty()) {
    Result<size_t> count = Read(target, limits);
    if (!count.ok()) return count.TakeError();
    if (*count == 0) return Broken(expected);
    target = target.subspan(*count);
  }
  return {};
}

}  // namespace darokleim::adb
