#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_SERVER_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_SERVER_H

#include <cstdint>
#include <vector>

#include "tools/phone/common/address.h"
#include "tools/phone/server/features.h"
#include "tools/phone/server/phone_options.h"

namespace darokleim::phone {

struct ServerOptions {
  uint16_t port = 5037;  // 0: one that is free
  std::vector<PhoneOptions> phones;
  ServerRelease release = ServerRelease::kAdb29;
  // How replies go out: kWait is what a real server does.
  SmallPackets small_packets = SmallPackets::kWait;
  // To a client it looks like a new server: every connection ends, the phones stay.
  bool restart_on_kill = false;
};

// Serves until a client asks for the end or the process gets SIGINT or SIGTERM, and removes everything it made. The
// result is the process's exit status. Call it before any other thread is started: it blocks those signals.
int RunServer(const ServerOptions& options);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_SERVER_H
