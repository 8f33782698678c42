#include <gmock/gmock.h>
#include <signal.h>

#include "tests/phone/raw_client.h"
#include "tests/support/adb_version.h"
#include "tests/support/eventually.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(Server, ListsItsPhonesSortedWithTheirStates) {
  const SimulatedPhones phones({"ZULU1", "ALFA1,state=offline", "MIKE1,state=unauthorized", "10.0.0.7:5555"});
  EXPECT_EQ(phones.Adb({"devices"}).output,
            "List of devices attached\n"
            "ALFA1\toffline\n"
            "MIKE1\tunauthorized\n"
            "ZULU1\tdevice\n"
            "10.0.0.7:5555\tdevice\n\n");
}

TEST(Server, ShowsDetailsOnlyOfPhonesThatAreConnected) {
  const SimulatedPhones phones({"ALFA1", "BETA1,state=offline", "10.0.0.7:5555"});
  const std::string output = phones.Adb({"devices", "-l"}).output;
  EXPECT_THAT(output, HasSubstr("ALFA1                  device usb:1-1 product:"));
  EXPECT_THAT(output, testing::ContainsRegex("BETA1                  offline usb:1-2 transport_id:[0-9]+\n"));
  EXPECT_THAT(output, HasSubstr("10.0.0.7:5555          device product:"));
}

TEST(Server, FindsAPhoneByItsUsbSocket) {
  const SimulatedPhones phones({"ALFA1", "BETA1"});
  EXPECT_EQ(phones.Adb({"-s", "usb:1-2", "get-serialno"}).output, "BETA1\n");
  EXPECT_EQ(phones.Adb({"-s", "BETA1", "get-devpath"}).output, "usb:1-2\n");
}

