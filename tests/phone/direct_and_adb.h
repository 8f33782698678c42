#ifndef DAROKLEIM_TESTS_PHONE_DIRECT_AND_ADB_H
#define DAROKLEIM_TESTS_PHONE_DIRECT_AND_ADB_H

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/simulated_phones.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {

// What a command of the channel came to: the same through adb and directly.
struct Answer {
  int status = -1;
  bool handed_out = false;  // a buffer, be it empty
  std::string text;         // rates and times of transfers replaced by letters

  bool operator==(const Answer&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Answer& answer);

// Of files whose names a shell or a message could misread.
extern const std::vector<std::string> kAwkwardNames;

// Runs commands of the channel twice, through adb and directly, and compares what they print, their status, and what they
// leave on the phone and on the host. The parameter is the phone's generation.
class DirectAndAdb : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override;
  void TearDown() override;

  bool is_legacy() const { return GetParam() == "legacy"; }
  static const char* serial() { return "HEALTHY"; }
  // The phones that refuse every command, and one that is not there.
  static std::vector<std::string> RefusingSerials() { return {"OFFLINE", "LOCKED", "ASKING", "ABSENT"}; }

  // Folders of the test's own, emptied and filled by Reset(). The phone's one as the phone and as the host see it.
  std::filesystem::path host_folder() const { return folder_.path() / "host"; }
  static std::string phone_folder() { return "/data/local/tmp/direct"; }
  std::filesystem::path phone_folder_seen() const { return phone_files_ + phone_folder(); }

  // `text` names this phone as in " -s HEALTHY TEXT".
  static std::string OnPhone(const std::string& text) { return std::string(" -s ") + serial() + " " + text; }

  Answer ThroughAdb(const std::string& args);
  // Without an adb that could be started: a command that is left to adb has the status 3002.
  Answer Directly(const std::string& args, const bool* cancel = nullptr);
  // With one.
  Answer DirectlyOrThroughAdb(const std::string& args);

  // Reads only: nothing is reset in between. Returns the answer.
  Answer ExpectSameAnswer(const std::string& args);
  // Also compares the two folders and what `look` gives afterwards; Reset() comes before each run.
  using Look = std::function<std::string()>;
  Answer ExpectSameEffect(const std::string& args, const Look& look = nullptr);
  // That adb must run it, and does.
  void ExpectLeftToAdb(const std::string& args);

  virtual void Reset();

  const SimulatedPhones& phones() const { return *phones_; }
  void Control(const Words& words) const;
  std::string Effect() const;

 private:
  Answer Run(const char* mode, const std::string& adb, const std::string& args, const bool* cancel = nullptr);

  TemporaryDirectory folder_;
  std::unique_ptr<SimulatedPhones> phones_;
  std::string phone_files_;  // where the host sees the phone's files
  std::string adb_;
};

#define INSTANTIATE_FOR_GENERATIONS(suite)                               \
  INSTANTIATE_TEST_SUITE_P(, suite, testing::Values("modern", "legacy"), \
                           [](const testing::TestParamInfo<std::string>& phone) { return phone.param; })

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_DIRECT_AND_ADB_H
