// The library on simulated phones of both generations.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <thread>

#include "adb/cancel_token.h"
#include "adb/device_list.h"
#include "adb/device_services.h"
#include "adb/features.h"
#include "adb/host_services.h"
#include "adb/ports.h"
#include "adb/shell.h"
#include "adb/sync_connection.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::adb_test {
namespace {

using namespace adb;
using std::chrono::milliseconds;
using std::chrono::seconds;
using test::SimulatedPhones;

const DeviceSelector kModern = DeviceSelector::Serial("MODERN");
const DeviceSelector kLegacy = DeviceSelector::Serial("LEGACY");

template <typename Value>
Value Require(Result<Value> result) {
  if (!result.ok()) {
    throw std::runtime_error("error " + std::to_string(static_cast<int>(result.error().code)) + ": " +
                             result.error().message);
  }
  return *std::move(result);
}

void Require(Status status) {
  if (!status.ok()) throw std::runtime_error("error: " + status.error().message);
}

ServerAddress AddressOf(const SimulatedPhones& phones) {
  ServerAddress address;
  address.port = static_cast<std::uint16_t>(std::stoi(phones.port()));
  return address;
}

class AdbPhoneTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    phones_ = std::make_unique<SimulatedPhones>(
        test::Words{"MODERN", "LEGACY,android=legacy", "LOCKED,state=unauthorized", "192.168.7.7:5555"});
  }
  static void TearDownTestSuite() { phones_.reset(); }

  ServerAddress server() const { return AddressOf(*phones_); }
  Limits limits() const { return {Clock::now() + seconds(30), nullptr}; }

  SyncConnection Sync(const DeviceSelector& device) const {
    return Require(SyncConnection::Start(server(), device, Require(QueryFeatures(server(), device, limits())),
                                         limits()));
  }

  struct Ran {
    std::string output;
    std::string errors;
    std::optional<int> exit_status;
    bool operator==(const Ran&) const = default;
  };
  Ran Run(const DeviceSelector& device, const ShellCommand& command) const {
    ShellSession shell = Require(ShellSession::Start(server(), device, command, limits()));
    Ran ran;
    const auto receive = [&](ShellStream stream, std::string_view data) {
      (stream == ShellStream::kOutput ? ran.output : ran.errors).append(data);
      return true;
    };
    ran.exit_status = Require(shell.ReadAll(receive, limits())).exit_status;
    return ran;
  }

  static std::unique_ptr<SimulatedPhones> phones_;
};
std::unique_ptr<SimulatedPhones> AdbPhoneTest::phones_;

TEST_F(AdbPhoneTest, TheServerAndItsPhones) {
  EXPECT_EQ(Require(QueryVersion(server(), limits())), 41u);
  EXPECT_EQ(Require(QueryDeviceList(server(), ListForm::kShort, limits())),
            "LEGACY\tdevice\nLOCKED\tunauthorized\nMODERN\tdevice\n192.168.7.7:5555\tdevice\n");
  const auto devices = ParseDeviceList(Require(QueryDeviceList(server(), ListForm::kLong, limits())));
  ASSERT_EQ(devices.size(), 4u);
  EXPECT_EQ(devices[2].serial, "MODERN");
  EXPECT_EQ(devices[2].state, "device");
  EXPECT_EQ(devices[2].plug.rfind("usb:", 0), 0u);
  EXPECT_NE(devices[2].model, "");
  EXPECT_NE(devices[2].transport_id, 0u);
  EXPECT_EQ(devices[1].state, "unauthorized");
  EXPECT_EQ(devices[3].plug, "");

  EXPECT_EQ(Require(QueryState(server(), kLegacy, limits())), "device");
  EXPECT_EQ(Require(QuerySerial(server(), DeviceSelector::Network(), limits())), "192.168.7.7:5555");
  EXPECT_TRUE(Require(QueryFeatures(server(), kModern, limits())).shell_v2());
  EXPECT_FALSE(Require(QueryFeatures(server(), kLegacy, limits())).shell_v2());
  EXPECT_TRUE(Require(QueryServerFeatures(server(), limits())).Has("push_sync"));
}

TEST_F(AdbPhoneTest, APhoneIsChosenInEachWay) {
  const auto chosen = Require(SelectDevice(server(), kModern, limits()));
  EXPECT_NE(chosen.transport_id, 0u);
  Require(SelectDevice(server(), DeviceSelector::TransportId(chosen.transport_id), limits()));
  Require(SelectDevice(server(), DeviceSelector::Network(), limits()));
  const auto any = SelectDevice(server(), DeviceSelector::Any(), limits());
  ASSERT_FALSE(any.ok());
  EXPECT_EQ(any.error().code, ErrorCode::kRefused);
  EXPECT_EQ(any.error().message, "more than one device/emulator");
  const auto absent = SelectDevice(server(), DeviceSelector::Serial("ABSENT"), limits());
  ASSERT_FALSE(absent.ok());
  EXPECT_EQ(absent.error().message, "device 'ABSENT' not found");
}

