// Port mappings between the host and a phone, and what flows through them.
#include "tests/phone/host_sockets.h"
#include "tests/phone/sdk_on_phone.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;
using testing::Not;

// What the functions without a look at messages return for any complaint of adb.
constexpr int kAdbFailed = 1001;

class SdkPorts : public SdkOnPhone {
 protected:
  std::string Forwards() const { return Adb({"forward", "--list"}).output; }
  std::string Reverses() const { return Adb({"reverse", "--list"}).output; }

  const int host_port_number_ = FreeHostPort();
  const std::string host_port_text_ = std::to_string(host_port_number_);
  const char* host_port_ = host_port_text_.c_str();
};

TEST_P(SdkPorts, AForwardCarriesBytesBothWays) {
  EXPECT_EQ(AdbFowardBind(phone(), host_port_, "8721"), kOk);
  EXPECT_THAT(Forwards(), HasSubstr(serial() + " tcp:" + host_port_ + " tcp:8721\n"));
  const auto listener = StartAdb({"shell", "nc -l -p 8721 -s 127.0.0.1 sh -c 'read word; echo \"<$word>\"'"});
  std::string answer;
  EXPECT_TRUE(Eventually([&] { return !(answer = Exchange(host_port_number_, "hello\n")).empty(); }));
  EXPECT_EQ(answer, "<hello>\n");
  EXPECT_EQ(AdbFowardRemove(phone(), host_port_), kOk);
  EXPECT_THAT(Forwards(), Not(HasSubstr("tcp:8721")));
  EXPECT_EQ(Exchange(host_port_number_, "hello\n"), "");
}

TEST_P(SdkPorts, AReverseCarriesBytesBothWays) {
  const HostEcho host;
  EXPECT_EQ(AdbReverseBind(phone(), "8722", host.port().c_str()), kOk);
  EXPECT_THAT(Reverses(), HasSubstr("tcp:8722 " + host.address()));
  EXPECT_EQ(Text("echo hi | nc 127.0.0.1 8722"), "[hi\n]");
  EXPECT_EQ(AdbReverseRemove(phone(), "8722"), kOk);
  EXPECT_THAT(Reverses(), Not(HasSubstr("tcp:8722")));
}

TEST_P(SdkPorts, AMappingReplacesTheOneBefore) {
  EXPECT_EQ(AdbFowardBind(phone(), host_port_, "8723"), kOk);
  EXPECT_EQ(AdbFowardBind(phone(), host_port_, "8724"), kOk);
  EXPECT_THAT(Forwards(), Not(HasSubstr("tcp:8723")));
  EXPECT_EQ(AdbFowardRemove(phone(), host_port_), kOk);
  EXPECT_EQ(AdbReverseBind(phone(), "8723", "9"), kOk);
  EXPECT_EQ(AdbReverseBind(phone(), "8723", "10"), kOk);
  EXPECT_THAT(Reverses(), HasSubstr("tcp:8723 tcp:10"));
  EXPECT_THAT(Reverses(), Not(HasSubstr("tcp:9\n")));
  EXPECT_EQ(AdbReverseRemove(phone(), "8723"), kOk);
}

TEST_P(SdkPorts, PortZeroLetsAdbChooseOne) {
  REQUIRE_SIMULATED_PHONE("may have forwards of others");
  EXPECT_EQ(AdbFowardBind(phone(), "0", "8729"), kOk);
  EXPECT_THAT(Forwards(), testing::MatchesRegex(serial() + " tcp:[1-9][0-9]* tcp:8729\n+"));
}

TEST_P(SdkPorts, WhatIsNotThereCannotBeRemoved) {
  EXPECT_EQ(AdbFowardRemove(phone(), host_port_), kAdbFailed);
  EXPECT_EQ(AdbReverseRemove(phone(), "8725"), kAdbFailed);
}

TEST_P(SdkPorts, APortInUseIsRefused) {
  const HostEcho host;
  EXPECT_EQ(AdbFowardBind(phone(), host.port().c_str(), "8726"), kAdbFailed);
}

TEST_P(SdkPorts, WhatIsNoPortIsRefused) {
  for (const char* port : {"", "abc", "-1", "65536", "99999999999999999999", "80 81", "8 0", ";", "$PORT"}) {
    EXPECT_EQ(AdbFowardBind(phone(), port, "8727"), kAdbFailed) << port;
    EXPECT_EQ(AdbFowardRemove(phone(), port), kAdbFailed) << port;
    EXPECT_EQ(AdbReverseBind(phone(), port, "8727"), kAdbFailed) << port;
    EXPECT_EQ(AdbReverseRemove(phone(), port), kAdbFailed) << port;
  }
  EXPECT_THAT(Forwards(), Not(HasSubstr("tcp:8727")));
  EXPECT_THAT(Reverses(), Not(HasSubstr("tcp:8727")));
}

TEST_P(SdkPorts, WithoutThePhoneThereIsNone) {
  EXPECT_EQ(AdbFowardBind("NOBODY", host_port_, "8728"), kAdbFailed);
  EXPECT_EQ(AdbReverseBind("NOBODY", "8728", host_port_), kAdbFailed);
}

INSTANTIATE_FOR_PHONES(SdkPorts);

}  // namespace
}  // namespace darokleim::test
