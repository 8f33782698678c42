#include <functional>
#include <string>
#include <vector>

#include "tests/unit/support/sdk_test.h"

namespace darokleim::test {
namespace {

class FileOperationsTest : public SdkTest {
 protected:
  // The functions that are one shell command each, called with the path p (and q), with what they run.
  struct Operation {
    const char* name;
    std::string args;
    std::function<int()> call;
  };
  std::vector<Operation> Operations() {
    return {
        {"AdbCopyFile", " -s S1 shell cp \"/p\" \"/q\"",
         [&] { return AdbCopyFile("S1", "/p", "/q", &cancel); }},
        {"AdbRemoveFile", " -s S1 shell rm \"/p\"", [&] { return AdbRemoveFile("S1", "/p", &cancel); }},
        {"AdbRenameFile", " -s S1 shell mv \"'/p'\" \"'/q'\"",
         [&] { return AdbRenameFile("S1", "/p", "/q", &cancel); }},
        {"AdbCreateDir", " -s S1 shell mkdir -p \"\"/p\"\"",
         [&] { return AdbCreateDir("S1", "/p", &cancel); }},
        {"AdbChmodFile", " -s S1 shell chmod a+x /p",
         [&] { return AdbChmodFile("S1", "/p", "a+x", &cancel); }},
        {"AdbScreencapToDevice", " -s S1 shell screencap -p \"/p\"",
         [&] { return AdbScreencapToDevice("S1", "/p", &cancel); }},
    };
  }
};

TEST_F(FileOperationsTest, SilenceIsSuccess) {
  for (const Operation& operation : Operations()) {
    const std::size_t before = journal().size();
    channel.Expect(operation.args).Prints("");
    EXPECT_EQ(operation.call(), ADB_RESULT_OK) << operation.name;
    const Journal all = journal();
    const std::string name = operation.name;
    EXPECT_THAT(Journal(all.begin() + static_cast<long>(before), all.end()),
                ElementsAre(Info(name + " Enter."), Ran(operation.args), GaveBack(),
                            Info(name + " Leave, return 0.")));
  }
}

TEST_F(FileOperationsTest, WithoutOutputTheChannelsValueIsTheCode) {
  for (const Operation& operation : Operations()) {
    channel.Expect(operation.args).Returns(3003);
    EXPECT_EQ(operation.call(), 3003) << operation.name;
    EXPECT_EQ(journal().back(), Info(std::string(operation.name) + " Leave, return 3003."));
  }
}

TEST_F(FileOperationsTest, WhatTheDeviceSaysIsClassified) {
  for (const Operation& operation : Operations()) {
    channel.Expect(operation.args).Prints("x: No such file or directory\n").Returns(1001);
    EXPECT_EQ(operation.call(), ADB_RESULT_NO_SUCH_FILE) << operation.name;
    channel.Expect(operation.args).Prints("write: No space left on device\n");
    EXPECT_EQ(operation.call(), ADB_RESULT_NO_SPACE_LEFT) << operation.name;
    channel.Expect(operation.args).Prints("x: Permission denied\n");
    EXPECT_EQ(operation.call(), ADB_RESULT_OK) << operation.name << ": an unknown text is no failure";
  }
}

TEST_F(FileOperationsTest, NullArgumentsAreRefused) {
  const std::vector<std::function<int()>> calls = {
      [&] { return AdbCopyFile(nullptr, "a", "b", &cancel); },
      [&] { return AdbCopyFile("S", nullptr, "b", &cancel); },
      [&] { return AdbCopyFile("S", "a", nullptr, &cancel); },
      [&] { return AdbRemoveFile(nullptr, "a", &cancel); },
      [&] { return AdbRemoveFile("S", nullptr, &cancel); },
      [&] { return AdbRenameFile(nullptr, "a", "b", &cancel); },
      [&] { return AdbRenameFile("S", nullptr, "b", &cancel); },
      [&] { return AdbRenameFile("S", "a", nullptr, &cancel); },
      [&] { return AdbChmodFile(nullptr, "a", "b", &cancel); },
      [&] { return AdbChmodFile("S", nullptr, "b", &cancel); },
      [&] { return AdbChmodFile("S", "a", nullptr, &cancel); },
      [&] { return AdbScreencapToDevice(nullptr, "a", &cancel); },
      [&] { return AdbScreencapToDevice("S", nullptr, &cancel); },
  };
  for (const auto& call : calls) EXPECT_EQ(call(), ADB_RESULT_INVALID_PARAM);
  const Journal lines = journal();
  ASSERT_EQ(lines.size(), 2 * calls.size()) << "an enter line and an error line each, no command";
  EXPECT_EQ(lines[0], Info("AdbCopyFile Enter."));
  EXPECT_EQ(lines[1], Error("AdbCopyFile, invalid param."));
  EXPECT_EQ(lines.back(), Error("AdbScreencapToDevice, invalid param."));
}

TEST_F(FileOperationsTest, PathsAreInsertedAsTheyAre) {
  const std::string path = "/sd card/\xe6\xb7\xbb'\"\\$(x)&;\n\xff";
  channel.Expect(" -s S1 shell rm \"" + path + "\"");
  AdbRemoveFile("S1", path.c_str(), &cancel);
  channel.Expect(" -s S1 shell chmod 644 " + path);
  AdbChmodFile("S1", path.c_str(), "644", &cancel);
}

TEST_F(FileOperationsTest, PathsHaveNoLimit) {
  const std::string path(100'000, 'p');
  channel.Expect(" -s S1 shell cp \"" + path + "\" \"" + path + "\"");
  AdbCopyFile("S1", path.c_str(), path.c_str(), &cancel);
  channel.Expect(" -s S1 shell mkdir -p \"\"" + path + "\"\"");
  AdbCreateDir("S1", path.c_str(), &cancel);
}

}  // namespace
}  // namespace darokleim::test
