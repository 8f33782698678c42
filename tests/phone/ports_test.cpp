#include "host_sockets.h"
#include "phone_under_test.h"

namespace darokleim::phone_test {
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
