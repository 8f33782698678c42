// AdbCheckAppInstalled, AdbGetPackagesNameOfInstalled, AdbGetPackagesNameList, and the second attempt that
// they share when the device refuses the first.
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/refused_calls.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

constexpr char kRefusal[] =
    "Error: java.lang.SecurityException: Shell does not have permission to access user 0\n";

class PackageListTest : public SdkTest {
 protected:
  const std::string list_command = " -s S1 shell pm list packages com.a";
  const std::string user_list_command = " -s S1 shell pm list packages --user 10 com.a";
  const std::string user_command = " -s S1 shell dumpsys user";

  // The answer of AdbCheckAppInstalled for com.a: "installed" or "absent", or its code.
  std::string Check(const char* package = "com.a") {
    bool installed = true;
    const int code = AdbCheckAppInstalled("S1", package, &installed, &cancel);
    if (code != ADB_RESULT_OK) {
      EXPECT_FALSE(installed) << "not reset";
      return std::to_string(code);
    }
    return installed ? "installed" : "absent";
  }
};

TEST_F(PackageListTest, FindsThePackageAmongThoseWhoseNameHoldsIt) {
  channel.Expect(list_command).Prints("package:com.a.b\npackage:com.a\npackage:com.a.c\n");
  EXPECT_EQ(Check(), "installed");
  EXPECT_THAT(journal(), ElementsAre(Info("AdbCheckAppInstalled Enter."), Ran(list_command),
                                     Info("AdbCheckAppInstalled  com.a is not installed."),
                                     Info("AdbCheckAppInstalled  com.a is installed."), GaveBack(),
                                     Info("AdbCheckAppInstalled Leave, return 0.")));
}

TEST_F(PackageListTest, ListingsWithoutThePackageLeaveItAbsent) {
  channel.Expect(list_command)
      .Prints("package:com.a.b\r\nno package line\r\npackage:xcom.a\r\npackage:COM.A\r\n");
  EXPECT_EQ(Check(), "absent");
  const Event absent = Info("AdbCheckAppInstalled  com.a is not installed.");
  EXPECT_THAT(log_lines(), ElementsAre(Info("AdbCheckAppInstalled Enter."), absent, absent, absent,
                                       Info("AdbCheckAppInstalled Leave, return 0.")));
}

TEST_F(PackageListTest, AnEmptyListingLeavesItAbsent) {
  for (const char* listing : {"", "\n", "\r\n", "package:\n"}) {
    channel.Expect(list_command).Prints(listing);
    EXPECT_EQ(Check(), "absent") << listing;
  }
}

TEST_F(PackageListTest, CarriageReturnsAndMissingLineBreaksDoNotMatter) {
  for (const std::string& listing : {"package:com.a\r\n"s, "package:com.a"s, "package:com.a  \n"s}) {
    channel.Expect(list_command).Prints(listing).Unterminated();
    EXPECT_EQ(Check(), "installed") << listing;
  }
}

TEST_F(PackageListTest, ANameWithAZeroByteIsAnotherName) {
  channel.Expect(list_command).Prints("package:com.a\0\n"s);
  EXPECT_EQ(Check(), "absent");
  channel.Expect(list_command).Prints("package:com.x\0y\npackage:com.a\n"s);
  EXPECT_EQ(Check(), "installed");
}

TEST_F(PackageListTest, RealListings) {
  channel.Expect(" -s S1 shell pm list packages com.android.gallery")
      .Prints(DeviceOutput("pm-list/as-emulator-pm-list-packages.txt"));
  EXPECT_EQ(Check("com.android.gallery"), "installed");
  EXPECT_EQ(log_lines().size(), 1U + 10 + 1 + 1) << "the gallery is the eleventh package";
  channel.Expect(" -s S1 shell pm list packages com.google.android.googlequicksearch")
      .Prints(DeviceOutput("pm-list/awesome-adb-head.txt"));
  EXPECT_EQ(Check("com.google.android.googlequicksearch"), "absent") << "a longer name is listed";
  // With -f a line is a path and a name in one, except where there is no path.
  for (const auto& [package, answer] :
       {std::pair{"com.android.camera", "absent"}, {"mwc2015.be", "installed"}}) {
    channel.Expect(" -s S1 shell pm list packages "s + package)
        .Prints(DeviceOutput("pm-list/f-tilde-base64-dirs.txt"));
    EXPECT_EQ(Check(package), answer);
  }
  EXPECT_EQ(DeviceOutputsIn("pm-list").size(), 3U);
}

