// The library as something that is loaded and unloaded, and what it shows to those who load it.
#include <dlfcn.h>

#include <atomic>
#include <set>
#include <sstream>

#include "tests/channel/channel_run.h"
#include "tests/channel/direct/phone_server.h"
#include "tests/support/eventually.h"

namespace darokleim::channel {
namespace {

class LoadedChannel {
 public:
  LoadedChannel() : handle_(dlopen(DAROKLEIM_CHANNEL_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(handle_, nullptr) << dlerror();
  }
  ~LoadedChannel() { Unload(); }

  template <typename Function>
  Function* Get(const char* name) {
    return reinterpret_cast<Function*>(dlsym(handle_, name));
  }
  void Unload() {
    if (handle_ != nullptr) dlclose(handle_);
    handle_ = nullptr;
  }

 private:
  void* handle_;
};

class UnloadTest : public testing::Test {
 protected:
  int Start(LoadedChannel* channel, const std::string& args, void* context,
            void (*receiver)(void*, const char*, int)) {
    channel->Get<decltype(InitAdbCommuncation2Server)>("InitAdbCommuncation2Server")(
        DAROKLEIM_MISBEHAVING_ADB, directory_.path().c_str(), this);
    return channel->Get<decltype(ExecuteAdbCommandAnsynchronization)>("ExecuteAdbCommandAnsynchronization")(
        args.c_str(), nullptr, context, reinterpret_cast<void*>(receiver));
  }

