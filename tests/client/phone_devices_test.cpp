// Devices, a watch on them, commands, ports and facts.
#include <gmock/gmock.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <thread>

#include "tests/client/client_on_phone.h"
#include "tests/client/recorder.h"
#include "tests/support/eventually.h"

namespace darokleim::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Devices : public ClientOnPhone {};
DAROKLEIM_ON_BOTH_GENERATIONS(Devices);

TEST_P(Devices, AreListedInEveryState) {
  Start({std::string(kSerial) + ",android=" + GetParam(), "LOCKED42,state=unauthorized", "192.168.1.5:5555"});
  std::map<std::string, dk::DeviceInfo> devices;
  for (const dk::DeviceInfo& device : client().devices().value()) devices[device.serial] = device;
  ASSERT_EQ(devices.size(), 3U);
  EXPECT_EQ(devices[kSerial].state, DK_STATE_READY);
  EXPECT_EQ(devices["LOCKED42"].state, DK_STATE_UNAUTHORIZED);
  EXPECT_EQ(devices["192.168.1.5:5555"].link, DK_LINK_NETWORK);
  EXPECT_EQ(client().open().code(), DK_SEVERAL_DEVICES);
  EXPECT_EQ(client().open("LOCKED42").value().run({"ls"}).code(), DK_DEVICE_UNAUTHORIZED);
  EXPECT_EQ(client().open("NOBODY").value().run({"ls"}).code(), DK_NO_DEVICE);
}

TEST_P(Devices, AreWatched) {
  Recorder recorder;
  dk::Watch watch =
      client().watch([&](dk_change change, const dk::DeviceInfo* info) { recorder(change, info); }).value();
  ASSERT_TRUE(recorder.Await(std::string("added ") + kSerial + " device"));
  EXPECT_EQ(recorder.events().front(), "server found");
  for (const char* state : {"unauthorized", "device"}) {
    phones().Control({kSerial, "state", state});
    ASSERT_TRUE(recorder.Await(std::string("changed ") + kSerial + " " + state)) << state;
  }
  phones().Control({kSerial, "unplug"});
  ASSERT_TRUE(recorder.Await(std::string("removed ") + kSerial + " device"));
  phones().Control({kSerial, "plug"});
  watch.stop();
  const auto count = recorder.events().size();
  phones().Control({kSerial, "unplug"});
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_EQ(recorder.events().size(), count);
}

