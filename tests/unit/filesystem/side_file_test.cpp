#include "src/filesystem/side_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/unit/filesystem/own_directory.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class SideFileTest : public ::testing::Test {
 protected:
  static void Save(const std::string& text) {
    SaveBuf("file_list.json", text.data(), static_cast<int>(text.size()));
  }

  static int OpenDescriptors() {
    int open = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor) open += fcntl(descriptor, F_GETFD) != -1;
    return open;
  }

  const OwnDirectory directory_;
};

TEST_F(SideFileTest, TheNameBeginsWithADrive) {
  SaveBuf("any name", "text", 4);
  EXPECT_EQ(ReadFile(directory_.path() / "F:\\any name"), "text");
}

TEST_F(SideFileTest, WritesTheBytesGivenAndNoMore) {
  Save("a\0b\n\r\xff"s);
  EXPECT_EQ(directory_.SideFileContent(), "a\0b\n\r\xff"s);
  SaveBuf("file_list.json", "cut here", 3);
  EXPECT_EQ(directory_.SideFileContent(), "cut");
  SaveBuf("file_list.json", "cut here", 1);
  EXPECT_EQ(directory_.SideFileContent(), "c");
}

TEST_F(SideFileTest, ReplacesTheOneBefore) {
  Save("a longer text");
  Save("short");
  EXPECT_EQ(directory_.SideFileContent(), "short");
}

TEST_F(SideFileTest, NoBytesLeaveAnEmptyFile) {
  for (const int len : {0, -1}) {
    Save("before");
    SaveBuf("file_list.json", nullptr, len);
    EXPECT_TRUE(fs::exists(directory_.side_file()));
    EXPECT_EQ(directory_.SideFileContent(), "") << len;
  }
}

TEST_F(SideFileTest, SaysNothingWhereADirectoryHasTheName) {
  fs::create_directory(directory_.side_file());
  Save("text");
  EXPECT_TRUE(fs::is_directory(directory_.side_file()));
}

TEST_F(SideFileTest, SaysNothingInADirectoryThatMayNotBeWritten) {
  fs::permissions(directory_.path(), fs::perms::owner_read | fs::perms::owner_exec);
  Save("text");
  EXPECT_EQ(fs::exists(directory_.side_file()), geteuid() == 0) << "nothing binds root";
  fs::permissions(directory_.path(), fs::perms::owner_all);
}

TEST_F(SideFileTest, SaysNothingInADirectoryThatIsGone) {
  fs::remove(directory_.path());
  Save("text");
  EXPECT_FALSE(fs::exists(directory_.side_file()));
}

// A limit to the size of files, which a write meets as it meets a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    handler_ = signal(SIGXFSZ, SIG_IGN);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_;
  void (*handler_)(int);
};

TEST_F(SideFileTest, SaysNothingWhenTheDiskIsFull) {
  {
    const FileSizeLimit full(1'000);
    Save(std::string(1'000'000, 'x'));
  }
  EXPECT_EQ(fs::file_size(directory_.side_file()), 1'000U);
  Save("there is space again");
  EXPECT_EQ(directory_.SideFileContent(), "there is space again");
}

TEST_F(SideFileTest, DoesNotFollowALink) {
  const fs::path target = directory_.path() / "target";
  std::ofstream(target) << "precious";
  for (const fs::path& to : {target, fs::path("target"), directory_.path() / "absent"}) {
    fs::create_symlink(to, directory_.side_file());
    Save("text");
    EXPECT_TRUE(fs::is_symlink(directory_.side_file())) << to;
    EXPECT_EQ(ReadFile(target), "precious") << to;
    EXPECT_FALSE(fs::exists(directory_.path() / "absent"));
    fs::remove(directory_.side_file());
  }
}

TEST_F(SideFileTest, DoesNotWaitForAReaderOfAFifo) {
  const std::string fifo = directory_.side_file();
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  Save("text");
  EXPECT_TRUE(fs::is_fifo(fifo));
}

TEST_F(SideFileTest, WritesNothingIntoAFifo) {
  const std::string fifo = directory_.side_file();
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  Save(std::string(1'000'000, 'x'));
  char byte;
  EXPECT_EQ(read(reader, &byte, 1), 0) << "the end: neither data nor a writer";
  close(reader);
}

TEST_F(SideFileTest, LeavesNoFileOpen) {
  const int before = OpenDescriptors();
  for (int i = 0; i < 10; ++i) Save("text");
  SaveBuf("file_list.json", "", 0);
  {
    const FileSizeLimit full(1'000);
    for (int i = 0; i < 10; ++i) Save(std::string(100'000, 'x'));
  }
  fs::remove(directory_.side_file());
  ASSERT_EQ(mkfifo(directory_.side_file().c_str(), 0600), 0);
  for (int i = 0; i < 10; ++i) Save("text");
  fs::remove(directory_.side_file());
  fs::create_directory(directory_.side_file());
  for (int i = 0; i < 10; ++i) Save("text");
  EXPECT_EQ(OpenDescriptors(), before);
}

}  // namespace
}  // namespace darokleim::test