TEST_F(AdbPhoneTest, ALockedPhoneIsRefusedInTheServersWords) {
  const auto refused = SelectDevice(server(), DeviceSelector::Serial("LOCKED"), limits());
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().code, ErrorCode::kRefused);
  EXPECT_EQ(refused.error().message.rfind("device unauthorized.\n", 0), 0u);
}

TEST_F(AdbPhoneTest, ACommandOfTheSecondShell) {
  const Ran ran = Run(kModern, {.command = "echo out; echo err >&2; exit 7", .terminal = "xterm"});
  EXPECT_EQ(ran, (Ran{"out\n", "err\n", 7}));
  // Its input ends at once.
  EXPECT_EQ(Run(kModern, {.command = "cat"}), (Ran{"", "", 0}));
}

TEST_F(AdbPhoneTest, ACommandOfTheOldShell) {
  EXPECT_EQ(Run(kLegacy, {.form = ShellForm::kOld, .command = "echo out; exit 7"}),
            (Ran{"out\r\n", "", std::nullopt}));
  EXPECT_EQ(Run(kLegacy, {.form = ShellForm::kRaw, .command = "echo out"}), (Ran{"out\n", "", std::nullopt}));
}

TEST_F(AdbPhoneTest, ReadingAPieceAtATime) {
  ShellSession shell =
      Require(ShellSession::Start(server(), kModern, {.command = "printf 123456789; exit 3"}, limits()));
  std::string seen;
  for (;;) {
    std::array<char, 4> buffer;
    const auto piece = Require(shell.Read(buffer, limits()));
    if (piece.size == 0) {
      EXPECT_EQ(piece.exit_status, 3);
      break;
    }
    ASSERT_LE(piece.size, buffer.size());
    seen.append(buffer.data(), piece.size);
  }
  EXPECT_EQ(seen, "123456789");
}

