// What phones before Android 7 cannot do, or cannot say.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "tests/client/calls.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/file_content.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

// Refuses every service but the shell, which prints the level of its interfaces to those that ask for it.
class PhoneOfLevel {
 public:
  PhoneOfLevel(std::string features, int level)
      : level_(level),
        phone_(std::move(features),
               [this](const std::string& service, int connection) { Serve(service, connection); }),
        client_("tcp:" + phone_.port()) {}

  dk_device* device() const { return client_.device(); }

 private:
  void Serve(const std::string& service, int connection) const {
    const bool has_exec = level_ >= 21;
    const bool asks = service.find("getprop ro.build.version.sdk") != std::string::npos;
    const std::string printed = (asks ? std::to_string(level_) : "") + (has_exec ? "\n" : "\r\n");
    if (service.rfind("shell,v2", 0) == 0) {
      const auto size = static_cast<std::uint32_t>(printed.size());
      test::WriteBytes(connection,
                       "OKAY\1" + test::Number32(size) + printed + "\3" + test::Number32(1) + '\0');
    } else if (service.rfind("shell:", 0) == 0 || (has_exec && service.rfind("exec:", 0) == 0)) {
      const std::size_t end = service.rfind("'$?"), begin = service.rfind("echo '", end) + 6;
      test::WriteBytes(connection, "OKAY" + printed + service.substr(begin, end - begin) + "0\n");
    } else {
      test::WriteBytes(connection, "FAIL" + test::Request("closed"));
    }
  }

  const int level_;
  const test::ScriptedPhone phone_;
  const Client client_;
};

std::vector<dk_code> CallsOfReverseMappings(const PhoneOfLevel& phone) {
  int port = 7;
  const auto ignore = [](void*, const dk_mapping*) { return true; };
  std::vector<dk_code> codes = {dk_reverse_add(phone.device(), "tcp:0", "tcp:7", false, &port, nullptr),
                                dk_reverse_remove(phone.device(), "tcp:7", nullptr),
                                dk_reverse_remove(phone.device(), nullptr, nullptr),
                                dk_reverse_list(phone.device(), ignore, nullptr, nullptr)};
  EXPECT_EQ(port, 7);
  return codes;
}

TEST(OldPhones, BeforeAndroid5HaveNoReverseMappings) {
  EXPECT_THAT(CallsOfReverseMappings({"", 19}), testing::Each(DK_UNSUPPORTED));
}

TEST(OldPhones, SinceAndroid5OnlyRefuseThem) {
  EXPECT_THAT(CallsOfReverseMappings({"", 21}), testing::Each(DK_SERVER_REFUSED));
  EXPECT_THAT(CallsOfReverseMappings({"shell_v2", 33}), testing::Each(DK_SERVER_REFUSED));
}

TEST(OldPhones, BeforeAndroid5HaveALogThatCannotBeFollowed) {
  const PhoneOfLevel phone("", 19);
  dk_log* log = nullptr;
  const auto on_record = [](void*, const dk_log_record*) {};
  EXPECT_EQ(dk_log_start(phone.device(), nullptr, on_record, nullptr, nullptr, &log, nullptr),
            DK_UNSUPPORTED);
  EXPECT_EQ(log, nullptr);
}

TEST(OldServers, DoNotPair) {
  const test::ScriptedServer server([](int connection) {
    test::ReadRequest(connection);
    test::WriteBytes(connection, "FAIL" + test::Request("unknown host service"));
  });
  const Client client(server.name());
  EXPECT_EQ(dk_pair(client.context(), "10.0.0.1:4000", "123456", nullptr), DK_UNSUPPORTED);
}

// Of a later one, perhaps.
TEST(Servers, SayStatesThatAreNotKnown) {
  const test::ScriptedServer server([](int connection) {
    test::ReadRequest(connection);
    test::WriteBytes(connection, "OKAY" + test::Request("X asleep transport_id:1\n"));
  });
  const Client client(server.name());
  std::string seen;
  const auto on_device = [](void* user, const dk_device_info* info) {
    *static_cast<std::string*>(user) = info->state == DK_STATE_UNKNOWN ? info->state_text : "known";
    return true;
  };
  EXPECT_EQ(dk_devices(client.context(), on_device, &seen, nullptr), DK_OK);
  EXPECT_EQ(seen, "asleep");
}

// What the server says of an address is in the text of a success.
TEST(Servers, SayWhyTheyDoNotConnect) {
  const std::string words = "failed to connect to '10.0.0.1:5555': Connection refused";
  const test::ScriptedServer server([&](int connection) {
    test::ReadRequest(connection);
    test::WriteBytes(connection, "OKAY" + test::Request(words));
  });
  const Client client(server.name());
  dk_error* error = nullptr;
  dk_call call = DK_CALL_INIT;
  call.error = &error;
  EXPECT_EQ(dk_connect(client.context(), "10.0.0.1:5555", &call), DK_SERVER_REFUSED);
  EXPECT_EQ(dk_error_words(error), words);
  dk_error_free(error);
}

TEST(OldPhones, GetShortCommandsAlone) {
  const SpoiltPhone phone(false);
  const Client client(phone.address());
  const test::TemporaryDirectory directory;
  const std::string source = directory.File("tree");
  for (int i = 0; i < 400; ++i) {
    const std::string folder = source + "/my photos " + std::to_string(i % 20);
    std::filesystem::create_directories(folder + "/empty");
    test::WriteFile(folder + "/IMG_20260101_" + std::to_string(i) + ".jpg", "content");
  }
  const dk_item items[] = {{source.c_str(), "/sdcard/new/tree"}};
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.existing = DK_SKIP_SAME;
  dk_summary summary;
  EXPECT_EQ(dk_push(client.device(), items, 1, &options, &summary, nullptr), DK_OK);
  EXPECT_EQ(summary.files_sent, 400U);
  EXPECT_EQ(dk_run_script(client.device(), std::string(5000, ' ').c_str(), nullptr, nullptr, nullptr),
            DK_NAME_TOO_LONG);
  EXPECT_EQ(phone.harm(), "");
}

TEST(OldPhones, BeforeAndroid7TakeNoInputForACommand) {
  const PhoneOfLevel phone("", 23);
  dk_run_options options = DK_RUN_OPTIONS_INIT;
  options.input = "x";
  options.input_size = 1;
  EXPECT_EQ(dk_run_script(phone.device(), "cat", &options, nullptr, nullptr), DK_UNSUPPORTED);
}

}  // namespace
}  // namespace darokleim::client_test
