#include "tools/cli/commands/device/device_facts.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace darokleim::cli {
namespace {

DeviceAnswers Read(std::string_view text) {
  DeviceAnswers answers;
  ReadPrograms(text, &answers);
  return answers;
}

FactValue Fact(const std::string& name, const DeviceAnswers& answers) {
  const auto& all = DeviceFacts();
  return std::find_if(all.begin(), all.end(), [&name](const DeviceFact& fact) { return fact.name == name; })
      ->read(answers);
}

constexpr char kAddresses[] =
    "2024-05-01 12:00:00\r\n"
    "-- su --\n"
    "/system/xbin/su\n"
    "-- ip --\n"
    "1: lo: <LOOPBACK,UP> mtu 65536\n"
    "    link/loopback 00:00:00:00:00:00 brd 00:00:00:00:00:00\n"
    "    inet 127.0.0.1/8 scope host lo\n"
    "30: wlan0: <BROADCAST,MULTICAST,UP> mtu 1500\n"
    "    link/ether 02:00:00:44:55:66 brd ff:ff:ff:ff:ff:ff\n"
    "    inet 192.168.1.5/24 brd 192.168.1.255 scope global wlan0\n"
    "    inet6 fe80::1/64 scope link\n"
    "31: rmnet0: <UP> mtu 1500\n"
    "    inet 10.1.2.3/8 scope global rmnet0\n";

TEST(ReadPrograms, FindsEveryFact) {
  const auto answers = Read(kAddresses);
  EXPECT_EQ(answers.time, "2024-05-01 12:00:00");
  EXPECT_TRUE(answers.has_su);
  EXPECT_EQ(answers.address, "192.168.1.5/24");
  EXPECT_EQ(answers.mac_address, "02:00:00:44:55:66");
}

TEST(ReadPrograms, LeavesOutWhatIsNotThere) {
  const auto answers = Read(
      "2024-05-01 12:00:00\n-- su --\n-- ip --\n30: wlan0: <DOWN>\n31: eth0: <UP>\n    inet 10.0.0.1/8\n");
  EXPECT_FALSE(answers.has_su);
  EXPECT_EQ(answers.address, "");
  for (const char* broken : {"", "\n", "-- su --", "x\n-- ip --\n-- su --\n"}) {
    EXPECT_EQ(Read(broken).address, "") << broken;
  }
}

TEST(DeviceFacts, NameTheVersionOfMiui) {
  DeviceAnswers answers;
  EXPECT_EQ(TextOf(Fact("miui_version", answers)), "");
  answers.properties = {{"ro.miui.ui.version.name", "V125"},
                        {"ro.build.version.incremental", "V12.5.3.0.RKHCNXM"}};
  EXPECT_EQ(TextOf(Fact("miui_version", answers)), "12.5.3.0");
  answers.properties["ro.build.version.incremental"] = "8.6.1";
  EXPECT_EQ(TextOf(Fact("miui_version", answers)), "V125");
  answers.properties["ro.build.version.incremental"] = "V...";
  EXPECT_EQ(TextOf(Fact("miui_version", answers)), "V125");
}

TEST(DeviceFacts, AreUnknownWhereTheDeviceDoesNotSayThem) {
  const DeviceAnswers answers;
  for (const char* name :
       {"model", "boot_loader_locked", "encrypted", "encryption_type", "screen", "memory"}) {
    EXPECT_EQ(JsonOf(Fact(name, answers)), "null") << name;
  }
  EXPECT_EQ(JsonOf(Fact("rooted", answers)), "false");
}

TEST(DeviceFacts, HaveTypes) {
  DeviceAnswers answers;
  answers.properties = {
      {"ro.boot.flash.locked", "0"}, {"ro.crypto.state", "encrypted"}, {"ro.crypto.type", "block"}};
  answers.screen = dk_screen{1080, 2400, 420};
  answers.memory = dk_memory{8, 4};
  EXPECT_EQ(JsonOf(Fact("boot_loader_locked", answers)), "false");
  EXPECT_EQ(JsonOf(Fact("encrypted", answers)), "true");
  EXPECT_EQ(JsonOf(Fact("encryption_type", answers)), "\"block\"");
  EXPECT_EQ(JsonOf(Fact("screen", answers)), "\"1080x2400\"");
  EXPECT_EQ(JsonOf(Fact("screen_density", answers)), "420");
  EXPECT_EQ(TextOf(Fact("memory", answers)), "8 B");
  EXPECT_EQ(JsonOf(Fact("memory", answers)), "8");
}

}  // namespace
}  // namespace darokleim::cli
