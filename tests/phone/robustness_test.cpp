#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

#include "tests/phone/phone_under_test.h"
#include "tests/phone/raw_client.h"
#include "tools/phone/device/sync_messages.h"

namespace darokleim::test {
namespace {

using base::UniqueFd;
using phone::WithLength;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class Robustness : public testing::Test {
 protected:
  SimulatedPhones& phones() { return phones_; }
  std::string Answer(const std::string& bytes) const {
    const RawClient client(phones_.port());
    client.Send(bytes);
    client.EndInput();
    return client.ReadAll();
  }
  // The bytes, to a service of the phone.
  std::string AnswerOfPhone(const std::string& service, const std::string& bytes) const {
    const RawClient client(phones_.port(), "ALFA1");
    client.Send(WithLength(service) + bytes);
    client.EndInput();
    return client.ReadAll();
  }
  void ExpectAllIsWell() const { EXPECT_EQ(phones_.Adb({"shell", "echo well"}).output, "well\n"); }
  size_t Count(const std::string& what) {
    const std::filesystem::path folder = "/proc/" + std::to_string(phones_.process().pid()) + "/" + what;
    return static_cast<size_t>(
        std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()));
  }

 private:
  SimulatedPhones phones_{{"ALFA1"}};
};

TEST_F(Robustness, RefusesWhatIsNoRequest) {
  for (const std::string bytes :
       {"", "0", "zzzz", "-001x", "+00fhost:version", "00 5host:", "ffffshort", "GET / HTTP/1.0"})
    EXPECT_EQ(Answer(bytes), "") << bytes;
  for (const std::string& request :
       {std::string(), std::string("host"), std::string("host:"), std::string("host:nothing"),
        std::string("host-serial:"), std::string("host-transport-id:18446744073709551616:features"),
        std::string("host-transport-id::features"), std::string("host:\0version", 13),
        std::string(65535, 'x'), "host:" + std::string(60000, ':'), std::string("host:transport:"),
        std::string("host:tport:serial:"), std::string("host:darokleim-phone:"),
        "host:darokleim-phone:ALFA1" + std::string(1000, '\0'), std::string("host:wait-for-"),
        std::string("host:wait-for-any-nowhere"), std::string("host-serial:ALFA1:forward:"),
        std::string("host-serial:ALFA1:forward:;;;")}) {
    EXPECT_THAT(Answer(WithLength(request)), StartsWith("FAIL")) << request.substr(0, 100);
  }
  ExpectAllIsWell();
}

TEST_F(Robustness, APhoneRefusesWhatIsNoService) {
  for (const std::string& service :
       {std::string(), std::string("nothing"), std::string(65535, 'x'), std::string("tcp:"),
        std::string("tcp:99999"), std::string("dev:/dev/null"), std::string("shell"),
        std::string("\xff\xfe\0", 3)}) {
    EXPECT_EQ(AnswerOfPhone(service, ""), "FAIL0006closed") << service.substr(0, 100);
  }
  ExpectAllIsWell();
}

TEST_F(Robustness, FileTransferEndsAtWhatIsNoMessage) {
  const std::string path = "/data/local/tmp/file,33188";
  const std::string send = phone::MakeSyncHeader(phone::kSyncSend, static_cast<uint32_t>(path.size())) + path;
  const auto data = [](uint32_t length) { return phone::MakeSyncHeader(phone::kSyncData, length); };
  for (const auto& [bytes, reason] : std::vector<std::pair<std::string, std::string>>{
           {phone::MakeSyncHeader(phone::SyncId("WHAT"), 0), "unknown command"},
           {phone::MakeSyncHeader(phone::kSyncSend, 0xffffffff), "path too long"},
           {phone::MakeSyncHeader(phone::kSyncSend, 4) + "none", "missing , in ID_SEND"},
           {phone::MakeSyncHeader(phone::kSyncSend, 6) + "none,x", "bad mode"},
           {send + data(0xffffffff), "oversize data message"},
           {send + phone::MakeSyncHeader(phone::kSyncQuit, 0), "invalid data message"}}) {
    const std::string answer = AnswerOfPhone("sync:", bytes);
    EXPECT_THAT(answer, StartsWith("OKAYFAIL"));
    EXPECT_THAT(answer, HasSubstr(reason));
  }
  // Cut in the middle: no answer, and nothing of the file stays.
  EXPECT_EQ(AnswerOfPhone("sync:", send + data(1000) + "only this"), "OKAY");
  EXPECT_EQ(phones().Adb({"shell", "ls /data/local/tmp"}).output, "");
}

TEST_F(Robustness, ShellEndsAtWhatIsNoPacket) {
  EXPECT_EQ(AnswerOfPhone("shell,v2:cat", std::string("\x05\xff\xff\xff\xff", 5) + "12345"), "OKAY");
  // An unknown kind of packet is skipped. The client stays connected, or the command would end with it.
  const RawClient client(phones().port(), "ALFA1");
  client.Send(WithLength("shell,v2:read x; echo $x; exit 3") +
              std::string("\x63\x01\0\0\0z\0\x04\0\0\0out\n", 15));
  EXPECT_EQ(client.ReadAll(), "OKAY" + std::string("\x01\x04\0\0\0out\n\x03\x01\0\0\0\x03", 15));
  ExpectAllIsWell();
}

// Real requests with bytes changed, cut out and doubled, always the same ones.
TEST_F(Robustness, SurvivesDamagedRequests) {
  constexpr int kTrials = 400;
  std::mt19937 random(20260101);
  const std::string sync = phone::MakeSyncHeader(phone::kSyncLstat1, 7) + "/sdcard" +
                           phone::MakeSyncHeader(phone::kSyncList1, 5) + "/data" +
                           phone::MakeSyncHeader(phone::kSyncQuit, 0);
  const std::vector<std::string> to_server = {WithLength("host:devices-l"),
                                              WithLength("host-serial:ALFA1:features"),
                                              WithLength("host:tport:serial:ALFA1")};
  const std::vector<std::string> to_phone = {
      WithLength("shell,v2,TERM=xterm,raw:echo x") + std::string("\x04\0\0\0\0", 5),
      WithLength("sync:") + sync, WithLength("reverse:list-forward")};
  for (int trial = 0; trial < kTrials; ++trial) {
    const bool for_phone = random() % 2 == 0;
    const std::vector<std::string>& requests = for_phone ? to_phone : to_server;
    std::string bytes = requests[random() % requests.size()];
    for (unsigned long changes = 1 + random() % 4; changes > 0 && !bytes.empty(); --changes) {
      const size_t place = random() % bytes.size();
      const unsigned long how = random() % 3;
      if (how == 0) bytes[place] = static_cast<char>(random());
      if (how == 1) bytes.erase(place, 1 + random() % 8);
      if (how == 2) bytes.insert(place, bytes.substr(random() % bytes.size(), random() % 8));
    }
    const RawClient client = for_phone ? RawClient(phones().port(), "ALFA1") : RawClient(phones().port());
    client.Send(bytes);
    client.EndInput();
    EXPECT_THAT(client.ReadAll(), testing::Not(EndsWith("(silence)"))) << trial;
  }
  ExpectAllIsWell();
}

TEST_F(Robustness, HoldsAThousandClientsThatSayNothing) {
  constexpr size_t kClients = 1000;
  ExpectAllIsWell();
  const size_t descriptors = Count("fd");
  const size_t threads = Count("task");
  {
    std::vector<RawClient> clients;
    for (size_t i = 0; i < kClients; ++i) {
      clients.emplace_back(phones().port());
      ASSERT_TRUE(clients.back().connected()) << i;
      if (i % 2 == 1) clients.back().Send("00");
    }
    EXPECT_TRUE(Eventually([&] { return Count("task") >= threads + kClients; }));
    ExpectAllIsWell();
  }
  EXPECT_TRUE(Eventually([&] {
    phones().Adb({"devices"});  // the threads are joined when the next client comes
    return Count("fd") <= descriptors + 2 && Count("task") <= threads + 1;
  })) << Count("fd")
      << " " << Count("task");
}

TEST_F(Robustness, OutlivesMoreClientsThanItHasDescriptorsFor) {
  const rlimit few = {64, 64};
  ASSERT_EQ(prlimit(phones().process().pid(), RLIMIT_NOFILE, &few, nullptr), 0);
  // More than it can serve, fewer than the system lets wait: a connection beyond that stays with its maker.
  std::vector<RawClient> clients;
  for (int i = 0; i < 120; ++i) clients.emplace_back(phones().port());
  clients.clear();
  // adb would start a server of its own when this one is not there yet.
  EXPECT_TRUE(Eventually([this] { return Answer(WithLength("host:version")) == "OKAY00040029"; }));
  ExpectAllIsWell();
}

TEST_F(Robustness, ASlowReaderHoldsNobodyUp) {
  const RawClient flood(phones().port(), "ALFA1");
  flood.Send(WithLength("exec:cat /dev/zero"));
  const RawClient watcher(phones().port());
  watcher.Send(WithLength("host:track-devices-l"));
  for (int i = 0; i < 20; ++i) {
    phones().Control({"ALFA1", "state", i % 2 == 0 ? "offline" : "device"});
  }
  ExpectAllIsWell();
}

TEST(RobustnessAtTheEnd, ClientsThatSayNothingDoNotKeepTheServer) {
  SimulatedPhones phones({"ALFA1"});
  const RawClient silent(phones.port());
  const RawClient half(phones.port());
  half.Send("00");
  const RawClient flood(phones.port(), "ALFA1");
  flood.Send(WithLength("exec:cat /dev/zero"));
  EXPECT_EQ(phones.Adb({"shell", "echo well"}).output, "well\n");
  phones.process().Signal(SIGTERM);
  EXPECT_EQ(phones.process().Finish().status, 0);
}

}  // namespace
}  // namespace darokleim::test
