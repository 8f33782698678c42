// Lists and transfers that the channel makes without adb: the same text, status and effect as through adb.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <utime.h>

#include <filesystem>

#include "tests/phone/direct_and_adb.h"
#include "tests/support/file_content.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr time_t kTime = 1577934245;  // 2020-01-02 03:04:05 UTC

void WriteFileOf(const fs::path& path, size_t size, mode_t mode = 0640, time_t time = kTime) {
  std::string content(size, '\0');
  for (size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 31 + i / 256);
  WriteFile(path, content);
  chmod(path.c_str(), mode);
  const utimbuf times = {time, time};
  utime(path.c_str(), &times);
}

// Every byte that a name may have, in names of 32 bytes.
std::vector<std::string> NamesOfEveryByte() {
  std::vector<std::string> names;
  for (int first = 1; first < 256; first += 32) {
    std::string name = "n";
    for (int byte = first; byte < first + 32 && byte < 256; ++byte) {
      if (byte != '/') name += static_cast<char>(byte);
    }
    names.push_back(name);
  }
  return names;
}

class DirectListings : public DirectAndAdb {};

TEST_P(DirectListings, OfFolders) {
  fs::create_directories(phone_folder_seen() / "full");
  for (const std::string& name : NamesOfEveryByte())
    WriteFileOf(phone_folder_seen() / "full" / name, name.size());
  WriteFileOf(phone_folder_seen() / "full" / std::string(255, 'n'), 12);
  fs::create_symlink("none", phone_folder_seen() / "full" / "link");
  for (const std::string& name : kAwkwardNames) {
    fs::create_directories(phone_folder_seen() / name);
    WriteFileOf(phone_folder_seen() / name / "inside", 3);
    const Answer answer = ExpectSameAnswer(OnPhone("ls \"" + phone_folder() + "/" + name + "\""));
    EXPECT_THAT(answer.text, HasSubstr(" inside\n"));
  }
  const std::string full = phone_folder() + "/full";
  for (const std::string& path :
       {full, full + "/", full + "//.", full + "/link", std::string("/none"), std::string("/")}) {
    EXPECT_EQ(ExpectSameAnswer(OnPhone("ls \"" + path + "\"")).status, 0);
  }
  EXPECT_THAT(Directly(OnPhone("ls \"" + full + "\"")).text, HasSubstr(std::string(255, 'n') + "\n"));
}

TEST_P(DirectListings, ThatAreRefused) {
  fs::create_directories(phone_folder_seen() / "locked" / "inside");
  fs::permissions(phone_folder_seen() / "locked", fs::perms::none);
  ExpectSameAnswer(OnPhone("ls \"" + phone_folder() + "/locked\""));
  fs::permissions(phone_folder_seen() / "locked", fs::perms::all);
  for (const size_t length : {1000u, 1024u, 1025u, 70000u}) {
    ExpectSameAnswer(OnPhone("ls \"/" + std::string(length - 1, 'p') + "\""));
  }
}

