#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;

// One of the four functions, and how it differs from the others.
struct Mapping {
  const char* name;
  std::function<int(const char* serial, const char* first, const char* second)> call;
  bool has_second_port;
  const char* command;  // up to its last port, for serial S1 and first port 900
  const char* enter;
  bool leave_has_code;
  bool echoes;
  int code_of_silence;
};

void PrintTo(const Mapping& mapping, std::ostream* out) {
  *out << mapping.name;
}

const Mapping kMappings[] = {
    {"AdbFowardBind", AdbFowardBind, true, "-s S1 forward tcp:900 tcp:", "AdbFowardBind Enter ...", false,
     false, 1},
    {"AdbFowardRemove",
     [](const char* serial, const char* port, const char*) { return AdbFowardRemove(serial, port); }, false,
     "-s S1 forward --remove tcp:", "AdbFowardRemove Enter ...", false, false, 1},
    {"AdbReverseBind", AdbReverseBind, true, "-s S1 reverse tcp:900 tcp:", "AdbReverseBind Enter ...", true,
     true, 0},
    {"AdbReverseRemove",
     [](const char* serial, const char* port, const char*) { return AdbReverseRemove(serial, port); }, false,
     "-s S1 reverse --remove tcp:", "AdbReverseRemove Enter ... ", true, true, 0},
};

class PortMappingTest : public SdkTest, public ::testing::WithParamInterface<Mapping> {
 protected:
  const std::string name = GetParam().name;
  const std::string last_port = GetParam().has_second_port ? "80" : "900";
  const std::string command = GetParam().command + last_port;

  int Call() { return GetParam().call("S1", "900", "80"); }
  int CallWith(const std::string& output) {
    channel.Expect(command).Prints(output).Uncancellable();
    return Call();
  }
  Event Leave(int code) const {
    return Info(GetParam().leave_has_code ? name + " Leave " + std::to_string(code) + "."
                                          : name + " Leave ...");
  }
  // The journal of a call that reached the channel.
  Journal Around(const Journal& middle, int code) const {
    Journal whole{Info(GetParam().enter)};
    if (GetParam().echoes) whole.push_back(CommandEcho("adb " + command));
    whole.push_back(Ran(command));
    whole.insert(whole.end(), middle.begin(), middle.end());
    whole.push_back(Leave(code));
    return whole;
  }
};

TEST_P(PortMappingTest, OutputWithoutAnErrorIsSuccess) {
  EXPECT_EQ(CallWith("900\n"), ADB_RESULT_OK);
  EXPECT_EQ(journal(), Around({GaveBack()}, 0));
}

TEST_P(PortMappingTest, AnEmptyBufferIsOutput) {
  EXPECT_EQ(CallWith(""), ADB_RESULT_OK);
}

TEST_P(PortMappingTest, AnErrorAnywhereIsOneAndLogged) {
  EXPECT_EQ(CallWith("adb: Error x\n"), 1);
  EXPECT_EQ(journal(),
            Around({Error(name + " Execute Command Failed. Output = adb: Error x\n"), GaveBack()}, 1));
  EXPECT_EQ(CallWith("a\0Errors"s), 1);
}

TEST_P(PortMappingTest, OtherMessagesAreNotErrors) {
  for (const char* output :
       {"error: device 'S1' not found", "error", "ERROR", "Failure", "device unauthorized"}) {
    EXPECT_EQ(CallWith(output), ADB_RESULT_OK) << output;
  }
}

TEST_P(PortMappingTest, NoOutputIsAFailureToForwardAndASuccessToReverse) {
  channel.Expect(command).Uncancellable();
  EXPECT_EQ(Call(), GetParam().code_of_silence);
  const Journal middle = GetParam().code_of_silence == 1
                             ? Journal{Error(name + " Execute Command Failed. Output = (null)")}
                             : Journal{};
  EXPECT_EQ(journal(), Around(middle, GetParam().code_of_silence));
}

