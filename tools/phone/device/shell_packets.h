#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_PACKETS_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_PACKETS_H

#include <functional>
#include <string>
#include <string_view>

namespace darokleim::phone {

// The second shell protocol: packets of a kind, a length (four bytes, little-endian) and that many bytes.
enum class ShellPacket : unsigned char {
  kInput = 0,
  kOutput = 1,
  kErrors = 2,
  kExit = 3,  // one byte: the exit status
  kCloseInput = 4,
  kWindowSize = 5,  // "ROWSxCOLUMNS,WIDTHxHEIGHT"
};

bool SendShellPacket(int fd, ShellPacket kind, std::string_view data);

// Puts the packets of a byte stream together again.
class ShellPacketReader {
 public:
  using Receive = std::function<void(ShellPacket kind, std::string_view data)>;

  // Calls `receive` for each packet that these bytes complete. Input may come in pieces, since a packet of input
  // may be of any length. False when the stream cannot be the protocol.
  bool Feed(std::string_view bytes, const Receive& receive);

 private:
  std::string header_;
  std::string data_;
  size_t missing_ = 0;  // bytes of the current packet still to come
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_PACKETS_H
