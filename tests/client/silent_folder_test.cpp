// A phone that says of its folders what few do: nothing, or a name that this computer cannot have.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/client/calls.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

using test::Number32;
using test::Number64;

class FolderPhone {
 public:
  // Lists this name, of a folder, in its folder /sdcard; nothing at all where it is empty. `said` is what its ls says.
  FolderPhone(std::string name, std::string said)
      : name_(std::move(name)),
        said_(std::move(said)),
        phone_("shell_v2,stat_v2,ls_v2",
               [this](const std::string& service, int connection) { Serve(service, connection); }),
        client_("tcp:" + phone_.port()) {}

  dk_device* device() const { return client_.device(); }

 private:
  static std::string Status(const std::string& id, std::uint32_t mode) {
    return id + Number32(0) + Number64(1) + Number64(2) + Number32(mode) + Number32(1) + Number32(0) +
           Number32(0) + Number64(1) + Number64(7) + Number64(7) + Number64(7);
  }

  void Serve(const std::string& service, int connection) const {
    test::WriteBytes(connection, "OKAY");
    if (service != "sync:") {
      const std::string status(1, said_.empty() ? '\0' : '\1');
      test::WriteBytes(connection, "\2" + Number32(static_cast<std::uint32_t>(said_.size())) + said_ + "\3" +
                                       Number32(1) + status);
      return;
    }
    for (;;) {
      const std::string header = test::ReadBytes(connection, 8);
      if (header.size() < 8) return;
      const auto low = static_cast<unsigned char>(header[4]), high = static_cast<unsigned char>(header[5]);
      const std::string path = test::ReadBytes(connection, low + 256U * high);
      const std::string id = header.substr(0, 4);
      const bool is_link = path == "/sdcard/link";
      if (is_link && id == "STA2") return;  // it goes in the middle
      std::string list;
      if (!name_.empty() && path == "/sdcard")
        list = Status("DNT2", 040755) + Number32(static_cast<std::uint32_t>(name_.size())) + name_;
      test::WriteBytes(connection, id == "LIS2" ? list + "DONE" + std::string(72, '\0')
                                                : Status(id, is_link ? 0120777 : 040755));
    }
  }

  const std::string name_, said_;
  const test::ScriptedPhone phone_;
  const Client client_;
};

bool CountEntry(void* count, const dk_entry*) {
  return ++*static_cast<int*>(count) > 0;
}

TEST(SilentFolder, IsEmptyUnlessThePhonesOwnListSaysWhy) {
  int count = 0;
  EXPECT_EQ(dk_list(FolderPhone("", "").device(), "/sdcard", CountEntry, &count, nullptr), DK_OK);
  EXPECT_EQ(dk_list(FolderPhone("", "ls: /sdcard: Permission denied\n").device(), "/sdcard", CountEntry,
                    &count, nullptr),
            DK_ACCESS_DENIED);
  EXPECT_EQ(count, 0);
}

// The protocol of old phones has no word for why.
TEST(SilentFile, OfAnOldPhoneMayNotBeLookedAtWhereItsShellSeesIt) {
  const SpoiltPhone phone(false);
  const Client client(phone.address());
  dk_entry* entry = nullptr;
  EXPECT_EQ(dk_stat(client.device(), "/sdcard/missing", DK_NO_FOLLOW, &entry, nullptr), DK_ACCESS_DENIED);
  EXPECT_EQ(entry, nullptr);
}

class FolderPulls : public testing::Test {
 protected:
  dk_code Pull(dk_device* device, const char* source) {
    const std::string target = directory_.File("target");
    const dk_item items[] = {{source, target.c_str()}};
    dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
    options.keep_going = true;
    options.user = this;
    options.on_error = [](void* user, const dk_error* error) {
      auto& test = *static_cast<FolderPulls*>(user);
      test.errors_.push_back(dk_error_code(error));
      test.on_host_ = dk_error_on_host(error);
      return true;
    };
    return dk_pull(device, items, 1, &options, nullptr, nullptr);
  }

  const test::TemporaryDirectory directory_;
  std::vector<dk_code> errors_;
  bool on_host_ = false;
};

TEST_F(FolderPulls, LeaveOutAFolderWhoseNameThisComputerCannotHave) {
  const FolderPhone phone(std::string(300, 'n'), "");
  EXPECT_EQ(Pull(phone.device(), "/sdcard"), DK_PARTLY_DONE);
  EXPECT_EQ(errors_, std::vector<dk_code>{DK_NAME_TOO_LONG});
  EXPECT_TRUE(on_host_);
}

TEST_F(FolderPulls, EndWhereThePhoneGoesWhileALinkIsLookedAt) {
  const FolderPhone phone("", "");
  EXPECT_EQ(Pull(phone.device(), "/sdcard/link"), DK_CONNECTION_LOST);
  EXPECT_TRUE(errors_.empty());
}

}  // namespace
}  // namespace darokleim::client_test
