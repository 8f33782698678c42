// Fetching files over one kept connection, many asked for ahead, and the rest over another where one was refused.
#ifndef DAROKLEIM_CLIENT_TRANSFER_RECEIVER_H
#define DAROKLEIM_CLIENT_TRANSFER_RECEIVER_H

#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "client/sync.h"
#include "client/transfer/host_target.h"
#include "client/transfer/tally.h"

namespace darokleim::client {

struct PhoneFile {
  std::string path;
  std::uint64_t size = 0;
  std::int64_t modified = 0;
  std::uint32_t permissions = 0;
};

// What is tried, as errors say it.
std::string Fetching(const std::string& path);

class Receiver {
 public:
  Receiver(Features* features, Tally* tally, const Limits& limits)
      : features_(features), device_(features->device()), tally_(tally), limits_(limits) {}

  // As Sender::UseConnection.
  bool has_connection() const { return sync_.has_value(); }
  void UseConnection(std::optional<Sync> idle) { sync_ = std::move(idle); }

  // Fetches one file as `name` in `folder`. It is there after Finish(), often earlier.
  Status Fetch(PhoneFile file, std::shared_ptr<HostFolder> folder, std::string name);
  Status Finish();

 private:
  struct File {
    PhoneFile phone;
    std::shared_ptr<HostFolder> folder;
    std::string name;
  };

  Status AskAhead();
  Status ReceiveFirst();
  // The content of the oldest file that was asked for; an error of this computer's file is in `host_error`.
  adb::Status ReceiveContent(ReceivedFile* target, std::optional<Error>* host_error);
  Status Refused(const adb::Error& error);
  void Disconnect();

  Features* const features_;
  dk_device* const device_;
  Tally* const tally_;
  const Limits& limits_;
  std::optional<Sync> sync_;
  std::deque<File> files_;
  std::size_t asked_ = 0;       // of them, on this connection
  std::size_t one_by_one_ = 0;  // of them, to be asked for each: a connection broke and did not say by which
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_RECEIVER_H
