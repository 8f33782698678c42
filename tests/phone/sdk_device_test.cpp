// Device list, properties, MIUI version, root and clock, end to end. Built twice: with and without the channel's
// assistance, which decides on the line breaks of old and new phones.
#include <cstdlib>
#include <memory>

#include "src/platform/command_channel.h"
#include "tests/phone/sdk_on_phone.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

// What ends the value of a property when the library reads it.
std::string PropertyLineEnd(bool legacy) {
  return legacy || kAssisted ? "\r\n" : "\n";
}

class SdkDevice : public SdkOnPhone {
 protected:
  int SizeOf(const std::string& text) const { return static_cast<int>(text.size()); }
};

TEST_P(SdkDevice, ListsThePhone) {
  EXPECT_EQ(AdbGetDevices(buffer_, sizeof(buffer_), cancel_), kOk);
  EXPECT_THAT(buffer_, HasSubstr(serial() + "-device;"));
  EXPECT_EQ(AdbGetDevicesEx(&text_, &length_, cancel_), kOk);
  EXPECT_THAT(Taken(&text_, length_), HasSubstr(serial() + "-device;"));
}

TEST_P(SdkDevice, ReadsTextsOfThePhone) {
  const struct {
    int (*read)(const char* serial, char* buffer, int buffer_size, const bool* cancel);
    std::string property;
  } cases[] = {{AdbGetPhoneManufacturer, "ro.product.manufacturer"},
               {AdbGetPhoneSoftVersion, "ro.build.version.release"},
               {AdbGetPhoneProductModel, "ro.product.model"},
               {AdbGetMiuiBuildRegin, "ro.miui.build.region"}};
  for (const auto& c : cases) {
    const std::string line = Text("getprop " + c.property);
    EXPECT_EQ(c.read(phone(), buffer_, sizeof(buffer_), cancel_), kOk) << c.property;
    EXPECT_EQ(buffer_ + std::string("\n"), line) << c.property;
  }
  REQUIRE_SIMULATED_PHONE("prints other things");
  AdbGetPhoneManufacturer(phone(), buffer_, sizeof(buffer_), cancel_);
  EXPECT_STREQ(buffer_, "Google");
  AdbGetPhoneSoftVersion(phone(), buffer_, sizeof(buffer_), cancel_);
  EXPECT_STREQ(buffer_, is_legacy() ? "6.0.1" : "13");
  AdbGetPhoneProductModel(phone(), buffer_, sizeof(buffer_), cancel_);
  EXPECT_STREQ(buffer_, "Pixel 7");
  AdbGetMiuiBuildRegin(phone(), buffer_, sizeof(buffer_), cancel_);
  EXPECT_STREQ(buffer_, "");
}

TEST_P(SdkDevice, ALineEndCountsForTheSizeOfTheBuffer) {
  const std::string value = Text("printf %s \"$(getprop ro.product.model)\"");
  const int whole = SizeOf(value + PropertyLineEnd(is_legacy()));
  EXPECT_EQ(AdbGetPhoneProductModel(phone(), buffer_, whole, cancel_), kOk);
  EXPECT_EQ(buffer_, value);
  EXPECT_EQ(AdbGetPhoneProductModel(phone(), buffer_, whole - 1, cancel_), ADB_RESULT_BUFFER_TOO_SMALL);
  EXPECT_EQ(AdbGetPhoneProductModel(phone(), buffer_, 1, cancel_), ADB_RESULT_BUFFER_TOO_SMALL);
  EXPECT_STREQ(buffer_, "");
}

