// The client on simulated phones, of both generations.
#ifndef DAROKLEIM_TESTS_CLIENT_CLIENT_ON_PHONE_H
#define DAROKLEIM_TESTS_CLIENT_CLIENT_ON_PHONE_H

#include <gtest/gtest.h>

#include <darokleim/client.hpp>
#include <memory>
#include <string>

#include "tests/support/simulated_phones.h"

namespace darokleim::test {

// The application of the tests.
inline constexpr char kNotes[] = "com.example.notes";

// "modern" or "legacy".
class ClientOnPhone : public ::testing::TestWithParam<std::string> {
 protected:
  static constexpr char kSerial[] = "R58M123ABC";

  void SetUp() override { Start({std::string(kSerial) + ",android=" + GetParam()}); }

  // `switches`: further words of the phones' command line.
  void Start(const Words& phones, const Words& switches = {}) {
    phone_.reset();
    client_.reset();
    phones_ = std::make_unique<SimulatedPhones>(phones, switches);
    server_ = "tcp:" + phones_->port();
    dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
    options.server = server_.c_str();
    client_ = std::make_unique<dk::Client>(options);
    phone_ = std::make_unique<dk::Device>(client_->open(kSerial).value());
  }

  bool legacy() const { return GetParam() == "legacy"; }
  SimulatedPhones& phones() { return *phones_; }
  const SimulatedPhones& phones() const { return *phones_; }
  const dk::Client& client() const { return *client_; }
  const dk::Device& phone() const { return *phone_; }

  // What a script prints on the phone.
  std::string Shell(const std::string& script) const { return phone().run_script(script).value().out; }

 private:
  std::unique_ptr<SimulatedPhones> phones_;
  std::string server_;
  std::unique_ptr<dk::Client> client_;
  std::unique_ptr<dk::Device> phone_;
};

inline std::string GenerationName(const ::testing::TestParamInfo<std::string>& info) {
  return info.param;
}

#define DAROKLEIM_ON_BOTH_GENERATIONS(suite) \
  INSTANTIATE_TEST_SUITE_P(, suite, ::testing::Values("modern", "legacy"), ::darokleim::test::GenerationName)

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_CLIENT_CLIENT_ON_PHONE_H
