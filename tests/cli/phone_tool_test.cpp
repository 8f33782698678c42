#include "tests/cli/phone_tool_test.h"

#include <json/reader.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>

#include "base/shell_quoting.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

constexpr char kSerial[] = "TEST0001";

std::string WithoutCarriageReturns(std::string text) {
  for (std::size_t at; (at = text.find("\r\n")) != std::string::npos;) text.erase(at, 1);
  while (text.ends_with("\n")) text.pop_back();
  return text;
}

}  // namespace

Json::Value ParseJson(const std::string& text) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value document;
  std::string errors;
  EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &document, &errors)) << errors << text;
  return document;
}

PhoneToolTest::PhoneToolTest(const std::string& settings)
    : phones_({kSerial + (",android=" + GetParam()) + settings}) {
  for (const auto& [variable, value] : test::AdbEnvironment(phones_.port())) Set(variable, value);
  const char* path = getenv("PATH");
  Set("PATH", path == nullptr ? "/usr/bin:/bin" : path);
  std::filesystem::create_directory(File("work"));
  StartIn(File("work"));
}

std::string PhoneToolTest::Shell(const std::string& command) const {
  return WithoutCarriageReturns(phones_.Adb({"shell", command}).output);
}

void PhoneToolTest::PutOnPhone(const std::string& path, const std::string& content) const {
  test::WriteFile(File("for-phone"), content);
  Shell("mkdir -p " + base::QuoteForShell(path.substr(0, path.rfind('/'))));
  const auto outcome = phones_.Adb({"push", File("for-phone"), path});
  ASSERT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
}

std::string PhoneToolTest::PhoneFiles() const {
  return phones_.FilesOf(kSerial);
}

std::string PhoneToolTest::ReadFromPhone(const std::string& path) const {
  const auto outcome = phones_.Adb({"pull", path, File("from-phone")});
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
  return test::ReadFile(File("from-phone"));
}

void PhoneToolTest::SwitchOn(const std::string& fault) const {
  const auto outcome = phones_.Control({kSerial, "fault", fault});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
}

std::string PhoneToolTest::Succeed(const Words& arguments) const {
  const auto outcome = Run(arguments);
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_EQ(outcome.errors, "");
  return outcome.output;
}

std::string PhoneToolTest::Misuse(const Words& arguments) const {
  const auto outcome = Run(arguments);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  return outcome.errors;
}

std::string PhoneToolTest::Fail(const Words& arguments) const {
  const auto outcome = Run(arguments);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "");
  return outcome.errors;
}

void PhoneWithFilesTest::SetUp() {
  PutOnPhone("/sdcard/test/a.txt", std::string(2000, 'x'));
  PutOnPhone("/sdcard/test/.hidden", "x");
  PutOnPhone("/sdcard/test/photos/my photo.jpg", "12345");
  PutOnPhone("/sdcard/test/photos/2020/b.JPG", "123");
  Shell("touch -d 2020-01-02T03:04:05Z /sdcard/test/a.txt; mkdir /sdcard/test/empty");
}

std::vector<std::string> AwkwardPaths(const std::string& folder) {
  std::vector<std::string> paths;
  for (const char* name : {"my photo.jpg", " space first", "it's", "say \"hi\" twice", "\"", "$HOME", "a&b",
                           "(1)", "a|b", "*", "back\\slash", "two\\\\slashes", "ends\\", "~", "-rf",
                           "\xe7\x85\xa7\xe7\x89\x87 1", "'quoted'", "x\"\" y", "space last "}) {
    paths.push_back(folder + "/" + name);
  }
  return paths;
}

}  // namespace darokleim::cli
