// The client's readers of what phones print, on any bytes: without a phone.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <list>
#include <memory>

#include "client/apps/package_dump.h"
#include "client/exit_mark.h"
#include "client/facts.h"
#include "client/log_records.h"
#include "client/phone_errors.h"
#include "client/phone_path.h"
#include "client/temporary_name.h"
#include "client/transfer/host_names.h"
#include "client/transfer/host_target.h"
#include "client/volumes.h"
#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

TEST(PackageList, HasPathsWithEqualSigns) {
  EXPECT_THAT(
      ReadPackageList(
          "package:/data/app/~~a==/com.x-b==/base.apk=com.x\r\nnoise\npackage:/system/a.apk=com.y;rm\n"),
      ElementsAre(Pair("com.x", "/data/app/~~a==/com.x-b==/base.apk")));
}

TEST(PackageDump, GivesFactsOfInstalledPackagesAlone) {
  const auto packages = ReadPackageDump(
      "Packages:\n  Package [com.x] (1):\n    versionCode=12 minSdk=21\n    versionName=1.2-beta 3\n"
      "    splits=[base, config.en]\n    pkgFlags=[ SYSTEM HAS_CODE ]\n    User 0: installed=true enabled=2\n"
      "Hidden system packages:\n  Package [com.x] (1):\n    versionName=0.9\n");
  ASSERT_EQ(packages.size(), 1U);
  const PackageFacts& facts = packages.at("com.x");
  EXPECT_EQ(facts.version_name, "1.2-beta 3");
  EXPECT_EQ(facts.version_code, 12);
  EXPECT_TRUE(facts.system);
  EXPECT_FALSE(facts.enabled);
  EXPECT_THAT(facts.splits, ElementsAre("config.en"));
}

TEST(PackageDump, ReadsAnyBytes) {
  EXPECT_TRUE(
      ReadPackageDump("Packages:\n  Package [\n    versionCode=x\n  Package [a;b] (1):\n\n=").empty());
}

TEST(PackageAnswer, NamesTheReason) {
  EXPECT_TRUE(ReadPackageAnswer("Success\n").success);
  EXPECT_EQ(ReadPackageAnswer("Failure [INSTALL_FAILED_OLDER_SDK: needs 99]").reason,
            "INSTALL_FAILED_OLDER_SDK");
  EXPECT_FALSE(ReadPackageAnswer("Exception occurred while executing 'install'").success);
  EXPECT_FALSE(ReadPackageAnswer("").success);
}

TEST(Session, IsANumber) {
  EXPECT_EQ(ReadSession("Success: created install session [123]\n"), "123");
  EXPECT_EQ(ReadSession("Success: created install session [1;reboot]"), std::nullopt);
  EXPECT_EQ(ReadSession("Failure [x]"), std::nullopt);
}

TEST(PackageName, IsHarmlessToAShell) {
  EXPECT_TRUE(IsPackageName("com.example.Notes_2"));
  for (const char* name : {"", "a b", "a;b", "$x", "a/b", "-a b", "a\nb"})
    EXPECT_FALSE(IsPackageName(name)) << name;
}

// The output that is passed on, and the status, whatever the pieces are.
std::pair<std::string, std::optional<int>> ReadMarked(const ExitMark& mark, const std::string& output,
                                                      std::size_t piece) {
  ExitMarkReader reader(mark, false);
  std::string passed;
  for (std::size_t at = 0; at < output.size(); at += piece) passed += reader.Pass(output.substr(at, piece));
  const auto status = reader.Finish();
  return {passed + (status ? reader.TakeRest() : ""), status};
}

TEST(ExitMark, IsTakenOffWhateverThePieces) {
  const ExitMark mark;
  for (std::size_t piece = 1; piece < 200; ++piece) {
    EXPECT_THAT(ReadMarked(mark, "some output\nno break" + mark.text() + "255\n", piece),
                Pair("some output\nno break", 255));
  }
  EXPECT_EQ(ReadMarked(mark, "cut off", 3).second, std::nullopt);
  EXPECT_EQ(ReadMarked(mark, "cut " + mark.text() + "1", 3).second, std::nullopt);
  EXPECT_EQ(ReadMarked(mark, "odd " + mark.text() + "x\n", 3).second, std::nullopt);
}

