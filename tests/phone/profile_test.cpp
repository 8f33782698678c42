#include "tests/phone/phone_under_test.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string Property(const std::string& settings, const std::string& name) {
  const SimulatedPhones phones({"ALFA1" + settings});
  const std::string value = phones.Adb({"shell", "getprop " + name}).output;
  return value.substr(0, value.find_first_of("\r\n"));
}

TEST(Profile, NamesTheMaker) {
  EXPECT_EQ(Property("", "ro.product.manufacturer"), "Google");
  EXPECT_EQ(Property(",profile=samsung", "ro.product.manufacturer"), "samsung");
  EXPECT_EQ(Property(",profile=miui12", "ro.miui.ui.version.name"), "V12");
  EXPECT_EQ(Property(",profile=miui12", "ro.miui.version.code_time"), "1592409600");
  EXPECT_EQ(Property(",profile=miui13", "ro.build.version.incremental"), "V13.0.4.0.SKHMIXM");
  EXPECT_THAT(Property(",profile=harmony", "ro.config.ringtone"), HasSubstr("Harmony"));
}

TEST(Profile, KnowsItsEncryption) {
  EXPECT_EQ(Property("", "ro.crypto.type"), "file");
  EXPECT_EQ(Property(",encryption=block", "ro.crypto.type"), "block");
  EXPECT_EQ(Property(",encryption=none", "ro.crypto.state"), "unencrypted");
}

TEST(Profile, TakesPropertiesOfItsOwn) {
  EXPECT_EQ(Property(",prop.ro.product.model=My Phone,prop.a.b=c=d", "ro.product.model"), "My Phone");
  EXPECT_EQ(Property(",prop.a.b=c=d", "a.b"), "c=d");
}

TEST(Profile, IsRootedWhereAsked) {
  for (const std::string place : {"bin", "xbin"}) {
    const SimulatedPhones phones({"ALFA1,su=" + place});
    EXPECT_EQ(phones.Adb({"shell", "ls /system/*bin/su"}).output, "/system/" + place + "/su\n");
    const std::string secret = "/data/local/tmp/secret";
    phones.Adb({"shell", "echo hidden > " + secret + " && chmod 0 " + secret});
    EXPECT_THAT(phones.Adb({"shell", "cat " + secret}).errors, HasSubstr("Permission denied"));
    EXPECT_EQ(phones.Adb({"shell", "/system/" + place + "/su 0 cat " + secret}).output, "hidden\n");
    EXPECT_THAT(phones.Adb({"shell", "/system/" + place + "/su -c id"}).output, HasSubstr("uid=0(root)"));
  }
  const SimulatedPhones plain({"ALFA1"});
  EXPECT_THAT(plain.Adb({"shell", "ls /system/bin/su"}).errors, HasSubstr("No such file or directory"));
}

TEST(Profile, LaysItsStorageOut) {
  const SimulatedPhones phones(
      {"ZERO1,storage=sdcard0", "ONE1,storage=sdcard1", "MEDIA1,group=media_rw,card=AAAA-BBBB"});
  EXPECT_THAT(phones.Adb({"-s", "ZERO1", "shell", "ls -l /storage"}).output,
              testing::ContainsRegex("root sdcard_r [^\n]* sdcard0\n"));
  EXPECT_EQ(phones.Adb({"-s", "ZERO1", "shell", "ls -d /sdcard/DCIM"}).output, "/sdcard/DCIM\n");
  EXPECT_THAT(phones.Adb({"-s", "ONE1", "shell", "stat /sdcard"}).errors,
              HasSubstr("No such file or directory"));
  EXPECT_EQ(phones.Adb({"-s", "ONE1", "shell", "ls -d /sdcard1/DCIM"}).output, "/sdcard1/DCIM\n");
  EXPECT_THAT(phones.Adb({"-s", "MEDIA1", "shell", "ls -l /storage"}).output,
              testing::ContainsRegex("root media_rw [^\n]* AAAA-BBBB\n"));
}

TEST(Profile, KeepsItsFilesWhereAsked) {
  std::string folder = "/tmp/darokleim-phone-test-XXXXXX";
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  for (const std::string expected : {"", "kept\n"}) {
    const SimulatedPhones phones({"ALFA1,root=" + folder});
    EXPECT_EQ(phones.Adb({"shell", "cat /sdcard/file 2>/dev/null"}).output, expected);
    phones.Adb({"shell", "echo kept > /sdcard/file"});
    phones.Adb({"kill-server"});
  }
  RunProgram({"rm", "-rf", folder}, {});
}

}  // namespace
}  // namespace darokleim::test
