// A host that forks while the client is at work.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <set>
#include <thread>
#include <vector>

#include "tests/client/calls.h"
#include "tests/client/restless_server.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/forked_server.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

// A watch, a log and a shell session that call back all the time.
class Running {
 public:
  explicit Running(const Client& client) {
    EXPECT_EQ(dk_watch_start(client.context(), OnChange, &watch, &watch.watch, nullptr), DK_OK);
    EXPECT_EQ(dk_log_start(client.device(), nullptr, OnRecord, OnEnd, &log, &log.log, nullptr), DK_OK);
    EXPECT_EQ(
        dk_shell_start(client.device(), nullptr, OnShellOutput, OnShellEnd, &shell, &shell.shell, nullptr),
        DK_OK);
  }
  ~Running() { Stop(); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  // As a caller does in a fork that does not know better, too.
  void Stop() {
    dk_watch_stop(watch.watch);
    dk_log_stop(log.log);
    dk_shell_stop(shell.shell);
  }
  void ExpectTheyGoOn() const {
    for (const Listener* listener : {&watch, &log, &shell}) {
      const auto most = std::chrono::steady_clock::now() + std::chrono::seconds(10);
      const int before = listener->calls;
      while (listener->calls == before && std::chrono::steady_clock::now() < most) std::this_thread::yield();
      EXPECT_GT(listener->calls, before);
      EXPECT_EQ(listener->ends, 0);
    }
  }

  Listener watch, log, shell;
};

// Threads that call all the time, each with its own folder.
class Callers {
 public:
  Callers(const Client& client, const test::TemporaryDirectory& directory) {
    for (int i = 0; i < 3; ++i) {
      threads_.emplace_back([this, &client, folder = directory.File("caller" + std::to_string(i))] {
        PreparePlace(folder);
        while (!done_) {
          for (const ClientCall& call : ClientCalls()) {
            if (call.ends_server || done_) continue;
            std::string result;
            EXPECT_EQ(call.run({client.context(), client.device(), folder}, nullptr, &result), DK_OK)
                << call.name;
            EXPECT_EQ(result, call.expected) << call.name;
          }
        }
      });
    }
  }
  ~Callers() {
    done_ = true;
    for (std::thread& thread : threads_) thread.join();
  }
  Callers(const Callers&) = delete;
  Callers& operator=(const Callers&) = delete;

 private:
  std::atomic<bool> done_ = false;
  std::vector<std::thread> threads_;
};

// The exit status of a fork that runs this, or more than that where it hangs.
template <typename Body>
int StatusOfChild(Body body) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(20);
    _exit(body());
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return status;
}

class ClientForks : public testing::Test {
 protected:
  const test::TemporaryDirectory directory_;
  const RestlessServer restless_;
  const Client watcher_{restless_.address()};
  const SpoiltPhone phone_{true};
  const Client caller_{phone_.address()};
};

TEST_F(ClientForks, AChildThatExitsAtOnceHarmsNothing) {
  const Running running(watcher_);
  const Callers callers(caller_, directory_);
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(StatusOfChild([] { return 0; }), 0);
    running.ExpectTheyGoOn();
  }
}

TEST_F(ClientForks, AChildThatEndsWhatItHasInheritedHarmsNothing) {
  Running running(watcher_);
  dk_cancel* cancel = nullptr;
  ASSERT_EQ(dk_cancel_new(&cancel), DK_OK);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(StatusOfChild([&] {
                running.Stop();
                dk_cancel_set(cancel);
                return 0;
              }),
              0);
    running.ExpectTheyGoOn();
  }
  EXPECT_FALSE(dk_cancel_is_set(cancel));
  dk_call call = DK_CALL_INIT;
  call.cancel = cancel;
  call.timeout_ms = 20'000;
  int version = 0;
  EXPECT_EQ(dk_server_version(caller_.context(), &version, &call), DK_OK);
  dk_cancel_set(cancel);
  EXPECT_EQ(dk_server_version(caller_.context(), &version, &call), DK_CANCELLED);
  dk_cancel_free(cancel);
}