TEST(ExitMark, DiffersFromCallToCall) {
  EXPECT_NE(ExitMark().text(), ExitMark().text());
}

std::string LogRecord(const std::string& payload, int header = 28) {
  std::string record = {static_cast<char>(payload.size()), 0, static_cast<char>(header), 0};
  record += std::string("\x01\0\0\0\x02\0\0\0\x03\0\0\0\x04\0\0\0", 16);
  record += std::string(static_cast<std::size_t>(header) - 20, '\0');
  return record + payload;
}

TEST(LogRecords, AreFoundWhateverThePieces) {
  const std::string payload("\x06Tag\0text\nof two lines\0", 23);
  const std::string stream = LogRecord(payload) + LogRecord(payload, 20);
  for (std::size_t piece = 1; piece < stream.size(); ++piece) {
    LogRecords records;
    std::vector<std::string> found;
    for (std::size_t at = 0; at < stream.size(); at += piece) {
      ASSERT_TRUE(records.Read(stream.substr(at, piece), [&](const dk_log_record& record) {
        EXPECT_EQ(record.process, 1U);
        EXPECT_EQ(record.thread, 2U);
        EXPECT_EQ(record.seconds, 3);
        EXPECT_EQ(record.nanoseconds, 4);
        found.push_back(std::string(1, record.level) + record.tag + ":" + record.text);
      }));
    }
    EXPECT_THAT(found, ElementsAre("ETag:text\nof two lines", "ETag:text\nof two lines"));
  }
}

TEST(LogRecords, WithoutTextsEndWhereTheyEnd) {
  LogRecords records;
  int count = 0;
  EXPECT_TRUE(records.Read(LogRecord("\x04"), [&](const dk_log_record& record) {
    ++count;
    EXPECT_STREQ(record.tag, "");
    EXPECT_STREQ(record.text, "");
  }));
  EXPECT_EQ(count, 1);
  EXPECT_FALSE(LogRecords().Read(std::string(40, '\xff'), [](const dk_log_record&) {}));
  EXPECT_FALSE(LogRecords().Read(LogRecord(""), [](const dk_log_record&) {})) << "without even a level";
}

TEST(PhoneErrors, AreReadAfterEveryName) {
  EXPECT_EQ(ErrnoAtEnd("mkdir: '/sdcard/x': No such file or directory\n"), 2);
  EXPECT_EQ(ErrnoAtEnd("rm: /sdcard/Permission denied: Directory not empty\r\n"), 39);
  EXPECT_EQ(ErrnoAtEnd("cp: File exists: something else"), 0);
}

TEST(PhoneErrors, HaveTheirNumbers) {
  const std::pair<const char*, int> all[] = {{"Operation not permitted", 1},
                                             {"No such file or directory", 2},
                                             {"I/O error", 5},
                                             {"Permission denied", 13},
                                             {"Device or resource busy", 16},
                                             {"File exists", 17},
                                             {"Cross-device link", 18},
                                             {"Invalid cross-device link", 18},
                                             {"Not a directory", 20},
                                             {"Is a directory", 21},
                                             {"Invalid argument", 22},
                                             {"Too many open files", 24},
                                             {"File too large", 27},
                                             {"No space left on device", 28},
                                             {"Read-only file system", 30},
                                             {"File name too long", 36},
                                             {"Directory not empty", 39},
                                             {"Too many symbolic links encountered", 40},
                                             {"Too many levels of symbolic links", 40},
                                             {"Quota exceeded", 122},
                                             {"Disk quota exceeded", 122}};
  for (const auto& [words, number] : all) {
    EXPECT_EQ(ErrnoAtEnd(std::string("program: /a: ") + words + "\n"), number) << words;
    EXPECT_EQ(ErrnoAtEnd(std::string(words) + " not"), 0) << words;
  }
}

TEST(PhonePath, IsAbsoluteAndWithoutSlashesAtItsEnd) {
  EXPECT_EQ(*ReadPath("/sdcard//"), "/sdcard");
  EXPECT_EQ(*ReadPath("/"), "/");
  EXPECT_EQ(ReadPath("sdcard").error().code, DK_INVALID_ARGUMENT);
  EXPECT_EQ(ReadPath(("/" + std::string(4095, 'a')).c_str()).error().code, DK_NAME_TOO_LONG);
  for (const char* path :
       {"/", "/sdcard", "/storage/emulated/0", "/storage/AB-CD", "/a/../b", "/data/media/0"}) {
    EXPECT_TRUE(IsTooMuchToRemove(path)) << path;
  }
  EXPECT_FALSE(IsTooMuchToRemove("/sdcard/DCIM"));
  EXPECT_FALSE(IsTooMuchToRemove("/storage/emulated/0/DCIM"));
}