TEST_P(PortMappingTest, AValueOfTheChannelWinsOverTheText) {
  channel.Expect(command).Prints("Error").Returns(1001).Uncancellable();
  EXPECT_EQ(Call(), 1001);
  EXPECT_EQ(journal(), Around({Error(name + " Execute Command Failed. Error = 1001"), GaveBack()}, 1001));
  channel.Expect(command).Returns(3002).Uncancellable();
  EXPECT_EQ(Call(), 3002);
}

TEST_P(PortMappingTest, NullArgumentsAreRefusedWithALeaveLine) {
  Journal expected;
  const auto refused = [&](const char* serial, const char* first, const char* second) {
    EXPECT_EQ(GetParam().call(serial, first, second), ADB_RESULT_INVALID_PARAM);
    expected.insert(expected.end(), {Info(GetParam().enter), Error(name + " Param is Invalid"), Leave(4)});
  };
  refused(nullptr, "900", "80");
  refused("S1", nullptr, "80");
  if (GetParam().has_second_port) refused("S1", "900", nullptr);
  EXPECT_EQ(journal(), expected);
}

TEST_P(PortMappingTest, PortsAreAnyText) {
  const std::string head = GetParam().command;
  for (const char* port : {"", "0", "-1", "99999", "abc", "8 0", "%s%n"}) {
    channel.Expect(head + port).Prints("").Uncancellable();
    const bool two = GetParam().has_second_port;
    EXPECT_EQ(GetParam().call("S1", two ? "900" : port, port), ADB_RESULT_OK) << port;
  }
}

TEST_P(PortMappingTest, CommandsAreCutAt511CharactersTheirEchoIsNot) {
  const std::string head = GetParam().command;
  for (const std::size_t length : {510U, 511U, 512U, 2000U}) {
    const std::string port = std::string(length - head.size() - 1, '1') + "$";
    channel.Expect((head + port).substr(0, 511)).Prints("").Uncancellable();
    const bool two = GetParam().has_second_port;
    EXPECT_EQ(GetParam().call("S1", two ? "900" : port.c_str(), port.c_str()), ADB_RESULT_OK) << length;
    const Journal lines = log_lines();
    const Event before_leave = lines[lines.size() - 2];
    EXPECT_EQ(before_leave, GetParam().echoes ? CommandEcho("adb " + head + port) : Info(GetParam().enter));
  }
}

// adb's own messages are in lower case: only the channel's status shows the failure.
TEST_P(PortMappingTest, RealMessages) {
  for (const std::string& sample : DeviceOutputsIn("adb-forward")) {
    EXPECT_EQ(CallWith(DeviceOutput(sample)), ADB_RESULT_OK) << sample;
    channel.Expect(command).Prints(DeviceOutput(sample)).Returns(1001).Uncancellable();
    EXPECT_EQ(Call(), 1001) << sample;
  }
}

INSTANTIATE_TEST_SUITE_P(All, PortMappingTest, ::testing::ValuesIn(kMappings),
                         [](const auto& mapping) { return mapping.param.name; });

class PortOrderTest : public SdkTest {};

TEST_F(PortOrderTest, TheSideThatListensComesFirst) {
  channel.Expect("-s S1 forward tcp:900 tcp:80").Prints("").Uncancellable();
  EXPECT_EQ(AdbFowardBind("S1", /*host_port=*/"900", /*device_port=*/"80"), ADB_RESULT_OK);
  channel.Expect("-s S1 reverse tcp:700 tcp:701").Prints("").Uncancellable();
  EXPECT_EQ(AdbReverseBind("S1", /*device_port=*/"700", /*host_port=*/"701"), ADB_RESULT_OK);
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbFowardBind Enter ..."), Ran("-s S1 forward tcp:900 tcp:80"), GaveBack(),
                          Info("AdbFowardBind Leave ..."), Info("AdbReverseBind Enter ..."),
                          CommandEcho("adb -s S1 reverse tcp:700 tcp:701"),
                          Ran("-s S1 reverse tcp:700 tcp:701"), GaveBack(), Info("AdbReverseBind Leave 0.")));
}

}  // namespace
}  // namespace darokleim::test
