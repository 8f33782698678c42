#include "tests/phone/phone_under_test.h"

namespace darokleim::test {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Control, ChangesARunningPhone) {
  const SimulatedPhones phones({"ALFA1", "BETA1,fault=no-wifi"});
  EXPECT_THAT(phones.Control({"list"}).output,
              testing::ContainsRegex("ALFA1\tdevice\t.*\nBETA1\tdevice\t.*fault=no-wifi\n"));
  EXPECT_EQ(phones.Control({"ALFA1", "state", "unauthorized"}).status, 0);
  EXPECT_THAT(phones.Adb({"devices"}).output, HasSubstr("ALFA1\tunauthorized\n"));
  EXPECT_EQ(phones.Control({"ALFA1", "unplug"}).status, 0);
  EXPECT_THAT(phones.Adb({"devices"}).output, Not(HasSubstr("ALFA1")));
  EXPECT_THAT(phones.Control({"list"}).output, HasSubstr("ALFA1\tunplugged\t"));
  EXPECT_EQ(phones.Control({"ALFA1", "plug"}).status, 0);
  EXPECT_EQ(phones.Control({"ALFA1", "state", "device"}).status, 0);
  EXPECT_EQ(phones.Adb({"-s", "ALFA1", "shell", "echo here"}).output, "here\n");
}

TEST(Control, SwitchesFaultsOnAndOff) {
  const SimulatedPhones phones({"ALFA1"});
  for (const char* off : {"clear", "mend"}) {  // mend is the older name
    EXPECT_EQ(phones.Control({"ALFA1", "fault", "free-space=1G"}).status, 0);
    EXPECT_THAT(phones.Control({"list"}).output, HasSubstr("\tfault=free-space=1G"));
    EXPECT_EQ(phones.Control({"ALFA1", off, "free-space"}).status, 0);
    EXPECT_THAT(phones.Control({"list"}).output, Not(HasSubstr("fault=")));
  }
}

TEST(Control, ExplainsWhatItRefuses) {
  const SimulatedPhones phones({"ALFA1"});
  for (const auto& [words, message] : std::vector<std::pair<Words, std::string>>{
           {{"NONE1", "plug"}, "no phone has the serial 'NONE1'"},
           {{"ALFA1", "dance"}, "unknown action 'dance'"},
           {{"ALFA1", "fault", "dance"}, "unknown fault 'dance'"},
           {{"ALFA1", "fault", "free-space=much"},
            "fault free-space takes a size such as 4096, 100M or 1.5G"},
           {{"ALFA1", "fault", "bandwidth=0"}, "fault bandwidth takes at least 1 byte a second"},
           {{"ALFA1", "state", "asleep"}, "unknown state 'asleep'"},
           {{"ALFA1"}, "expected: SERIAL ACTION [VALUE], or list"}}) {
    const Outcome outcome = phones.Control(words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "darokleim-phone: " + message + "\n");
  }
}

}  // namespace
}  // namespace darokleim::test
