#include "tests/support/made_up_phone.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

#include "base/little_endian.h"
#include "base/unique_fd.h"

namespace darokleim::test {
namespace {

using base::GetLe32;
using base::PutLe32;
using base::PutLe64;

constexpr std::size_t kBlock = 64 * 1024;
constexpr std::uint32_t kFolderMode = 0040755;
constexpr std::uint32_t kFileMode = 0100644;
constexpr std::uint32_t kMissing = 2;  // ENOENT

std::string_view NameOf(std::string_view path) {
  return path.substr(path.rfind('/') + 1);
}
bool IsFile(std::string_view path) {
  return NameOf(path).substr(0, 4) == "IMG_";
}
bool IsFolder(std::string_view path) {
  const std::string_view name = NameOf(path);
  return path == MadeUpPhone::kFolder || (!name.empty() && name[0] == 'd');
}

// The client has closed the connection.
struct Closed {};

// One client's connection.
class Session {
 public:
  Session(int socket, const MadeUpPhone::Content& content, MadeUpPhone::Counts* counts)
      : socket_(socket), content_(content), counts_(counts) {}

  void Run() {
    ++counts_->connections;
    std::string request = ReadRequest();
    if (request.size() > 9 && request.compare(request.size() - 9, 9, ":features") == 0) {
      Write("OKAY" + WithLength("shell_v2,cmd,stat_v2,ls_v2"));
      return;
    }
    if (request.rfind("host:tport:", 0) != 0) return Write("FAIL" + WithLength("not made up"));
    std::string selected = "OKAY";
    PutLe64(&selected, 1);
    Write(selected);
    request = ReadRequest();
    if (request == "sync:") return Sync();
    ++counts_->commands;
    // The exit packet: its kind, its length, the status.
    Write(std::string("OKAY\x03\x01\0\0\0\0", 10));
  }

 private:
  void Write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = write(socket_, bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) throw Closed();
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
  }

  void Read(char* target, std::size_t size) const {
    while (size > 0) {
      const ssize_t count = read(socket_, target, size);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) throw Closed();
      target += count;
      size -= static_cast<std::size_t>(count);
    }
  }
  std::string Read(std::size_t size) const {
    std::string bytes(size, '\0');
    Read(bytes.data(), size);
    return bytes;
  }

  std::string ReadRequest() const { return Read(std::strtoul(Read(4).c_str(), nullptr, 16)); }
  static std::string WithLength(const std::string& text) {
    constexpr char kDigits[] = "0123456789abcdef";
    return std::string{'0', '0', kDigits[text.size() / 16 % 16], kDigits[text.size() % 16]} + text;
  }

  void Sync() {
    Write("OKAY");
    for (;;) {
      const std::string header = Read(8);
      const std::string id = header.substr(0, 4);
      if (id == "QUIT") return;
      const std::string path = Read(GetLe32(header.data() + 4));
      if (id == "LST2" || id == "STA2") {
        Status(id, path);
      } else if (id == "LIS2") {
        List(path);
      } else if (id == "RECV") {
        Give(path);
      } else if (id == "SEND") {
        Take();
      } else {
        return;
      }
    }
  }

  void AppendStatus(std::string* message, std::string_view id, bool exists, bool is_file) const {
    message->append(id);
    PutLe32(message, exists ? 0 : kMissing);
    PutLe64(message, 1);
    PutLe64(message, 1);
    PutLe32(message, !exists ? 0 : is_file ? kFileMode : kFolderMode);
    for (int i = 0; i < 3; ++i) PutLe32(message, 1);  // links, user, group
    PutLe64(message, is_file ? content_.file_size : 0);
    for (int i = 0; i < 3; ++i) PutLe64(message, static_cast<std::uint64_t>(content_.modified));
  }

  void Status(std::string_view id, const std::string& path) const {
    ++counts_->statuses;
    std::string answer;
    AppendStatus(&answer, id, IsFile(path) || IsFolder(path), IsFile(path));
    Write(answer);
  }

