// An application's data, saved and restored.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <thread>

#include "tests/client/client_on_phone.h"
#include "tests/support/eventually.h"

namespace darokleim::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr char kNote[] = "/data/data/com.example.notes/files/note";

class Backups : public ClientOnPhone {
 protected:
  void SetUp() override {
    ClientOnPhone::SetUp();
    ASSERT_TRUE(phone().install({DAROKLEIM_PHONE_TEST_DATA "/notes-1.apk"}, DK_INSTALL_OPTIONS_INIT));
    Shell(std::string("mkdir -p /data/data/com.example.notes/files; echo precious >") + kNote);
  }

  dk::Result<void> Save(std::string* backup, const dk::Limits& limits = {}) const {
    const auto append = [backup](std::string_view piece) {
      backup->append(piece);
      return true;
    };
    return phone().backup(kNotes, append, limits);
  }
  dk::Result<void> Restore(std::string backup, std::size_t piece = 1 << 20) const {
    const auto next = [&backup, piece](char* buffer, std::size_t capacity) {
      const std::size_t size = std::min({backup.size(), capacity, piece});
      std::memcpy(buffer, backup.data(), size);
      backup.erase(0, size);
      return static_cast<std::int64_t>(size);
    };
    return phone().restore(next);
  }

  void Leave(const std::string& question) { phones().Control({kSerial, "fault", question}); }
  std::string Activities() { return phones().Control({kSerial, "show", "activities"}).output; }
};
DAROKLEIM_ON_BOTH_GENERATIONS(Backups);

TEST_P(Backups, BringTheDataBack) {
  std::string backup;
  const auto saved = Save(&backup);
  ASSERT_TRUE(saved) << saved.error().message();
  EXPECT_THAT(backup, StartsWith("ANDROID BACKUP\n"));
  Shell(std::string("rm ") + kNote);
  const auto restored = Restore(backup);
  ASSERT_TRUE(restored) << restored.error().message();
  EXPECT_EQ(Shell(std::string("cat ") + kNote), "precious\n");
}

TEST_P(Backups, AreRestoredFromPiecesOfAnySize) {
  std::string backup;
  ASSERT_TRUE(Save(&backup));
  Shell(std::string("rm ") + kNote);
  ASSERT_TRUE(Restore(backup, 1));
  EXPECT_EQ(Shell(std::string("cat ") + kNote), "precious\n");
}

TEST_P(Backups, NeedAnInstalledApplication) {
  const auto ignore = [](std::string_view) { return true; };
  EXPECT_EQ(phone().backup("com.example.none", ignore).code(), DK_NO_PACKAGE);
  EXPECT_EQ(phone().backup("not a name; reboot", ignore).code(), DK_INVALID_ARGUMENT);
}

TEST_P(Backups, OfAnotherKindAreNotSent) {
  for (const char* content : {"", "ANDROID", "ANDROID BACKUQ\n5\n1\nnone\n"}) {
    EXPECT_EQ(Restore(content).code(), DK_INVALID_ARGUMENT) << content;
  }
  EXPECT_EQ(Activities(), "");
}

TEST_P(Backups, ThatBreakOffEndAllTheSame) {
  std::string backup;
  ASSERT_TRUE(Save(&backup));
  static_cast<void>(Restore(backup.substr(0, backup.size() / 2)));
  EXPECT_EQ(Shell(std::string("cat ") + kNote), "precious\n");
}

TEST_P(Backups, ThatAreRefusedFail) {
  Leave("unconfirmed-backup");
  std::thread refusing([this] {
    Eventually([this] { return !Activities().empty(); });
    EXPECT_TRUE(phone().dismiss_backup());
  });
  std::string backup;
  const auto refused = Save(&backup);
  refusing.join();
  EXPECT_EQ(refused.code(), DK_COMMAND_FAILED);
  EXPECT_THAT(refused.error().message(), HasSubstr("refused on its screen"));
}

TEST_P(Backups, CloseTheQuestionWhenTheyAreCancelled) {
  Leave("unconfirmed-backup");
  dk::Limits limits;
  limits.timeout = std::chrono::milliseconds(500);
  std::string backup;
  EXPECT_EQ(Save(&backup, limits).code(), DK_TIMED_OUT);
  EXPECT_THAT(Activities(), HasSubstr("force-stop com.android.backupconfirm"));
}

TEST_P(Backups, ThatAreCancelledWhileTheyAreSentDoNotSucceed) {
  std::string backup;
  ASSERT_TRUE(Save(&backup));
  dk::Limits limits;
  limits.cancel.emplace();
  std::size_t pieces = 0;
  const auto source = [&](char* buffer, std::size_t capacity) -> std::int64_t {
    if (pieces++ > 0) limits.cancel->set();
    if (pieces > 100) return 0;
    const std::size_t size = std::min(capacity, backup.size());
    std::memcpy(buffer, backup.data(), size);
    return static_cast<std::int64_t>(size);
  };
  EXPECT_EQ(phone().restore(source, limits).code(), DK_CANCELLED);
  EXPECT_EQ(pieces, 2U);
}

TEST_P(Backups, NoticeThatThePhoneWasUnplugged) {
  Leave("unconfirmed-backup");
  std::thread unplugging([this] {
    Eventually([this] { return !Activities().empty(); });
    phones().Control({kSerial, "unplug"});
  });
  std::string backup;
  const auto broken = Save(&backup);
  unplugging.join();
  EXPECT_EQ(broken.code(), DK_CONNECTION_LOST);
}

TEST_P(Backups, EndWithTheirReceiver) {
  EXPECT_EQ(phone().backup(kNotes, [](std::string_view) { return false; }).code(), DK_STOPPED);
  EXPECT_THROW(static_cast<void>(phone().backup(
                   kNotes, [](std::string_view) -> bool { throw std::runtime_error("full"); })),
               std::runtime_error);
}

}  // namespace
}  // namespace darokleim::test