TEST(SafeName, LeadsNowhere) {
  EXPECT_TRUE(IsSafeName("a photo.jpg"));
  EXPECT_TRUE(IsSafeName("..."));
  for (const char* name : {"", ".", "..", "../x", "/etc/passwd", "a/b"})
    EXPECT_FALSE(IsSafeName(name)) << name;
}

// On file systems that ignore case, a file opened by another spelling is known by the one that it is stored under, as one that
// was renamed after it was opened.
TEST(HostNames, AreThoseThatFilesAreStoredUnder) {
  const test::TemporaryDirectory directory;
  test::WriteFile(directory.File("name"), "");
  const base::UniqueFd folder(open(directory.path().c_str(), O_RDONLY | O_DIRECTORY));
  const base::UniqueFd file(open(directory.File("name").c_str(), O_RDONLY));
  EXPECT_TRUE(HasExactName(file.get(), "name"));
  EXPECT_FALSE(HasExactName(file.get(), "Name"));
  EXPECT_FALSE(IsNameOfAnother(folder.get(), "name"));
  EXPECT_FALSE(IsNameOfAnother(folder.get(), "none"));
  ASSERT_EQ(rename(directory.File("name").c_str(), directory.File("NAME").c_str()), 0);
  EXPECT_TRUE(HasExactName(file.get(), "NAME"));
  EXPECT_FALSE(HasExactName(file.get(), "name"));
  ASSERT_EQ(unlink(directory.File("NAME").c_str()), 0);
  EXPECT_TRUE(HasExactName(file.get(), "NAME")) << "the name that it had";
}

TEST(HostNames, AreGivenToNoFileWhileAnotherHasThem) {
  const test::TemporaryDirectory directory;
  for (const char* name : {"from", "taken"}) test::WriteFile(directory.File(name), name);
  const base::UniqueFd folder(open(directory.path().c_str(), O_RDONLY | O_DIRECTORY));
  EXPECT_EQ(RenameToFreeName(folder.get(), "from", "taken"), EEXIST);
  EXPECT_EQ(test::ReadFile(directory.File("taken")), "taken");
  EXPECT_EQ(RenameToFreeName(folder.get(), "from", "free"), 0);
  EXPECT_EQ(test::ReadFile(directory.File("free")), "from");
  EXPECT_EQ(RenameToFreeName(folder.get(), "from", "other"), ENOENT);
}

TEST(TemporaryName, IsLeftOverWhereNobodyUsesIt) {
  auto name = std::make_unique<TemporaryName>();
  const std::string own = name->text();
  EXPECT_FALSE(IsLeftOver(own));
  EXPECT_FALSE(IsLeftOver(own + ".apk"));
  name.reset();
  EXPECT_TRUE(IsLeftOver(own));
  EXPECT_TRUE(IsLeftOver(own + ".apk"));
  const std::string ended = own.substr(0, own.find('-', kTemporaryPrefix.size()) + 1) + "2147483000-0";
  EXPECT_TRUE(IsLeftOver(ended));
  EXPECT_FALSE(IsLeftOver(".darokleim-00000000-2147483000-0"));
  EXPECT_FALSE(IsLeftOver("photo.jpg"));
}

TEST(TemporaryName, IsUsedWhileItLivesHoweverManyThereAre) {
  std::list<TemporaryName> many(3000);
  for (const TemporaryName& name : many) EXPECT_FALSE(IsLeftOver(name.text()));
  const std::string last = many.back().text();
  many.pop_back();
  EXPECT_FALSE(IsLeftOver(many.back().text()));
  many.clear();
  EXPECT_TRUE(IsLeftOver(last));
}

