// What calls of the client cost: requests, connections, memory. And what takes more than 32 bits.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <darokleim/client.hpp>
#include <filesystem>

#include "tests/client/client_on_phone.h"
#include "tests/support/file_content.h"
#include "tests/support/made_up_phone.h"
#include "tests/support/own_process.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {
namespace {

constexpr std::size_t kMiB = 1024 * 1024;
constexpr std::uint64_t kGiB = 1024 * kMiB;

class OnMadeUpPhone : public testing::Test {
 protected:
  void Make(const MadeUpPhone::Content& content) {
    made_up_ = std::make_unique<MadeUpPhone>(content);
    address_ = made_up_->address();
  }
  const MadeUpPhone::Counts& counts() const { return made_up_->counts(); }
  std::string Host(const std::string& name) const { return directory_.File(name); }

  // A device of its own for each call.
  template <typename Use>
  void WithDevice(const Use& use) const {
    dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
    options.server = address_.c_str();
    const dk::Client client(options);
    const dk::Device device = client.open(MadeUpPhone::kSerial).value();
    use(device);
  }

 private:
  const TemporaryDirectory directory_;
  std::unique_ptr<MadeUpPhone> made_up_;
  std::string address_;
};

class Cost : public OnMadeUpPhone {};

TEST_F(Cost, OfAWalkIsOneListAFolder) {
  MadeUpPhone::Content content;
  content.files = 3;
  content.folders = 10;
  content.levels = 3;
  Make(content);
  std::uint64_t found = 0;
  WithDevice([&](const dk::Device& device) {
    device.walk(MadeUpPhone::kFolder, dk::WalkOptions(), [&](const dk_entry&) { return ++found > 0; })
        .value();
  });
  constexpr std::uint64_t kFolders = 1 + 10 + 100 + 1000;
  EXPECT_EQ(found, kFolders - 1 + 3 * kFolders);
  EXPECT_EQ(counts().lists, kFolders);
  EXPECT_EQ(counts().connections, 2U);  // the features, and the lists
  EXPECT_EQ(counts().statuses + counts().commands, 0U);
}

TEST_F(Cost, OfAFolderIsOneList) {
  MadeUpPhone::Content content;
  content.files = 5;
  Make(content);
  WithDevice(
      [&](const dk::Device& device) { EXPECT_EQ(device.list(MadeUpPhone::kFolder).value().size(), 5U); });
  EXPECT_EQ(counts().lists, 1U);
  EXPECT_EQ(counts().connections, 2U);
  EXPECT_EQ(counts().statuses + counts().commands, 0U);
}

TEST_F(Cost, OfManyFilesSentIsAFewCommands) {
  Make({});
  constexpr int kFolders = 60, kFiles = 50;
  for (int folder = 0; folder < kFolders; ++folder) {
    std::filesystem::create_directories(Host("tree/" + std::to_string(folder)));
    for (int i = 0; i < kFiles; ++i)
      WriteFile(Host("tree/" + std::to_string(folder) + "/" + std::to_string(i)), "content");
  }
  WithDevice([&](const dk::Device& device) {
    EXPECT_EQ(device.push({{Host("tree"), "/made/new"}}).value().files_sent,
              std::uint64_t{kFolders} * kFiles);
  });
  EXPECT_EQ(counts().sent, std::uint64_t{kFolders} * kFiles);
  EXPECT_EQ(counts().bytes_sent, std::uint64_t{kFolders} * kFiles * 7);
  EXPECT_LE(counts().commands, 1U + 2 * kFolders * kFiles / 1024 + 1);
  // In folders that are new nothing is looked for.
  EXPECT_LE(counts().statuses, std::uint64_t{kFolders} + 1);
  EXPECT_LE(counts().connections, 3U + counts().commands);  // the features, the targets, the files
}

TEST_F(Cost, OfManyFilesFetchedIsOneRequestEach) {
  MadeUpPhone::Content content;
  content.files = 500;
  content.file_size = 100;
  Make(content);
  WithDevice([&](const dk::Device& device) {
    EXPECT_EQ(device.pull({{MadeUpPhone::kFolder, Host("back")}}).value().files_sent, 500U);
  });
  EXPECT_EQ(counts().fetched, 500U);
  EXPECT_EQ(counts().lists, 1U);
  EXPECT_EQ(counts().commands, 0U);
  EXPECT_EQ(counts().connections, 2U);  // the features, and the files
}

TEST_F(Cost, OfMoreFilesThanAreRememberedIsAnotherList) {
  MadeUpPhone::Content content;
  content.files = 5000;
  Make(content);
  WithDevice([&](const dk::Device& device) {
    const dk_summary fetched = device.pull({{MadeUpPhone::kFolder, Host("back")}}).value();
    EXPECT_EQ(fetched.files_sent, 5000U);
  });
  EXPECT_EQ(counts().lists, 2U);
  EXPECT_EQ(counts().connections, 3U);
}

class Memory : public OnMadeUpPhone {
 protected:
  static std::size_t Peak() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
  }

