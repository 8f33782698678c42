#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_LISTENER_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_LISTENER_H

#include <cstdint>

#include "common/unique_fd.h"

namespace darokleim::phone {

// A listening TCP socket on the host's loopback address.
class Listener {
 public:
  // Port 0: one that is free. Throws std::runtime_error when the port cannot be had.
  explicit Listener(uint16_t port);

  uint16_t port() const { return port_; }
  int descriptor() const { return socket_.get(); }
  // Not valid when the client has gone again.
  UniqueFd Accept() const;

 private:
  UniqueFd socket_;
  uint16_t port_ = 0;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_LISTENER_H