TEST(Facts, AreReadFromWhatPhonesPrint) {
  EXPECT_EQ(ReadScreen("Physical size: 1080x2340\nOverride size: 720x1560\nPhysical density: 440\n")->width,
            720);
  EXPECT_EQ(ReadScreen("Physical size: x\n"), std::nullopt);
  const dk_screen screen = *ReadScreen("Physical size: 5x7\nPhysical density: 440\nOverride density: 400\n");
  EXPECT_EQ(screen.height, 7);
  EXPECT_EQ(screen.density, 400);
  const dk_battery battery =
      *ReadBattery("  level: 43\n  scale: 50\n  USB powered: true\n  voltage: 4123\n  temperature: 281\n");
  EXPECT_EQ(battery.level, 86);
  EXPECT_TRUE(battery.charging);
  EXPECT_EQ(battery.voltage_mv, 4123);
  EXPECT_EQ(battery.temperature, 28.1);
  for (const std::string source : {"AC", "Wireless", "Dock"}) {
    EXPECT_TRUE(ReadBattery("level: 5\nUSB powered: false\n" + source + " powered: true\n")->charging);
    EXPECT_FALSE(ReadBattery("level: 5\n" + source + " powered: false\n")->charging);
  }
  EXPECT_EQ(ReadBattery("nothing"), std::nullopt);
  const dk_memory memory = *ReadMemory("MemTotal: 2000 kB\nMemFree: 10 kB\nCached: 20 kB\n");
  EXPECT_EQ(memory.total, 2000U * 1024);
  EXPECT_EQ(memory.available, 30U * 1024);
  EXPECT_EQ(ReadMemory("MemTotal: 20 kB\nMemFree: 1 kB\nMemAvailable: 7 kB\n")->available, 7U * 1024);
  EXPECT_EQ(ReadRoundedSize("1.5K"), 1536U);
  EXPECT_EQ(ReadRoundedSize("12Q"), std::nullopt);
  EXPECT_EQ(ReadRoundedSize("99999999999999999999T"), std::nullopt);
}

TEST(Facts, HaveNoNumbersThatCannotBe) {
  EXPECT_EQ(ReadBattery("level: 2147483647\nscale: 1\n")->level, 100);
  EXPECT_EQ(ReadBattery("level: -5\n")->level, 0);
  EXPECT_EQ(ReadBattery("level: 5\nscale: -2147483648\n")->level, 5);
  EXPECT_EQ(ReadBattery("level: 99999999999\n"), std::nullopt);
  EXPECT_EQ(ReadMemory("MemTotal: 18446744073709551615 kB\n"), std::nullopt);
  EXPECT_EQ(ReadScreen("Physical size: 2147483648x5\n"), std::nullopt);
  for (const char* size : {"-5x-5", "0x5", "5x0"})
    EXPECT_EQ(ReadScreen(std::string("Physical size: ") + size + "\n"), std::nullopt) << size;
  for (const char* blocks :
       {"1000000000000000 1000000000000000 0 0", "1000000000000000 1 0 1000000000000000"})
    EXPECT_FALSE(ReadVolumes(std::string("V /a\nS ") + blocks + "\n").front().known) << blocks;
  EXPECT_TRUE(ReadVolumes("V /a\nS 0 5 5 5\n").front().known == false);
}

TEST(Volumes, HaveSizesInBlocksOrRounded) {
  const auto volumes = ReadVolumes(
      "V /storage/emulated/0\nS 4096 1000 400 300\nV /storage/A B\nFilesystem Size Used Free Blksize\n"
      "/storage/A 1.5K 512 1K 4096\nV /storage/none\ndf: no\n");
  ASSERT_EQ(volumes.size(), 3U);
  EXPECT_EQ(volumes[0].total, 4096000U);
  EXPECT_EQ(volumes[0].used, 600U * 4096);
  EXPECT_EQ(volumes[0].free, 300U * 4096);
  EXPECT_EQ(volumes[1].path, "/storage/A B");
  EXPECT_EQ(volumes[1].total, 1536U);
  EXPECT_FALSE(volumes[2].known);
}

TEST(Properties, MayHaveSeveralLines) {
  std::vector<std::pair<std::string, std::string>> found;
  ForEachProperty("[a]: [1]\r\n[b]: [two\nlines]\n[c]: []\n",
                  [&](const std::string& name, const std::string& value) {
                    found.emplace_back(name, value);
                    return true;
                  });
  EXPECT_THAT(found, ElementsAre(Pair("a", "1"), Pair("b", "two\nlines"), Pair("c", "")));
}

}  // namespace
}  // namespace darokleim::client