  // What the call may add to what a small one has used.
  template <typename Use>
  void ExpectLittle(const Use& use) {
#if defined(DAROKLEIM_SANITIZED)
    constexpr std::size_t kMost = 512 * kMiB;  // freed memory is kept for a while
#else
    constexpr std::size_t kMost = 4 * kMiB;
#endif
    InProcessOfItsOwn([&] {
      WithDevice([](const dk::Device& device) { device.stat(MadeUpPhone::kFolder).value(); });
      const std::size_t before = Peak();
      WithDevice(use);
      EXPECT_LE(Peak() - before, kMost);
    });
  }
};

TEST_F(Memory, IsLittleForAMillionFiles) {
  MadeUpPhone::Content content;
  content.files = 1'000'000;
  Make(content);
  ExpectLittle([](const dk::Device& device) {
    std::uint64_t found = 0;
    device.list(MadeUpPhone::kFolder, [&](const dk_entry&) { return ++found > 0; }).value();
    device.walk(MadeUpPhone::kFolder, dk::WalkOptions(), [&](const dk_entry&) { return ++found > 0; })
        .value();
    EXPECT_EQ(found, 2'000'000U);
  });
}

TEST_F(Memory, IsLittleForAGibibyteThatIsSent) {
  Make({});
  WriteFile(Host("source"), "");
  std::filesystem::resize_file(Host("source"), kGiB);
  ExpectLittle([&](const dk::Device& device) {
    EXPECT_EQ(device.push({{Host("source"), "/made/new"}}).value().bytes_sent, kGiB);
  });
  EXPECT_EQ(counts().bytes_sent, kGiB);
}

TEST_F(Memory, IsLittleForAGibibyteThatIsRead) {
  MadeUpPhone::Content content;
  content.files = 1;
  content.file_size = kGiB;
  Make(content);
  ExpectLittle([](const dk::Device& device) {
    std::uint64_t read = 0;
    const auto count = [](void* user, const char*, size_t size) {
      *static_cast<std::uint64_t*>(user) += size;
      return true;
    };
    EXPECT_EQ(dk_read(device.get(), MadeUpPhone::PathOfFile(0).c_str(), 0, 0, count, &read, nullptr), DK_OK);
    EXPECT_EQ(read, kGiB);
  });
}

TEST_F(OnMadeUpPhone, EntriesComeWhileTheyArriveAndFalseEndsThem) {
  MadeUpPhone::Content content;
  content.files = 40'000;
  content.entries_before_silence = 20'002;  // with . and ..
  Make(content);
  WithDevice([](const dk::Device& device) {
    std::uint64_t found = 0;
    EXPECT_EQ(device.list(MadeUpPhone::kFolder, [&](const dk_entry&) { return ++found < 20'000; }).code(),
              DK_STOPPED);
    EXPECT_EQ(found, 20'000U);
    found = 0;
    EXPECT_EQ(
        device
            .walk(MadeUpPhone::kFolder, dk::WalkOptions(), [&](const dk_entry&) { return ++found < 20'000; })
            .code(),
        DK_STOPPED);
    EXPECT_EQ(found, 20'000U);
  });
}

TEST_F(OnMadeUpPhone, SizesAndTimesBeyond32BitsAreKept) {
  MadeUpPhone::Content content;
  content.files = 1;
  content.file_size = 5 * kGiB + 7;
  content.modified = 5'000'000'000;  // 2128
  Make(content);
  WithDevice([](const dk::Device& device) {
    const dk::Entry entry = device.list(MadeUpPhone::kFolder).value().at(0);
    EXPECT_EQ(entry.size, 5 * kGiB + 7);
    EXPECT_EQ(entry.mtime, 5'000'000'000);
    EXPECT_EQ(device.stat(MadeUpPhone::PathOfFile(0)).value().size, 5 * kGiB + 7);
  });
}

class Large : public ClientOnPhone {};
DAROKLEIM_ON_BOTH_GENERATIONS(Large);

// Sizes of 4 GiB and more do not fit into what an old phone says of a folder.
TEST_P(Large, SizesAreRightOrUnknown) {
  Shell("mkdir -p /sdcard/t; truncate -s 5000000007 /sdcard/t/large; echo x > /sdcard/t/small");
  for (const dk::Entry& entry : phone().list("/sdcard/t").value()) {
    if (entry.name == "small") {
      EXPECT_EQ(entry.size, 2U);
    } else {
      EXPECT_EQ(entry.size, legacy() ? std::optional<std::uint64_t>() : 5'000'000'007U);
    }
  }
  EXPECT_EQ(phone().stat("/sdcard/t/large").value().size, 5'000'000'007U);
}

TEST_P(Large, TimesBeyond2038AreKeptInBothDirections) {
  const TemporaryDirectory directory;
  const std::string source = directory.File("source"), back = directory.File("back");
  WriteFile(source, "content");
  constexpr std::int64_t kTime = 4'000'000'000;  // 2096
  const timespec time = {static_cast<time_t>(kTime), 0};
  const timespec times[] = {time, time};
  ASSERT_EQ(utimensat(AT_FDCWD, source.c_str(), times, 0), 0);
  phone().push({{source, "/sdcard/t/file"}}).value();
  EXPECT_EQ(phone().stat("/sdcard/t/file").value().mtime, kTime);
  phone().pull({{"/sdcard/t/file", back}}).value();
  struct stat status;
  ASSERT_EQ(stat(back.c_str(), &status), 0);
  EXPECT_EQ(status.st_mtime, kTime);
}

}  // namespace
}  // namespace darokleim::test
