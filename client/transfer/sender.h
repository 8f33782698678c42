// Sending files over one kept connection, many under way at once, and again over another where one was refused.
#ifndef DAROKLEIM_CLIENT_TRANSFER_SENDER_H
#define DAROKLEIM_CLIENT_TRANSFER_SENDER_H

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "client/sync.h"
#include "client/transfer/host_tree.h"
#include "client/transfer/staging.h"
#include "client/transfer/tally.h"

namespace darokleim::client {

class Sender {
 public:
  Sender(Features* features, Tally* tally, const Limits& limits)
      : features_(features),
        device_(features->device()),
        tally_(tally),
        limits_(limits),
        staging_(features) {}

  // Without a connection one is opened for the next file; this one, on which nothing is asked, saves that.
  bool has_connection() const { return sync_.has_value(); }
  void UseConnection(std::optional<Sync> idle) { sync_ = std::move(idle); }

  // Sends one file as `name` in `folder` of the phone. It has its name after Finish(), often earlier.
  Status Send(HostFile file, std::string folder, std::string name);
  // A folder that is there after Finish(), also without files.
  Status MakeFolder(std::string path);
  // Waits for what is under way and gives it its names.
  Status Finish();
  // Files that are known to have their names.
  std::uint64_t named() const { return staging_.named(); }

 private:
  struct File {
    HostFile host;
    std::string folder, name;
    bool counted = false;  // its bytes are progress already
  };

  Status SendUnderWay();
  Status SendNext();
  // The bytes of a file. What goes wrong with this computer's file is in `host_error`; the connection is then of no use.
  adb::Status SendContent(int descriptor, const File& file, std::optional<Error>* host_error);
  // One of those under way fails by itself.
  Status FailAt(std::size_t index, Error error);
  Status Await(std::size_t unanswered);
  // The phone refused the oldest file under way, or is gone.
  Status Refused(const adb::Error& error);
  // Takes those off that are whole.
  void TakeWhole();
  void Disconnect();
  // Whether what is sent so far gets its names before this file is sent, so that they are not all missing when a long transfer
  // breaks.
  bool IsToCommitBefore(const HostFile& file) const;
  Status CommitIfMuch();
  Status Commit();
  Staging::Fail ReportFailure();

  Features* const features_;
  dk_device* const device_;
  Tally* const tally_;
  const Limits& limits_;
  Staging staging_;
  std::optional<Sync> sync_;
  std::deque<File> under_way_;
  std::size_t sent_ = 0;        // of them, on this connection
  std::size_t one_by_one_ = 0;  // of them, to be awaited each: a connection broke and did not say by which
  std::uint64_t bytes_staged_ = 0;
  bool has_committed_ = false;
  std::vector<char> block_;
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_SENDER_H
