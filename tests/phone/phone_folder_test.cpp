#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <ctime>
#include <filesystem>

#include "tests/phone/phone_under_test.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

// A place of the test's own for the phones' folders.
class Folders : public testing::Test {
 protected:
  void SetUp() override {
    place_ = (fs::temp_directory_path() / "darokleim-folders-XXXXXX").string();
    ASSERT_NE(mkdtemp(place_.data()), nullptr);
  }
  void TearDown() override { fs::remove_all(place_); }

  const std::string& place() const { return place_; }
  // A server without phones cleans up and ends.
  void StartAndEndAnother() const {
    HostProcess server({DAROKLEIM_PHONE_PROGRAM, "--port", "0"}, {{"TMPDIR", place_}});
    server.ReadLine();
  }
  size_t Count() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(place_), fs::directory_iterator()));
  }

 private:
  std::string place_;
};

TEST_F(Folders, OfAPhoneGoWithItsServer) {
  HostProcess server({DAROKLEIM_PHONE_PROGRAM, "--port", "0", "--phone", "ALFA1", "--phone", "BETA1"},
                     {{"TMPDIR", place()}});
  server.ReadLine();
  EXPECT_EQ(Count(), 2u);
  server.Signal(SIGTERM);
  EXPECT_EQ(server.Finish().status, 0);
  EXPECT_EQ(Count(), 0u);
}

TEST_F(Folders, OfAKilledServerGoWithTheNext) {
  HostProcess server({DAROKLEIM_PHONE_PROGRAM, "--port", "0", "--phone", "ALFA1"}, {{"TMPDIR", place()}});
  server.ReadLine();
  ASSERT_EQ(Count(), 1u);
  const std::string lock = fs::directory_iterator(place())->path().string() + "/lock";
  const timespec long_ago[] = {{1577934240, 0}, {1577934240, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, lock.c_str(), long_ago, 0), 0);
  StartAndEndAnother();
  EXPECT_EQ(Count(), 1u) << "it is in use";
  server.Signal(SIGKILL);
  server.Finish();
  EXPECT_EQ(Count(), 1u);
  StartAndEndAnother();
  EXPECT_EQ(Count(), 0u);
}

TEST_F(Folders, AreNoTwoPhonesAtOnce) {
  const std::string phone = "ALFA1,root=" + place() + "/phone";
  const SimulatedPhones phones({phone});
  const Outcome second = RunProgram({DAROKLEIM_PHONE_PROGRAM, "--port", "0", "--phone", phone}, {});
  EXPECT_EQ(second.status, 1);
  EXPECT_EQ(second.errors, "darokleim-phone: " + place() + "/phone is the folder of another phone\n");
}

TEST_F(Folders, KeepTheWholePhone) {
  const std::string phone = "ALFA1,root=" + place() + "/phone";
  {
    const SimulatedPhones phones({phone});
    phones.Adb({"install", DataFile("notes-1.apk")});
    phones.Adb({"shell",
                "echo kept > /data/data/com.example.notes/files/note; setprop persist.a b; setprop c d; "
                "settings put global e f; input text typed; log -t Test kept"});
  }
  const SimulatedPhones phones({phone + ",android=legacy"});
  EXPECT_EQ(phones
                .Adb({"exec-out",
                      "cat /data/data/com.example.notes/files/note; getprop persist.a; getprop c; "
                      "settings get global e; pm list packages -3"})
                .output,
            "kept\nb\n\nf\npackage:com.example.notes\n");
  EXPECT_EQ(phones.Control({"ALFA1", "show", "input"}).output, "text typed\n");
  EXPECT_THAT(phones.Adb({"logcat", "-d", "-s", "Test"}).output, HasSubstr("kept"));
  EXPECT_THAT(phones.Adb({"shell", "ls -l /storage"}).output, testing::Not(HasSubstr("total")));
}

}  // namespace
}  // namespace darokleim::test
