// Every call of the client against servers and phones that are slow, silent, cut off, gone or something else.
#include <gmock/gmock.h>

#include <chrono>
#include <set>
#include <thread>

#include "tests/client/calls.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Then = Spoiling::Then;

// Only a call that hangs takes as long.
constexpr int kLong = 20'000;

struct Outcome {
  dk_code code = DK_OK;
  std::string result, message;
  milliseconds time{};
};

std::string Shown(const Outcome& outcome) {
  return std::string(dk_code_name(outcome.code)) + ", \"" + outcome.result + "\": " + outcome.message;
}

class ClientCallsTest : public testing::TestWithParam<ClientCall> {
 protected:
  static std::vector<bool> Generations() {
    return GetParam().modern_only ? std::vector<bool>{true} : std::vector<bool>{true, false};
  }

  Outcome Run(const std::string& address, int timeout_ms = kLong, dk_cancel* cancel = nullptr) {
    const std::string folder = directory_.File("place");
    if (GetParam().name == "Pull" || !has_place_) PreparePlace(folder);
    has_place_ = true;
    const Client client(address);
    dk_error* error = nullptr;
    const dk_call call = {sizeof call, cancel, timeout_ms, &error};
    Outcome outcome;
    const auto began = Clock::now();
    outcome.code = GetParam().run({client.context(), client.device(), folder}, &call, &outcome.result);
    outcome.time = std::chrono::duration_cast<milliseconds>(Clock::now() - began);
    EXPECT_EQ(error != nullptr, outcome.code != DK_OK);
    EXPECT_EQ(dk_error_code(error), outcome.code == DK_OK ? DK_OUT_OF_MEMORY : outcome.code);
    if (outcome.code != DK_OK) outcome.message = dk_error_message(error);
    dk_error_free(error);
    EXPECT_EQ(HarmAt(folder), "");
    return outcome;
  }
  Outcome Run(const SpoiltPhone& phone, int timeout_ms = kLong, dk_cancel* cancel = nullptr) {
    const Outcome outcome = Run(phone.address(), timeout_ms, cancel);
    EXPECT_EQ(phone.harm(), "");
    // The server sees the end a moment later.
    const auto most = Clock::now() + milliseconds(kLong);
    while (phone.open_connections() > 0 && Clock::now() < most) std::this_thread::sleep_for(milliseconds(0));
    EXPECT_EQ(phone.open_connections(), 0) << "connections are left";
    return outcome;
  }
  std::size_t AnswerBytes(bool modern) {
    const SpoiltPhone phone(modern);
    Run(phone);
    return phone.sent();
  }

  const test::TemporaryDirectory directory_;
  bool has_place_ = false;
};