  void List(const std::string& path) {
    ++counts_->lists;
    std::string answer;
    std::uint64_t entries = 0;
    const auto add = [&](const std::string& name, bool is_file) {
      if (entries++ == content_.entries_before_silence) {
        Write(answer);
        for (;;) Read(1);  // until the client closes
      }
      AppendStatus(&answer, "DNT2", true, is_file);
      PutLe32(&answer, static_cast<std::uint32_t>(name.size()));
      answer += name;
      if (answer.size() < kBlock) return;
      Write(answer);
      answer.clear();
    };
    if (IsFolder(path)) {
      const auto level = static_cast<unsigned>(std::count(path.begin(), path.end(), '/')) - 1;
      add(".", false);
      add("..", false);
      for (unsigned i = 0; level < content_.levels && i < content_.folders; ++i)
        add("d" + std::to_string(i), false);
      for (std::uint64_t i = 0; i < content_.files; ++i) add("IMG_" + std::to_string(i) + ".jpg", true);
    }
    answer += "DONE";
    answer.append(72, '\0');
    Write(answer);
  }

  void Give(const std::string& path) {
    ++counts_->fetched;
    if (!IsFile(path)) {
      constexpr std::string_view kWords = "open failed: No such file or directory";
      std::string refusal = "FAIL";
      PutLe32(&refusal, kWords.size());
      Write(refusal.append(kWords));
      throw Closed();
    }
    std::string block;
    for (std::uint64_t left = content_.file_size; left > 0;) {
      const auto size = static_cast<std::uint32_t>(std::min<std::uint64_t>(left, kBlock));
      if (block.size() != size + 8) {
        block = "DATA";
        PutLe32(&block, size);
        block.resize(size + 8, 'x');
      }
      Write(block);
      left -= size;
    }
    Write(std::string("DONE\0\0\0\0", 8));
  }

  void Take() {
    ++counts_->sent;
    std::string block(kBlock, '\0');
    for (;;) {
      const std::string header = Read(8);
      if (header.compare(0, 4, "DATA") != 0) break;
      const std::size_t size = GetLe32(header.data() + 4);
      if (size > block.size()) throw Closed();
      Read(block.data(), size);
      counts_->bytes_sent += size;
    }
    Write(std::string("OKAY\0\0\0\0", 8));
  }

  const int socket_;
  const MadeUpPhone::Content& content_;
  MadeUpPhone::Counts* const counts_;
};

MadeUpPhone::Counts* MapCounts() {
  constexpr int kShared = MAP_SHARED | MAP_ANONYMOUS;
  void* const shared = mmap(nullptr, sizeof(MadeUpPhone::Counts), PROT_READ | PROT_WRITE, kShared, -1, 0);
  if (shared == MAP_FAILED) throw std::bad_alloc();
  return new (shared) MadeUpPhone::Counts{};
}

// Gives the port.
int Listen(int listener) {
  sockaddr_in name = {};
  name.sin_family = AF_INET;
  name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(name);
  if (bind(listener, reinterpret_cast<sockaddr*>(&name), length) != 0 || listen(listener, 64) != 0 ||
      getsockname(listener, reinterpret_cast<sockaddr*>(&name), &length) != 0) {
    throw std::runtime_error("the made-up phone cannot listen");
  }
  return ntohs(name.sin_port);
}

// A thread for each connection, which ends with it.
void Accept(int listener, const MadeUpPhone::Content& content, MadeUpPhone::Counts* counts) {
  for (;;) {
    base::UniqueFd client(accept(listener, nullptr, nullptr));
    if (!client.valid()) continue;
    const int on = 1;
    setsockopt(client.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    std::thread([client = std::move(client), content, counts] {
      try {
        Session(client.get(), content, counts).Run();
      } catch (const Closed&) {
      }
    }).detach();
  }
}

}  // namespace

void MadeUpPhone::Unmap::operator()(Counts* counts) const {
  munmap(counts, sizeof(Counts));
}

MadeUpPhone::MadeUpPhone(const Content& content)
    : counts_(MapCounts()), server_([&](const ForkedServer::Report& report) {
        signal(SIGPIPE, SIG_IGN);
        const base::UniqueFd listener(socket(AF_INET, SOCK_STREAM, 0));
        const int port = Listen(listener.get());
        std::thread(Accept, listener.get(), content, counts_.get()).detach();
        report(port);
      }) {}

std::string MadeUpPhone::PathOfFile(std::uint64_t number) {
  return std::string(kFolder) + "/IMG_" + std::to_string(number) + ".jpg";
}

void MadeUpPhone::ResetCounts() {
  for (auto* count : {&counts_->connections, &counts_->statuses, &counts_->lists, &counts_->fetched,
                      &counts_->sent, &counts_->commands, &counts_->bytes_sent}) {
    *count = 0;
  }
}

}  // namespace darokleim::test
