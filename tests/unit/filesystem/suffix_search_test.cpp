#include <cstring>
#include <filesystem>
#include <string>

#include "tests/support/plain_file_list_json.h"
#include "tests/unit/filesystem/own_directory.h"
#include "tests/unit/support/device_output.h"
#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

class SuffixSearchTest : public SdkTest {
 protected:
  void ExpectFind() { channel.Expect(kProbe).Prints("/system/bin/find\n"); }
  void ExpectNoFind() { channel.Expect(kProbe).Prints("ls: /system/bin/find: No such file or directory\n"); }

  // The document, or "none".
  std::string Search(const char* dir, const char* suffixes, int expected_code = ADB_RESULT_OK) {
    char unset = 'x';
    char* json = &unset;
    int length = -1;
    EXPECT_EQ(AdbGetFilesBySuffix("S1", dir, suffixes, &json, &length, &cancel), expected_code);
    if (!json) {
      EXPECT_EQ(length, 0);
      return "none";
    }
    EXPECT_EQ(length, static_cast<int>(std::strlen(json)));
    std::string text = json;
    AdbFreeResource(&json);
    return text;
  }

  static std::string Found(std::initializer_list<const char*> paths) {
    std::list<FileInfo> files;
    for (const char* path : paths) files.push_back({0, 0, path, "", 0});
    return PlainFlatList(files, false);
  }

  static constexpr char kProbe[] = " -s S1 shell ls /system/bin/find ";
  static constexpr char kFindJpg[] = " -s S1 shell find /sdcard/ -type f -and \\( -iname *.jpg \\)";
  static constexpr char kDuJpg[] = " -s S1 shell du -a /sdcard/ | grep -oE -i \"'/sdcard/.*\\.jpg$'\"";

  const OwnDirectory directory_;
};

TEST_F(SuffixSearchTest, SearchesWithFind) {
  ExpectFind();
  channel.Expect(kFindJpg).Prints("/sdcard/a.jpg\r\n/sdcard/DCIM/b.JPG\r\n").Unterminated();
  const std::string json = Search("/sdcard", "jpg");
  EXPECT_EQ(json, Found({"/sdcard/a.jpg", "/sdcard/DCIM/b.JPG"}));
  EXPECT_EQ(directory_.SideFileContent(), json);
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetFilesBySuffix Enter ..."), Ran(kProbe), GaveBack(),
                                     Ran(kFindJpg), GaveBack(), Info("AdbGetFilesBySuffix Leave ...")));
}

TEST_F(SuffixSearchTest, SearchesWithDuWhereThereIsNoFind) {
  ExpectNoFind();
  channel.Expect(kDuJpg).Prints("/sdcard/a.jpg\n");
  EXPECT_EQ(Search("/sdcard", "jpg"), Found({"/sdcard/a.jpg"}));
  EXPECT_THAT(journal(), ElementsAre(Info("AdbGetFilesBySuffix Enter ..."), Ran(kProbe), GaveBack(),
                                     Ran(kDuJpg), GaveBack(), Info("AdbGetFilesBySuffix Leave ...")));
}

TEST_F(SuffixSearchTest, SeveralSuffixes) {
  ExpectFind();
  channel
      .Expect(
          " -s S1 shell find /sdcard/ -type f -and \\( -iname *.jpg -or -iname *.png -or -iname *.a b \\)")
      .Prints("/x\n");
  Search("/sdcard/", ";jpg;;png;a b;");
  ExpectNoFind();
  channel.Expect(" -s S1 shell du -a /sdcard/ | grep -oE -i \"'/sdcard/.*\\.jpg$|/sdcard/.*\\.png$'\"")
      .Prints("/x\n");
  Search("/sdcard/", "jpg;png");
}

TEST_F(SuffixSearchTest, NoSuffixIsAnEmptyExpression) {
  for (const char* suffixes : {"", ";;"}) {
    ExpectFind();
    channel.Expect(" -s S1 shell find /sdcard/ -type f -and \\(  \\)").Prints("find: bad arg\n");
    EXPECT_EQ(Search("/sdcard", suffixes), Found({}));
    ExpectNoFind();
    channel.Expect(" -s S1 shell du -a /sdcard/ | grep -oE -i \"''\"").Prints("/x\n");
    EXPECT_EQ(Search("/sdcard", suffixes), Found({"/x"}));
  }
}

TEST_F(SuffixSearchTest, FindIsCutDuIsNot) {
  std::string suffixes = "jpg";
  std::string expression = "-iname *.jpg";
  std::string pattern = "/sdcard/.*\\.jpg$";
  for (int i = 0; i < 200; ++i) {
    suffixes += ";suffix";
    expression += " -or -iname *.suffix";
    pattern += "|/sdcard/.*\\.suffix$";
  }
  const std::string find = " -s S1 shell find /sdcard/ -type f -and \\( " + expression + " \\)";
  ExpectFind();
  channel.Expect(find.substr(0, 1023)).Prints("/x\n");
  Search("/sdcard", suffixes.c_str());
  ExpectNoFind();
  channel.Expect(" -s S1 shell du -a /sdcard/ | grep -oE -i \"'" + pattern + "'\"").Prints("/x\n");
  Search("/sdcard", suffixes.c_str());
}

TEST_F(SuffixSearchTest, TheProbeIsCut) {
  const std::string serial(2000, 'S');
  channel.Expect((" -s " + serial).substr(0, 1023)).Returns(1001);
  char* json = nullptr;
  int length = 0;
  EXPECT_EQ(AdbGetFilesBySuffix(serial.c_str(), "/sdcard", "jpg", &json, &length, &cancel), 1001);
}