INSTANTIATE_TEST_SUITE_P(Each, ClientCallsTest, testing::ValuesIn(ClientCalls()),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_P(ClientCallsTest, SucceedWithAWholeAnswerAlsoByteByByte) {
  for (const bool modern : Generations()) {
    for (const bool byte_by_byte : {false, true}) {
      Spoiling spoiling;
      spoiling.byte_by_byte = byte_by_byte;
      const SpoiltPhone phone(modern, spoiling);
      const Outcome outcome = Run(phone);
      EXPECT_EQ(outcome.code, DK_OK) << modern << ' ' << Shown(outcome);
      EXPECT_EQ(outcome.result, GetParam().expected) << modern;
    }
  }
}

TEST_P(ClientCallsTest, MeetAPhoneOfAnotherGenerationThanTheCallBefore) {
  if (GetParam().modern_only) return;
  SpoiltPhone phone(true);
  const Client client(phone.address());
  for (const bool modern : {true, false, true}) {
    phone.Become(modern);
    const std::string folder = directory_.File("place");
    PreparePlace(folder);
    std::string result;
    EXPECT_EQ(GetParam().run({client.context(), client.device(), folder}, nullptr, &result), DK_OK) << modern;
    EXPECT_EQ(result, GetParam().expected) << modern;
  }
}

// What is cut off is never taken for the whole.
TEST_P(ClientCallsTest, NeverTakeACutAnswerForAWholeOne) {
  for (const bool modern : Generations()) {
    const std::size_t bytes = AnswerBytes(modern);
    std::size_t failed = 0;
    for (std::size_t cut = 0; cut < bytes; ++cut) {
      Spoiling spoiling;
      spoiling.good = cut;
      const SpoiltPhone phone(modern, spoiling);
      const Outcome outcome = Run(phone);
      if (outcome.code == DK_OK) {
        EXPECT_EQ(outcome.result, GetParam().expected) << modern << " at " << cut << " of " << bytes;
      } else {
        EXPECT_EQ(outcome.code, DK_CONNECTION_LOST) << modern << " at " << cut << ": " << Shown(outcome);
        ++failed;
      }
      if (HasFailure()) return;
    }
    // An answer may be complete before its last bytes.
    if (!GetParam().ends_server) {
      EXPECT_GT(failed, bytes / 3);
    }
  }
}

TEST_P(ClientCallsTest, EndAtTheirDeadlineWhenThePhoneIsSilent) {
  constexpr int kTimeout = 60;
  for (const bool modern : Generations()) {
    const std::size_t bytes = AnswerBytes(modern);
    for (const std::size_t silent_after : {std::size_t{0}, std::size_t{3}, bytes / 2, bytes * 3 / 4}) {
      Spoiling spoiling;
      spoiling.good = silent_after;
      spoiling.then = Then::kHang;
      const SpoiltPhone phone(modern, spoiling);
      const Outcome outcome = Run(phone, kTimeout);
      if (GetParam().cleans_up && outcome.code == DK_OK) {  // the phone was silent in the clean-up
        EXPECT_EQ(outcome.result, GetParam().expected);
        continue;
      }
      EXPECT_EQ(outcome.code, DK_TIMED_OUT) << modern << " after " << silent_after << ": " << Shown(outcome);
      EXPECT_GE(outcome.time, milliseconds(kTimeout));
      EXPECT_LT(outcome.time, milliseconds(GetParam().cleans_up ? 15'000 : 5000));
    }
  }
}

TEST_P(ClientCallsTest, EndSoonWhenNothingAnswersAnyMore) {
  constexpr int kTimeout = 60;
  Spoiling spoiling;
  spoiling.good = AnswerBytes(true) / 2;
  spoiling.then = Then::kHangAll;
  const SpoiltPhone phone(true, spoiling);
  const Outcome outcome = Run(phone, kTimeout);
  EXPECT_EQ(outcome.code, DK_TIMED_OUT) << Shown(outcome);
  EXPECT_LT(outcome.time, milliseconds(GetParam().cleans_up ? 15'000 : 5000));
}

TEST_P(ClientCallsTest, EndAtOnceWhenCancelled) {
  dk_cancel* cancel = nullptr;
  ASSERT_EQ(dk_cancel_new(&cancel), DK_OK);
  Spoiling spoiling;
  spoiling.good = AnswerBytes(true) / 2;
  spoiling.then = Then::kHang;
  const SpoiltPhone phone(true, spoiling);
  // Not earlier: on a phone that falls silent in the clean-up, this takes its time.
  std::thread canceller([&] {
    EXPECT_TRUE(test::Eventually([&] { return phone.is_spoilt(); }));
    dk_cancel_set(cancel);
  });
  const Outcome outcome = Run(phone, kLong, cancel);
  canceller.join();
  EXPECT_EQ(outcome.code, DK_CANCELLED) << Shown(outcome);
  EXPECT_LT(outcome.time, milliseconds(5000));
  EXPECT_EQ(Run(phone, kLong, cancel).code, DK_CANCELLED) << "a token that is set";
  dk_cancel_free(cancel);
}

// Whatever comes, the call ends, and is not still waiting when the server has ended.
TEST_P(ClientCallsTest, EndWhateverBytesCome) {
  const std::vector<std::string> bytes = {"HTTP/1.1 400 Bad Request\r\n\r\n",
                                          std::string(64, '\xff'),
                                          std::string(64, '\0'),
                                          "\xff\xff\xff\x7f" + std::string(8, 'x'),
                                          "FAILffff",
                                          "OKAYOKAYOKAYffff",
                                          "DATA\xff\xff\xff\xff",
                                          std::string("\1\xff\xff\xff\xff", 5)};
  for (const bool modern : Generations()) {
    const std::size_t all = AnswerBytes(modern);
    for (std::size_t good = 0; good < all; good += 1 + all / 16) {
      for (const std::string& garbage : bytes) {
        Spoiling spoiling;
        spoiling.good = good;
        spoiling.then = Then::kBytes;
        spoiling.bytes = garbage;
        const SpoiltPhone phone(modern, spoiling);
        const Outcome outcome = Run(phone);
        EXPECT_NE(outcome.code, DK_TIMED_OUT) << modern << ' ' << good;
        EXPECT_NE(outcome.result, "an output of a failure");
      }
    }
  }
}

TEST_P(ClientCallsTest, SayWhatKeepsThePhoneFromAnswering) {
  if (GetParam().of_server) return;
  const std::vector<std::pair<std::string, dk_code>> refusals = {
      {"device 'X' not found", DK_NO_DEVICE},
      {"device offline", DK_DEVICE_OFFLINE},
      {"device unauthorized.\nThis adb server's $ADB_VENDOR_KEYS is not set", DK_DEVICE_UNAUTHORIZED},
      {"device still authorizing", DK_DEVICE_UNAUTHORIZED},
      {"more than one device/emulator", DK_SEVERAL_DEVICES},
      {"insufficient permissions for device", DK_DEVICE_NO_PERMISSIONS},
      {"no permissions (missing udev rules?)", DK_DEVICE_NO_PERMISSIONS},
      {"no permission of another kind", DK_SERVER_REFUSED},
      {"something new", DK_SERVER_REFUSED}};
  for (const auto& [words, code] : refusals) {
    Spoiling spoiling;
    spoiling.refuses_phone = words;
    const SpoiltPhone phone(true, spoiling);
    const Outcome outcome = Run(phone);
    EXPECT_EQ(outcome.code, code) << Shown(outcome);
  }
}

TEST_P(ClientCallsTest, SayThatAServiceIsRefused) {
  const std::set<std::string> without_service = {"State", "Reconnect", "ForwardAdd", "ForwardRemove"};
  if (GetParam().of_server || without_service.count(GetParam().name) > 0) return;
  for (const bool modern : Generations()) {
    Spoiling spoiling;
    spoiling.refuses_service = "closed";
    const SpoiltPhone phone(modern, spoiling);
    const Outcome outcome = Run(phone);
    EXPECT_EQ(outcome.code, DK_SERVER_REFUSED) << Shown(outcome);
  }
}

TEST_P(ClientCallsTest, SayThatThereIsNoServer) {
  std::string address;
  { address = SpoiltPhone(true).address(); }
  const Outcome outcome = Run(address);
  EXPECT_EQ(outcome.code, DK_NO_SERVER) << Shown(outcome);
}

TEST_P(ClientCallsTest, SayThatSomethingElseIsNoServer) {
  const test::ScriptedServer server(
      [](int connection) { test::WriteBytes(connection, "HTTP/1.1 400 Bad Request\r\n\r\n"); });
  const Outcome outcome = Run("tcp:" + std::to_string(server.port()));
  EXPECT_EQ(outcome.code, DK_SERVER_PROTOCOL) << Shown(outcome);
}

}  // namespace
}  // namespace darokleim::client_test
