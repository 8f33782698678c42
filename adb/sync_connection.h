// Files of a phone: status, lists, contents in both directions, all over one kept connection.
#ifndef DAROKLEIM_ADB_SYNC_CONNECTION_H
#define DAROKLEIM_ADB_SYNC_CONNECTION_H

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "adb/features.h"
#include "adb/sync_messages.h"
#include "adb/transport.h"

namespace darokleim::adb {

struct DirectoryEntry {
  // At most kLongestSyncName bytes, as the phone sent them: look at IsEntryName() before it becomes part of a path. "." and ".."
  // are entries too. Valid during the call.
  std::string_view name;
  FileStatus status;  // of a link itself
};

// Requests are sent ahead of the answers to earlier ones: however many there are, they cost one time of waiting. The
// answers come in the order of the requests and are read with the function for their kind.
//
// After a refusal the daemon ends the connection: requests that are still unanswered have to be repeated on another one.
// What was refused is always the oldest of them. A daemon that refuses a path may break the connection before its
// message is read if requests follow it; then all that is known is that it broke.
class SyncConnection {
 public:
  // `features`: of this phone; they choose the forms of the messages.
  static Result<SyncConnection> Start(Connection connection, const FeatureSet& features,
                                      const Limits& limits);
  static Result<SyncConnection> Start(const ServerAddress& server, const DeviceSelector& device,
                                      const FeatureSet& features, const Limits& limits);

  // --- Requests. They only join the queue, which reading sends as far as the window allows. kTooLong: the path exceeds
  // kLongestSyncPath.

  enum class Links {
    kThemselves,
    kFollowed,  // kUnsupported without stat_v2
  };
  Status RequestStat(std::string_view path, Links links);
  Status RequestList(std::string_view path);
  Status RequestContent(std::string_view path);

  // How many were made, and not answered to the end.
  std::size_t unanswered() const { return requests_.size(); }
  // How many may be sent ahead; at least 1.
  void SetWindow(std::size_t requests) { window_ = requests > 0 ? requests : 1; }

  // --- Answers. kMisuse where the oldest unanswered request is of another kind. After kTimedOut and kCancelled the same
  // function may be called again.

  Result<FileStatus> ReadStat(const Limits& limits);

  // The entries of the folder while they arrive. One that is missing, unreadable or not a folder has none: the protocol
  // has no word for it. `receive` may make further requests; false from it ends everything with kStopped.
  using ReceiveEntry = std::function<bool(const DirectoryEntry& entry)>;
  Status ReadList(const ReceiveEntry& receive, const Limits& limits);
  // One by one instead; nothing at the end. The name is valid until the next call of any kind.
  Result<std::optional<DirectoryEntry>> ReadEntry(const Limits& limits);

  // The content of the file while it arrives.
  using ReceiveData = std::function<bool(std::string_view data)>;
  Status ReadContent(const ReceiveData& receive, const Limits& limits);
  // Straight into `buffer`, which is not empty, as read() does; 0 at the end.
  Result<std::size_t> ReadContent(std::span<char> buffer, const Limits& limits);

  // --- One request and its answer

  Result<FileStatus> Stat(std::string_view path, Links links, const Limits& limits);
  Status List(std::string_view path, const ReceiveEntry& receive, const Limits& limits);
  Status Receive(std::string_view path, const ReceiveData& receive, const Limits& limits);

  // --- Sending files. Each is begun, given its data in pieces of any size, and ended; several may be sent before the
  // outcome of the first is awaited. A file that is not ended is removed by the daemon.

  // `mode`: type and permissions; the data of a link is its target. Replaces what is there; missing folders are made.
  // kMisuse while a request of another kind is unanswered.
  Status BeginSend(std::string_view path, std::uint32_t mode, const Limits& limits);
  // kRefused as soon as the phone has said so, for this file or an earlier one: it is the oldest unanswered request.
  Status SendData(std::string_view data, const Limits& limits);
  Status EndSend(std::uint32_t modified, const Limits& limits);
  // Waits until at most `count` of the files are unanswered; those that are not are whole on the phone. Small files are
  // gathered before they are written: what was sent last may only go with AwaitSends(0).
  Status AwaitSends(std::size_t count, const Limits& limits);

  // Whether another request can be made: nothing is unanswered, nothing has failed, and the phone is still there.
  bool IsIdle();
  // Ends the service, without waiting.
  void Quit();

 private:
  enum class Kind { kStat, kList, kContent, kSend };
  struct Pending {
    Kind kind;
    bool second_form;
    std::string message;  // empty once it is sent
  };

  SyncConnection(Connection connection, const FeatureSet& features);

  Status Request(Kind kind, bool second_form, std::uint32_t id, std::string_view path,
                 std::string_view more = {});
  Status CheckNext(Kind kind) const;
  void SendAhead();
  void Answered();
  // Waits for the header of an answer and takes a refusal off it; gives the four letters.
  Result<std::uint32_t> AwaitHeader(std::string_view expected, const Limits& limits);
  Error TakeRefusal(const Limits& limits);
  // Makes sure that bytes of a content are current; false at its end.
  Result<bool> AwaitContent(const Limits& limits);
  Status TakeAcknowledgements(const Limits& limits);
  Status AfterOutput(Status status, const Limits& limits);
  Error Failed(Error error);

  Connection connection_;
  bool stat_v2_;
  bool list_v2_;
  bool send_receive_v2_;
  std::deque<Pending> requests_;
  std::size_t sent_ = 0;    // of them
  std::size_t queued_ = 0;  // of the sent ones, those that may not be written yet
  std::size_t window_ = 32;
  std::size_t consumed_entry_ = 0;  // bytes of the entry that ReadEntry gave last
  std::size_t content_left_ = 0;    // of the current message of data
  bool in_file_ = false;            // between BeginSend and EndSend
  bool failed_ = false;
};

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_SYNC_CONNECTION_H