TEST_P(SdkDevice, HandsOutAPropertyAsThePhonePrintsIt) {
  const std::string line_end = PropertyLineEnd(is_legacy());
  for (const char* name : {"ro.product.model", "ro.no.such.property"}) {
    EXPECT_EQ(GetPropInfo(phone(), name, &text_, &length_, cancel_), kOk);
    ASSERT_NE(text_, nullptr);
    EXPECT_EQ(std::string(text_, static_cast<size_t>(length_)),
              Text("printf %s \"$(getprop " + std::string(name) + ")\"") + line_end);
    EXPECT_EQ(text_[length_], '\0');
    ReleaseAdbOutBuffer(text_);
    text_ = nullptr;
    length_ = 0;
  }
  EXPECT_EQ(GetPropInfo("NOSUCHPHONE", "ro.product.model", &text_, &length_, cancel_), ADB_RESULT_NO_DEVICE);
  EXPECT_THAT(text_, HasSubstr("not found"));
  ReleaseAdbOutBuffer(text_);
}

TEST_P(SdkDevice, ReadsTheClockOfThePhone) {
  const std::string now = "date '+%Y-%m-%d %H:%M:%S'";
  setenv("TZ", "XYZ-13", 1);  // of the host, which must not matter
  const std::string before = Text(now);
  EXPECT_EQ(AdbGetDeviceCurrentTime(phone(), buffer_, sizeof(buffer_), cancel_), kOk);
  const std::string after = Text(now);
  unsetenv("TZ");
  EXPECT_THAT(buffer_, MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"));
  EXPECT_LE(before, buffer_ + std::string("\n"));
  EXPECT_GE(after, buffer_ + std::string("\n"));
}

TEST_P(SdkDevice, ALineEndCountsForTheClockToo) {
  const bool one_byte = kAssisted || !is_legacy();
  const int whole = SizeOf("2026-11-21 08:25:00") + (one_byte ? 1 : 2);
  EXPECT_EQ(AdbGetDeviceCurrentTime(phone(), buffer_, whole, cancel_), kOk);
  EXPECT_EQ(AdbGetDeviceCurrentTime(phone(), buffer_, whole - 1, cancel_), ADB_RESULT_BUFFER_TOO_SMALL);
}

TEST_P(SdkDevice, ReadsTheAddressOfThePhone) {
  REQUIRE_SIMULATED_PHONE("may have no wireless address");
  EXPECT_EQ(AdbGetIPAddress(phone(), &text_, &length_, cancel_), kOk);
  EXPECT_EQ(text_[length_], '\0');
  EXPECT_THAT(Taken(&text_, length_), MatchesRegex("192\\.168\\.1\\.[0-9]+/24"));
  SwitchOn("no-wifi");
  EXPECT_EQ(AdbGetIPAddress(phone(), &text_, &length_, cancel_), ADB_RESULT_NO_IP_ADDRESS);
}

TEST_P(SdkDevice, SaysWhatKeepsItFromAnswering) {
  REQUIRE_SIMULATED_PHONE("cannot be unplugged by a test");
  const auto ask_all = [this](int code) {
    buffer_[0] = '#';
    bool flag = false;
    int type = 7;
    EXPECT_EQ(AdbGetPhoneManufacturer(phone(), buffer_, sizeof(buffer_), cancel_), code);
    EXPECT_EQ(buffer_[0], '#');
    EXPECT_EQ(AdbCheckLockedState(phone(), &flag, cancel_), code);
    EXPECT_EQ(AdbCheckEncryptState(phone(), &flag, cancel_), code);
    EXPECT_EQ(AdbGetEncryptType(phone(), &type, cancel_), code);
    EXPECT_EQ(type, 7);
    flag = true;
    EXPECT_EQ(AdbCheckIsHarmony(phone(), &flag, cancel_), code);
    EXPECT_FALSE(flag);
    EXPECT_EQ(AdbGetIPAddress(phone(), &text_, &length_, cancel_), code);
    EXPECT_EQ(text_, nullptr);
    flag = true;
    EXPECT_EQ(IsDeviceHadBeenRooted(phone(), &flag, cancel_), code);
    EXPECT_FALSE(flag);
    EXPECT_EQ(AdbReboot(phone(), cancel_), code);
    EXPECT_EQ(AdbConfigDeviceBusybox(phone(), cancel_), code);
    EXPECT_EQ(AdbGetMiuiVersion(phone(), buffer_, sizeof(buffer_), cancel_),
              ADB_RESULT_MIUI_VERSION_NAME_FAILED);
    EXPECT_EQ(buffer_[0], '#');
    EXPECT_EQ(AdbGetDeviceCurrentTime(phone(), buffer_, sizeof(buffer_), cancel_), code);
    EXPECT_STREQ(buffer_, "");
  };
  Control({"state", "unauthorized"});
  ask_all(ADB_RESULT_DEVICE_UNAUTHORIZED);
  Control({"state", "offline"});
  ask_all(1001);
  Control({"unplug"});
  ask_all(ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(AdbAuthenticateShow(phone(), cancel_), ADB_RESULT_NO_DEVICE);
  EXPECT_EQ(AdbGetDevicesEx(&text_, &length_, cancel_), kOk);
  EXPECT_EQ(text_, nullptr);
  EXPECT_EQ(length_, 0);
  EXPECT_EQ(AdbReconnectDevice(), kOk) << "though adb reports that there is none";
}

TEST_P(SdkDevice, SeesThePhoneGoAndCome) {
  REQUIRE_SIMULATED_PHONE("takes minutes to reboot");
  const auto answers = [this] {
    return AdbGetPhoneSoftVersion(phone(), buffer_, sizeof(buffer_), cancel_) == kOk;
  };
  EXPECT_EQ(AdbAuthenticateShow(phone(), cancel_), ADB_RESULT_PROTOCOL_FAULT) << "which means that it asked";
  EXPECT_TRUE(Eventually(answers));
  EXPECT_EQ(AdbReconnectDevice(), kOk);
  EXPECT_TRUE(Eventually(answers));
  EXPECT_EQ(AdbReboot(phone(), cancel_), kOk);
  EXPECT_TRUE(Eventually([&] { return !answers(); }));
  EXPECT_TRUE(Eventually(answers));
}

TEST_P(SdkDevice, SetsBusyboxUp) {
  REQUIRE_SIMULATED_PHONE("would be left with another program");
  const std::string busybox = "/data/local/tmp/busybox";
  EXPECT_EQ(AdbConfigDeviceBusybox(phone(), cancel_), kOk);
  EXPECT_EQ(Text(busybox + " echo runs"), "runs\n");
  Shell("echo '#!/system/bin/sh\necho my own' > " + busybox + "; chmod 644 " + busybox);
  EXPECT_EQ(AdbConfigDeviceBusybox(phone(), cancel_), kOk);
  EXPECT_EQ(Text(busybox), "my own\n") << "made executable, not replaced";
}

INSTANTIATE_FOR_PHONES(SdkDevice);

// Phones of the test's choice, of one generation.
class SdkPhones : public testing::TestWithParam<std::string> {
 protected:
  void Start(Words phones) {
    for (std::string& phone : phones) phone += ",android=" + GetParam();
    phones_ = std::make_unique<SimulatedPhones>(phones);
    setenv("ANDROID_ADB_SERVER_PORT", phones_->port().c_str(), 1);
  }
  bool is_legacy() const { return GetParam() == "legacy"; }

  std::string MiuiVersion(const char* serial) const {
    char text[64] = "untouched";
    const int code = AdbGetMiuiVersion(serial, text, sizeof(text), nullptr);
    return code == kOk ? text : std::to_string(code) + " " + text;
  }

  std::unique_ptr<SimulatedPhones> phones_;
};

TEST_P(SdkPhones, ListsStatesAndLeavesOutOtherSerials) {
  Start({"AAAAAAA", "192.168.1.5:5555", "BBB2,state=offline", "emulator-5554", "CCC3,state=unauthorized",
         "DDD4,state=recovery", "EEE5,state=authorizing"});
  char* list = nullptr;
  int length = 0;
  ASSERT_EQ(AdbGetDevicesEx(&list, &length, nullptr), kOk);
  EXPECT_STREQ(list, "AAAAAAA-device;BBB2-offline;CCC3-unauthorized;");
  EXPECT_EQ(length, 47);
  AdbFreeResource(&list);
  char ten_bytes[10];
  EXPECT_EQ(AdbGetDevices(ten_bytes, sizeof(ten_bytes), nullptr), kOk);
  EXPECT_STREQ(ten_bytes, "AAAAAAA-d");
  EXPECT_EQ(AdbReconnectDevice(), kOk) << "though adb does not know which";
  EXPECT_EQ(AdbAuthenticateShow("CCC3", nullptr), ADB_RESULT_PROTOCOL_FAULT);
  char model[64];
  EXPECT_EQ(AdbGetPhoneProductModel("192.168.1.5:5555", model, sizeof(model), nullptr), kOk);
  EXPECT_STREQ(model, "Pixel 7");
}

TEST_P(SdkPhones, AnswerQuestions) {
  Start({"ONE,profile=harmony,encryption=block,su=bin,prop.ro.boot.flash.locked=0",
         "TWO,encryption=none,su=xbin,prop.ro.boot.flash.locked=unknown", "THREE"});
  const struct {
    const char* serial;
    bool harmony, locked_from_true, locked_from_false, encrypted, rooted;
    int type_from_7;
  } cases[] = {{"ONE", true, false, false, true, true, 1},
               {"TWO", false, true, false, false, true, 7},
               {"THREE", false, true, true, true, false, 0}};
  for (const auto& c : cases) {
    bool answer = !c.harmony;
    EXPECT_EQ(AdbCheckIsHarmony(c.serial, &answer, nullptr), kOk);
    EXPECT_EQ(answer, c.harmony) << c.serial;
    answer = true;
    EXPECT_EQ(AdbCheckLockedState(c.serial, &answer, nullptr), kOk);
    EXPECT_EQ(answer, c.locked_from_true) << c.serial;
    answer = false;
    EXPECT_EQ(AdbCheckLockedState(c.serial, &answer, nullptr), kOk);
    EXPECT_EQ(answer, c.locked_from_false) << c.serial;
    answer = !c.encrypted;
    EXPECT_EQ(AdbCheckEncryptState(c.serial, &answer, nullptr), kOk);
    EXPECT_EQ(answer, c.encrypted) << c.serial;
    answer = !c.rooted;
    EXPECT_EQ(IsDeviceHadBeenRooted(c.serial, &answer, nullptr), kOk);
    EXPECT_EQ(answer, c.rooted) << c.serial;
    int type = 7;
    EXPECT_EQ(AdbGetEncryptType(c.serial, &type, nullptr), kOk);
    EXPECT_EQ(type, c.type_from_7) << c.serial;
  }
}

TEST_P(SdkPhones, TellTheirMiuiVersion) {
  const std::string name = ",prop.ro.miui.ui.version.name=", time_code = ",prop.ro.miui.version.code_time=";
  Start({"MIUI12,profile=miui12", "MIUI125,profile=miui125", "MIUI13,profile=miui13",
         "MIUI11" + name + "V11" + time_code + "1584230400", "MIUI8" + name + "V8" + time_code + "soon",
         "PLAIN"});
  const bool reads_cr = kAssisted || is_legacy();
  EXPECT_EQ(MiuiVersion("MIUI12"), reads_cr ? "12.10.6.1" : "12\n.10.6.18");
  EXPECT_EQ(MiuiVersion("MIUI11"), reads_cr ? "11.10.3.16" : "11\n.10.3.16");
  EXPECT_EQ(MiuiVersion("MIUI125"), "12.5.3.0");
  EXPECT_EQ(MiuiVersion("MIUI13"), "13.0.4.0");
  EXPECT_EQ(MiuiVersion("MIUI8"), "44 untouched");
  EXPECT_EQ(MiuiVersion("PLAIN"), "44 untouched");
  char region[8];
  EXPECT_EQ(AdbGetMiuiBuildRegin("MIUI13", region, sizeof(region), nullptr), kOk);
  EXPECT_STREQ(region, "cn");
}

INSTANTIATE_TEST_SUITE_P(, SdkPhones, testing::Values("modern", "legacy"), NameOfPhone);

}  // namespace
}  // namespace darokleim::test
