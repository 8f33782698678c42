// A client of the server that need not keep to the protocol.
#ifndef DAROKLEIM_TESTS_PHONE_RAW_CLIENT_H
#define DAROKLEIM_TESTS_PHONE_RAW_CLIENT_H

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

#include "tools/phone/common/address.h"
#include "tools/phone/common/wire.h"

namespace darokleim::test {

class RawClient {
 public:
  explicit RawClient(const std::string& port)
      : fd_(phone::SocketAddress::OfPort(static_cast<uint16_t>(std::stoi(port))).Connect()) {}
  // With the phone of this serial selected: what is sent next is a service.
  RawClient(const std::string& port, const std::string& serial) : RawClient(port) {
    Send(phone::WithLength("host:transport:" + serial));
    Read(4);
  }

  bool connected() const { return fd_.valid(); }
  void Send(const std::string& bytes) const {
    size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t count = send(fd_.get(), bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
      if (count <= 0) return;  // the other side has had enough
      done += static_cast<size_t>(count);
    }
  }
  void EndInput() const { shutdown(fd_.get(), SHUT_WR); }
  // So many bytes, or fewer when the other side closes or keeps silent.
  std::string Read(size_t size) const {
    std::string bytes;
    while (bytes.size() < size) {
      const std::string more = ReadSome(size - bytes.size(), kPatienceMilliseconds);
      if (more.empty()) break;
      bytes += more;
    }
    return bytes;
  }
  // Everything until the other side closes; a mark at the end when it keeps silent instead.
  std::string ReadAll(int patience_milliseconds = kPatienceMilliseconds) const {
    std::string all;
    bool silent = false;
    for (std::string more; !(more = ReadSome(65536, patience_milliseconds, &silent)).empty();) all += more;
    return silent ? all + "(silence)" : all;
  }

 private:
  static constexpr int kPatienceMilliseconds = 20000;

  std::string ReadSome(size_t most, int patience_milliseconds, bool* silent = nullptr) const {
    pollfd end = {fd_.get(), POLLIN, 0};
    if (poll(&end, 1, patience_milliseconds) <= 0) {
      if (silent != nullptr) *silent = true;
      return "";
    }
    std::string bytes(most, '\0');
    const ssize_t count = read(fd_.get(), bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return bytes;
  }

  base::UniqueFd fd_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_RAW_CLIENT_H
