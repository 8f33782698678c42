// What cannot be done in less: requests for lists, and as many bytes as come for them, which are not looked at.
#ifndef DAROKLEIM_BENCH_BARE_SYNC_H
#define DAROKLEIM_BENCH_BARE_SYNC_H

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "adb/sync_messages.h"
#include "adb/transport.h"

namespace darokleim::bench {

template <typename Value>
Value Require(adb::Result<Value> result) {
  if (!result.ok()) throw std::runtime_error(result.error().message);
  return *std::move(result);
}
inline void Require(adb::Status status) {
  if (!status.ok()) throw std::runtime_error(status.error().message);
}

class BareSync {
 public:
  BareSync(const adb::ServerAddress& server, const adb::DeviceSelector& phone)
      : connection_(Require(adb::OpenService(server, phone, "sync:", {}))),
        socket_(connection_.descriptor()) {
    fcntl(socket_, F_SETFL, 0);
  }

  // The lists of all these folders have `bytes` in all, each one about as many as another. 32 are asked for ahead.
  void List(const std::vector<std::string>& folders, std::size_t bytes) {
    constexpr std::size_t kBatch = 32;
    std::size_t received = 0;
    for (std::size_t at = 0; at < folders.size(); at += kBatch) {
      std::string requests;
      for (std::size_t i = at; i < std::min(at + kBatch, folders.size()); ++i) {
        requests += adb::SyncRequest(adb::sync_id::kList2, folders[i]);
      }
      if (send(socket_, requests.data(), requests.size(), 0) < 0) throw std::runtime_error("send fails");
      const std::size_t due = bytes * std::min(at + kBatch, folders.size()) / folders.size();
      while (received + kSlack < due) received += Receive();
    }
    while (received < bytes) received += Receive();
  }

 private:
  // Folders' lists differ by a few bytes.
  static constexpr std::size_t kSlack = 2048;

  std::size_t Receive() {
    const ssize_t count = recv(socket_, buffer_.data(), buffer_.size(), 0);
    if (count <= 0) throw std::runtime_error("the phone ends");
    return static_cast<std::size_t>(count);
  }

  adb::Connection connection_;
  int socket_;
  std::vector<char> buffer_ = std::vector<char>(128 * 1024);
};

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_BARE_SYNC_H
