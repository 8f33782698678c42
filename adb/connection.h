// A connection to the adb server: bytes in both directions, with limits on every wait.
#ifndef DAROKLEIM_ADB_CONNECTION_H
#define DAROKLEIM_ADB_CONNECTION_H

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "adb/address.h"
#include "adb/limits.h"
#include "adb/result.h"
#include "base/unique_fd.h"

namespace darokleim::adb {

// Used by one thread at a time. Input is buffered. Output is queued and written with as few system calls as possible;
// any wait also serves the other direction, so that neither side blocks the other.
//
// After an error a connection is of no further use, except that what was received before can still be read.
class Connection {
 public:
  // The most bytes that Buffer() can wait for, unless GrowBuffer() was called.
  static constexpr size_t kUsualBuffer = 16 * 1024;

  // kCannotConnect when no server listens there. The name of another computer is looked up by the system, which may
  // take longer than the deadline allows; localhost and numeric addresses are not looked up.
  static Result<Connection> Open(const ServerAddress& server, const Limits& limits);

  // Takes a connected stream socket that does not block. `tcp`: whether it is one.
  Connection(base::UniqueFd socket, bool tcp) : socket_(std::move(socket)), tcp_(tcp) {}

  // --- Output

  // Written by the next Flush() or while the next input is awaited.
  void Queue(std::string_view bytes) { queue_.append(bytes); }
  size_t queued() const { return queue_.size() - written_; }

  // As much of the queue as the system takes without waiting.
  void WriteSome();
  // Writes everything queued. Keeps what arrives meanwhile in the buffer, as far as there is room.
  Status Flush(const Limits& limits);
  // The queue and these bytes, which are not copied, in one piece where the system takes them.
  Status Send(std::string_view bytes, const Limits& limits);
  // Returns once everything queued is written, or earlier when something was received into the buffer.
  Status Serve(const Limits& limits);

  // --- Input

  // What has been received and not been consumed. Valid until the next call that receives or consumes.
  std::string_view buffered() const { return {buffer_.get() + begin_, end_ - begin_}; }
  void Consume(size_t count) { begin_ += count; }

  // Waits until `count` bytes are buffered. kConnectionBroken, naming `expected`, when the stream ends before.
  Status Buffer(size_t count, std::string_view expected, const Limits& limits);
  // Receives at least one byte into the buffer, which must have room. False at the end of the stream.
  Result<bool> Fill(const Limits& limits);
  // At least one byte, as read() gives them, straight into `target` where nothing is buffered; 0 at the end of the stream.
  Result<size_t> Read(std::span<char> target, const Limits& limits);
  // Exactly as many bytes as `target` has.
  Status ReadExactly(std::span<char> target, std::string_view expected, const Limits& limits);
  // Takes what has arrived by now into the buffer, as far as there is room, without waiting. False: the stream has ended.
  bool Poll();

  // kConnectionBroken: the stream has ended where `expected` should have come.
  Error Broken(std::string_view expected) const;

  // True when the other side has sent something that was not read yet, or has ended the stream. An idle connection of
  // which this is true is not to be used again.
  bool HasNews();

  void GrowBuffer(size_t capacity);
  int descriptor() const { return socket_.get(); }
  bool is_open() const { return socket_.valid(); }
  void Close() { socket_.Reset(); }

 private:
  enum class Progress { kSome, kNone, kEnd };

  bool HasRoom() const { return !ended_ && end_ - begin_ < capacity_; }
  void MakeRoom();
  Progress ReceiveNow(std::span<char> target, size_t* received);
  Progress WriteNow(std::string_view after_queue, size_t* taken);
  // Waits until there is input, or room for output where some is queued.
  Status AwaitInput(const Limits& limits);
  // Waits until there is room for output, and takes what arrives meanwhile as far as there is room for that.
  Status AwaitOutput(const Limits& limits);
  Status WriteAll(std::string_view after_queue, const Limits& limits);

  base::UniqueFd socket_;
  bool tcp_ = false;

  std::string queue_;
  size_t written_ = 0;         // of the queue
  bool output_ended_ = false;  // the other side takes nothing more; it may have said why

  std::unique_ptr<char[]> buffer_;
  size_t capacity_ = kUsualBuffer;
  size_t begin_ = 0;
  size_t end_ = 0;
  bool ended_ = false;  // the input
  int broken_by_ = 0;   // the errno that ended the input or the output
};

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_CONNECTION_H
