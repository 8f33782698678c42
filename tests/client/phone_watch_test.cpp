// A watch outlives its server, and starts one where none runs.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include "tests/client/client_on_phone.h"
#include "tests/client/recorder.h"
#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {
namespace {

constexpr char kSerial[] = "R58M123ABC";
const std::string kAdded = std::string("added ") + kSerial + " device";
const std::string kRemoved = std::string("removed ") + kSerial + " device";

dk::Client ClientOf(const std::string& server, const std::string& adb = "") {
  dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
  options.server = server.c_str();
  if (!adb.empty()) options.adb_path = adb.c_str();
  return dk::Client(options);
}

dk::Watch WatchOf(const dk::Client& client, Recorder* recorder) {
  return client.watch([recorder](dk_change change, const dk::DeviceInfo* info) { (*recorder)(change, info); })
      .value();
}

TEST(ClientWatch, SurvivesKillServer) {
  const SimulatedPhones phones({kSerial}, {"--restart-on-kill"});
  const dk::Client client = ClientOf("tcp:" + phones.port());
  Recorder recorder;
  dk::Watch watch = WatchOf(client, &recorder);
  for (long i = 1; i <= 3; ++i) {
    ASSERT_TRUE(recorder.Await(kAdded, i)) << i;
    phones.Adb({"kill-server"});
    ASSERT_TRUE(recorder.Await("server lost", i)) << i;
  }
  ASSERT_TRUE(recorder.Await(kAdded, 4));
  watch.stop();
  const std::vector<std::string> round = {"server found", kAdded, kRemoved, "server lost"};
  std::vector<std::string> expected;
  for (int i = 0; i < 3; ++i) expected.insert(expected.end(), round.begin(), round.end());
  expected.insert(expected.end(), {"server found", kAdded});
  EXPECT_EQ(recorder.events(), expected);
}

// The adb of this test starts simulated phones on the port that it is told.
TEST(ClientWatch, SurvivesACrashOfTheServerAndStartsAnotherOne) {
  SimulatedPhones phones({kSerial});
  const TemporaryDirectory directory;
  const std::string adb = directory.File("adb");
  WriteFile(adb, std::string("#!/bin/sh\n[ \"$1 $3\" = '-L start-server' ] || exit 1\n") +
                     "nohup '" DAROKLEIM_PHONE_PROGRAM "' --port \"${2#tcp:}\" --phone STARTED1 >'" +
                     directory.File("log") + "' 2>&1 </dev/null &\n" + "until grep -q ready '" +
                     directory.File("log") + "'; do sleep 0.05; done\n");
  chmod(adb.c_str(), 0755);
  const dk::Client client = ClientOf("tcp:" + phones.port(), adb);
  Recorder recorder;
  dk::Watch watch = WatchOf(client, &recorder);
  ASSERT_TRUE(recorder.Await(kAdded));
  phones.process().Signal(SIGKILL);
  ASSERT_TRUE(recorder.Await("server lost"));
  EXPECT_TRUE(recorder.Await(kRemoved));
  EXPECT_TRUE(recorder.Await("server found", 2));
  EXPECT_TRUE(recorder.Await("added STARTED1 device"));
  watch.stop();
  EXPECT_EQ(client.devices().value().size(), 1U);
  phones.Adb({"kill-server"});
}

// A real server, which knows no phone.
TEST(ClientWatch, StartsAServerWithTheCallersAdb) {
  std::string port;
  { port = SimulatedPhones({}).port(); }
  const dk::Client client = ClientOf("tcp:" + port, PathOfProgram("adb"));
  const dk::Client without_adb = ClientOf("tcp:" + port);
  EXPECT_EQ(without_adb.server_version().code(), DK_NO_SERVER);
  Recorder recorder;
  dk::Watch watch = WatchOf(client, &recorder);
  EXPECT_TRUE(recorder.Await("server found"));
  EXPECT_EQ(without_adb.server_version().value(), 41);
  RunProgram({"adb", "kill-server"}, AdbEnvironment(port));
  EXPECT_TRUE(recorder.Await("server found", 2));
  watch.stop();
  RunProgram({"adb", "kill-server"}, AdbEnvironment(port));
  EXPECT_EQ(without_adb.server_version().code(), DK_NO_SERVER) << "a stopped watch starts none";
}

}  // namespace
}  // namespace darokleim::test
