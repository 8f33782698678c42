// Watches, logs and shell sessions whose server or phone breaks off, hangs or says anything, and the host's threads and signals
// around them.
#include <gmock/gmock.h>
#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

#include "tests/client/calls.h"
#include "tests/client/restless_server.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/eventually.h"
#include "tests/support/forked_server.h"
#include "tests/support/odd_host.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/own_process.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

using std::chrono::milliseconds;
using Then = Spoiling::Then;

// What one of them has reported.
struct StreamReport {
  dk_code start = DK_OK;
  std::string text;  // of all records, or the output, or the events
  std::optional<dk_code> end;
  int exit_status = -2;
};

class Reporter {
 public:
  static void OnLogRecord(void* user, const dk_log_record* record) {
    static_cast<Reporter*>(user)->Append(std::string(record->text) + ";");
  }
  static void OnLogEnd(void* user, dk_code code, const dk_error* error) { OnTheEnd(user, code, -1, error); }
  static void OnOutput(void* user, dk_stream, const char* data, size_t size) {
    static_cast<Reporter*>(user)->Append({data, size});
  }
  static void OnTheEnd(void* user, dk_code code, int exit_status, const dk_error* error) {
    EXPECT_EQ(error == nullptr, code == DK_OK);
    auto& self = *static_cast<Reporter*>(user);
    const std::lock_guard lock(self.mutex_);
    EXPECT_FALSE(self.report_.end) << "a second end";
    self.report_.end = code;
    self.report_.exit_status = exit_status;
    self.news_.notify_all();
  }
  static void OnEvent(void* user, dk_change change, const dk_device_info* info) {
    static const char* const kNames[] = {"?", "added", "changed", "removed", "lost", "found"};
    static_cast<Reporter*>(user)->Append(std::string(kNames[change]) +
                                         (info == nullptr ? "" : std::string(" ") + info->model) + ";");
  }

  StreamReport report() const {
    const std::lock_guard lock(mutex_);
    return report_;
  }
  bool AwaitEnd() const {
    std::unique_lock lock(mutex_);
    return news_.wait_for(lock, kPatience, [this] { return report_.end.has_value(); });
  }
  bool Await(const std::string& text) const {
    std::unique_lock lock(mutex_);
    return news_.wait_for(lock, kPatience, [&] { return report_.text == text; });
  }

 private:
  void Append(std::string_view text) {
    const std::lock_guard lock(mutex_);
    report_.text.append(text);
    news_.notify_all();
  }

  static constexpr std::chrono::seconds kPatience{20};
  mutable std::mutex mutex_;
  mutable std::condition_variable news_;
  StreamReport report_;
};

dk_call WithLimit(int64_t milliseconds_at_most, dk_cancel* cancel = nullptr) {
  dk_call call = DK_CALL_INIT;
  call.timeout_ms = milliseconds_at_most;
  call.cancel = cancel;
  return call;
}