  test::TemporaryDirectory directory_;
};

TEST_F(UnloadTest, StopsEveryStream) {
  for (const char* orders :
       {" sleep:60000", " flood-for-ever", " ignore:15 sleep:60000", " ignore:15 close sleep:60000"}) {
    const std::string file = directory_.File("pid");
    std::atomic<int> last = 0;
    LoadedChannel channel;
    ASSERT_EQ(Start(&channel, " pid:" + file + orders, &last,
                    [](void* context, const char* data, int length) {
                      if (data == nullptr) *static_cast<std::atomic<int>*>(context) = length;
                    }),
              0);
    const pid_t pid = PidIn(file);
    ASSERT_GT(pid, 0);
    channel.Unload();
    EXPECT_EQ(last, 3003) << orders;
    EXPECT_EQ(kill(pid, 0), -1) << orders;
    unlink(file.c_str());
  }
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(UnloadTest, LeavesNothingInitialised) {
  for (int load = 0; load < 2; ++load) {
    LoadedChannel channel;
    char* out = nullptr;
    int length = 0;
    EXPECT_EQ(channel.Get<decltype(ExecuteAdbCommandSynchronization)>("ExecuteAdbCommandSynchronization")(
                  " devices", nullptr, &out, &length),
              3001);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(channel.Get<decltype(ExecuteAdbCommandAnsynchronization)>("ExecuteAdbCommandAnsynchronization")(
                  " devices", nullptr, nullptr, nullptr),
              3001);
    EXPECT_EQ(Start(&channel, " exit:0", nullptr, nullptr), 0);
  }
}

TEST_F(UnloadTest, ReallyUnloads) {
  {
    LoadedChannel channel;
    ASSERT_EQ(Start(&channel, " flood:100000", nullptr, nullptr), 0);
  }
  EXPECT_EQ(dlopen(DAROKLEIM_CHANNEL_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr);
}

TEST_F(UnloadTest, DoesNotWaitForEverForAReceiver) {
  test::InProcessOfItsOwn([&] {
    LoadedChannel channel;
    std::atomic<bool> called = false;
    ASSERT_EQ(Start(&channel, " print:line\\n sleep:60000", &called,
                    [](void* context, const char*, int) {
                      *static_cast<std::atomic<bool>*>(context) = true;
                      for (;;) pause();
                    }),
              0);
    while (!called) std::this_thread::sleep_for(milliseconds(1));
    const Clock::time_point start = Clock::now();
    channel.Unload();
    EXPECT_LT(Since(start), milliseconds(20000));
  });
}

// The wait status of a process of its own that runs body.
template <typename Body>
int StatusOfHost(Body body) {
  const pid_t host = fork();
  if (host == 0) {
    body();
    _exit(99);
  }
  int status = -1;
  EXPECT_EQ(waitpid(host, &status, 0), host);
  return status;
}

TEST_F(UnloadTest, HappensWhenTheHostExits) {
  const std::string file = directory_.File("pid");
  const int status = StatusOfHost([&] {
    LoadedChannel channel;
    Start(&channel, " ignore:15 pid:" + file + " sleep:60000", nullptr, nullptr);
    PidIn(file);
    exit(5);
  });
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 5) << status;
  EXPECT_TRUE(EndsWithin(PidIn(file), milliseconds(5000)));
}

TEST_F(UnloadTest, ClosesTheConnectionsThatAreKept) {
  const std::string list = "DONE" + std::string(72, '\0');
  const PhoneServer server("ls_v2", [&](const std::string&, int connection) {
    WriteBytes(connection, "OKAY");
    ReadBytes(connection, 10);
    WriteBytes(connection, list);
    WaitUntilClosed(connection);
  });
  setenv("DAROKLEIM_CHANNEL", "direct", 1);
  {
    LoadedChannel channel;
    channel.Get<decltype(InitAdbCommuncation2Server)>("InitAdbCommuncation2Server")("/none", nullptr,
                                                                                    nullptr);
    char* out = nullptr;
    int length = 0;
    EXPECT_EQ(channel.Get<decltype(ExecuteAdbCommandSynchronization)>("ExecuteAdbCommandSynchronization")(
                  " -s X ls /a", nullptr, &out, &length),
              0);
    channel.Get<decltype(ReleaseAdbOutBuffer)>("ReleaseAdbOutBuffer")(out);
    EXPECT_TRUE(test::Eventually([&] { return server.open_connections() == 1; }));
    const Clock::time_point start = Clock::now();
    channel.Unload();
    EXPECT_LT(Since(start), milliseconds(1500)) << "the thread that closes them ends at once";
  }
  EXPECT_TRUE(test::Eventually([&] { return server.open_connections() == 0; }));
  unsetenv("DAROKLEIM_CHANNEL");
  unsetenv("ANDROID_ADB_SERVER_PORT");
}

TEST_F(UnloadTest, StopsDirectStreams) {
  const PhoneServer server("", [](const std::string&, int connection) {
    WriteBytes(connection, "OKAY");
    WaitUntilClosed(connection);
  });
  setenv("DAROKLEIM_CHANNEL", "direct", 1);
  std::atomic<int> last = 0;
  LoadedChannel channel;
  ASSERT_EQ(Start(&channel, " -s X logcat", &last,
                  [](void* context, const char* data, int length) {
                    if (data == nullptr) *static_cast<std::atomic<int>*>(context) = length;
                  }),
            0);
  EXPECT_TRUE(test::Eventually([&] { return !server.services().empty(); }));
  channel.Unload();
  EXPECT_EQ(last, 3003);
  unsetenv("DAROKLEIM_CHANNEL");
  unsetenv("ANDROID_ADB_SERVER_PORT");
}

TEST_F(UnloadTest, HappensWhenAReceiverEndsTheHost) {
  const std::string file = directory_.File("pid");
  const int status = StatusOfHost([&] {
    LoadedChannel channel;
    Start(&channel, " pid:" + file + " print:line\\n sleep:60000", nullptr,
          [](void*, const char*, int) { exit(7); });
    for (;;) pause();
  });
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7) << status;
  EXPECT_TRUE(EndsWithin(PidIn(file), milliseconds(5000)));
}

TEST(ExportedSymbols, AreTheFourFunctionsAndNothingElse) {
  const std::string functions[] = {"InitAdbCommuncation2Server", "ExecuteAdbCommandSynchronization",
                                   "ExecuteAdbCommandAnsynchronization", "ReleaseAdbOutBuffer"};
#if defined(__APPLE__)
  const std::string prefix = "_";
  const std::string list = test::RunProgram({DAROKLEIM_NM, "-gU", DAROKLEIM_CHANNEL_LIBRARY}).output;
#else
  const std::string prefix;
  const std::string list =
      test::RunProgram({DAROKLEIM_NM, "-D", "--defined-only", DAROKLEIM_CHANNEL_LIBRARY}).output;
#endif
  std::set<std::string> expected, found;
  for (const std::string& function : functions) expected.insert(prefix + function);
  std::istringstream lines(list);
  for (std::string line; std::getline(lines, line);) found.insert(line.substr(line.rfind(' ') + 1));
  EXPECT_EQ(found, expected);
}

}  // namespace
}  // namespace darokleim::channel
