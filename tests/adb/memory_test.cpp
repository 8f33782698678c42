// Memory runs out at every moment at which a call allocates some. The server is a process of its own: every allocation of
// this one may be the one that fails.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <new>
#include <optional>

#include "adb/cancel_token.h"
#include "tests/adb/operations.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/forked_server.h"
#include "tests/support/open_descriptors.h"

namespace darokleim::adb_test {
namespace {

using namespace adb;
using test::FailingAllocation;
using test::LiveAllocations;
using test::WithEachAllocationFailing;

class MemoryTest : public testing::TestWithParam<Operation> {};

INSTANTIATE_TEST_SUITE_P(Each, MemoryTest, testing::ValuesIn(Operations()),
                         [](const auto& parameter) { return parameter.param.name; });

// Either the call throws std::bad_alloc, or it succeeds; no block and no descriptor is left.
TEST_P(MemoryTest, RunsOut) {
  const test::ForkedServer server([](const test::ForkedServer::Report& report) {
    const test::ScriptedServer playing(GetParam().conversation);
    report(playing.address().port);
  });
  ServerAddress address;
  address.port = static_cast<std::uint16_t>(server.port());
  const Limits limits = {Clock::now() + std::chrono::seconds(60), nullptr};
  const auto& call = GetParam().call;
  ASSERT_TRUE(call(address, limits).ok());

  const size_t descriptors = test::OpenDescriptors();
  const long live = LiveAllocations();
  const long allocations = WithEachAllocationFailing([&](long number) {
    bool failed = false;
    bool thrown = false;
    std::optional<ErrorCode> error;
    {
      const FailingAllocation failing(number);
      try {
        const Status status = call(address, limits);
        if (!status.ok()) error = status.error().code;
      } catch (const std::bad_alloc&) {
        thrown = true;
      }
      failed = failing.HasFailed();
    }
    EXPECT_EQ(error, std::nullopt) << number;
    EXPECT_EQ(thrown, failed) << number;
    EXPECT_EQ(LiveAllocations(), live) << number;
    EXPECT_EQ(test::OpenDescriptors(), descriptors) << number;
    return failed;
  });
  EXPECT_GT(allocations, 3);
}

TEST(CancelTokenMemoryTest, RunsOut) {
  const size_t descriptors = test::OpenDescriptors();
  EXPECT_EQ(WithEachAllocationFailing([&](long number) {
              const FailingAllocation failing(number);
              try {
                EXPECT_TRUE(CancelToken::Create().ok());
              } catch (const std::bad_alloc&) {
                EXPECT_TRUE(failing.HasFailed());
              }
              return failing.HasFailed();
            }),
            1);
  EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

}  // namespace
}  // namespace darokleim::adb_test
