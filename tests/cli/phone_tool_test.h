// Runs the tool on a simulated phone, through the real adb client.
#ifndef DAROKLEIM_TESTS_CLI_PHONE_TOOL_TEST_H
#define DAROKLEIM_TESTS_CLI_PHONE_TOOL_TEST_H

#include <gmock/gmock.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "tests/cli/tool_run.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::cli {

// The application of the tests.
inline constexpr char kNotes[] = "com.example.notes";

// The only JSON document that a command printed; a failure of the test, and null, when it printed anything else.
Json::Value ParseJson(const std::string& text);

// Each test runs with a modern and with a legacy phone of its own. The tool is started in a folder of the test's
// own, File("work"), so that relative paths and the library's side file land there.
class PhoneToolTest : public ToolTest, public testing::WithParamInterface<std::string> {
 protected:
  // `settings` as after the serial number in --phone: ",card=1A2B-3C4D,fault=no-find".
  explicit PhoneToolTest(const std::string& settings = ",card=1A2B-3C4D");

  bool is_legacy() const { return GetParam() == "legacy"; }
  test::SimulatedPhones& phones() { return phones_; }

  // What a command of the phone's shell prints, with line breaks of a modern phone; line breaks at its end taken off.
  std::string Shell(const std::string& command) const;
  // Files of the phone, byte for byte.
  void PutOnPhone(const std::string& path, const std::string& content) const;
  std::string ReadFromPhone(const std::string& path) const;
  void SwitchOn(const std::string& fault) const;
  // Where this computer sees the files of the phone.
  std::string PhoneFiles() const;

  // The tool must succeed and say nothing on standard error; its output.
  std::string Succeed(const Words& arguments) const;
  // The tool must refuse the command line with exit status 2 and print nothing; what it says on standard error.
  std::string Misuse(const Words& arguments) const;
  // The tool must fail with exit status 1 and print nothing; what it says on standard error.
  std::string Fail(const Words& arguments) const;

 private:
  test::SimulatedPhones phones_;
};

// With files, hidden ones and an empty folder in /sdcard/test.
class PhoneWithFilesTest : public PhoneToolTest {
 protected:
  void SetUp() override;
};

// Paths below `folder` that every command has to carry through: spaces, quotes, characters of shells, scripts.
std::vector<std::string> AwkwardPaths(const std::string& folder);

#define INSTANTIATE_FOR_BOTH_PHONES(suite)                               \
  INSTANTIATE_TEST_SUITE_P(, suite, testing::Values("modern", "legacy"), \
                           [](const auto& phone) { return phone.param; })

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TESTS_CLI_PHONE_TOOL_TEST_H
