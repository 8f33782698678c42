// Where a real adb server surprises its clients, the simulated one does too.
#include <gmock/gmock.h>

#include <chrono>

#include "tests/phone/phone_under_test.h"
#include "tests/phone/raw_client.h"
#include "tools/phone/device/sync_messages.h"

namespace darokleim::test {
namespace {

using phone::WithLength;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string SyncRequest(uint32_t id, const std::string& path) {
  return phone::MakeSyncHeader(id, static_cast<uint32_t>(path.size())) + path;
}

// A client that asks for a status, waits for it, and asks again; in milliseconds.
double MillisecondsOfStats(const SimulatedPhones& phones, int count) {
  constexpr size_t kStatSize = 16;
  const RawClient client(phones.port(), "ALFA1");
  client.Send(WithLength("sync:"));
  EXPECT_EQ(client.Read(4), "OKAY");
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < count; ++i) {
    client.Send(SyncRequest(phone::kSyncLstat1, "/sdcard"));
    EXPECT_THAT(client.Read(kStatSize), StartsWith("STAT"));
  }
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

TEST(RealServer, KeepsAClientThatWaitsForEachReplyWaiting) {
  // Linux acknowledges the first packets of a connection at once, and later ones after 40 ms.
  constexpr int kCount = 40;
  const SimulatedPhones real({"ALFA1"});
  const SimulatedPhones quick({"ALFA1"}, {"--quick"});
  EXPECT_GT(MillisecondsOfStats(real, kCount), 10 * 35);
  EXPECT_LT(MillisecondsOfStats(quick, kCount), 10 * 35);
}

TEST(RealServer, LosesAServiceInTheSameWriteAsItsTransport) {
  const SimulatedPhones phones({"ALFA1"});
  const RawClient client(phones.port());
  client.Send(WithLength("host:transport:ALFA1") + WithLength("shell:echo lost"));
  EXPECT_EQ(client.ReadAll(/*patience_milliseconds=*/500), "OKAY(silence)");
}

TEST(RealServer, ShowsOfAPhoneWhatItKnowsItself) {
  const SimulatedPhones older({"ALFA1"});
  const SimulatedPhones newer({"ALFA1", "OLD1,android=legacy"}, {"--server-release", "34"});
  const auto features = [](const SimulatedPhones& phones, const std::string& request) {
    const RawClient client(phones.port());
    client.Send(WithLength(request));
    return client.ReadAll();
  };
  EXPECT_THAT(features(older, "host:host-features"), Not(HasSubstr("sendrecv_v2")));
  EXPECT_THAT(features(older, "host-serial:ALFA1:features"), Not(HasSubstr("sendrecv_v2")));
  EXPECT_THAT(features(older, "host-serial:ALFA1:features"), HasSubstr("stat_v2"));
  EXPECT_THAT(features(newer, "host:host-features"), HasSubstr("sendrecv_v2"));
  EXPECT_THAT(features(newer, "host-serial:ALFA1:features"), HasSubstr("sendrecv_v2"));
  EXPECT_EQ(features(newer, "host-serial:OLD1:features"), "OKAY0000");
}

class SyncForms : public testing::Test {
 protected:
  // What the phone answers to these bytes, after the OKAY of the service.
  std::string Answer(const std::string& serial, const std::string& bytes) const {
    const RawClient client(phones_.port(), serial);
    client.Send(WithLength("sync:") + bytes + phone::MakeSyncHeader(phone::kSyncQuit, 0));
    return client.ReadAll().substr(4);
  }
  const SimulatedPhones phones_{{"NEW1", "OLD1,android=legacy"}, {"--server-release", "34"}};
};

TEST_F(SyncForms, AnOldPhoneAnswersOnlyTheFirst) {
  for (const uint32_t id :
       {phone::kSyncStat2, phone::kSyncLstat2, phone::kSyncList2, phone::kSyncSend2, phone::kSyncReceive2}) {
    const std::string answer = Answer("OLD1", SyncRequest(id, "/sdcard"));
    EXPECT_THAT(answer, StartsWith("FAIL"));
    EXPECT_THAT(answer, HasSubstr("unknown command"));
  }
  EXPECT_THAT(Answer("OLD1", SyncRequest(phone::kSyncLstat1, "/sdcard")), StartsWith("STAT"));
  EXPECT_THAT(Answer("NEW1", SyncRequest(phone::kSyncStat2, "/sdcard")), StartsWith("STA2"));
}

TEST_F(SyncForms, TheSecondFormOfSendAndReceiveCarriesAFile) {
  const std::string path = "/sdcard/second";
  const std::string mode_and_flags("\xa4\x81\0\0\0\0\0\0", 8);  // 0100644, none
  EXPECT_EQ(Answer("NEW1", SyncRequest(phone::kSyncSend2, path) + "SND2" + mode_and_flags +
                               phone::MakeSyncHeader(phone::kSyncData, 7) + "content" +
                               phone::MakeSyncHeader(phone::kSyncDone, 1577934245)),
            phone::MakeSyncHeader(phone::kSyncOkay, 0));
  EXPECT_EQ(
      Answer("NEW1",
             SyncRequest(phone::kSyncReceive2, path) + phone::MakeSyncHeader(phone::kSyncReceive2, 0)),
      phone::MakeSyncHeader(phone::kSyncData, 7) + "content" + phone::MakeSyncHeader(phone::kSyncDone, 0));
  EXPECT_EQ(phones_.Adb({"-s", "NEW1", "shell", "stat -c '%a %Y' " + path}).output, "666 1577934245\n")
      << "what the owner may, the others may too";
  EXPECT_THAT(Answer("NEW1", SyncRequest(phone::kSyncReceive2, path) +
                                 phone::MakeSyncHeader(phone::kSyncReceive2, 1)),
              HasSubstr("unknown flags"));
}

}  // namespace
}  // namespace darokleim::test