TEST_F(PackageListTest, NullArgumentsAreRefused) {
  bool installed = true;
  EXPECT_EQ(AdbCheckAppInstalled(nullptr, "com.a", &installed, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbCheckAppInstalled("S1", nullptr, &installed, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbCheckAppInstalled("S1", "com.a", nullptr, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_TRUE(installed) << "written before the check";
  EXPECT_EQ(journal(), RefusedCalls("AdbCheckAppInstalled", 3));
}

TEST_F(PackageListTest, CommandsAreCutAt255Characters) {
  const std::string head = " -s S1 shell pm list packages ";
  for (const std::size_t length : {254U, 255U, 256U, 1000U}) {
    const std::string package(length - head.size(), 'p');
    const std::string command = (head + package).substr(0, 255);
    channel.Expect(command).Prints("package:" + package);
    EXPECT_EQ(Check(package.c_str()), "installed") << length;
  }
}

TEST_F(PackageListTest, TheSecondListAndTheQuestionForTheUserAreCutToo) {
  const std::string serial(300, 'S');
  const std::string cut = (" -s " + serial).substr(0, 255);
  channel.Expect(cut).Prints(kRefusal);
  channel.Expect(cut).Prints("Current user: 10");
  channel.Expect(cut).Prints("package:com.a");
  bool installed = false;
  EXPECT_EQ(AdbCheckAppInstalled(serial.c_str(), "com.a", &installed, &cancel), ADB_RESULT_OK);
  EXPECT_TRUE(installed);
}

TEST_F(PackageListTest, ARefusedListingIsAskedAgainForTheCurrentUser) {
  channel.Expect(list_command).Prints(kRefusal);
  channel.Expect(user_command).Prints("Users:\n  UserInfo{10:x:13}\nCurrent user: 10\n");
  channel.Expect(user_list_command).Prints("package:com.a\n");
  EXPECT_EQ(Check(), "installed");
  EXPECT_THAT(journal(), ElementsAre(Info("AdbCheckAppInstalled Enter."), Ran(list_command), GaveBack(),
                                     Ran(user_command), GaveBack(), Ran(user_list_command),
                                     Info("AdbCheckAppInstalled  com.a is installed."), GaveBack(),
                                     Info("AdbCheckAppInstalled Leave, return 0.")));
}

TEST_F(PackageListTest, TheCurrentUserIsAText) {
  for (const std::string user : {"0", "007", "99999999999999999999999"}) {
    channel.Expect(list_command).Prints(kRefusal);
    channel.Expect(user_command).Prints("Current user: " + user + "x\nCurrent user: 1\n");
    channel.Expect(" -s S1 shell pm list packages --user " + user + " com.a").Prints("package:com.a\n");
    EXPECT_EQ(Check(), "installed");
  }
}

// One of the three functions, called for package com.a.
struct Lister {
  const char* name;
  bool asks_again_after_silence;
  bool cancellable;
  // Runs it; the listing that it used, if any, as far as the function shows it.
  std::function<int(const bool* cancel, bool* used)> call;
};

int UsedBlock(int code, const char* untouched, char* list, bool* used) {
  *used = list != untouched;
  if (*used) AdbFreeResource(&list);
  return code;
}

std::vector<Lister> Listers() {
  static char untouched[] = "untouched";
  return {{"AdbCheckAppInstalled", true, true,
           [](const bool* cancel, bool* used) { return AdbCheckAppInstalled("S1", "com.a", used, cancel); }},
          {"AdbGetPackagesNameOfInstalled", false, true,
           [](const bool* cancel, bool* used) {
             char* list = untouched;
             int length = -7;
             const int code = AdbGetPackagesNameOfInstalled("S1", "com.a", &list, &length, cancel);
             EXPECT_EQ(length, list == untouched ? -7 : 14) << "package:com.a and a line break";
             return UsedBlock(code, untouched, list, used);
           }},
          {"AdbGetPackagesNameList", false, false, [](const bool*, bool* used) {
             char* list = untouched;
             int length = -7;
             const int code = AdbGetPackagesNameList("S1", "com.a", &list, &length);
             EXPECT_EQ(length, list == untouched ? -7 : 14) << "package:com.a and a line break";
             return UsedBlock(code, untouched, list, used);
           }}};
}

// One answer of the channel; no text: no buffer.
struct Reply {
  std::optional<std::string> text;
  int status = 0;
};

const Reply kListed{"package:com.a\n"};
const Reply kRefused{kRefusal};
const Reply kUserTen{"Current user: 10\n"};
const Reply kNoUser{"Users:\n"};
const Reply kUnauthorized{"error: device unauthorized."};
const Reply kSilent7{std::nullopt, 7};
const Reply kSilent0{std::nullopt, 0};

class RefusedListTest : public PackageListTest {
 protected:
  const std::string list = list_command;
  const std::string user = user_command;
  const std::string list_for_10 = user_list_command;

  struct Step {
    std::string command;
    Reply reply;
  };

  // Every function runs just these commands and comes to this code, with or without a listing used.
  void ExpectOf(const Lister& lister, const std::vector<Step>& steps, int code, bool used) {
    SCOPED_TRACE(lister.name);
    Journal commands;
    for (const Step& step : steps) {
      Answer& answer = channel.Expect(step.command).Returns(step.reply.status);
      if (step.reply.text) answer.Prints(*step.reply.text);
      if (!lister.cancellable) answer.Uncancellable();
      commands.push_back(Ran(step.command));
      if (step.reply.text) commands.push_back(GaveBack());
    }
    const std::size_t before = journal().size();
    bool was_used = !used;
    EXPECT_EQ(lister.call(&cancel, &was_used), code);
    EXPECT_EQ(was_used, used);
    Journal happened;
    const Journal all = journal();
    for (std::size_t i = before; i < all.size(); ++i) {
      if (all[i].kind != Event::Kind::kLogged) happened.push_back(all[i]);
    }
    EXPECT_EQ(happened, commands) << "each buffer goes back before the next command";
    EXPECT_EQ(all.back(), Info(std::string(lister.name) + " Leave, return " + std::to_string(code) + "."));
  }

  void ExpectOfAll(const std::vector<Step>& steps, int code, bool used) {
    for (const Lister& lister : Listers()) ExpectOf(lister, steps, code, used);
  }
};

TEST_F(RefusedListTest, TheListingIsUsedAtOnceWhenItComes) {
  ExpectOfAll({{list, kListed}}, 0, true);
}

TEST_F(RefusedListTest, TheSecondAttemptIsForTheCurrentUser) {
  ExpectOfAll({{list, kRefused}, {user, kUserTen}, {list_for_10, kListed}}, 0, true);
}

TEST_F(RefusedListTest, WithoutACurrentUserTheSecondAttemptIsLikeTheFirst) {
  ExpectOfAll({{list, kRefused}, {user, kNoUser}, {list, kListed}}, 0, true);
  ExpectOfAll({{list, kRefused}, {user, {""}}, {list, kListed}}, 0, true);
  for (const std::string& sample : DeviceOutputsIn("users")) {
    ExpectOfAll({{list, kRefused}, {user, {DeviceOutput(sample)}}, {list, kListed}}, 0, true);
  }
}

TEST_F(RefusedListTest, ASilentQuestionForTheUserIsFollowedByTheSecondAttempt) {
  ExpectOfAll({{list, kRefused}, {user, kSilent7}, {list, kListed}}, 0, true);
  ExpectOfAll({{list, kRefused}, {user, kSilent0}, {list, kListed}}, 0, true);
}

TEST_F(RefusedListTest, ARejectedQuestionForTheUserEndsIt) {
  ExpectOfAll({{list, kRefused}, {user, kUnauthorized}}, ADB_RESULT_DEVICE_UNAUTHORIZED, false);
  ExpectOfAll({{list, kRefused}, {user, kRefused}}, ADB_RESULT_USER_ACCESS_DENIED, false);
  ExpectOfAll({{list, kRefused}, {user, {"Current user: 10", 1001}}}, 1001, false);
}

TEST_F(RefusedListTest, TwoRefusalsEndWithWhatTheSecondQuestionGave) {
  ExpectOfAll({{list, kRefused}, {user, kUserTen}, {list_for_10, kRefused}, {user, kUserTen}}, 0, false);
  ExpectOfAll({{list, kRefused}, {user, kUserTen}, {list_for_10, kRefused}, {user, kNoUser}}, 0, false);
  ExpectOfAll({{list, kRefused}, {user, kUserTen}, {list_for_10, kRefused}, {user, kSilent7}}, 7, false);
  ExpectOfAll({{list, kRefused}, {user, kUserTen}, {list_for_10, kRefused}, {user, kUnauthorized}},
              ADB_RESULT_DEVICE_UNAUTHORIZED, false);
  ExpectOfAll({{list, kRefused}, {user, kSilent7}, {list, kRefused}, {user, kSilent0}}, 0, false);
}

TEST_F(RefusedListTest, AnotherCodeEndsIt) {
  ExpectOfAll({{list, kUnauthorized}}, ADB_RESULT_DEVICE_UNAUTHORIZED, false);
  ExpectOfAll({{list, {"package:com.a\n", 1001}}}, 1001, false);
  ExpectOfAll({{list, kRefused}, {user, kUserTen}, {list_for_10, kUnauthorized}},
              ADB_RESULT_DEVICE_UNAUTHORIZED, false);
}

TEST_F(RefusedListTest, ARefusalCountsWhateverTheChannelReturned) {
  ExpectOfAll({{list, {kRefusal, 1255}}, {user, kUserTen}, {list_for_10, kListed}}, 0, true);
}

TEST_F(RefusedListTest, SilenceEndsTheTwoListsAndIsAskedAgainByTheCheck) {
  for (const Lister& lister : Listers()) {
    if (lister.asks_again_after_silence) {
      ExpectOf(lister, {{list, kSilent7}, {list, kListed}}, 0, true);
      ExpectOf(lister, {{list, kSilent7}, {list, kSilent0}}, 0, false);
      ExpectOf(lister, {{list, kSilent0}, {list, kSilent7}}, 7, false);
      ExpectOf(lister, {{list, kSilent7}, {list, kUnauthorized}}, ADB_RESULT_DEVICE_UNAUTHORIZED, false);
      ExpectOf(lister, {{list, kSilent7}, {list, kRefused}, {user, kUserTen}}, 0, false);
    } else {
      ExpectOf(lister, {{list, kSilent7}}, 7, false);
      ExpectOf(lister, {{list, kSilent0}}, 0, false);
    }
  }
}

TEST_F(RefusedListTest, SilenceWithTheNumberOfARefusalIsNotARefusal) {
  const Reply silent46{std::nullopt, ADB_RESULT_USER_ACCESS_DENIED};
  for (const Lister& lister : Listers()) {
    if (lister.asks_again_after_silence) {
      ExpectOf(lister, {{list, silent46}, {list, silent46}}, ADB_RESULT_USER_ACCESS_DENIED, false);
    } else {
      ExpectOf(lister, {{list, silent46}}, ADB_RESULT_USER_ACCESS_DENIED, false);
    }
  }
}

TEST_F(RefusedListTest, SilenceForTheCurrentUser) {
  for (const Lister& lister : Listers()) {
    ExpectOf(lister, {{list, kRefused}, {user, kUserTen}, {list_for_10, kSilent7}}, 7, false);
  }
}

class PackageNamesTest : public SdkTest {
 protected:
  // The bytes that both functions hand out for a listing, with their length.
  void ExpectHandedOut(const std::string& listing) {
    char* list = nullptr;
    int length = -1;
    channel.Expect(" -s S1 shell pm list packages -3").Prints(listing).Unterminated();
    EXPECT_EQ(AdbGetPackagesNameOfInstalled("S1", "-3", &list, &length, &cancel), ADB_RESULT_OK);
    Take(list, length, listing);
    channel.Expect(" -s S1 shell pm list packages -3").Prints(listing).Unterminated().Uncancellable();
    EXPECT_EQ(AdbGetPackagesNameList("S1", "-3", &list, &length), ADB_RESULT_OK);
    Take(list, length, listing);
  }

 private:
  static void Take(char*& list, int& length, const std::string& expected) {
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(length, static_cast<int>(expected.size()));
    EXPECT_EQ(std::string(list, static_cast<std::size_t>(length)), expected);
    AdbFreeResource(&list);
    EXPECT_EQ(list, nullptr);
    length = -1;
  }
};

TEST_F(PackageNamesTest, AreHandedOutByteForByte) {
  ExpectHandedOut("package:com.a\r\npackage:com.b\r\n");
  ExpectHandedOut("package:com.a\0\n\0\0package:\xff\xfe\r\r\n\n"s);
  ExpectHandedOut("\0"s);
  ExpectHandedOut("no package at all");
  ExpectHandedOut("");
  ExpectHandedOut(std::string(10'000'000, 'p'));
  for (const std::string& sample : DeviceOutputsIn("pm-list")) ExpectHandedOut(DeviceOutput(sample));
}

TEST_F(PackageNamesTest, LogEnterAndLeaveAndNothingOfTheListing) {
  ExpectHandedOut("package:com.a\n");
  EXPECT_THAT(
      journal(),
      ElementsAre(Info("AdbGetPackagesNameOfInstalled Enter."), Ran(" -s S1 shell pm list packages -3"),
                  GaveBack(), Info("AdbGetPackagesNameOfInstalled Leave, return 0."),
                  Info("AdbGetPackagesNameList Enter."), Ran(" -s S1 shell pm list packages -3"), GaveBack(),
                  Info("AdbGetPackagesNameList Leave, return 0.")));
}

TEST_F(PackageNamesTest, AnEmptyFilterLeavesItsSpaceAndANullFilterNone) {
  char* list = nullptr;
  int length = 0;
  channel.Expect(" -s S1 shell pm list packages ").Returns(7);
  EXPECT_EQ(AdbGetPackagesNameOfInstalled("S1", "", &list, &length, &cancel), 7);
  channel.Expect(" -s S1 shell pm list packages ").Returns(7).Uncancellable();
  EXPECT_EQ(AdbGetPackagesNameList("S1", "", &list, &length), 7);
  channel.Expect(" -s S1 shell pm list packages").Prints(kRefusal).Uncancellable();
  channel.Expect(" -s S1 shell dumpsys user").Prints("Current user: 10").Uncancellable();
  channel.Expect(" -s S1 shell pm list packages --user 10").Returns(7).Uncancellable();
  EXPECT_EQ(AdbGetPackagesNameList("S1", nullptr, &list, &length), 7);
  EXPECT_EQ(list, nullptr);
  EXPECT_EQ(length, 0);
}

TEST_F(PackageNamesTest, CommandsAreCutAt255Characters) {
  const std::string head = " -s S1 shell pm list packages ";
  char* list = nullptr;
  int length = 0;
  for (const std::size_t size : {254U, 255U, 256U}) {
    const std::string command = head + std::string(size - head.size() - 1, 'f') + "$";
    const std::string filter = command.substr(head.size());
    channel.Expect(command.substr(0, 255)).Returns(7);
    EXPECT_EQ(AdbGetPackagesNameOfInstalled("S1", filter.c_str(), &list, &length, &cancel), 7) << size;
    channel.Expect(command.substr(0, 255)).Returns(7).Uncancellable();
    EXPECT_EQ(AdbGetPackagesNameList("S1", filter.c_str(), &list, &length), 7) << size;
    const std::string rest = " shell pm list packages";
    const std::string serial = std::string(size - rest.size() - std::strlen(" -s "), 'S');
    channel.Expect((" -s " + serial + rest).substr(0, 255)).Returns(7).Uncancellable();
    EXPECT_EQ(AdbGetPackagesNameList(serial.c_str(), nullptr, &list, &length), 7) << size;
  }
}

TEST_F(PackageNamesTest, NullArgumentsAreRefused) {
  char* list = nullptr;
  int length = 0;
  EXPECT_EQ(AdbGetPackagesNameOfInstalled(nullptr, "", &list, &length, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetPackagesNameOfInstalled("S1", nullptr, &list, &length, &cancel), ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(AdbGetPackagesNameList(nullptr, "", &list, &length), ADB_RESULT_INVALID_PARAM);
  Journal expected = RefusedCalls("AdbGetPackagesNameOfInstalled", 2);
  for (const Event& event : RefusedCalls("AdbGetPackagesNameList", 1)) expected.push_back(event);
  EXPECT_EQ(journal(), expected);
}

}  // namespace
}  // namespace darokleim::test