class DirectTransfers : public DirectAndAdb {
 protected:
  void Reset() override {
    DirectAndAdb::Reset();
    WriteFileOf(host_folder() / "small", 4096);
    WriteFileOf(host_folder() / "empty", 0, 0755);
    WriteFileOf(host_folder() / "large", 300'000, 0600, kTime + 1);
    WriteFileOf(host_folder() / "old", 77, 0600, kTime + 2);
    fs::create_directories(host_folder() / "folder" / "inner");
    fs::create_symlink("small", host_folder() / "link");
    mkfifo((host_folder() / "pipe").c_str(), 0600);
    WriteFileOf(phone_folder_seen() / "small", 5000, 0664, kTime + 3);
    WriteFileOf(phone_folder_seen() / "empty", 0, 0600, kTime + 4);
    WriteFileOf(phone_folder_seen() / "large", 400'000, 0755, kTime + 5);
    WriteFileOf(phone_folder_seen() / "boundary", 65536, 0644, kTime + 6);
    fs::create_directories(phone_folder_seen() / "folder" / "inner");
    WriteFileOf(phone_folder_seen() / "folder" / "file", 10, 0644, kTime + 7);
    fs::create_symlink("small", phone_folder_seen() / "link");
    fs::create_symlink("folder", phone_folder_seen() / "folder-link");
    fs::create_symlink("none", phone_folder_seen() / "broken-link");
    mkfifo((phone_folder_seen() / "pipe").c_str(), 0600);
    for (const std::string& name : kAwkwardNames) {
      WriteFileOf(host_folder() / name, name.size());
      WriteFileOf(phone_folder_seen() / ("p" + name), name.size());
    }
  }
  std::string OnHost(const std::string& name) const {
    return "\"" + host_folder().native() + "/" + name + "\"";
  }
  static std::string There(const std::string& name) { return "\"" + phone_folder() + "/" + name + "\""; }
  std::string Push(const std::string& from, const std::string& to, const std::string& options = "") const {
    return OnPhone("push " + options + OnHost(from) + " " + There(to));
  }
  std::string Pull(const std::string& from, const std::string& to, const std::string& options = "-a ") const {
    return OnPhone("pull " + options + There(from) + " " + OnHost(to));
  }
};

TEST_P(DirectTransfers, Pushes) {
  for (const std::string from : {"small", "empty", "large", "link"}) {
    for (const std::string to :
         {"new", "deep/er/new", "small", "link", "broken-link", "folder", "folder/", "folder-link"}) {
      EXPECT_EQ(ExpectSameEffect(Push(from, to)).status, 0) << from << " to " << to;
      EXPECT_EQ(ExpectSameEffect(Push(from, to, "--sync ")).status, 0) << from << " to " << to;
    }
  }
}

TEST_P(DirectTransfers, PushesOfWhatIsThere) {
  const auto same_time = [this](const std::string& name, time_t time) {
    const utimbuf times = {time, time};
    utime((phone_folder_seen() / name).c_str(), &times);
  };
  same_time("small", kTime);
  const std::string args = Push("small", "small", "--sync ");
  const Answer expected = ThroughAdb(args);
  EXPECT_THAT(expected.text, HasSubstr(": 0 files pushed, 1 skipped.\n"));
  EXPECT_EQ(Directly(args), expected) << "only the times are compared, not the sizes";
  EXPECT_EQ(fs::file_size(phone_folder_seen() / "small"), 5000u);
  same_time("small", kTime + 1);
  EXPECT_THAT(Directly(args).text, HasSubstr(": 1 file pushed, 0 skipped."));
  EXPECT_EQ(fs::file_size(phone_folder_seen() / "small"), 4096u);
}

TEST_P(DirectTransfers, PushesThatFail) {
  for (const std::string options : {"", "--sync "}) {
    EXPECT_EQ(ExpectSameEffect(Push("none", "new", options)).status, 1001);
    EXPECT_EQ(ExpectSameEffect(Push("none/none", "new", options)).status, 1001);
    EXPECT_EQ(ExpectSameEffect(Push("small", "small/", options)).status, 1001);
    EXPECT_EQ(ExpectSameEffect(Push("small", "small/inside", options)).status, 1001);
    EXPECT_EQ(ExpectSameEffect(Push("large", "small/inside", options)).status, 1001);
    EXPECT_EQ(ExpectSameEffect(OnPhone("push " + options + OnHost("small") + " \"/system/new\"")).status,
              1001);
    EXPECT_EQ(
        ExpectSameEffect(OnPhone("push " + options + OnHost("large") + " \"/system/new/newer\"")).status,
        1001);
    EXPECT_EQ(ExpectSameEffect(OnPhone("push " + options + OnHost("small") + " \"/proc/new\"")).status, 1001);
    for (const size_t length : {255u, 256u, 900u, 1017u, 1018u, 1024u, 1025u, 70000u}) {
      ExpectSameEffect(
          OnPhone("push " + options + OnHost("small") + " \"/" + std::string(length - 1, 'p') + "\""));
    }
  }
}

TEST_P(DirectTransfers, PathsOfTheLongestLength) {
  // Not too long for the phone, which looks at one name after the other.
  for (const size_t slashes :
       {900u, 960u, 980u, 986u, 987u, 990u, 992u, 993u, 994u, 995u, 996u, 1000u, 1024u}) {
    const std::string path = phone_folder() + std::string(slashes, '/') + "small";
    ExpectSameEffect(OnPhone("pull -a \"" + path + "\" " + OnHost("new")));
    ExpectSameEffect(OnPhone("push " + OnHost("small") + " \"" + path + "\""));
    ExpectSameEffect(OnPhone("push " + OnHost("large") + " \"" + path + "\""));
  }
}

TEST_P(DirectTransfers, Pulls) {
  for (const std::string from : {"small", "empty", "large", "boundary", "link"}) {
    for (const std::string to : {"new", "old", "folder", "folder/", "link"}) {
      EXPECT_EQ(ExpectSameEffect(Pull(from, to)).status, 0) << from << " to " << to;
      EXPECT_EQ(ExpectSameEffect(Pull(from, to, "")).status, 0) << from << " to " << to;
    }
  }
}

TEST_P(DirectTransfers, PullsUnderEveryUmask) {
  const mode_t before = umask(0);
  for (const mode_t mask : {0u, 022u, 077u, 0777u}) {
    umask(mask);
    const std::string options[] = {"", "-a "};
    for (const std::string& option : options) {
      for (const std::string from : {"small", "large"}) {
        umask(022);
        Reset();
        umask(mask);
        const Answer expected = ThroughAdb(Pull(from, "new", option));
        const std::string effect = Effect();
        umask(022);
        Reset();
        umask(mask);
        EXPECT_EQ(Directly(Pull(from, "new", option)), expected);
        EXPECT_EQ(Effect(), effect) << std::oct << mask;
      }
    }
  }
  umask(before);
}

TEST_P(DirectTransfers, PullsThatFail) {
  for (const std::string options : {"", "-a "}) {
    for (const std::string to : {"new", "old"}) {
      EXPECT_EQ(ExpectSameEffect(Pull("none", to, options)).status, 1001);
      EXPECT_EQ(ExpectSameEffect(Pull("small/inside", to, options)).status, 1001);
    }
    EXPECT_EQ(ExpectSameEffect(Pull("small", "none/new", options)).status, 1001);
    EXPECT_EQ(ExpectSameEffect(Pull("small", "old/", options)).status, 1001);
    EXPECT_EQ(ExpectSameEffect(Pull("small", "old/inside", options)).status, 1001);
    EXPECT_EQ(ExpectSameEffect(OnPhone("pull " + options + There("small") + " \"/proc/none\"")).status, 1001);
    for (const size_t length : {255u, 256u, 1024u, 1025u, 70000u}) {
      ExpectSameEffect(
          OnPhone("pull " + options + "\"/" + std::string(length - 1, 'p') + "\" " + OnHost("new")));
      ExpectSameEffect(OnPhone("pull " + options + There("small") + " " + OnHost(std::string(length, 'h'))));
    }
  }
}

TEST_P(DirectTransfers, OfUnreadableFiles) {
  const auto lock = [this] {
    fs::permissions(phone_folder_seen() / "small", fs::perms::none);
    return std::string();
  };
  for (int i = 0; i < 2; ++i) {
    Reset();
    lock();
    const Answer expected = ThroughAdb(Pull("small", "new"));
    Reset();
    lock();
    EXPECT_EQ(Directly(Pull("small", "new")), expected);
  }
}

TEST_P(DirectTransfers, OfAwkwardNames) {
  for (const std::string& name : kAwkwardNames) {
    EXPECT_EQ(ExpectSameEffect(Push(name, "sent " + name)).status, 0) << name;
    EXPECT_EQ(ExpectSameEffect(Pull("p" + name, "got " + name)).status, 0) << name;
  }
}

TEST_P(DirectTransfers, OntoAFullStorage) {
  Control({"fault", "full-storage"});
  for (const std::string from : {"small", "large"}) {
    EXPECT_EQ(ExpectSameEffect(OnPhone("push " + OnHost(from) + " \"/sdcard/new\"")).status, 1001);
  }
}

TEST_P(DirectTransfers, OfSpecialFiles) {
  EXPECT_EQ(ExpectSameEffect(Pull("pipe", "new")).status, 0);
  EXPECT_EQ(ExpectSameEffect(OnPhone("pull \"/dev/null\" " + OnHost("new"))).status, 0);
  ExpectSameEffect(Pull("broken-link", "new"));
}

// What adb copies file by file, or looks at first.
TEST_P(DirectTransfers, OfFoldersAreLeftToAdb) {
  ExpectLeftToAdb(Push("folder", "new"));
  ExpectLeftToAdb(Push("pipe", "new"));
  ExpectLeftToAdb(Pull("folder", "new"));
  ExpectLeftToAdb(Pull("folder-link", "new"));
  ExpectLeftToAdb(Pull("folder", "old"));
}

TEST_P(DirectTransfers, WithRefusingPhones) {
  for (const std::string& serial : RefusingSerials()) {
    for (const std::string& command :
         {std::string("ls \"/\""), "pull -a \"/x\" " + OnHost("new"), "pull -a \"/x\" " + OnHost("none/new"),
          "push --sync " + OnHost("small") + " \"/x\"", "push --sync " + OnHost("none") + " \"/x\""}) {
      EXPECT_EQ(ExpectSameAnswer(" -s " + serial + " " + command).status, 1001) << serial << ' ' << command;
    }
  }
}

INSTANTIATE_FOR_GENERATIONS(DirectListings);
INSTANTIATE_FOR_GENERATIONS(DirectTransfers);

}  // namespace
}  // namespace darokleim::test
