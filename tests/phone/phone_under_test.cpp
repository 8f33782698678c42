#include "tests/phone/phone_under_test.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace darokleim::test {

namespace {

constexpr char kRealPhone[] = "real";
constexpr char kSimulatedSerial[] = "TEST0001";
constexpr int kFirstModernSdk = 24;

const char* RealSerial() {
  const char* serial = std::getenv("DAROKLEIM_TEST_SERIAL");
  return serial != nullptr && *serial != '\0' ? serial : nullptr;
}

}  // namespace

void PhoneUnderTest::SetUp() {
  if (GetParam() == kRealPhone) {
    serial_ = RealSerial();
  } else {
    serial_ = kSimulatedSerial;
    phones_ =
        std::make_unique<SimulatedPhones>(Words{serial_ + ",android=" + GetParam() + ",card=1A2B-3C4D"});
  }
  legacy_ = std::atoi(Text("getprop ro.build.version.sdk").c_str()) < kFirstModernSdk;
  std::string folder = (std::filesystem::temp_directory_path() / "darokleim-phone-test-XXXXXX").string();
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  host_folder_ = folder;
  Shell("mkdir -p " + phone_folder() + " " + storage_folder());
}

void PhoneUnderTest::TearDown() {
  if (!is_simulated())
    Shell("chmod -R u+rwx " + phone_folder() + "; rm -rf " + phone_folder() + " " + storage_folder());
  std::error_code error;
  std::filesystem::remove_all(host_folder_, error);
}

Outcome PhoneUnderTest::Adb(Words words, const std::string& input) const {
  words.insert(words.begin(), {"-s", serial_});
  if (phones_ != nullptr) return phones_->Adb(words, input);
  words.insert(words.begin(), "adb");
  return RunProgram(words, {}, input);
}

std::unique_ptr<HostProcess> PhoneUnderTest::StartAdb(Words words) const {
  words.insert(words.begin(), {"-s", serial_});
  if (phones_ != nullptr) return phones_->StartAdb(words);
  words.insert(words.begin(), "adb");
  return std::make_unique<HostProcess>(words, Environment{});
}

std::string PhoneUnderTest::Text(const std::string& command) const {
  return Unix(Shell(command).output);
}

Outcome PhoneUnderTest::Control(Words words) const {
  words.insert(words.begin(), serial_);
  return phones_->Control(words);
}

bool PhoneUnderTest::IsAsking() const {
  return Control({"show", "activities"}).output.find("backupconfirm") != std::string::npos;
}

void PhoneUnderTest::SwitchOn(const std::string& fault) const {
  const Outcome outcome = Control({"fault", fault});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
}

std::string PhoneUnderTest::SeenFromHost(const std::string& phone_path) const {
  const std::string list = phones_->Control({"list"}).output;
  const std::string mark = "\tfiles=";
  const size_t at = list.find(mark) + mark.size();
  return list.substr(at, list.find_first_of("\t\n", at) - at) + phone_path;
}

std::vector<std::string> PhonesToTest() {
  if (RealSerial() != nullptr) return {kRealPhone};
  return {"modern", "legacy"};
}

std::string NameOfPhone(const testing::TestParamInfo<std::string>& info) {
  return info.param;
}

std::string Unix(std::string text) {
  for (size_t at; (at = text.find("\r\n")) != std::string::npos;) text.erase(at, 1);
  return text;
}

std::string DataFile(const std::string& name) {
  return DAROKLEIM_PHONE_TEST_DATA "/" + name;
}

}  // namespace darokleim::test
