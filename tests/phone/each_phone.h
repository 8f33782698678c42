#ifndef DAROKLEIM_TESTS_PHONE_EACH_PHONE_H
#define DAROKLEIM_TESTS_PHONE_EACH_PHONE_H

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <string>

#include "tests/support/simulated_phones.h"

namespace darokleim::test {

// An old or a new phone, and a mode of the channel.
struct Combination {
  std::string android;
  std::string mode;

  bool legacy() const { return android == "legacy"; }
  bool assist() const { return mode != "plain"; }
  // Whether the library reads CR LF from commands that it wants it from.
  bool ends_in_crlf() const { return legacy() || assist(); }

  std::string Name() const { return android + "_" + mode; }
  friend void PrintTo(const Combination& combination, std::ostream* out) { *out << combination.Name(); }
};

// The whole way in every combination: the library, our channel, the real adb client, a simulated phone whose files
// the test reads and writes directly.
class EachPhone : public testing::TestWithParam<Combination> {
 protected:
  void SetUp() override;
  void TearDown() override;

  static const char* serial() { return "EACH0001"; }
  // A folder of the host for the test, removed afterwards.
  const std::filesystem::path& host_folder() const { return host_folder_; }
  // Where the host sees the files of the phone.
  const std::filesystem::path& phone_files() const { return phone_files_; }
  // darokleim-phone ctl for this phone.
  void Control(Words words) const;

 private:
  const SimulatedPhones phones_{{std::string(serial()) + ",card=1A2B-3C4D,android=" + GetParam().android}};
  std::filesystem::path host_folder_;
  std::filesystem::path phone_files_;
};

std::string NameOfCombination(const testing::TestParamInfo<Combination>& combination);

#define INSTANTIATE_FOR_EACH_PHONE(suite)                                                \
  INSTANTIATE_TEST_SUITE_P(                                                              \
      , suite,                                                                           \
      testing::Values(Combination{"modern", "plain"}, Combination{"modern", "assist"},   \
                      Combination{"modern", "direct"}, Combination{"legacy", "plain"},   \
                      Combination{"legacy", "assist"}, Combination{"legacy", "direct"}), \
      NameOfCombination)

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_EACH_PHONE_H
