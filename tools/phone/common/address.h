#ifndef DAROKLEIM_TOOLS_PHONE_COMMON_ADDRESS_H
#define DAROKLEIM_TOOLS_PHONE_COMMON_ADDRESS_H

#include <sys/socket.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/unique_fd.h"

namespace darokleim::phone {

// A place to listen at or connect to, as adb writes it: "tcp:PORT" (of this side's loopback),
// "localfilesystem:PATH" or its short form "local:PATH", and on Linux "localabstract:NAME".
class SocketAddress {
 public:
  // Nothing for a text that is not an address, or a name that no socket can have.
  static std::optional<SocketAddress> Parse(std::string_view text);
  static SocketAddress OfPort(uint16_t port);

  // Both return an invalid descriptor, with errno set, on failure.
  base::UniqueFd Connect() const;
  base::UniqueFd Listen() const;

  bool IsAnyFreePort() const;
  // Removes the file of a listener; nothing to do for other addresses.
  void RemoveFile() const;

 private:
  static std::optional<SocketAddress> OfName(std::string_view name, bool abstract);

  sockaddr_storage bytes_ = {};
  socklen_t length_ = 0;
};

// What a forward or reverse listens at. Its file is removed with it.
class Listener {
 public:
  Listener() = default;
  // Not valid, with errno set, when it cannot listen at the address.
  explicit Listener(const SocketAddress& address);
  ~Listener();
  Listener(Listener&& other) noexcept = default;
  Listener& operator=(Listener&& other) noexcept = default;

  bool valid() const { return fd_.valid(); }
  int get() const { return fd_.get(); }
  // Closes it and leaves its file, which now belongs to another process.
  void Abandon() { fd_.Reset(); }
  // The TCP port; 0 for a listener of another kind.
  uint16_t port() const;

 private:
  SocketAddress address_;
  base::UniqueFd fd_;
};

// Whether a small packet waits until the other side has acknowledged the one before (Nagle's algorithm).
enum class SmallPackets { kWait, kGoAtOnce };

// The next connection; not valid when it was closed again, or after a pause while there is no descriptor for it.
base::UniqueFd AcceptConnection(int listener, SmallPackets small_packets = SmallPackets::kGoAtOnce);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_COMMON_ADDRESS_H
