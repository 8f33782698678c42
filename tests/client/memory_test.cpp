// Memory runs out at every moment at which a call of the client allocates some.
#include <gmock/gmock.h>

#include <atomic>
#include <new>

#include "tests/client/calls.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/eventually.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/forked_server.h"
#include "tests/support/open_descriptors.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

using test::FailingAllocation;
using test::LiveAllocations;
using test::WithEachAllocationFailing;

// A phone in a process of its own, whose memory does not run out.
class PhoneElsewhere {
 public:
  explicit PhoneElsewhere(bool modern)
      : server_([modern](const test::ForkedServer::Report& report) {
          const SpoiltPhone phone(modern, {}, test::ScriptedServer::Socket::kPort);
          report(phone.port());
        }) {}
  std::string address() const { return "tcp:" + std::to_string(server_.port()); }

 private:
  const test::ForkedServer server_;
};

class ClientMemoryTest : public testing::TestWithParam<ClientCall> {
 protected:
  // Calls with each allocation failing. The functions of the client let no exception out; what the test itself allocates around
  // them may fail too.
  void Call(const Place& place) {
    std::string result;
    result.reserve(4096);
    ASSERT_EQ(GetParam().run(place, nullptr, &result), DK_OK)
        << "what is kept for the process is allocated once";
    const long allocations = WithEachAllocationFailing([&](long number) {
      SCOPED_TRACE(number);
      PreparePlace(place.folder);
      dk_error* error = nullptr;
      dk_call call = DK_CALL_INIT;
      call.error = &error;
      call.timeout_ms = 20'000;
      result.clear();
      dk_code code = DK_OUT_OF_MEMORY;
      bool failed;
      const std::size_t descriptors = test::OpenDescriptors();
      const long before = LiveAllocations();
      {
        const FailingAllocation failing(number);
        try {
          code = GetParam().run(place, &call, &result);
        } catch (const std::bad_alloc&) {
        }
        failed = failing.HasFailed();
      }
      const dk_code code_of_error = dk_error_code(error);
      dk_error_free(error);
      EXPECT_EQ(LiveAllocations(), before) << "a block is lost";
      EXPECT_EQ(test::OpenDescriptors(), descriptors);
      if (code == DK_OK) {
        EXPECT_EQ(result, GetParam().expected);
      } else {
        EXPECT_EQ(code, DK_OUT_OF_MEMORY);
        EXPECT_EQ(code_of_error, DK_OUT_OF_MEMORY) << "there is no error object";
        EXPECT_TRUE(failed);
      }
      EXPECT_EQ(HarmAt(place.folder), "");
      return failed && !HasFailure();
    });
#ifndef _LIBCPP_VERSION  // which keeps texts of up to 22 bytes without a block: some calls then need none
    EXPECT_GT(allocations, 3);
#else
    static_cast<void>(allocations);
#endif
  }

  const test::TemporaryDirectory directory_;
};