// Far more in both directions than sockets and pipes hold.
TEST_F(AdbPhoneTest, InputAndOutputFlowAtOnce) {
  ShellSession shell =
      Require(ShellSession::Start(server(), kModern, {.command = "cat", .with_input = true}, limits()));
  std::string piece(100'000, 'x');
  int pieces = 0;
  size_t received = 0;
  const auto end =
      Require(shell.Exchange([&] { return ++pieces <= 80 ? std::string_view(piece) : std::string_view(); },
                             [&](ShellStream, std::string_view data) {
                               received += data.size();
                               return true;
                             },
                             limits()));
  EXPECT_EQ(end.exit_status, 0);
  EXPECT_EQ(received, 80 * piece.size());
}

TEST_F(AdbPhoneTest, ACommandThatDoesNotEndIsCancelled) {
  const auto token = Require(CancelToken::Create());
  ShellSession shell = Require(ShellSession::Start(server(), kModern, {.command = "sleep 60"}, limits()));
  std::thread canceller([&] {
    std::this_thread::sleep_for(milliseconds(30));
    token->Set();
  });
  const auto end =
      shell.ReadAll([](ShellStream, std::string_view) { return true; }, {.interrupt = token.get()});
  canceller.join();
  ASSERT_FALSE(end.ok());
  EXPECT_EQ(end.error().code, ErrorCode::kCancelled);
}

TEST_F(AdbPhoneTest, FilesGoThereAndBackInBothForms) {
  for (const DeviceSelector& phone : {kModern, kLegacy}) {
    SyncConnection sync = Sync(phone);
    std::string content;
    for (int i = 0; i < 40'000; ++i) content += std::to_string(i) + "\n";
    Require(sync.BeginSend("/sdcard/sent/new.txt", 0100640, limits()));
    Require(sync.SendData(content, limits()));
    Require(sync.EndSend(1'500'000'000, limits()));
    Require(sync.AwaitSends(0, limits()));

    const FileStatus status =
        Require(sync.Stat("/sdcard/sent/new.txt", SyncConnection::Links::kThemselves, limits()));
    EXPECT_TRUE(status.exists());
    EXPECT_EQ(status.size, content.size());
    EXPECT_EQ(status.modified, 1'500'000'000);

    std::string back;
    Require(sync.Receive(
        "/sdcard/sent/new.txt",
        [&](std::string_view data) {
          back += data;
          return true;
        },
        limits()));
    EXPECT_EQ(back, content);

    Require(sync.RequestContent("/sdcard/sent/new.txt"));
    back.clear();
    for (;;) {
      std::array<char, 1000> buffer;
      const size_t count = Require(sync.ReadContent(buffer, limits()));
      if (count == 0) break;
      back.append(buffer.data(), count);
    }
    EXPECT_EQ(back, content);

    std::map<std::string, std::uint64_t> entries;
    Require(sync.List(
        "/sdcard/sent",
        [&](const DirectoryEntry& entry) {
          entries[std::string(entry.name)] = entry.status.size;
          return true;
        },
        limits()));
    EXPECT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries["new.txt"], content.size());
    EXPECT_TRUE(sync.IsIdle());
    sync.Quit();
  }
}

TEST_F(AdbPhoneTest, WhatIsMissing) {
  SyncConnection modern = Sync(kModern);
  EXPECT_EQ(Require(modern.Stat("/no", SyncConnection::Links::kFollowed, limits())).error, 2u);
  SyncConnection legacy = Sync(kLegacy);
  EXPECT_FALSE(Require(legacy.Stat("/no", SyncConnection::Links::kThemselves, limits())).exists());
  EXPECT_EQ(legacy.Stat("/no", SyncConnection::Links::kFollowed, limits()).error().code,
            ErrorCode::kUnsupported);
  int entries = 0;
  Require(legacy.List(
      "/no", [&](const DirectoryEntry&) { return ++entries > 0; }, limits()));
  EXPECT_EQ(entries, 0);

  const Status refused = legacy.Receive(
      "/no", [](std::string_view) { return true; }, limits());
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().code, ErrorCode::kRefused);
  EXPECT_EQ(refused.error().message, "open failed: No such file or directory");
  EXPECT_FALSE(legacy.IsIdle());
}

TEST_F(AdbPhoneTest, ARefusedFileIsTheOldestUnanswered) {
  SyncConnection sync = Sync(kModern);
  Status status;
  std::vector<std::string> sent;
  for (const std::string path : {"/sdcard/good", "/sdcard/good/bad", "/sdcard/later"}) {
    sent.push_back(path);
    status = sync.BeginSend(path, 0100644, limits());
    // More than is gathered before it is written.
    if (status.ok()) status = sync.SendData(std::string(300'000, 'x'), limits());
    if (status.ok()) status = sync.EndSend(0, limits());
    if (!status.ok()) break;
  }
  if (status.ok()) status = sync.AwaitSends(0, limits());
  ASSERT_FALSE(status.ok());
  EXPECT_EQ(status.error().code, ErrorCode::kRefused);
  EXPECT_EQ(sent[sent.size() - sync.unanswered()], "/sdcard/good/bad");
}

TEST_F(AdbPhoneTest, AWalkAsksAheadFromInsideItsLists) {
  Run(kModern,
      {.command = "for i in 0 1 2 3 4 5 6 7; do for j in 0 1 2 3 4 5 6 7; do mkdir -p /sdcard/tree/$i/$j; "
                  "echo > /sdcard/tree/$i/$j/file; done; done"});
  SyncConnection sync = Sync(kModern);
  std::deque<std::string> folders = {"/sdcard/tree"};
  Require(sync.RequestList(folders.front()));
  int files = 0;
  int visited = 0;
  for (; !folders.empty(); folders.pop_front(), ++visited) {
    Require(sync.ReadList(
        [&](const DirectoryEntry& entry) {
          if (entry.name == "." || entry.name == "..") return true;
          if ((entry.status.mode & 0170000) != 0040000) return ++files > 0;
          folders.push_back(folders.front() + "/" + std::string(entry.name));
          return sync.RequestList(folders.back()).ok();
        },
        limits()));
  }
  EXPECT_EQ(visited, 1 + 8 + 64);
  EXPECT_EQ(files, 64);
  EXPECT_TRUE(sync.IsIdle());
}

TEST_F(AdbPhoneTest, ForwardsAndReverses) {
  const std::string port =
      Require(AddForward(server(), kModern, "tcp:0", "tcp:9", Rebind::kRefuse, limits()));
  EXPECT_NE(port, "");
  EXPECT_EQ(Require(QueryForwards(server(), limits())), "MODERN tcp:" + port + " tcp:9\n");
  EXPECT_EQ(AddForward(server(), kModern, "tcp:" + port, "tcp:9", Rebind::kRefuse, limits()).error().message,
            "cannot rebind existing socket");
  Require(AddForward(server(), kModern, "tcp:" + port, "tcp:10", Rebind::kAllow, limits()));
  Require(RemoveForward(server(), kModern, "tcp:" + port, limits()));
  const Status again = RemoveForward(server(), kModern, "tcp:" + port, limits());
  ASSERT_FALSE(again.ok());
  EXPECT_EQ(again.error().message, "listener 'tcp:" + port + "' not found");
  EXPECT_EQ(Require(QueryForwards(server(), limits())), "");

  const std::string remote =
      Require(AddReverse(server(), kModern, "tcp:0", "tcp:9", Rebind::kAllow, limits()));
  EXPECT_NE(remote, "");
  EXPECT_NE(Require(QueryReverses(server(), kModern, limits())).find(" tcp:" + remote + " tcp:9\n"),
            std::string::npos);
  Require(RemoveReverse(server(), kModern, "tcp:" + remote, limits()));
  EXPECT_FALSE(RemoveReverse(server(), kModern, "tcp:" + remote, limits()).ok());
  Require(AddReverse(server(), kModern, "localabstract:x", "tcp:9", Rebind::kAllow, limits()));
  Require(RemoveAllReverses(server(), kModern, limits()));
  EXPECT_EQ(Require(QueryReverses(server(), kModern, limits())), "");
}

TEST_F(AdbPhoneTest, ChangesAreReported) {
  auto tracker = Require(DeviceTracker::Open(server(), ListForm::kShort, limits()));
  const auto await = [&](std::string_view line, bool there) {
    for (;;) {
      const std::string text = Require(tracker.Next(limits()));
      if ((text.find(line) != std::string::npos) == there) return;
    }
  };
  await("192.168.7.7:5555\tdevice\n", true);
  const auto none = tracker.Next({Clock::now() + milliseconds(20), nullptr});
  ASSERT_FALSE(none.ok());
  EXPECT_EQ(none.error().code, ErrorCode::kTimedOut);
  EXPECT_EQ(Require(Disconnect(server(), "192.168.7.7:5555", limits())), "disconnected 192.168.7.7:5555");
  await("192.168.7.7:5555", false);
  EXPECT_EQ(Require(ConnectOverNetwork(server(), "192.168.7.7:5555", limits())),
            "connected to 192.168.7.7:5555");
  await("192.168.7.7:5555\tdevice\n", true);
}

TEST_F(AdbPhoneTest, APhoneReconnectsAndIsWaitedFor) {
  SyncConnection sync = Sync(kLegacy);
  EXPECT_TRUE(sync.IsIdle());
  EXPECT_EQ(Require(ReconnectFromServer(server(), kLegacy, limits())), "reconnecting LEGACY [device]\n");
  Require(WaitForState(server(), kLegacy, ConnectionKind::kAny, "device", limits()));
  EXPECT_EQ(Require(ReconnectFromDevice(server(), kLegacy, limits())), "done");
  Require(WaitForState(server(), kLegacy, ConnectionKind::kUsb, "device", limits()));
  EXPECT_NE(Require(ReconnectOffline(server(), limits())).find("reconnecting LOCKED"), std::string::npos);
}

TEST(AdbPhoneOfItsOwnTest, EveryForwardIsRemoved) {
  SimulatedPhones phones({"MODERN"});
  const ServerAddress server = AddressOf(phones);
  const Limits limits = {Clock::now() + seconds(60), nullptr};
  for (int i = 0; i < 2; ++i)
    Require(AddForward(server, DeviceSelector::Any(), "tcp:0", "tcp:9", Rebind::kAllow, limits));
  Require(RemoveAllForwards(server, limits));
  EXPECT_EQ(Require(QueryForwards(server, limits)), "");
}

TEST(AdbPhoneOfItsOwnTest, ARebootBreaksWhatIsKept) {
  SimulatedPhones phones({"MODERN"});
  const ServerAddress server = AddressOf(phones);
  const Limits limits = {Clock::now() + seconds(60), nullptr};
  auto sync = Require(SyncConnection::Start(server, kModern, FeatureSet("stat_v2"), limits));
  Require(Reboot(server, kModern, "", limits));
  const Clock::time_point deadline = Clock::now() + seconds(30);
  while (sync.IsIdle() && Clock::now() < deadline) std::this_thread::sleep_for(milliseconds(5));
  EXPECT_FALSE(sync.IsIdle());
  const auto status = sync.Stat("/", SyncConnection::Links::kThemselves, limits);
  ASSERT_FALSE(status.ok());
  EXPECT_EQ(status.error().code, ErrorCode::kConnectionBroken);
  Require(WaitForState(server, kModern, ConnectionKind::kAny, "device", limits));
  Require(KillServer(server, limits));
}

}  // namespace
}  // namespace darokleim::adb_test
