#include "adb/address.h"

#include <sys/un.h>

#include <cerrno>
#include <cstdlib>
#include <optional>

#include "adb/system.h"

namespace darokleim::adb {

namespace {

// The port of an Android phone's own daemon: what adb takes where a host is given without a port.
constexpr std::uint16_t kPortWithoutOne = 5555;

Error Invalid(std::string_view text, std::string_view expected) {
  return {ErrorCode::kInvalidAddress, "\"" + std::string(text) + "\" has no " + std::string(expected)};
}

// As adb reads a number: white space before it, a sign and, with `any_base`, 0x are allowed.
std::optional<long> ParseInteger(const std::string& text, bool any_base) {
  const bool hexadecimal = any_base && (text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0);
  char* end = nullptr;
  errno = 0;
  const long value = std::strtol(text.c_str(), &end, hexadecimal ? 16 : 10);
  if (errno != 0 || end == text.c_str() || end != text.c_str() + text.size()) return std::nullopt;
  return value;
}

bool IsPort(long value) {
  return value >= 1 && value <= 65535;
}

// [IPV6], [IPV6]:PORT, HOST, HOST:PORT, or an IPv6 address alone.
Result<ServerAddress> ParseHostAndPort(const std::string& text) {
  ServerAddress address;
  std::string rest;
  const size_t colon = text.find(':');
  if (!text.empty() && text[0] == '[') {
    const size_t bracket = text.find(']');
    if (bracket == std::string::npos) return Invalid(text, "']' after its '['");
    address.host = text.substr(1, bracket - 1);
    rest = text.substr(bracket + 1);
    if (!rest.empty() && rest[0] != ':') return Invalid(text, "':' after its ']'");
  } else if (colon != std::string::npos && colon == text.rfind(':')) {
    address.host = text.substr(0, colon);
    rest = text.substr(colon);
  } else {
    address.host = text;
  }
  if (address.host.empty() || address.host.find('\0') != std::string::npos) return Invalid(text, "host name");
  if (address.host == "localhost") address.host.clear();
  address.port = kPortWithoutOne;
  if (!rest.empty()) {
    const std::optional<long> port = ParseInteger(rest.substr(1), /*any_base=*/false);
    if (!port || !IsPort(*port)) return Invalid(text, "port from 1 to 65535");
    address.port = static_cast<std::uint16_t>(*port);
  }
  return address;
}

Result<ServerAddress> ParseTcp(const std::string& text) {
  const std::optional<long> port = ParseInteger(text, /*any_base=*/true);
  if (!port) return ParseHostAndPort(text);
  if (!IsPort(*port)) return Invalid(text, "port from 1 to 65535");
  ServerAddress address;
  address.port = static_cast<std::uint16_t>(*port);
  return address;
}

bool TakePrefix(std::string_view* text, std::string_view prefix) {
  if (text->substr(0, prefix.size()) != prefix) return false;
  text->remove_prefix(prefix.size());
  return true;
}

Result<ServerAddress> Local(ServerAddress::Kind kind, std::string_view name) {
  // A path is followed by a zero byte in the system's address, an abstract name is preceded by one.
  if (name.empty() || name.size() >= sizeof(sockaddr_un::sun_path)) {
    return Invalid(name, "length that a socket's name may have");
  }
  if (name.find('\0') != std::string_view::npos) return Invalid(name, "socket's name: it has a zero byte");
  ServerAddress address;
  address.kind = kind;
  address.name = name;
  return address;
}

}  // namespace

Result<ServerAddress> ServerAddress::Parse(std::string_view text) {
  std::string_view rest = text;
  if (TakePrefix(&rest, "tcp:")) return ParseTcp(std::string(rest));
  if (TakePrefix(&rest, "localfilesystem:") || TakePrefix(&rest, "local:"))
    return Local(Kind::kLocalFile, rest);
  if (kHasAbstractSockets && TakePrefix(&rest, "localabstract:")) return Local(Kind::kLocalAbstract, rest);
  return Invalid(text, "kind of socket that adb knows here, such as tcp:PORT or localfilesystem:PATH");
}

Result<ServerAddress> ServerAddress::FromEnvironment() {
  if (const char* text = std::getenv("ADB_SERVER_SOCKET")) return Parse(text);
  ServerAddress address;
  const char* port = std::getenv("ANDROID_ADB_SERVER_PORT");
  if (port != nullptr && *port != '\0') {
    const std::optional<long> number = ParseInteger(port, /*any_base=*/true);
    if (!number || !IsPort(*number)) return Invalid(port, "port from 1 to 65535");
    address.port = static_cast<std::uint16_t>(*number);
  }
  const char* host = std::getenv("ANDROID_ADB_SERVER_ADDRESS");
  if (host == nullptr) return address;
  return ParseTcp(std::string(host) + ":" + std::to_string(address.port));
}

}  // namespace darokleim::adb