#if !defined(DAROKLEIM_SANITIZED)  // a sanitizer's allocator may be locked by another thread at the fork
TEST_F(ClientForks, AChildMayUseAContextOfItsOwn) {
  const Running running(watcher_);
  const Callers callers(caller_, directory_);
  const std::string folder = directory_.File("child");
  for (int i = 0; i < 5; ++i) {
    const int status = StatusOfChild([&] {
      PreparePlace(folder);
      const Client own(phone_.address());
      for (const ClientCall& call : ClientCalls()) {
        std::string result;
        const bool succeeds = call.run({own.context(), own.device(), folder}, nullptr, &result) == DK_OK &&
                              result == call.expected;
        if (!succeeds) return 1;
      }
      if (!HarmAt(folder).empty()) return 2;
      const Client watcher(restless_.address());
      const Running own_running(watcher);
      own_running.ExpectTheyGoOn();
      return testing::Test::HasFailure() ? 3 : 0;
    });
    EXPECT_EQ(status, 0) << i;
  }
}
#endif

// --- Descriptors

// Of this process, those that a program which it executes would get.
std::set<int> Inherited() {
  std::set<int> inherited;
  for (const auto& entry : std::filesystem::directory_iterator("/dev/fd")) {
    const int descriptor = std::stoi(entry.path().filename().native());
    const int flags = fcntl(descriptor, F_GETFD);
    if (flags >= 0 && (flags & FD_CLOEXEC) == 0) inherited.insert(descriptor);
  }
  return inherited;
}

std::set<int> inherited_before;
int looks = 0;

void ExpectNothingMoreIsInherited() {
  ++looks;
  EXPECT_EQ(Inherited(), inherited_before);
}

// The servers are processes of their own, so that no descriptor of theirs is among those of the client.
TEST(ClientDescriptors, AreClosedInProgramsThatTheHostExecutes) {
  const test::ForkedServer restless_process([](const test::ForkedServer::Report& report) {
    const RestlessServer server(test::ScriptedServer::Socket::kPort);
    report(server.port());
  });
  const test::ForkedServer phone_process([](const test::ForkedServer::Report& report) {
    const SpoiltPhone phone(true, {}, test::ScriptedServer::Socket::kPort);
    report(phone.port());
  });
  inherited_before = Inherited();
  const Client watcher("tcp:" + std::to_string(restless_process.port()));
  const Client client("tcp:" + std::to_string(phone_process.port()));
  const Running running(watcher);
  running.ExpectTheyGoOn();
  ExpectNothingMoreIsInherited();

  const test::TemporaryDirectory directory;
  const std::string folder = directory.File("place");
  PreparePlace(folder);
  const std::string send = folder + "/send", fetched = folder + "/fetched";
  const dk_item sent = {send.c_str(), "/sdcard/new"}, received = {"/sdcard/tree", fetched.c_str()};
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.existing = DK_REPLACE;
  options.on_progress = [](void*, const dk_progress*) {
    ExpectNothingMoreIsInherited();
    return true;
  };
  EXPECT_EQ(dk_push(client.device(), &sent, 1, &options, nullptr, nullptr), DK_OK);
  EXPECT_EQ(dk_pull(client.device(), &received, 1, &options, nullptr, nullptr), DK_OK);
  const auto on_entry = [](void*, const dk_entry*) {
    ExpectNothingMoreIsInherited();
    return true;
  };
  EXPECT_EQ(dk_list(client.device(), "/sdcard/tree", on_entry, nullptr, nullptr), DK_OK);
  dk_run_options run = DK_RUN_OPTIONS_INIT;
  run.on_output = [](void*, dk_stream, const char*, size_t) {
    ExpectNothingMoreIsInherited();
    return true;
  };
  EXPECT_EQ(dk_run_script(client.device(), "echo hello", &run, nullptr, nullptr), DK_OK);
  EXPECT_GE(looks, 8);
}

}  // namespace
}  // namespace darokleim::client_test
