// Where the adb server listens.
#ifndef DAROKLEIM_ADB_ADDRESS_H
#define DAROKLEIM_ADB_ADDRESS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "adb/result.h"

namespace darokleim::adb {

inline constexpr std::uint16_t kDefaultServerPort = 5037;

struct ServerAddress {
  enum class Kind {
    kTcp,            // `host` and `port`
    kLocalFile,      // a Unix socket with the path `name`
    kLocalAbstract,  // a Unix socket of Linux's abstract namespace, `name`
  };

  Kind kind = Kind::kTcp;
  // Empty: this computer, over IPv4 or IPv6.
  std::string host;
  std::uint16_t port = kDefaultServerPort;
  std::string name;

  // As adb reads the value of ADB_SERVER_SOCKET: tcp:PORT, tcp:HOST, tcp:HOST:PORT, tcp:[IPV6]:PORT, local:PATH,
  // localfilesystem:PATH, localabstract:NAME.
  static Result<ServerAddress> Parse(std::string_view text);

  // What adb would use: ADB_SERVER_SOCKET, or else ANDROID_ADB_SERVER_ADDRESS and ANDROID_ADB_SERVER_PORT, or else
  // port 5037 of this computer. kInvalidAddress where adb refuses to run.
  static Result<ServerAddress> FromEnvironment();
};

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_ADDRESS_H
