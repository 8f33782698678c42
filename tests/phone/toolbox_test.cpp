#include <gmock/gmock.h>

#include "tests/support/simulated_phones.h"

namespace darokleim::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

constexpr char kMinute[] = " [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2} ";

// The columns of ls as a tablet with Android 6.0.1 prints them.
class Toolbox : public testing::Test {
 protected:
  std::string Shell(const std::string& command) const {
    return phones_.Adb({"shell", "cd /data/local/tmp && " + command}).output;
  }

 private:
  const SimulatedPhones phones_{{"OLD1,android=legacy"}};
};

TEST_F(Toolbox, CountsNoLinksAndGivesFoldersNoSize) {
  const std::string listing = Shell(
      "mkdir in && printf 1234 > 'a file' && touch -d 2020-01-02T03:04:05 'a file' in && chmod 751 in && ls "
      "-l");
  EXPECT_EQ(listing,
            "-rw-r--r-- shell    shell           4 2020-01-02 03:04 a file\r\n"
            "drwxr-x--x shell    shell             2020-01-02 03:04 in\r\n");
}

TEST_F(Toolbox, ShowsWhereLinksLead) {
  EXPECT_THAT(Shell("ln -s a/b link && ls -l link"), ContainsRegex("lrwxrwxrwx shell    shell            " +
                                                                   std::string(kMinute) + "link -> a/b\r\n"));
  EXPECT_THAT(Shell("ls -l /sdcard"), HasSubstr(" sdcard -> /storage/self/primary\r\n"));
}

TEST_F(Toolbox, NamesWhatFollowsTheLastSlash) {
  EXPECT_THAT(Shell("touch x && ls -l /data/local/tmp/x"), ContainsRegex(std::string(kMinute) + "x\r\n"));
  EXPECT_THAT(Shell("ls -ld /data/local/tmp/"), ContainsRegex(std::string(kMinute) + "\r\n$"));
  EXPECT_EQ(Shell("ls -d /data/local/tmp/"), "/data/local/tmp/\r\n");
}

TEST_F(Toolbox, WalksFoldersUnderAHeadEach) {
  EXPECT_EQ(Shell("mkdir -p t/b t/a && touch t/a/2 t/a/1 t/.hidden && ls -R t"),
            "\r\nt:\r\na\r\nb\r\n\r\nt/a:\r\n1\r\n2\r\n\r\nt/b:\r\n");
  EXPECT_EQ(Shell("ls -aR t/b t/.hidden"), "\r\nt/b:\r\n.\r\n..\r\nt/.hidden\r\n");
}

TEST_F(Toolbox, SaysWhatItCannotList) {
  EXPECT_EQ(Shell("ls none"), "none: No such file or directory\r\n");
  EXPECT_EQ(Shell("mkdir closed && chmod 0 closed && ls closed"), "opendir failed, Permission denied\r\n");
  EXPECT_EQ(Shell("ls -y"), "ls: Unknown option '-y'. Aborting.\r\n");
}

TEST_F(Toolbox, MarksAndNumbersWhenAsked) {
  EXPECT_EQ(
      Shell(
          "mkdir m && cd m && touch run && chmod 755 run && mkfifo pipe && ln -s run l && mkdir d && ls -F"),
      "d/\r\nl@\r\npipe|\r\nrun*\r\n");
  EXPECT_THAT(Shell("ls -n m/run"), testing::StartsWith("-rwxr-xr-x 2000     2000            0 "));
  EXPECT_THAT(Shell("chmod 4711 m/run && chmod 1777 m/d && ls -l m"),
              testing::AllOf(HasSubstr("-rws--x--x "), HasSubstr("drwxrwxrwt "), HasSubstr("prw-r--r-- ")));
  EXPECT_THAT(Shell("ls -l /dev/null"), HasSubstr("   1,   3 "));
}

TEST_F(Toolbox, HasADfWithoutOptions) {
  EXPECT_THAT(Shell("df -h"),
              testing::StartsWith("Filesystem               Size     Used     Free   Blksize\r\n"
                                  "-h: No such file or directory\r\n"));
}

TEST(Tools, AreThoseThatWereAskedFor) {
  const SimulatedPhones phones({"OLD1,android=legacy,tools=toybox", "NEW1,tools=toolbox"});
  EXPECT_THAT(phones.Adb({"-s", "OLD1", "shell", "ls -l /storage"}).output, HasSubstr("total "));
  EXPECT_THAT(phones.Adb({"-s", "NEW1", "shell", "ls -l /storage"}).output,
              testing::AllOf(Not(HasSubstr("total ")), ContainsRegex("^d[rwx-]{9} root     everybody +20")));
}

}  // namespace
}  // namespace darokleim::test