// What is in the log, up to its end.
StreamReport ReadLog(const SpoiltPhone& phone) {
  const Client client(phone.address());
  const Reporter reporter;
  dk_log_options options = DK_LOG_OPTIONS_INIT;
  options.stop_at_end = true;
  dk_log* log = nullptr;
  const dk_call call = WithLimit(20'000);
  const dk_code start = dk_log_start(client.device(), &options, Reporter::OnLogRecord, Reporter::OnLogEnd,
                                     const_cast<Reporter*>(&reporter), &log, &call);
  EXPECT_EQ(log != nullptr, start == DK_OK);
  if (start == DK_OK) {
    EXPECT_TRUE(reporter.AwaitEnd());
  }
  dk_log_stop(log);
  StreamReport report = reporter.report();
  report.start = start;
  return report;
}

// A shell that says hello and ends.
StreamReport SayHello(const SpoiltPhone& phone) {
  const Client client(phone.address());
  const Reporter reporter;
  dk_shell_options options = DK_SHELL_OPTIONS_INIT;
  options.command = "echo hello";
  dk_shell* shell = nullptr;
  const dk_call call = WithLimit(20'000);
  const dk_code start = dk_shell_start(client.device(), &options, Reporter::OnOutput, Reporter::OnTheEnd,
                                       const_cast<Reporter*>(&reporter), &shell, &call);
  EXPECT_EQ(shell != nullptr, start == DK_OK);
  if (start == DK_OK) {
    dk_shell_close_input(shell, nullptr);
    EXPECT_TRUE(reporter.AwaitEnd());
  }
  dk_shell_stop(shell);
  StreamReport report = reporter.report();
  report.start = start;
  return report;
}

struct StreamKind {
  const char* name;
  StreamReport (*run)(const SpoiltPhone& phone);
  std::string whole;
  int exit_status;
};

class BrokenStreams : public testing::TestWithParam<StreamKind> {
 protected:
  static std::size_t WholeBytes() {
    const SpoiltPhone phone(true);
    const StreamReport report = GetParam().run(phone);
    EXPECT_EQ(report.end, DK_OK);
    EXPECT_EQ(report.text, GetParam().whole);
    EXPECT_EQ(report.exit_status, GetParam().exit_status);
    return phone.sent();
  }
  static bool IsBeginOfWhole(const std::string& text) {
    return GetParam().whole.compare(0, text.size(), text) == 0;
  }
};
const StreamKind kStreamKinds[] = {{"log", ReadLog, "one;two;", -1}, {"shell", SayHello, "hello\n", 0}};
INSTANTIATE_TEST_SUITE_P(, BrokenStreams, testing::ValuesIn(kStreamKinds),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_P(BrokenStreams, AreNeverTakenForWholeOnes) {
  const std::size_t bytes = WholeBytes();
  int began = 0;
  for (std::size_t cut = 0; cut < bytes; ++cut) {
    Spoiling spoiling;
    spoiling.good = cut;
    const SpoiltPhone phone(true, spoiling);
    const StreamReport report = GetParam().run(phone);
    if (report.start != DK_OK) {
      EXPECT_EQ(report.start, DK_CONNECTION_LOST) << cut;
      EXPECT_FALSE(report.end) << "it has not begun";
      continue;
    }
    ++began;
    EXPECT_EQ(report.end, DK_CONNECTION_LOST) << cut << " of " << bytes;
    EXPECT_EQ(report.exit_status, -1);
    EXPECT_TRUE(IsBeginOfWhole(report.text)) << report.text;
  }
  EXPECT_GT(began, 5);
}

TEST_P(BrokenStreams, EndWhateverBytesCome) {
  const std::size_t bytes = WholeBytes();
  for (const std::string& garbage :
       {std::string(64, '\xff'), std::string(64, '\0'), std::string("FAIL0003abc"),
        std::string("\1\xff\xff\xff\xff", 5), std::string("\3\2\0\0\0ab", 7)}) {
    for (std::size_t good = 0; good < bytes; good += 1 + bytes / 40) {
      Spoiling spoiling;
      spoiling.good = good;
      spoiling.then = Then::kBytes;
      spoiling.bytes = garbage;
      const SpoiltPhone phone(true, spoiling);
      const StreamReport report = GetParam().run(phone);
      const dk_code code = report.start == DK_OK ? report.end.value_or(DK_OK) : report.start;
      // The garbage may pass for the features of an older phone, whose log is then read.
      if (code == DK_OK) {
        EXPECT_EQ(report.text, GetParam().whole) << good << " of " << bytes;
      }
      EXPECT_NE(code, DK_TIMED_OUT) << good;
    }
  }
}

TEST(BrokenStreamStarts, EndAtTheirDeadlineOrWhenCancelledWhereThePhoneIsSilent) {
  dk_cancel* cancel = nullptr;
  ASSERT_EQ(dk_cancel_new(&cancel), DK_OK);
  for (const unsigned good : {0U, 10U, 36U, 48U}) {  // in the features, the transport and the service's OKAY
    Spoiling spoiling;
    spoiling.good = good;
    spoiling.then = Then::kHang;
    for (const bool is_log : {true, false}) {
      for (const bool is_cancelled : {true, false}) {
        const SpoiltPhone phone(true, spoiling);
        const Client client(phone.address());
        dk_cancel_reset(cancel);
        std::thread user([&] {
          std::this_thread::sleep_for(milliseconds(30));
          if (is_cancelled) dk_cancel_set(cancel);
        });
        const dk_call call = WithLimit(is_cancelled ? 20'000 : 60, cancel);
        Reporter reporter;
        dk_log* log = nullptr;
        dk_shell* shell = nullptr;
        const dk_code code = is_log ? dk_log_start(client.device(), nullptr, Reporter::OnLogRecord,
                                                   Reporter::OnLogEnd, &reporter, &log, &call)
                                    : dk_shell_start(client.device(), nullptr, Reporter::OnOutput,
                                                     Reporter::OnTheEnd, &reporter, &shell, &call);
        user.join();
        EXPECT_EQ(code, is_cancelled ? DK_CANCELLED : DK_TIMED_OUT) << good << ' ' << is_log;
        EXPECT_FALSE(reporter.report().end);
        EXPECT_TRUE(test::Eventually([&] { return phone.open_connections() == 0; }));
      }
    }
  }
  dk_cancel_free(cancel);
}

// The server ends between any two bytes of the list.
TEST(BrokenWatches, ReportNoDeviceOfAListThatIsCut) {
  const std::string whole_text = "found;added m;";
  std::size_t bytes = 0;
  {
    const SpoiltPhone phone(true);
    const Client client(phone.address());
    Reporter reporter;
    dk_watch* watch = nullptr;
    ASSERT_EQ(dk_watch_start(client.context(), Reporter::OnEvent, &reporter, &watch, nullptr), DK_OK);
    EXPECT_TRUE(reporter.Await(whole_text));
    dk_watch_stop(watch);
    bytes = phone.sent();
  }
  constexpr std::size_t kAnswer = 4;  // OKAY
  ASSERT_GT(bytes, kAnswer);
  for (std::size_t cut = 0; cut < bytes; ++cut) {
    Spoiling spoiling;
    spoiling.good = cut;
    const SpoiltPhone phone(true, spoiling);
    const Client client(phone.address());
    Reporter reporter;
    dk_watch* watch = nullptr;
    ASSERT_EQ(dk_watch_start(client.context(), Reporter::OnEvent, &reporter, &watch, nullptr), DK_OK);
    if (cut >= kAnswer) {
      EXPECT_TRUE(reporter.Await("found;lost;")) << cut << ": " << reporter.report().text;
    }
    dk_watch_stop(watch);
    EXPECT_EQ(reporter.report().text, cut >= kAnswer ? "found;lost;" : "") << cut;
  }
}

TEST(BrokenWatches, LoseAServerThatSaysSomethingElse) {
  for (const std::string& garbage :
       {std::string("zzzz"), std::string("-001"), std::string("HTTP/1.1 400\r\n\r\n")}) {
    std::atomic<int> connections = 0;
    const test::ScriptedServer server([&](int connection) {
      test::ReadRequest(connection);
      if (connections++ == 0)
        test::WriteBytes(connection, "OKAY" + test::Request("X device model:m transport_id:1\n") + garbage);
    });
    const Client client(server.name());
    Reporter reporter;
    dk_watch* watch = nullptr;
    ASSERT_EQ(dk_watch_start(client.context(), Reporter::OnEvent, &reporter, &watch, nullptr), DK_OK);
    EXPECT_TRUE(reporter.Await("found;added m;removed m;lost;")) << reporter.report().text;
    dk_watch_stop(watch);
  }
}

// --- The host

TEST(ClientHost, IsInterruptedBySignals) {
  const test::InterruptedBySignals interrupted;
  const test::TemporaryDirectory directory;
  const std::string folder = directory.File("place");
  for (const bool modern : {true, false}) {
    const SpoiltPhone phone(modern);
    const Client client(phone.address());
    for (const ClientCall& call : ClientCalls()) {
      if (call.modern_only && !modern) continue;
      PreparePlace(folder);
      std::string result;
      EXPECT_EQ(call.run({client.context(), client.device(), folder}, nullptr, &result), DK_OK) << call.name;
      EXPECT_EQ(result, call.expected) << call.name;
      EXPECT_EQ(HarmAt(folder), "") << call.name;
    }
    EXPECT_EQ(phone.harm(), "");
  }
}

#if defined(__linux__)  // where a system call can be made without the C library
// What it prints goes nowhere, and what it reads is nobody's.
TEST(ClientHost, HasClosedItsStandardStreams) {
  const test::ForkedServer server([](const test::ForkedServer::Report& report) {
    const SpoiltPhone phone(true, {}, test::ScriptedServer::Socket::kPort);
    report(phone.port());
  });
  const test::TemporaryDirectory directory;
  const std::string folder = directory.File("place");
  PreparePlace(folder);
  test::InProcessOfItsOwn([&] {
    std::vector<std::string> wrong;
    bool are_still_closed = false;
    {
      const test::WithoutStandardStreams streams;
      {
        const Client client("tcp:" + std::to_string(server.port()));
        for (int round = 0; round < 3; ++round) {
          for (const ClientCall& call : ClientCalls()) {
            std::string result;
            const dk_call limit = WithLimit(20'000);
            const dk_code code = call.run({client.context(), client.device(), folder}, &limit, &result);
            if (code != DK_OK || result != call.expected) wrong.push_back(call.name);
          }
        }
      }
      are_still_closed = streams.AreStillClosed();
    }
    EXPECT_THAT(wrong, testing::IsEmpty());
    EXPECT_EQ(HarmAt(folder), "");
    EXPECT_TRUE(are_still_closed);
  });
}
#endif

std::atomic<int> callbacks_without_signals, callbacks_with_signals;

void LookAtSignals() {
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  const bool is_spared = sigismember(&mask, SIGUSR1) != 0 && sigismember(&mask, SIGCHLD) != 0 &&
                         sigismember(&mask, SIGTERM) != 0 && sigismember(&mask, SIGSEGV) == 0;
  ++(is_spared ? callbacks_without_signals : callbacks_with_signals);
}

TEST(ClientHost, GetsNoneOfItsSignalsOnTheThreadsOfTheClient) {
  const RestlessServer server;
  const Client client(server.address());
  dk_watch* watch = nullptr;
  dk_log* log = nullptr;
  dk_shell* shell = nullptr;
  EXPECT_EQ(dk_watch_start(
                client.context(), [](void*, dk_change, const dk_device_info*) { LookAtSignals(); }, nullptr,
                &watch, nullptr),
            DK_OK);
  EXPECT_TRUE(test::Eventually([] { return callbacks_without_signals > 0; }));
  dk_watch_stop(watch);
  callbacks_without_signals = 0;
  EXPECT_EQ(dk_log_start(
                client.device(), nullptr, [](void*, const dk_log_record*) { LookAtSignals(); }, nullptr,
                nullptr, &log, nullptr),
            DK_OK);
  EXPECT_TRUE(test::Eventually([] { return callbacks_without_signals > 0; }));
  dk_log_stop(log);
  callbacks_without_signals = 0;
  EXPECT_EQ(dk_shell_start(
                client.device(), nullptr, [](void*, dk_stream, const char*, size_t) { LookAtSignals(); },
                nullptr, nullptr, &shell, nullptr),
            DK_OK);
  EXPECT_TRUE(test::Eventually([] { return callbacks_without_signals > 0; }));
  dk_shell_stop(shell);
  EXPECT_EQ(callbacks_with_signals, 0);
}

TEST(ClientHost, MayStartNoThread) {
  // A process of its own: a fork of one with threads may not start any under every sanitizer.
  const test::ForkedServer server([](const test::ForkedServer::Report& report) {
    const SpoiltPhone phone(true, {}, test::ScriptedServer::Socket::kPort);
    report(phone.port());
  });
  test::InProcessOfItsOwn([&] {
    constexpr uid_t kNobody = 65534;  // the superuser has no limit
    if (geteuid() == 0) {
      ASSERT_EQ(setuid(kNobody), 0);
    }
    const Client client("tcp:" + std::to_string(server.port()));
    Reporter reporter;
    const std::size_t descriptors = test::OpenDescriptors();
    const auto start_all = [&](dk_code expected) {
      dk_watch* watch = nullptr;
      dk_log* log = nullptr;
      dk_shell* shell = nullptr;
      EXPECT_EQ(dk_watch_start(client.context(), Reporter::OnEvent, &reporter, &watch, nullptr), expected);
      EXPECT_EQ(
          dk_log_start(client.device(), nullptr, Reporter::OnLogRecord, nullptr, &reporter, &log, nullptr),
          expected);
      EXPECT_EQ(
          dk_shell_start(client.device(), nullptr, Reporter::OnOutput, nullptr, &reporter, &shell, nullptr),
          expected);
      EXPECT_EQ(watch != nullptr && log != nullptr && shell != nullptr, expected == DK_OK);
      dk_watch_stop(watch);
      dk_log_stop(log);
      dk_shell_stop(shell);
    };
    rlimit limit;
    getrlimit(RLIMIT_NPROC, &limit);
    const rlim_t usual = limit.rlim_cur;
    limit.rlim_cur = 1;
    setrlimit(RLIMIT_NPROC, &limit);
    start_all(DK_SYSTEM_REFUSED);
    dk_state state = DK_STATE_UNKNOWN;
    EXPECT_EQ(dk_device_state(client.device(), &state, nullptr), DK_OK) << "a call needs no thread";
    limit.rlim_cur = usual;
    setrlimit(RLIMIT_NPROC, &limit);
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    start_all(DK_OK);
  });
}

}  // namespace
}  // namespace darokleim::client_test
