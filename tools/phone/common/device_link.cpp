#include "tools/phone/common/device_link.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace darokleim::phone {

namespace {

// The kind, and the longest service text that the adb client can send.
constexpr size_t kLongestPacket = 1 + 0xffff;

}  // namespace

std::optional<FdPair> MakeDeviceLink() {
  return MakeSocketPair(SOCK_SEQPACKET);
}

bool SendPacket(int link, LinkMessage message, const std::string& text, int descriptor) {
  std::string bytes(1, static_cast<char>(message));
  bytes += text;
  iovec piece = {bytes.data(), bytes.size()};
  msghdr header = {};
  header.msg_iov = &piece;
  header.msg_iovlen = 1;
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
  if (descriptor >= 0) {
    header.msg_control = control;
    header.msg_controllen = sizeof(control);
    cmsghdr* rights = CMSG_FIRSTHDR(&header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(rights), &descriptor, sizeof(int));
  }
  ssize_t sent;
  do {
    sent = sendmsg(link, &header, MSG_NOSIGNAL);
  } while (sent < 0 && errno == EINTR);
  return sent == static_cast<ssize_t>(bytes.size());
}

std::optional<LinkPacket> ReceivePacket(int link) {
  std::vector<char> bytes(kLongestPacket);
  iovec piece = {bytes.data(), bytes.size()};
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
  msghdr header = {};
  header.msg_iov = &piece;
  header.msg_iovlen = 1;
  header.msg_control = control;
  header.msg_controllen = sizeof(control);
#if defined(__linux__)
  constexpr int kFlags = MSG_CMSG_CLOEXEC;
#else
  constexpr int kFlags = 0;
#endif
  ssize_t received;
  do {
    received = recvmsg(link, &header, kFlags);
  } while (received < 0 && errno == EINTR);
  if (received <= 0) return std::nullopt;
  LinkPacket packet{static_cast<LinkMessage>(bytes[0]),
                    std::string(bytes.data() + 1, static_cast<size_t>(received) - 1), base::UniqueFd()};
  const cmsghdr* rights = CMSG_FIRSTHDR(&header);
  if (rights != nullptr && rights->cmsg_level == SOL_SOCKET && rights->cmsg_type == SCM_RIGHTS) {
    int descriptor;
    std::memcpy(&descriptor, CMSG_DATA(rights), sizeof(int));
    SetCloseOnExec(descriptor);
    packet.descriptor.Reset(descriptor);
  }
  return packet;
}

}  // namespace darokleim::phone
