#include <map>
#include <string>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

class PropertyFlagsTest : public SdkTest {
 protected:
  // The answer of each function to a text that the device prints, beginning with `before`.
  bool Locked(const std::string& text, bool before) {
    channel.Expect(" -s S1 shell getprop ro.boot.flash.locked").Prints(text);
    EXPECT_EQ(AdbCheckLockedState("S1", &before, &cancel), ADB_RESULT_OK);
    return before;
  }
  bool Encrypted(const std::string& text, bool before) {
    channel.Expect(" -s S1 shell getprop ro.crypto.state").Prints(text);
    EXPECT_EQ(AdbCheckEncryptState("S1", &before, &cancel), ADB_RESULT_OK);
    return before;
  }
  int EncryptType(const std::string& text, int before = -1) {
    channel.Expect(" -s S1 shell getprop ro.crypto.type").Prints(text);
    EXPECT_EQ(AdbGetEncryptType("S1", &before, &cancel), ADB_RESULT_OK);
    return before;
  }
  bool Harmony(const std::string& text, bool before) {
    channel.Expect(" -s S1 shell getprop ro.config.ringtone").Prints(text);
    EXPECT_EQ(AdbCheckIsHarmony("S1", &before, &cancel), ADB_RESULT_OK);
    return before;
  }
};

TEST_F(PropertyFlagsTest, Locked) {
  for (const bool before : {false, true}) {
    EXPECT_TRUE(Locked("1\n", before));
    EXPECT_TRUE(Locked("1\r\n", before));
    EXPECT_FALSE(Locked("0\n", before));
    EXPECT_FALSE(Locked("10\n", before)) << "the zero is looked for last";
    EXPECT_FALSE(Locked("01\n", before));
    for (const std::string& text : {"\n"s, ""s, "yes\n"s, "2\n"s, "\0001\n"s}) {
      EXPECT_EQ(Locked(text, before), before) << text;
    }
  }
}

TEST_F(PropertyFlagsTest, Encrypted) {
  for (const bool before : {false, true}) {
    EXPECT_TRUE(Encrypted("encrypted\n", before));
    EXPECT_FALSE(Encrypted("unencrypted\n", before)) << "which holds the other word";
    EXPECT_FALSE(Encrypted("encrypted unencrypted\n", before));
    for (const std::string& text : {"\n"s, ""s, "Encrypted\n"s, "encrypte\n"s, "\0encrypted\n"s}) {
      EXPECT_EQ(Encrypted(text, before), before) << text;
    }
  }
}

TEST_F(PropertyFlagsTest, EncryptType) {
  EXPECT_EQ(EncryptType("file\n"), 0);
  EXPECT_EQ(EncryptType("block\r\n"), 1);
  EXPECT_EQ(EncryptType("block file\n"), 1) << "block is looked for last";
  EXPECT_EQ(EncryptType("none\n"), -1);
  EXPECT_EQ(EncryptType("none\n", 77), 77);
  EXPECT_EQ(EncryptType(""), -1);
  EXPECT_EQ(EncryptType("FILE\n"), -1);
}

TEST_F(PropertyFlagsTest, Harmony) {
  for (const bool before : {false, true}) {
    EXPECT_TRUE(Harmony("Harmony.ogg\n", before));
    EXPECT_FALSE(Harmony("harmony.ogg\n", before));
    EXPECT_FALSE(Harmony("\n", before));
    EXPECT_FALSE(Harmony("", before));
    EXPECT_FALSE(Harmony("\0Harmony\n"s, before));
  }
}

TEST_F(PropertyFlagsTest, HarmonyIsAnsweredOnFailureToo) {
  bool harmony = true;
  channel.Expect(" -s S1 shell getprop ro.config.ringtone").Returns(3003);
  EXPECT_EQ(AdbCheckIsHarmony("S1", &harmony, &cancel), 3003);
  EXPECT_FALSE(harmony);
  harmony = true;
  channel.Expect(" -s S1 shell getprop ro.config.ringtone").Prints("Harmony\n").Returns(1001);
  EXPECT_EQ(AdbCheckIsHarmony("S1", &harmony, &cancel), 1001);
  EXPECT_FALSE(harmony);
}

TEST_F(PropertyFlagsTest, HarmonyIsWrittenWhenTheCommandHasEnded) {
  bool harmony = true;
  bool while_running = false;
  channel.Expect(" -s S1 shell getprop ro.config.ringtone").Meanwhile([&] { while_running = harmony; });
  EXPECT_EQ(AdbCheckIsHarmony("S1", &harmony, &cancel), ADB_RESULT_OK);
  EXPECT_TRUE(while_running);
  EXPECT_FALSE(harmony);
}