TEST_P(Devices, AWatchIsStoppedFromWithinItsCallback) {
  struct State {
    std::atomic<int> calls{0};
    dk_watch* watch = nullptr;
    std::mutex started;
  };
  // Never freed: the callback may still be returning when the program ends.
  static auto& kept = *new std::deque<State>;
  State& state = kept.emplace_back();
  {
    const std::lock_guard lock(state.started);
    ASSERT_EQ(dk_watch_start(
                  client().get(),
                  [](void* user, dk_change, const dk_device_info*) {
                    auto& seen = *static_cast<State*>(user);
                    const std::lock_guard after(seen.started);
                    ++seen.calls;
                    dk_watch_stop(seen.watch);
                  },
                  &state, &state.watch, nullptr),
              DK_OK);
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(state.calls, 1);
}

TEST_P(Devices, AreWaitedFor) {
  phones().Control({kSerial, "unplug"});
  EXPECT_EQ(phone().wait(DK_STATE_READY, {{}, std::chrono::milliseconds(100)}).code(), DK_TIMED_OUT);
  std::thread later([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    phones().Control({kSerial, "plug"});
  });
  EXPECT_TRUE(phone().wait(DK_STATE_READY, {{}, std::chrono::seconds(20)}));
  later.join();
  EXPECT_EQ(phone().state().value(), DK_STATE_READY);
}

TEST_P(Devices, RunCommandsWithTheirExitStatus) {
  const dk::Output output = phone().run_script("echo out; echo err >&2; exit 3").value();
  EXPECT_EQ(output.exit_status, 3);
  if (legacy()) {
    EXPECT_EQ(output.out, "out\nerr\n");
  } else {
    EXPECT_EQ(output.out, "out\n");
    EXPECT_EQ(output.err, "err\n");
  }
  EXPECT_EQ(phone().run({"echo", "it's", "$HOME", "a  b", ""}).value().out, "it's $HOME a  b \n");
  EXPECT_EQ(phone().run_script("printf 'no line break'").value().out, "no line break");
  EXPECT_EQ(phone().run_script("echo 'unclosed").value().exit_status == 0, false);
  EXPECT_EQ(phone().run({"sleep", "30"}, {{}, std::chrono::milliseconds(200)}).code(), DK_TIMED_OUT);
}

TEST_P(Devices, MapPorts) {
  const int port = phone().forward("tcp:0", "tcp:7000").value();
  EXPECT_GT(port, 0);
  const std::string from = "tcp:" + std::to_string(port);
  EXPECT_EQ(phone().forward(from, "tcp:7001").code(), DK_ADDRESS_IN_USE);
  EXPECT_TRUE(phone().forward(from, "tcp:7001", true));
  EXPECT_THAT(phones().Adb({"forward", "--list"}).output, HasSubstr(from + " tcp:7001"));
  EXPECT_TRUE(phone().remove_forward(from));
  EXPECT_EQ(phone().remove_forward(from).code(), DK_SERVER_REFUSED);
  ASSERT_TRUE(phone().forward("tcp:0", "tcp:7000"));
  EXPECT_TRUE(phone().remove_forward(""));
  EXPECT_EQ(phones().Adb({"forward", "--list"}).output.find("tcp:"), std::string::npos);
}

TEST_P(Devices, AreDescribed) {
  bool found = false;
  for (const auto& [name, value] : phone().properties().value())
    found = found || (name == "ro.build.version.release" && !value.empty());
  EXPECT_TRUE(found);
  EXPECT_EQ(phone().battery().value().level, 87);
  EXPECT_EQ(phone().screen().value().width, 1080);
  Shell("wm size 720x1280; wm density 320");
  EXPECT_EQ(phone().screen().value().height, 1280);
  EXPECT_EQ(phone().screen().value().density, 320);
  EXPECT_GT(phone().memory().value().total, phone().memory().value().available);
  EXPECT_EQ(phone().screenshot().value().substr(1, 3), "PNG");
}

TEST_P(Devices, TakeInput) {
  ASSERT_TRUE(phone().type_text("it's 100%sure; $HOME"));
  EXPECT_THAT(phones().Control({kSerial, "show", "input"}).output, HasSubstr("it's 100"));
  EXPECT_EQ(phone().type_text("\xc3\xa4").code(), DK_INVALID_ARGUMENT);
  EXPECT_TRUE(phone().press_key("KEYCODE_HOME"));
  EXPECT_EQ(phone().press_key("1; reboot").code(), DK_INVALID_ARGUMENT);
  EXPECT_TRUE(phone().tap(10, 20));
}

TEST(Server, ThatIsNotThereIsSaidSo) {
  dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
  options.server = "tcp:1";
  const dk::Client client(options);
  EXPECT_EQ(client.devices().code(), DK_NO_SERVER);
  EXPECT_EQ(client.open().code(), DK_NO_SERVER);
}

TEST(Errors, HaveSentences) {
  EXPECT_STREQ(dk_code_name(DK_NO_DEVICE), "DK_NO_DEVICE");
  EXPECT_STREQ(dk_code_name(static_cast<dk_code>(7)), "unknown");
  EXPECT_EQ(dk_error_code(nullptr), DK_OUT_OF_MEMORY);
  EXPECT_STREQ(dk_error_message(nullptr), "Out of memory.");
}

TEST_P(Devices, TheServerIsEnded) {
  EXPECT_TRUE(client().stop_server());
  EXPECT_TRUE(Eventually([this] { return client().stop_server().code() == DK_NO_SERVER; }));
}

}  // namespace
}  // namespace darokleim::test
