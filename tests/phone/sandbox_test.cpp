// A phone's programs may put links wherever they may write. None of them leads the server out of the phone.
#include <gmock/gmock.h>

#include <filesystem>

#include "tests/phone/phone_under_test.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

// A phone whose folder the test chooses, and a folder of the host that no phone must reach.
class Sandbox : public testing::Test {
 protected:
  Sandbox() {
    fs::create_directories(host_.path() / "host/0");
    WriteFile(host_.File("host/secret"), "persist.secret=host\n");
    WriteFile(host_.File("host/0/secret"), "of the host");
    Start();
  }
  void Start() { phones_.emplace(Words{"ALFA1,card=1A2B-3C4D,root=" + host_.File("phone")}); }
  void Stop() { phones_.reset(); }

  SimulatedPhones& phones() { return *phones_; }
  std::string host_folder() const { return host_.File("host"); }
  std::string phone_files() const { return host_.File("phone/files"); }
  std::string Shell(const std::string& command) const {
    const Outcome outcome = phones_->Adb({"shell", command});
    return outcome.output + outcome.errors;
  }
  void Control(const std::string& action, const std::string& value) const {
    EXPECT_EQ(phones_->Control({"ALFA1", action, value}).errors, "");
  }
  void Reboot() const {
    Shell("echo > /data/local/tmp/before-reboot; setprop before.reboot yes");
    phones_->Adb({"reboot"});
    EXPECT_TRUE(Eventually([this] {
      return phones_->Adb({"shell", "getprop before.reboot; echo up"}).output == "\nup\n";
    }));
  }
  // Everything below the folder of the host, to see that nothing was added, moved or written.
  std::vector<std::string> HostEntries() const {
    std::vector<std::string> entries;
    for (const auto& entry : fs::recursive_directory_iterator(host_folder())) {
      std::string text = entry.path().lexically_relative(host_folder()).string();
      if (entry.is_regular_file()) text += "=" + ReadFile(entry.path().string());
      entries.push_back(text);
    }
    std::sort(entries.begin(), entries.end());
    return entries;
  }
  void ExpectHostIsUntouched() const {
    EXPECT_THAT(HostEntries(), ElementsAre("0", "0/secret=of the host", "secret=persist.secret=host\n"));
  }

 private:
  TemporaryDirectory host_;
  std::optional<SimulatedPhones> phones_;
};

TEST_F(Sandbox, ALinkInPlaceOfAVolumeLeadsNowhere) {
  for (const std::string volume : {"/data/media", "/mnt/media_rw/1A2B-3C4D", "/storage/1A2B-3C4D"})
    Shell("mv " + volume + " " + volume + ".old; rm -rf " + volume + "; ln -s " + host_folder() + " " +
          volume);
  Reboot();
  EXPECT_THAT(Shell("ls /sdcard/ /storage/emulated /storage/1A2B-3C4D/"), Not(HasSubstr("secret")));
  EXPECT_EQ(Shell("echo written >/sdcard/note; echo written >/storage/1A2B-3C4D/note; cat /sdcard/note"),
            "written\n");
  ExpectHostIsUntouched();
}

TEST_F(Sandbox, ALinkInPlaceOfTheHiddenCommandsMovesNothing) {
  Shell("rm -rf /dev/.state/hidden-commands; ln -s " + host_folder() + " /dev/.state/hidden-commands");
  Control("fault", "no-find");
  EXPECT_THAT(Shell("find"), HasSubstr("not found"));
  Control("clear", "no-find");
  ExpectHostIsUntouched();
  EXPECT_EQ(Shell("ls /system/bin/secret 2>/dev/null; find /data/local -name tmp"), "/data/local/tmp\n");
}

TEST_F(Sandbox, ALinkInPlaceOfTheFaultsWritesNothing) {
  WriteFile(host_folder() + "/no-wifi", "of the host");
  Shell("rm -rf /dev/.state/faults; ln -s " + host_folder() + " /dev/.state/faults");
  Control("fault", "full-storage");
  EXPECT_THAT(Shell("echo >/sdcard/note"), HasSubstr("No space left"));
  Control("clear", "full-storage");
  Control("clear", "no-wifi");
  EXPECT_EQ(ReadFile(host_folder() + "/no-wifi"), "of the host");
  fs::remove(host_folder() + "/no-wifi");
  ExpectHostIsUntouched();
}

TEST_F(Sandbox, APhoneCannotChangeItsFaults) {
  Control("fault", "no-wifi");
  EXPECT_THAT(Shell("rm -r /dev/.setup/faults; mv /dev/.setup /dev/.other"), HasSubstr("Read-only"));
  EXPECT_THAT(phones().Control({"list"}).output, HasSubstr("fault=no-wifi"));
}

TEST_F(Sandbox, LinksInPlaceOfThePropertiesAreOnlyFollowedInside) {
  const std::string properties = "/dev/.state/set-properties";
  const std::string pid = std::to_string(phones().process().pid());
  for (const std::string& link : {properties, properties + ".new." + pid, properties + ".new.1"})
    Shell("rm -f " + link + "; ln -s " + host_folder() + "/secret " + link);
  Reboot();
  EXPECT_EQ(Shell("getprop persist.secret"), "\n");
  ExpectHostIsUntouched();
}

TEST_F(Sandbox, ARecordThatIsNotARegularFileShowsNothing) {
  for (const std::string& replacement :
       {"ln -s " + host_folder() + "/secret", std::string("mkfifo"), std::string("mkdir")}) {
    Shell("rm -rf /dev/.state/input; " + replacement + " /dev/.state/input");
    const Outcome shown = phones().Control({"ALFA1", "show", "input"});
    EXPECT_EQ(shown.output + shown.errors, "") << replacement;
  }
}

TEST_F(Sandbox, LinksInPlaceOfFoldersAreNotFollowedAtTheNextStart) {
  Shell("cd /data; for folder in local app data; do rm -rf $folder; ln -s " + host_folder() +
        " $folder; done; rm -rf /sdcard/DCIM; ln -s " + host_folder() + " /sdcard/DCIM");
  Stop();
  Start();
  EXPECT_EQ(Shell("echo up"), "up\n");
  ExpectHostIsUntouched();
}

TEST_F(Sandbox, KeepsTheFilesOfAPhoneFromAnOlderVersion) {
  Stop();
  for (const char* folder : {"/storage", "/data", "/mnt"}) fs::remove_all(phone_files() + folder);
  fs::create_directories(phone_files() + "/data/media/0/DCIM");
  fs::create_directories(phone_files() + "/mnt/media_rw");
  fs::create_directory_symlink(host_folder(), phone_files() + "/mnt/media_rw/1A2B-3C4D");
  WriteFile(phone_files() + "/data/media/0/DCIM/photo", "of the phone");
  Start();
  EXPECT_EQ(Shell("cat /sdcard/DCIM/photo; ls /storage/1A2B-3C4D/"), "of the phone");
  ExpectHostIsUntouched();
}

}  // namespace
}  // namespace darokleim::test