TEST(Server, SpeaksTheVersionThatTheClientExpects) {
  const SimulatedPhones phones({"ALFA1"});
  const Outcome outcome = phones.Adb({"start-server"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output + outcome.errors, "");
}

struct Refusal {
  std::string name;
  Words words;
  std::string message;
  friend void PrintTo(const Refusal& refusal, std::ostream* out) { *out << refusal.name; }
};

class RefusedCommands : public testing::TestWithParam<Refusal> {};

TEST_P(RefusedCommands, SayWhyInTheServersWords) {
  const SimulatedPhones phones(
      {"ALFA1", "OFF1,state=offline", "UNA1,state=unauthorized", "ASK1,state=authorizing"});
  const Outcome outcome = phones.Adb(GetParam().words);
  EXPECT_EQ(outcome.status, 1);
  // get-state prints what the server says in the same form in both releases.
  const bool of_server = GetParam().words.back() == "get-state";
  EXPECT_EQ(outcome.errors,
            of_server ? "error: " + GetParam().message + "\n" : RefusalByAdb(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Server, RefusedCommands,
    testing::Values(Refusal{"UnknownSerial", {"-s", "NONE1", "shell", "ls"}, "device 'NONE1' not found"},
                    Refusal{"Offline", {"-s", "OFF1", "shell", "ls"}, "device offline"},
                    Refusal{"StateOfOffline", {"-s", "OFF1", "get-state"}, "device offline"},
                    Refusal{"Unauthorized",
                            {"-s", "UNA1", "shell", "ls"},
                            "device unauthorized.\n"
                            "This adb server's $ADB_VENDOR_KEYS is not set\n"
                            "Try 'adb kill-server' if that seems wrong.\n"
                            "Otherwise check for a confirmation dialog on your device."},
                    Refusal{"Authorizing", {"-s", "ASK1", "shell", "ls"}, "device still authorizing"},
                    Refusal{"SeveralDevices", {"shell", "ls"}, "more than one device/emulator"},
                    Refusal{"NoEmulator", {"-e", "shell", "ls"}, "no emulators found"},
                    Refusal{"SeveralOverUsb", {"-d", "shell", "ls"}, "more than one device"}),
    [](const auto& refusal) { return refusal.param.name; });

TEST(Server, HasNoPhonesUnlessAsked) {
  const SimulatedPhones phones({});
  EXPECT_EQ(phones.Adb({"shell", "ls"}).errors, RefusalByAdb("no devices/emulators found"));
  EXPECT_EQ(phones.Adb({"devices"}).output, "List of devices attached\n\n");
}

TEST(Server, FindsASerialWithColons) {
  const SimulatedPhones phones({"10.0.0.7:5555", "10.0.0.8:5555"});
  EXPECT_EQ(phones.Adb({"-s", "10.0.0.8:5555", "get-state"}).output, "device\n");
  EXPECT_EQ(phones.Adb({"-s", "10.0.0.8:5555", "get-serialno"}).output, "10.0.0.8:5555\n");
}

TEST(Server, ReconnectAttachesThePhoneAnew) {
  const SimulatedPhones phones({"ALFA1"});
  const auto track = phones.StartAdb({"track-devices"});
  EXPECT_EQ(track->ReadLine(), "000dALFA1\tdevice");
  EXPECT_EQ(phones.Adb({"-s", "ALFA1", "reconnect"}).output, "reconnecting ALFA1 [device]\n\n");
  EXPECT_EQ(track->ReadLine(), "0000000dALFA1\tdevice");
}

TEST(Server, ReconnectsWhatIsOffline) {
  const SimulatedPhones phones({"ALFA1", "OFF1,state=offline", "UNA1,state=unauthorized"});
  EXPECT_EQ(phones.Adb({"reconnect", "offline"}).output, "reconnecting OFF1\nreconnecting UNA1\n");
}

TEST(Server, ConnectsToPhonesOverTheNetwork) {
  const SimulatedPhones phones({"10.0.0.7:5555", "ALFA1"});
  EXPECT_EQ(phones.Adb({"connect", "10.0.0.7"}).output, "already connected to 10.0.0.7:5555\n");
  EXPECT_EQ(phones.Adb({"disconnect", "10.0.0.7:5555"}).output, "disconnected 10.0.0.7:5555\n");
  EXPECT_EQ(phones.Adb({"devices"}).output, "List of devices attached\nALFA1\tdevice\n\n");
  EXPECT_EQ(phones.Adb({"disconnect", "10.0.0.7:5555"}).errors, "error: no such device '10.0.0.7:5555'\n");
  EXPECT_EQ(phones.Adb({"connect", "10.0.0.7:5555"}).output, "connected to 10.0.0.7:5555\n");
  EXPECT_EQ(phones.Adb({"-e", "shell", "echo here"}).output, "here\n");
  EXPECT_EQ(phones.Adb({"connect", "10.0.0.9:5555"}).output,
            "failed to connect to '10.0.0.9:5555': Connection refused\n");
  EXPECT_EQ(phones.Adb({"disconnect"}).output, "disconnected everything\n");
  EXPECT_EQ(phones.Adb({"get-serialno"}).output, "ALFA1\n");
}

TEST(Server, RestartsThePhonesEndWhenAsked) {
  const SimulatedPhones phones({"ALFA1"});
  EXPECT_EQ(phones.Adb({"tcpip", "5555"}).output, "restarting in TCP mode port: 5555\n");
  EXPECT_TRUE(Eventually([&] {
    return phones.Adb({"wait-for-device", "usb"}).output == "restarting in USB mode\n";
  }));
  // The phone may still be attached when it is waited for, and go just then.
  EXPECT_TRUE(Eventually([&] {
    return phones.Adb({"wait-for-device", "shell", "echo here"}).output == "here\n";
  }));
}

TEST(Server, WaitsForAPhone) {
  const SimulatedPhones phones({"ALFA1"});
  phones.Adb({"-s", "ALFA1", "reconnect"});
  EXPECT_EQ(phones.Adb({"-s", "ALFA1", "wait-for-device", "shell", "echo", "back"}).output, "back\n");
}

TEST(Server, EndsOnKillServer) {
  SimulatedPhones phones({"ALFA1", "BETA1,android=legacy"});
  EXPECT_EQ(phones.Adb({"kill-server"}).status, 0);
  EXPECT_EQ(phones.process().Finish().status, 0);
}

TEST(Server, ComesBackAfterKillServerWhenAsked) {
  const SimulatedPhones phones({"ALFA1"}, {"--restart-on-kill"});
  const auto command = phones.StartAdb({"shell", "echo started; sleep 1000"});
  EXPECT_EQ(command->ReadLine(), "started");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(phones.Adb({"kill-server"}).status, 0);
  command->Finish();
  const Outcome start = phones.Adb({"start-server"});
  EXPECT_EQ(start.output + start.errors, "");
  EXPECT_EQ(phones.Adb({"wait-for-device", "shell", "echo here"}).output, "here\n");
}

TEST(Server, AnswersKillServerWhenItIsBack) {
  const SimulatedPhones phones({"ALFA1"}, {"--restart-on-kill"});
  for (int i = 0; i < 5; ++i) {
    const RawClient client(phones.port());
    ASSERT_TRUE(client.connected());
    client.Send(phone::WithLength("host:kill"));
    EXPECT_EQ(client.ReadAll(), "OKAY");
  }
}

TEST(Server, EndsOnInterruptInTheMiddleOfACommand) {
  SimulatedPhones phones({"ALFA1"});
  const auto command = phones.StartAdb({"shell", "echo started; sleep 1000"});
  EXPECT_EQ(command->ReadLine(), "started");
  phones.process().Signal(SIGINT);
  EXPECT_EQ(phones.process().Finish().status, 0);
  command->Finish();
}

TEST(Server, RefusesAPortThatIsTaken) {
  const SimulatedPhones phones({});
  const Outcome second = RunProgram({DAROKLEIM_PHONE_PROGRAM, "--port", phones.port()}, {});
  EXPECT_EQ(second.status, 1);
  EXPECT_THAT(second.errors, StartsWith("darokleim-phone: cannot listen on port " + phones.port()));
}

TEST(Server, NamesTheProgramThatIsMissing) {
  const Outcome outcome = RunProgram({DAROKLEIM_PHONE_PROGRAM, "--port", "0"}, {{"PATH", "/nonexistent"}});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors,
            "darokleim-phone: 'bwrap' is not in PATH; the simulated phone needs bubblewrap (bwrap), mksh and "
            "toybox\n");
}

TEST(Server, NamesTheFolderThatItCannotUse) {
  for (const auto& [folder, reason] : std::vector<std::pair<std::string, std::string>>{
           {"/dev/null", "Not a directory"}, {"/proc/none", "No such file or directory"}}) {
    const Outcome outcome =
        RunProgram({DAROKLEIM_PHONE_PROGRAM, "--port", "0", "--phone", "ALFA1,root=" + folder}, {});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "darokleim-phone: cannot keep a phone in " + folder + ": " + reason + "\n");
  }
  const Outcome outcome =
      RunProgram({DAROKLEIM_PHONE_PROGRAM, "--port", "0", "--phone", "ALFA1"}, {{"TMPDIR", "/nonexistent"}});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, StartsWith("darokleim-phone: no place for temporary files: "));
}