TEST_F(SuffixSearchTest, OtherAnswersOfTheProbeEndTheSearch) {
  channel.Expect(kProbe).Prints("error: device 'S1' not found\n").Returns(1001);
  EXPECT_EQ(Search("/sdcard", "jpg", ADB_RESULT_NO_DEVICE), "none");
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetFilesBySuffix Enter ..."), Ran(kProbe),
                          Error("ret is 1001,outbuf is:error: device 'S1' not found\n"), GaveBack(),
                          Info("AdbGetFilesBySuffix Execute Command Failed.Error = 24.Dir = /sdcard/"),
                          Info("AdbGetFilesBySuffix Leave ...")));
  channel.Expect(kProbe).Prints("ls: /system/bin/find: Permission denied\ngrep\n");
  EXPECT_EQ(Search("/sdcard", "jpg", ADB_RESULT_PERMISSION_DENIED), "none");
  channel.Expect(kProbe).Returns(3003);
  EXPECT_EQ(Search("/sdcard", "jpg", 3003), "none");
  EXPECT_FALSE(std::filesystem::exists(directory_.side_file()));
}

TEST_F(SuffixSearchTest, AProbeThatPrintsNothingFoundIt) {
  for (const bool buffer : {true, false}) {
    Answer& probe = channel.Expect(kProbe);
    if (buffer) probe.Prints("");
    channel.Expect(kFindJpg).Prints("/sdcard/a.jpg\n");
    EXPECT_EQ(Search("/sdcard", "jpg"), Found({"/sdcard/a.jpg"}));
  }
}

TEST_F(SuffixSearchTest, RefusedFoldersDoNotCountWhenSomethingWasFound) {
  for (const char* sample : {"find/permission-denied-quoted.txt", "find/permission-denied-unquoted.txt"}) {
    SCOPED_TRACE(sample);
    const std::string refusal = DeviceOutput(sample);
    const bool has_file = refusal.front() == '/';
    ExpectFind();
    channel.Expect(kFindJpg).Prints(refusal);
    const std::string json =
        Search("/sdcard", "jpg", has_file ? ADB_RESULT_OK : ADB_RESULT_PERMISSION_DENIED);
    EXPECT_EQ(json, has_file ? Found({"/sdcard/DCIM/photo.jpg"}) : Found({}));
  }
  ExpectNoFind();
  channel.Expect(kDuJpg).Prints("grep: x: Permission denied\n/sdcard/a.jpg\n");
  EXPECT_EQ(Search("/sdcard", "jpg"), Found({"/sdcard/a.jpg"}));
}

TEST_F(SuffixSearchTest, OtherFailuresKeepTheListFromTheCaller) {
  ExpectFind();
  channel.Expect(kFindJpg).Prints("find: /sdcard/: No such file or directory\n/sdcard/a.jpg\n");
  EXPECT_EQ(Search("/sdcard", "jpg", ADB_RESULT_NO_SUCH_FILE), "none");
  EXPECT_THAT(journal(),
              ElementsAre(Info("AdbGetFilesBySuffix Enter ..."), Ran(kProbe), GaveBack(), Ran(kFindJpg),
                          Info("AdbGetFilesBySuffix Execute Command Failed.Error = 25.Dir = /sdcard/"),
                          GaveBack(), Info("AdbGetFilesBySuffix Leave ...")));
  ExpectFind();
  channel.Expect(kFindJpg).Prints("/sdcard/a.jpg\n").Returns(1001);
  EXPECT_EQ(Search("/sdcard", "jpg", 1001), "none");
  EXPECT_FALSE(std::filesystem::exists(directory_.side_file()));
}

TEST_F(SuffixSearchTest, OutputWithoutALineGivesNoList) {
  for (const char* output : {"", "\n", "\r\n\r\n"}) {
    ExpectFind();
    channel.Expect(kFindJpg).Prints(output);
    EXPECT_EQ(Search("/sdcard", "jpg"), "none");
  }
  const Event failed = Info("AdbGetFilesBySuffix Execute Command Failed.Error = 0.Dir = /sdcard/");
  const Journal lines = log_lines();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), failed), 3);
  ExpectFind();
  channel.Expect(kFindJpg).Returns(0);
  EXPECT_EQ(Search("/sdcard", "jpg"), "none") << "no buffer";
  ExpectFind();
  channel.Expect(kFindJpg).Returns(3003);
  EXPECT_EQ(Search("/sdcard", "jpg", 3003), "none");
  EXPECT_FALSE(std::filesystem::exists(directory_.side_file()));
}

TEST_F(SuffixSearchTest, LinesWithoutAPathAreAnEmptyList) {
  ExpectFind();
  channel.Expect(kFindJpg).Prints("nothing here\n");
  EXPECT_EQ(Search("/sdcard", "jpg"), Found({}));
}

TEST_F(SuffixSearchTest, NullAndEmptyArgumentsAreRefused) {
  for (const char* dir : {static_cast<const char*>(nullptr), ""}) {
    EXPECT_EQ(Search(dir, "jpg", ADB_RESULT_INVALID_PARAM), "none");
  }
  char unset = 'x';
  char* json = &unset;
  int length = -1;
  EXPECT_EQ(AdbGetFilesBySuffix(nullptr, "/sdcard", "jpg", &json, &length, &cancel),
            ADB_RESULT_INVALID_PARAM);
  EXPECT_EQ(json, nullptr);
  EXPECT_EQ(length, 0);
  const Journal refused = {Info("AdbGetFilesBySuffix Enter ..."), Info("AdbGetFilesBySuffix Enter ..."),
                           Info("AdbGetFilesBySuffix Leave ...")};
  Journal expected;
  for (int i = 0; i < 3; ++i) expected.insert(expected.end(), refused.begin(), refused.end());
  EXPECT_THAT(journal(), ElementsAreArray(expected));
}

}  // namespace
}  // namespace darokleim::test