INSTANTIATE_TEST_SUITE_P(Each, ClientMemoryTest, testing::ValuesIn(ClientCalls()),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_P(ClientMemoryTest, RunsOutInACall) {
  const std::string folder = directory_.File("place");
  PreparePlace(folder);
  for (const bool modern : {true, false}) {
    if (GetParam().modern_only && !modern) continue;
    const PhoneElsewhere phone(modern);
    const Client client(phone.address());
    Call({client.context(), client.device(), folder});
  }
}

class ClientThreadsMemoryTest : public testing::Test {
 protected:
  const PhoneElsewhere phone_{true};
  const Client client_{phone_.address()};
};

// The watch goes on.
TEST_F(ClientThreadsMemoryTest, RunsOutInAWatch) {
  std::atomic<int> added{0};
  const auto on_change = [](void* user, dk_change change, const dk_device_info*) {
    if (change == DK_DEVICE_ADDED) ++*static_cast<std::atomic<int>*>(user);
  };
  const long allocations = WithEachAllocationFailing([&](long number) {
    SCOPED_TRACE(number);
    added = 0;
    const long before = LiveAllocations();
    dk_watch* watch = nullptr;
    bool failed;
    {
      const FailingAllocation failing(number);
      const dk_code code = dk_watch_start(client_.context(), on_change, &added, &watch, nullptr);
      if (code == DK_OK) {
        EXPECT_TRUE(test::Eventually([&] { return added == 1; }));
      } else {
        EXPECT_EQ(code, DK_OUT_OF_MEMORY);
        EXPECT_EQ(watch, nullptr);
      }
      dk_watch_stop(watch);
      failed = failing.HasFailed();
    }
    EXPECT_EQ(LiveAllocations(), before);
    return failed && !HasFailure();
  });
  EXPECT_GT(allocations, 5);
}

struct LogEnd {
  std::atomic<int> records{0}, ends{0};
  std::atomic<dk_code> code{DK_OK};
};

TEST_F(ClientThreadsMemoryTest, RunsOutInALog) {
  dk_log_options options = DK_LOG_OPTIONS_INIT;
  options.stop_at_end = true;
  const auto on_record = [](void* user, const dk_log_record*) { ++static_cast<LogEnd*>(user)->records; };
  const auto on_end = [](void* user, dk_code code, const dk_error* error) {
    auto& seen = *static_cast<LogEnd*>(user);
    EXPECT_EQ(error, nullptr);
    seen.code = code;
    ++seen.ends;
  };
  const long allocations = WithEachAllocationFailing([&](long number) {
    SCOPED_TRACE(number);
    LogEnd seen;
    const long before = LiveAllocations();
    dk_log* log = nullptr;
    bool failed;
    {
      const FailingAllocation failing(number);
      const dk_code code = dk_log_start(client_.device(), &options, on_record, on_end, &seen, &log, nullptr);
      if (code == DK_OK) {
        EXPECT_TRUE(test::Eventually([&] { return seen.ends == 1; }));
        EXPECT_TRUE(seen.code == DK_OUT_OF_MEMORY || (seen.code == DK_OK && seen.records == 2));
      } else {
        EXPECT_EQ(code, DK_OUT_OF_MEMORY);
        EXPECT_EQ(log, nullptr);
      }
      dk_log_stop(log);
      failed = failing.HasFailed();
    }
    EXPECT_EQ(LiveAllocations(), before);
    return failed && !HasFailure();
  });
  EXPECT_GT(allocations, 5);
}

struct ShellEnd {
  std::atomic<std::size_t> bytes{0};
  std::atomic<int> ends{0};
  std::atomic<dk_code> code{DK_OK};
};

TEST_F(ClientThreadsMemoryTest, RunsOutInAShell) {
  dk_shell_options options = DK_SHELL_OPTIONS_INIT;
  options.command = "echo hello";
  const auto on_output = [](void* user, dk_stream, const char*, size_t size) {
    static_cast<ShellEnd*>(user)->bytes += size;
  };
  const auto on_end = [](void* user, dk_code code, int, const dk_error* error) {
    auto& seen = *static_cast<ShellEnd*>(user);
    EXPECT_EQ(error, nullptr);
    seen.code = code;
    ++seen.ends;
  };
  const long allocations = WithEachAllocationFailing([&](long number) {
    SCOPED_TRACE(number);
    ShellEnd seen;
    const long before = LiveAllocations();
    dk_shell* shell = nullptr;
    bool failed;
    {
      const FailingAllocation failing(number);
      const dk_code code =
          dk_shell_start(client_.device(), &options, on_output, on_end, &seen, &shell, nullptr);
      if (code == DK_OK) {
        const char input[] = "a text that is longer than any that is kept without a block of memory";
        const dk_code written = dk_shell_write(shell, input, sizeof input, nullptr);
        EXPECT_TRUE(written == DK_OK || written == DK_OUT_OF_MEMORY || written == DK_STOPPED) << written;
        EXPECT_EQ(dk_shell_close_input(shell, nullptr), DK_OK);
        EXPECT_TRUE(test::Eventually([&] { return seen.ends == 1; }));
        EXPECT_TRUE(seen.code == DK_OUT_OF_MEMORY || (seen.code == DK_OK && seen.bytes == 6));
      } else {
        EXPECT_EQ(code, DK_OUT_OF_MEMORY);
        EXPECT_EQ(shell, nullptr);
      }
      dk_shell_stop(shell);
      failed = failing.HasFailed();
    }
    EXPECT_EQ(LiveAllocations(), before);
    return failed && !HasFailure();
  });
  EXPECT_GT(allocations, 5);
}

}  // namespace
}  // namespace darokleim::client_test