TEST(ManyPhones, WorkAtOnce) {
  constexpr int kPhones = 12;
  Words names;
  for (int i = 0; i < kPhones; ++i) names.push_back("PHONE" + std::to_string(i));
  const SimulatedPhones phones(names);
  std::vector<std::unique_ptr<HostProcess>> commands;
  for (const std::string& name : names) {
    commands.push_back(
        phones.StartAdb({"-s", name, "shell", "getprop ro.serialno; sleep 0.2; echo $((6 * 7))"}));
  }
  for (size_t i = 0; i < commands.size(); ++i) EXPECT_EQ(commands[i]->Finish().output, names[i] + "\n42\n");
}

TEST(CommandLine, ExplainsItself) {
  for (const Words& words : {Words{"--help"}, Words{"ctl", "--help"}, Words{"--version"}}) {
    Words command = {DAROKLEIM_PHONE_PROGRAM};
    command.insert(command.end(), words.begin(), words.end());
    const Outcome outcome = RunProgram(command, {});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
  }
  for (const Words& words : {Words{"--port", "x"}, Words{"--dance"}, Words{"ctl"}}) {
    Words command = {DAROKLEIM_PHONE_PROGRAM};
    command.insert(command.end(), words.begin(), words.end());
    const Outcome outcome = RunProgram(command, {});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.errors, "");
  }
}

TEST(CommandLine, TakesThePortThatAdbTakes) {
  const SimulatedPhones phones({"ALFA1"});
  const Outcome list = RunProgram({DAROKLEIM_PHONE_PROGRAM, "ctl", "list"}, AdbEnvironment(phones.port()));
  EXPECT_THAT(list.output, StartsWith("ALFA1\tdevice\t"));
}

TEST(CommandLine, ExplainsWhatItRefuses) {
  for (const auto& [phone, message] : std::vector<std::pair<std::string, std::string>>{
           {"ALFA1,state=sleepy", "unknown state 'sleepy'"},
           {"ALFA1,android=9", "android is legacy or modern, not '9'"},
           {"ALFA1,color=red", "unknown setting 'color'"},
           {"ALFA1,color", "'color' is not of the form key=value"},
           {"A B", "'A B' cannot be a serial"}}) {
    const Outcome outcome = RunProgram({DAROKLEIM_PHONE_PROGRAM, "--phone", phone}, {});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, EndsWith(message + "\n"));
  }
}

}  // namespace
}  // namespace darokleim::test
