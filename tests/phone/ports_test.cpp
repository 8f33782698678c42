#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

#include "phone_under_test.h"

namespace darokleim::phone_test {
namespace {

using testing::HasSubstr;

class Ports : public PhoneUnderTest {};

sockaddr_in Loopback(int port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// Sends the text to a port of the host and reads everything that comes back; nothing when nobody listens.
std::string Exchange(int port, const std::string& text) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = Loopback(port);
  std::string answer;
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) {
    size_t done = 0;
    while (done < text.size()) {
      const ssize_t count = send(fd, text.data() + done, text.size() - done, MSG_NOSIGNAL);
      if (count <= 0) break;
      done += static_cast<size_t>(count);
    }
    shutdown(fd, SHUT_WR);
    char buffer[65536];
    ssize_t count;
    while ((count = read(fd, buffer, sizeof(buffer))) > 0) answer.append(buffer, static_cast<size_t>(count));
  }
  close(fd);
  return answer;
}

// Answers one connection to a port of the host with what it sent, in brackets.
class HostEcho {
 public:
  HostEcho() : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address = Loopback(0);
    socklen_t length = sizeof(address);
    bind(listener_, reinterpret_cast<sockaddr*>(&address), length);
    listen(listener_, 1);
    getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { AnswerOne(); });
  }
  ~HostEcho() {
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(listener_);
  }
  std::string address() const { return "tcp:" + std::to_string(port_); }

 private:
  void AnswerOne() {
    const int fd = accept(listener_, nullptr, nullptr);
    if (fd < 0) return;
    char buffer[256];
    const ssize_t count = read(fd, buffer, sizeof(buffer));
    const std::string answer = "[" + std::string(buffer, count > 0 ? static_cast<size_t>(count) : 0) + "]";
    [[maybe_unused]] const ssize_t sent = send(fd, answer.data(), answer.size(), MSG_NOSIGNAL);
    close(fd);
  }

  int listener_;
  int port_ = 0;
  std::thread thread_;
};

TEST_P(Ports, ForwardCarriesBytesBothWays) {
  const std::string port = Adb({"forward", "tcp:0", "tcp:8711"}).output;
  ASSERT_NE(std::atoi(port.c_str()), 0) << port;
  const auto listener = StartAdb({"shell", "nc -l -p 8711 -s 127.0.0.1 sh -c 'read word; echo \"<$word>\"'"});
  std::string answer;
  EXPECT_TRUE(Eventually([&] { return !(answer = Exchange(std::atoi(port.c_str()), "hello\n")).empty(); }));
  EXPECT_EQ(answer, "<hello>\n");
  Adb({"forward", "--remove", "tcp:" + std::to_string(std::atoi(port.c_str()))});
}

TEST_P(Ports, ForwardToAPortWhereNobodyListensIsClosed) {
  const std::string port = Adb({"forward", "tcp:0", "tcp:8712"}).output;
  EXPECT_EQ(Exchange(std::atoi(port.c_str()), "hello"), "");
  Adb({"forward", "--remove", "tcp:" + std::to_string(std::atoi(port.c_str()))});
}

TEST_P(Ports, ForwardsAreListedAndRemoved) {
  const int port = std::atoi(Adb({"forward", "tcp:0", "tcp:8713"}).output.c_str());
  const std::string local = "tcp:" + std::to_string(port);
  EXPECT_THAT(Adb({"forward", "--list"}).output, HasSubstr(serial() + " " + local + " tcp:8713\n"));
  EXPECT_EQ(Adb({"forward", "--no-rebind", local, "tcp:9"}).errors,
            "adb: error: cannot rebind existing socket\n");
  EXPECT_EQ(Adb({"forward", local, "tcp:8714"}).status, 0);
  EXPECT_THAT(Adb({"forward", "--list"}).output, HasSubstr(local + " tcp:8714\n"));
  EXPECT_EQ(Adb({"forward", "--remove", local}).status, 0);
  const Outcome again = Adb({"forward", "--remove", local});
  EXPECT_EQ(again.errors, "adb: error: listener '" + local + "' not found\n");
  EXPECT_EQ(Exchange(port, "hello"), "");
}

TEST_P(Ports, ForwardsEndWhenThePhoneGoes) {
  REQUIRE_SIMULATED_PHONE("would have to be unplugged");
  Adb({"forward", "tcp:0", "tcp:8715"});
  Control({"unplug"});
  Control({"plug"});
  EXPECT_EQ(Adb({"forward", "--list"}).output, "\n");
}

TEST_P(Ports, ReverseReachesTheHost) {
  const HostEcho host;
  EXPECT_EQ(Adb({"reverse", "tcp:8716", host.address()}).status, 0);
  EXPECT_THAT(Adb({"reverse", "--list"}).output, HasSubstr("tcp:8716 " + host.address()));
  EXPECT_EQ(Text("echo hi | nc 127.0.0.1 8716"), "[hi\n]");
  EXPECT_EQ(Adb({"reverse", "--remove", "tcp:8716"}).status, 0);
  EXPECT_EQ(Adb({"reverse", "--remove", "tcp:8716"}).errors, "adb: error: listener 'tcp:8716' not found\n");
}

INSTANTIATE_FOR_PHONES(Ports);

}  // namespace
}  // namespace darokleim::phone_test
