#include "tools/phone/device/shell_packets.h"

#include <algorithm>

#include "base/little_endian.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/wire.h"

namespace darokleim::phone {

namespace {

constexpr size_t kHeaderSize = 5;
constexpr size_t kLongestOtherPacket = 1024;

ShellPacket KindOf(const std::string& header) {
  return static_cast<ShellPacket>(header[0]);
}

}  // namespace

bool SendShellPacket(int fd, ShellPacket kind, std::string_view data) {
  std::string packet(1, static_cast<char>(kind));
  base::PutLe32(&packet, static_cast<uint32_t>(data.size()));
  packet.append(data);
  return WriteAll(fd, packet.data(), packet.size());
}

bool ShellPacketReader::Feed(std::string_view bytes, const Receive& receive) {
  while (!bytes.empty()) {
    if (header_.size() < kHeaderSize) {
      const size_t count = std::min(bytes.size(), kHeaderSize - header_.size());
      header_.append(bytes.substr(0, count));
      bytes.remove_prefix(count);
      if (header_.size() < kHeaderSize) return true;
      missing_ = base::GetLe32(header_.data() + 1);
      if (KindOf(header_) != ShellPacket::kInput && missing_ > kLongestOtherPacket) return false;
    }
    const std::string_view piece = bytes.substr(0, missing_);
    bytes.remove_prefix(piece.size());
    missing_ -= piece.size();
    if (KindOf(header_) == ShellPacket::kInput) {
      if (!piece.empty()) receive(ShellPacket::kInput, piece);
    } else {
      data_.append(piece);
      if (missing_ == 0) receive(KindOf(header_), data_);
    }
    if (missing_ == 0) {
      header_.clear();
      data_.clear();
    }
  }
  return true;
}

}  // namespace darokleim::phone