TEST_F(PropertyFlagsTest, AFailureLeavesTheOthersUntouched) {
  bool locked = true;
  bool encrypted = false;
  int type = 5;
  const std::string text = "0 encrypted file error: device 'S1' not found";
  channel.Expect(" -s S1 shell getprop ro.boot.flash.locked").Prints(text).Returns(1001);
  EXPECT_EQ(AdbCheckLockedState("S1", &locked, &cancel), ADB_RESULT_NO_DEVICE);
  channel.Expect(" -s S1 shell getprop ro.crypto.state").Prints(text).Returns(1001);
  EXPECT_EQ(AdbCheckEncryptState("S1", &encrypted, &cancel), ADB_RESULT_NO_DEVICE);
  channel.Expect(" -s S1 shell getprop ro.crypto.type").Prints(text).Returns(1001);
  EXPECT_EQ(AdbGetEncryptType("S1", &type, &cancel), ADB_RESULT_NO_DEVICE);
  channel.Expect(" -s S1 shell getprop ro.crypto.type").Returns(3002);
  EXPECT_EQ(AdbGetEncryptType("S1", &type, &cancel), 3002);
  EXPECT_TRUE(locked);
  EXPECT_FALSE(encrypted);
  EXPECT_EQ(type, 5);
}

TEST_F(PropertyFlagsTest, EachSaysItsNameAndGivesTheBufferBack) {
  Locked("1\n", false);
  Encrypted("encrypted\n", false);
  EncryptType("file\n");
  Harmony("x\n", false);
  EXPECT_THAT(
      journal(),
      ElementsAre(Info("AdbCheckLockedState Enter."), Ran(" -s S1 shell getprop ro.boot.flash.locked"),
                  GaveBack(), Info("AdbCheckLockedState Leave, return 0."),
                  Info("AdbCheckEncryptState Enter."), Ran(" -s S1 shell getprop ro.crypto.state"),
                  GaveBack(), Info("AdbCheckEncryptState Leave, return 0."), Info("AdbGetEncryptType Enter."),
                  Ran(" -s S1 shell getprop ro.crypto.type"), GaveBack(),
                  Info("AdbGetEncryptType Leave, return 0."), Info("AdbCheckIsHarmony Enter."),
                  Ran(" -s S1 shell getprop ro.config.ringtone"), GaveBack(),
                  Info("AdbCheckIsHarmony Leave, return 0.")));
}

TEST_F(PropertyFlagsTest, LongTexts) {
  EXPECT_TRUE(Encrypted(std::string(1'000'000, 'x') + "encrypted", false));
  EXPECT_EQ(EncryptType(std::string(1'000'000, 'f')), -1);
}

TEST_F(PropertyFlagsTest, NoPointerIsChecked) {
  bool answer = false;
  channel.Expect(" -s (null) shell getprop ro.crypto.state").Prints("encrypted\n");
  EXPECT_EQ(AdbCheckEncryptState(nullptr, &answer, &cancel), ADB_RESULT_OK);
  EXPECT_TRUE(answer);
  channel.Expect(" -s S1 shell getprop ro.crypto.state").Prints("\n");
  EXPECT_EQ(AdbCheckEncryptState("S1", nullptr, &cancel), ADB_RESULT_OK) << "nothing to write";
}

// One property of a real phone.
TEST_F(PropertyFlagsTest, RealProperties) {
  for (const char* list : {"getprop/automotive-qcom-9.txt", "getprop/emulator10-grep-crypto.txt",
                           "getprop/wsa-crypto-lines.txt"}) {
    for (const char* line_end : {"\n", "\r\n"}) {
      EXPECT_TRUE(Encrypted(DeviceProperty(list, "ro.crypto.state") + line_end, false)) << list;
      EXPECT_EQ(EncryptType(DeviceProperty(list, "ro.crypto.type") + line_end), 0) << list;
    }
  }
  EXPECT_FALSE(Harmony(DeviceProperty("getprop/automotive-qcom-9.txt", "ro.config.ringtone") + "\n", true));
}

// The words as real devices print them, in the list of all properties.
TEST_F(PropertyFlagsTest, RealOutputs) {
  const std::map<std::string, int> type_of = {
      {"getprop/automotive-qcom-9.txt", 1},  // it lists a /dev/block/… too
      {"getprop/emulator10-grep-crypto.txt", 0},
      {"getprop/wsa-crypto-lines.txt", 0}};
  for (const auto& [sample, type] : type_of) {
    EXPECT_TRUE(Encrypted(DeviceOutput(sample), false)) << sample;
    EXPECT_EQ(EncryptType(DeviceOutput(sample)), type) << sample;
  }
  for (const std::string& sample : DeviceOutputsIn("getprop")) {
    EXPECT_FALSE(Harmony(DeviceOutput(sample), true)) << sample << ": no ring tone of that name";
    if (type_of.count(sample) > 0) continue;
    EXPECT_FALSE(Encrypted(DeviceOutput(sample), false)) << sample << ": not a known state";
  }
}

}  // namespace
}  // namespace darokleim::test
