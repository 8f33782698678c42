#include "adb/address.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

namespace darokleim::adb_test {
namespace {

using namespace adb;

std::string ShownAddress(const Result<ServerAddress>& address) {
  if (!address.ok()) return "error " + std::to_string(static_cast<int>(address.error().code));
  switch (address->kind) {
    case ServerAddress::Kind::kTcp:
      return "tcp " + address->host + " " + std::to_string(address->port);
    case ServerAddress::Kind::kLocalFile:
      return "file " + address->name;
    case ServerAddress::Kind::kLocalAbstract:
      return "abstract " + address->name;
  }
  return "";
}

std::string ShownAddress(const std::string& text) {
  return ShownAddress(ServerAddress::Parse(text));
}

const std::string kInvalid = "error 0";

TEST(ServerAddressTest, Tcp) {
  EXPECT_EQ(ShownAddress("tcp:5037"), "tcp  5037");
  EXPECT_EQ(ShownAddress("tcp:localhost:1"), "tcp  1");
  EXPECT_EQ(ShownAddress("tcp:127.0.0.1:65535"), "tcp 127.0.0.1 65535");
  EXPECT_EQ(ShownAddress("tcp:[::1]:5038"), "tcp ::1 5038");
  EXPECT_EQ(ShownAddress("tcp:example.org:5038"), "tcp example.org 5038");
}

// adb's default port of a phone, where a host has none; without brackets every colon belongs to the address.
TEST(ServerAddressTest, AHostWithoutAPort) {
  EXPECT_EQ(ShownAddress("tcp:localhost"), "tcp  5555");
  EXPECT_EQ(ShownAddress("tcp:[::1]"), "tcp ::1 5555");
  EXPECT_EQ(ShownAddress("tcp:::1:5037"), "tcp ::1:5037 5555");
}

TEST(ServerAddressTest, PortsAsAdbReadsNumbers) {
  EXPECT_EQ(ShownAddress("tcp:0x1f37"), "tcp  7991");
  EXPECT_EQ(ShownAddress("tcp: 7991"), "tcp  7991");
  EXPECT_EQ(ShownAddress("tcp:+7991"), "tcp  7991");
  EXPECT_EQ(ShownAddress("tcp:127.0.0.1: 7991"), "tcp 127.0.0.1 7991");
  EXPECT_EQ(ShownAddress("tcp:127.0.0.1:0x1f37"), kInvalid);
}

TEST(ServerAddressTest, Local) {
  EXPECT_EQ(ShownAddress("local:/run/adb"), "file /run/adb");
  EXPECT_EQ(ShownAddress("localfilesystem:/run/adb"), "file /run/adb");
#ifdef __linux__
  EXPECT_EQ(ShownAddress("localabstract:adb"), "abstract adb");
#else
  EXPECT_EQ(ShownAddress("localabstract:adb"), kInvalid);
#endif
}

TEST(ServerAddressTest, Invalid) {
  for (const std::string text : {"", "foo", "tcp", "tcp:", "tcp:0", "tcp:65536", "tcp:-1", "tcp::5037",
                                 "tcp:host:", "tcp:host:0", "tcp:host:65536", "tcp:host:5037x", "tcp:[::1",
                                 "tcp:[]:1", "tcp:[::1]5037", "local:", "localreserved:adb", "usb:1"}) {
    EXPECT_EQ(ShownAddress(text), kInvalid) << text;
  }
  EXPECT_EQ(ShownAddress(std::string("tcp:ho\0st:5037", 14)), kInvalid);
  EXPECT_EQ(ShownAddress("local:/" + std::string(106, 'a')), "file /" + std::string(106, 'a'));
  EXPECT_EQ(ShownAddress("local:/" + std::string(107, 'a')), kInvalid);
  EXPECT_EQ(ServerAddress::Parse("foo").error().message.rfind("\"foo\" has no kind of socket", 0), 0u);
}

class ServerAddressEnvironmentTest : public testing::Test {
 protected:
  ServerAddressEnvironmentTest() { Set({}, {}, {}); }

  void Set(std::optional<std::string> socket, std::optional<std::string> host,
           std::optional<std::string> port) {
    Set("ADB_SERVER_SOCKET", socket);
    Set("ANDROID_ADB_SERVER_ADDRESS", host);
    Set("ANDROID_ADB_SERVER_PORT", port);
  }

 private:
  static void Set(const char* name, const std::optional<std::string>& value) {
    if (value) {
      setenv(name, value->c_str(), 1);
    } else {
      unsetenv(name);
    }
  }
};

TEST_F(ServerAddressEnvironmentTest, TheUsualPortOfThisComputer) {
  EXPECT_EQ(ShownAddress(ServerAddress::FromEnvironment()), "tcp  5037");
}

TEST_F(ServerAddressEnvironmentTest, PortAndHost) {
  Set({}, {}, "5038");
  EXPECT_EQ(ShownAddress(ServerAddress::FromEnvironment()), "tcp  5038");
  Set({}, "localhost", "5038");
  EXPECT_EQ(ShownAddress(ServerAddress::FromEnvironment()), "tcp  5038");
  Set({}, "[::1]", {});
  EXPECT_EQ(ShownAddress(ServerAddress::FromEnvironment()), "tcp ::1 5037");
  Set({}, {}, "");
  EXPECT_EQ(ShownAddress(ServerAddress::FromEnvironment()), "tcp  5037");
}

TEST_F(ServerAddressEnvironmentTest, WhatAdbRefuses) {
  for (const std::string port : {"0", "65536", "abc", "7991 ", "-1"}) {
    Set({}, {}, port);
    EXPECT_EQ(ShownAddress(ServerAddress::FromEnvironment()), kInvalid) << port;
  }
  Set({}, "", "5038");
  EXPECT_EQ(ShownAddress(ServerAddress::FromEnvironment()), kInvalid);
  Set("", {}, {});
  EXPECT_EQ(ShownAddress(ServerAddress::FromEnvironment()), kInvalid);
}

TEST_F(ServerAddressEnvironmentTest, ASocketComesBeforeThePort) {
  Set("local:/run/adb", "host", "abc");
  EXPECT_EQ(ShownAddress(ServerAddress::FromEnvironment()), "file /run/adb");
}

}  // namespace
}  // namespace darokleim::adb_test
