#include "tools/phone/device/packages/apk_file.h"

#include <gtest/gtest.h>

#include "tests/phone/phone_under_test.h"
#include "tools/phone/device/packages/binary_xml.h"

namespace darokleim::test {
namespace {

using phone::ApkFile;
using phone::ReadApk;

TEST(Apk, SaysWhatItsManifestSays) {
  const auto read = ReadApk(DataFile("notes-1.apk"));
  const ApkFile* apk = std::get_if<ApkFile>(&read);
  ASSERT_NE(apk, nullptr) << std::get<std::string>(read);
  EXPECT_EQ(apk->package, "com.example.notes");
  EXPECT_EQ(apk->version_code, 1u);
  EXPECT_EQ(apk->version_name, "1.2.0-beta");
  EXPECT_EQ(apk->min_sdk, 19u);
  EXPECT_EQ(apk->target_sdk, 30u);
  EXPECT_EQ(apk->split, "");
  EXPECT_FALSE(apk->test_only);
  EXPECT_EQ(apk->activities,
            (std::vector<std::string>{"com.example.notes.MainActivity", "com.example.notes.EditActivity"}));
  EXPECT_EQ(apk->main_activity, "com.example.notes.MainActivity");
}

TEST(Apk, KnowsSplitsAndLibraries) {
  EXPECT_EQ(std::get<ApkFile>(ReadApk(DataFile("notes-1-split.apk"))).split, "config.en");
  EXPECT_EQ(std::get<ApkFile>(ReadApk(DataFile("notes-x86.apk"))).abis, (std::vector<std::string>{"x86"}));
  EXPECT_TRUE(std::get<ApkFile>(ReadApk(DataFile("notes-test-only.apk"))).test_only);
}

// Damaged input in every place gives a reason or other values, never a crash.
TEST(Apk, StandsDamage) {
  const std::string whole = ReadFile(DataFile("notes-unsigned.apk"));
  const std::string path = testing::TempDir() + "/damaged-" + std::to_string(getpid()) + ".apk";
  int refused = 0;
  for (size_t i = 0; i < whole.size(); ++i) {
    std::string damaged = whole;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x5a);
    WriteFile(path, damaged);
    refused += std::holds_alternative<std::string>(ReadApk(path)) ? 1 : 0;
    WriteFile(path, whole.substr(0, i));
    EXPECT_TRUE(std::holds_alternative<std::string>(ReadApk(path))) << i;
  }
  EXPECT_GT(refused, 0);
  std::remove(path.c_str());
}

TEST(BinaryXml, StandsDamage) {
  // A document of one element without strings, and what remains of it when it is cut anywhere.
  const std::string whole(
      "\x03\x00\x08\x00\x2c\x00\x00\x00"
      "\x02\x01\x10\x00\x24\x00\x00\x00"
      "\x01\x00\x00\x00\xff\xff\xff\xff"
      "\xff\xff\xff\xff\x00\x00\x00\x00\x14\x00\x14\x00\x00\x00\x00\x00\x00\x00\x00\x00",
      44);
  const auto elements = phone::ParseBinaryXml(whole);
  ASSERT_TRUE(elements);
  EXPECT_EQ(elements->size(), 1u);
  for (size_t i = 0; i < whole.size(); ++i) {
    const auto cut = phone::ParseBinaryXml(whole.substr(0, i));
    EXPECT_TRUE(!cut || cut->empty());
  }
  EXPECT_FALSE(phone::ParseBinaryXml("<manifest/>"));
}

}  // namespace
}  // namespace darokleim::test
