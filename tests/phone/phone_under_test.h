#ifndef DAROKLEIM_TESTS_PHONE_PHONE_UNDER_TEST_H
#define DAROKLEIM_TESTS_PHONE_PHONE_UNDER_TEST_H

#include <gmock/gmock.h>

#include <memory>
#include <string>

#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/simulated_phones.h"

namespace darokleim::test {

// A test that needs a phone and knows only its serial. It runs with a modern and a legacy simulated phone; or
// with the attached one whose serial is in DAROKLEIM_TEST_SERIAL, through the machine's own adb server.
// What only a simulated phone can do, a test asks for with one of the Require functions, which skip it.
class PhoneUnderTest : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override;
  void TearDown() override;

  const std::string& serial() const { return serial_; }
  bool is_simulated() const { return phones_ != nullptr; }
  // Of the simulated phone's server.
  const std::string& port() const { return phones_->port(); }
  // Before Android 7: one stream, no exit status.
  bool is_legacy() const { return legacy_; }

  Outcome Adb(Words words, const std::string& input = "") const;
  std::unique_ptr<HostProcess> StartAdb(Words words) const;
  Outcome Shell(const std::string& command) const { return Adb({"shell", command}); }
  // What a command prints, with the line breaks of a modern phone.
  std::string Text(const std::string& command) const;

  // Folders of the test's own on the phone and on the host, removed afterwards.
  std::string phone_folder() const { return "/data/local/tmp/darokleim-test"; }
  std::string storage_folder() const { return "/sdcard/darokleim-test"; }
  const std::string& host_folder() const { return host_folder_; }

  // darokleim-phone ctl for this phone, which must be a simulated one.
  Outcome Control(Words words) const;
  // Whether the question before a backup or restore is on the screen of the simulated phone.
  bool IsAsking() const;
  void SwitchOn(const std::string& fault) const;
  // Where the host sees this file of the simulated phone.
  std::string SeenFromHost(const std::string& phone_path) const;

 private:
  std::string serial_;
  std::unique_ptr<SimulatedPhones> phones_;
  bool legacy_ = false;
  std::string host_folder_;
};

#define REQUIRE_SIMULATED_PHONE(why) \
  if (!is_simulated()) GTEST_SKIP() << "a real phone " << (why)

// The phones to run with.
std::vector<std::string> PhonesToTest();
std::string NameOfPhone(const testing::TestParamInfo<std::string>& info);

#define INSTANTIATE_FOR_PHONES(suite) \
  INSTANTIATE_TEST_SUITE_P(, suite, testing::ValuesIn(PhonesToTest()), NameOfPhone)

// The text with the line breaks of a modern phone.
std::string Unix(std::string text);

// A file of this folder's data.
std::string DataFile(const std::string& name);

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_PHONE_UNDER_TEST_H
