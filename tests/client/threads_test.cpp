// One context in many threads; a watch, a log and a shell session that are stopped at any moment.
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <thread>

#include "tests/client/calls.h"
#include "tests/client/restless_server.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

using std::chrono::milliseconds;

TEST(ClientThreads, EachOfSixtyFourGetsItsOwnAnswers) {
  constexpr int kThreads = 64, kCalls = 12;
  const SpoiltPhone phone(true);
  const Client client(phone.address());
  const test::TemporaryDirectory directory;
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([&, number] {
      std::minstd_rand random(static_cast<unsigned>(number) + 1);
      const std::string folder = directory.File(std::to_string(number));
      for (int i = 0; i < kCalls; ++i) {
        const ClientCall& call = ClientCalls()[random() % ClientCalls().size()];
        PreparePlace(folder);
        std::string result;
        EXPECT_EQ(call.run({client.context(), client.device(), folder}, nullptr, &result), DK_OK)
            << call.name;
        EXPECT_EQ(result, call.expected) << call.name;
        EXPECT_EQ(HarmAt(folder), "") << call.name;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(phone.harm(), "");
  EXPECT_TRUE(test::Eventually([&] { return phone.open_connections() == 0; }));
}

// Calls end with their answer, or say that the phone is gone, or that it went in the middle.
TEST(ClientThreads, SixtyFourOfThemMeetAPhoneThatComesAndGoes) {
  constexpr int kThreads = 64, kCalls = 6;
  for (const bool modern : {true, false}) {
    SpoiltPhone phone(modern);
    const Client client(phone.address());
    const test::TemporaryDirectory directory;
    std::atomic<int> whole = 0, broken = 0, running = kThreads;
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
      threads.emplace_back([&, number] {
        std::minstd_rand random(static_cast<unsigned>(number) + 1);
        const std::string folder = directory.File(std::to_string(number));
        for (int i = 0; i < kCalls; ++i) {
          const ClientCall& call = ClientCalls()[random() % ClientCalls().size()];
          if (call.modern_only && !modern) continue;
          PreparePlace(folder);
          std::string result;
          const dk_code code = call.run({client.context(), client.device(), folder}, nullptr, &result);
          if (code == DK_OK) {
            const bool is_empty_list = call.name == "Devices" && result.empty();
            EXPECT_TRUE(result == call.expected || is_empty_list) << call.name << ": " << result;
          } else {
            EXPECT_TRUE(code == DK_NO_DEVICE || code == DK_CONNECTION_LOST)
                << call.name << ": " << dk_code_name(code);
          }
          ++(code == DK_OK ? whole : broken);
          EXPECT_EQ(HarmAt(folder), "") << call.name;
        }
        --running;
      });
    }
    while (running > 0) {
      phone.Unplug();
      std::this_thread::sleep_for(milliseconds(2));
      phone.Plug();
      std::this_thread::sleep_for(milliseconds(10));
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GT(whole, 0);
    EXPECT_GT(broken, 0);
    EXPECT_EQ(phone.harm(), "");
    EXPECT_TRUE(test::Eventually([&] { return phone.open_connections() == 0; }));
  }
}

class ClientStops : public testing::Test {
 protected:
  ~ClientStops() override {
    EXPECT_TRUE(test::Eventually([this] { return server_.open_connections() == 0; }))
        << "connections are left";
  }
  static void SleepForAMoment(int number) {
    std::this_thread::sleep_for(std::chrono::microseconds(number * 37 % 3000));
  }

  const RestlessServer server_;
  const Client client_{server_.address()};
};

TEST_F(ClientStops, OfAWatchAreFollowedByNoCallback) {
  int all = 0;
  for (int i = 0; i < 200; ++i) {
    auto listener = std::make_unique<Listener>();
    ASSERT_EQ(dk_watch_start(client_.context(), OnChange, listener.get(), &listener->watch, nullptr), DK_OK);
    SleepForAMoment(i);
    dk_watch_stop(listener->watch);
    listener->stopped = true;
    all += listener->calls;
  }
  EXPECT_GT(all, 0);
}

TEST_F(ClientStops, OfALogAreFollowedByNoCallback) {
  int all = 0;
  for (int i = 0; i < 200; ++i) {
    auto listener = std::make_unique<Listener>();
    ASSERT_EQ(
        dk_log_start(client_.device(), nullptr, OnRecord, OnEnd, listener.get(), &listener->log, nullptr),
        DK_OK);
    SleepForAMoment(i);
    dk_log_stop(listener->log);
    listener->stopped = true;
    all += listener->calls;
    EXPECT_EQ(listener->ends, 1) << "the end is said before the stop returns";
  }
  EXPECT_GT(all, 0);
}

TEST_F(ClientStops, OfAShellAreFollowedByNoCallback) {
  int all = 0;
  for (int i = 0; i < 200; ++i) {
    auto listener = std::make_unique<Listener>();
    ASSERT_EQ(dk_shell_start(client_.device(), nullptr, OnShellOutput, OnShellEnd, listener.get(),
                             &listener->shell, nullptr),
              DK_OK);
    SleepForAMoment(i);
    dk_shell_write(listener->shell, "x", 1, nullptr);
    dk_shell_stop(listener->shell);
    listener->stopped = true;
    all += listener->calls;
    EXPECT_EQ(listener->ends, 1) << "the end is said before the stop returns";
  }
  EXPECT_GT(all, 0);
}

// Of the watch, the log or the session itself: the first callback may come before its start has returned.
TEST_F(ClientStops, FromWithinTheirCallbackAreFollowedByNone) {
  std::vector<std::unique_ptr<Listener>> listeners;
  for (int i = 0; i < 100; ++i) {
    Listener* const watched = listeners.emplace_back(std::make_unique<Listener>()).get();
    const auto stop_watch = [](void* user, dk_change, const dk_device_info*) {
      auto* const listener = static_cast<Listener*>(user);
      listener->Call();
      dk_watch_stop(listener->watch);
      listener->stopped = true;
    };
    ASSERT_EQ(dk_watch_start(client_.context(), stop_watch, watched, &watched->watch, nullptr), DK_OK);
    Listener* const logged = listeners.emplace_back(std::make_unique<Listener>()).get();
    const auto stop_log = [](void* user, const dk_log_record*) {
      auto* const listener = static_cast<Listener*>(user);
      listener->Call();
      dk_log_stop(listener->log);
      listener->stopped = true;
    };
    ASSERT_EQ(dk_log_start(client_.device(), nullptr, stop_log, OnEnd, logged, &logged->log, nullptr), DK_OK);
    Listener* const ran = listeners.emplace_back(std::make_unique<Listener>()).get();
    const auto stop_shell = [](void* user, dk_stream, const char*, size_t) {
      auto* const listener = static_cast<Listener*>(user);
      listener->Call();
      dk_shell_stop(listener->shell);
      listener->stopped = true;
    };
    ASSERT_EQ(dk_shell_start(client_.device(), nullptr, stop_shell, OnShellEnd, ran, &ran->shell, nullptr),
              DK_OK);
  }
  for (const auto& listener : listeners) {
    EXPECT_TRUE(test::Eventually([&] { return listener->stopped.load(); }));
    EXPECT_EQ(listener->calls, 1);
    EXPECT_EQ(listener->ends, 0) << "also the end is not said";
  }
  EXPECT_TRUE(test::Eventually([this] { return server_.open_connections() == 0; }));
}

TEST_F(ClientStops, OfAWatchWithoutAServerAreQuick) {
  std::string address;
  { address = SpoiltPhone(true).address(); }
  const Client client(address);
  for (int i = 0; i < 20; ++i) {
    Listener listener;
    ASSERT_EQ(dk_watch_start(client.context(), OnChange, &listener, &listener.watch, nullptr), DK_OK);
    SleepForAMoment(i);
    const auto began = std::chrono::steady_clock::now();
    dk_watch_stop(listener.watch);
    EXPECT_LT(std::chrono::steady_clock::now() - began, milliseconds(2000));
    EXPECT_EQ(listener.calls, 0);
  }
}

}  // namespace
}  // namespace darokleim::client_test
