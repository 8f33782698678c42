#include <unistd.h>

#include <filesystem>

#include "tests/phone/host_sockets.h"
#include "tests/phone/phone_under_test.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;

class Ports : public PhoneUnderTest {};

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
  const Outcome rebound = Adb({"forward", local, "tcp:8714"});
  EXPECT_EQ(rebound.errors + rebound.output, "");
  EXPECT_THAT(Adb({"forward", "--list"}).output, HasSubstr(local + " tcp:8714\n"));
  EXPECT_EQ(Adb({"forward", "--remove", local}).status, 0);
  const Outcome again = Adb({"forward", "--remove", local});
  EXPECT_EQ(again.errors, "adb: error: listener '" + local + "' not found\n");
  EXPECT_EQ(Exchange(port, "hello"), "");
}

TEST_P(Ports, ForwardPrintsThePortAlsoWhenItWasNamed) {
  const std::string port = std::to_string(FreeHostPort());
  EXPECT_EQ(Adb({"forward", "tcp:" + port, "tcp:8718"}).output, port + "\n");
  EXPECT_EQ(Adb({"forward", "--remove", "tcp:" + port}).errors, "");
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

// A reverse listens for the program on the phone that a forward would reach, so both ends are the host's.
TEST_P(Ports, LeadToSocketsWithoutAPort) {
  const std::string name = "darokleim-test-" + std::to_string(getpid());
  for (const std::string& socket :
       {"localabstract:" + name, "localfilesystem:" + phone_folder() + "/socket"}) {
    if (!is_simulated() && socket.find("localfilesystem") == 0) continue;  // SELinux keeps the daemon from it
    const HostEcho host;
    EXPECT_EQ(Adb({"reverse", socket, host.address()}).errors, "");
    const int port = std::atoi(Adb({"forward", "tcp:0", socket}).output.c_str());
    EXPECT_EQ(Exchange(port, "hello"), "[hello]") << socket;
    EXPECT_EQ(Adb({"forward", "--remove", "tcp:" + std::to_string(port)}).errors, "");
    EXPECT_EQ(Adb({"reverse", "--remove", socket}).errors, "");
  }
}

TEST_P(Ports, AFileThatIsASocketGoesWithItsReverse) {
  REQUIRE_SIMULATED_PHONE("does not let the daemon make sockets where the shell may look");
  const HostEcho host;
  const std::string path = phone_folder() + "/socket";
  Adb({"reverse", "localfilesystem:" + path, host.address()});
  EXPECT_EQ(Text("echo hi | nc -U " + path), "[hi\n]");
  EXPECT_EQ(Text("ls " + path), path + "\n");
  Adb({"reverse", "--remove-all"});
  EXPECT_EQ(Text("ls " + phone_folder()), "");
}

TEST_P(Ports, ForwardListensAtAFileOfTheHost) {
  REQUIRE_SIMULATED_PHONE("needs a program on it that listens");
  const std::string socket = "localfilesystem:" + host_folder() + "/socket";
  EXPECT_EQ(Adb({"forward", socket, "tcp:8717"}).errors, "");
  EXPECT_TRUE(std::filesystem::is_socket(host_folder() + "/socket"));
  EXPECT_THAT(Adb({"forward", "--list"}).output, HasSubstr(serial() + " " + socket + " tcp:8717\n"));
  EXPECT_EQ(Adb({"forward", "--remove", socket}).errors, "");
  EXPECT_FALSE(std::filesystem::exists(host_folder() + "/socket"));
}

TEST_P(Ports, RefuseWhatIsNotAnAddress) {
  REQUIRE_SIMULATED_PHONE("has the words of its own server");
  for (const std::string& address :
       {std::string("tcp:70000"), std::string("pigeon:1"), std::string("localabstract:"),
        "localfilesystem:/" + std::string(200, 'x')}) {
    const std::string refusal = "adb: error: cannot bind listener: no address of a socket: " + address + "\n";
    EXPECT_EQ(Adb({"forward", address, "tcp:1"}).errors, refusal);
    EXPECT_EQ(Adb({"reverse", address, "tcp:1"}).errors, refusal);
  }
}

INSTANTIATE_FOR_PHONES(Ports);

}  // namespace
}  // namespace darokleim::test
