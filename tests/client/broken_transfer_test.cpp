// Connections that break during transfers of many files without a word about which of them it is for, as daemons do that refuse
// one while others follow: each is then tried alone.
#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "base/little_endian.h"
#include "tests/client/calls.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

using test::Number32;
using test::Number64;
using test::ReadBytes;
using test::WriteBytes;

constexpr int kFiles = 20;
constexpr char kBad[] = "7";

// Ends the connection at the file of the name kBad: with the reason when nothing follows, otherwise without.
class AbruptPhone {
 public:
  AbruptPhone()
      : phone_("shell_v2,stat_v2,ls_v2",
               [this](const std::string& service, int connection) { Serve(service, connection); }),
        client_("tcp:" + phone_.port()) {}

  dk_device* device() const { return client_.device(); }
  int ended_connections() const { return ended_; }
  // The next time that files get their names, too, without a word about which have.
  void EndAtNextNaming() { ends_at_naming_ = true; }
  // Or it does not end by itself.
  void HangInNaming() { hangs_in_naming_ = true; }
  bool is_naming() const { return is_naming_; }
  // Whether files still got names when their temporary folders were removed.
  bool removed_while_naming() const { return removed_while_naming_; }
  std::map<std::string, std::string> files() const {
    const std::lock_guard lock(mutex_);
    return files_;
  }

 private:
  static std::uint32_t Length(const std::string& header) { return base::GetLe32(header.data() + 4); }
  static std::string Status(const std::string& id, const std::string& path) {
    const bool is_folder = path == "/sdcard";
    const bool is_there = is_folder || path.find("new") == std::string::npos;
    return id + Number32(is_there ? 0 : 2) + Number64(1) + Number64(2) +
           Number32(is_folder  ? 040755
                    : is_there ? 0100644
                               : 0) +
           Number32(1) + Number32(0) + Number32(0) + Number64(7) + Number64(7) + Number64(7) + Number64(7);
  }

  void Serve(const std::string& service, int connection) {
    WriteBytes(connection, "OKAY");
    if (service != "sync:") {
      const bool is_naming = service.find("mv ") != std::string::npos;
      if (is_naming && ends_at_naming_.exchange(false)) return;
      if (is_naming && hangs_in_naming_) {
        is_naming_ = true;
        test::WaitUntilClosed(connection);
        is_naming_ = false;
        return;
      }
      if (service.find("rm -rf ") != std::string::npos && !test::Eventually([&] { return !is_naming_; }))
        removed_while_naming_ = true;
      WriteBytes(connection, "\3" + Number32(1) + '\0');
      return;
    }
    for (std::string header = ReadBytes(connection, 8); header.size() == 8;
         header = ReadBytes(connection, 8)) {
      const std::string id = header.substr(0, 4), path = ReadBytes(connection, Length(header));
      const bool goes_on = id == "SEND"   ? Take(path.substr(0, path.rfind(',')), connection)
                           : id == "RECV" ? Give(path, connection)
                                          : WriteBytes(connection, Status(id, path));
      if (!goes_on) return;
    }
  }

  bool IsBad(const std::string& path) {
    if (path.substr(path.rfind('/') + 1) != kBad) return false;
    ++ended_;
    return true;
  }
  // The first time the client has sent, or asked for, more already.
  bool End(int connection) {
    if (ended_ > 1) WriteBytes(connection, "FAIL" + Number32(17) + "Permission denied");
    return false;
  }

  bool Take(const std::string& path, int connection) {
    std::string content;
    for (std::string header = ReadBytes(connection, 8); header.rfind("DATA", 0) == 0;
         header = ReadBytes(connection, 8))
      content += ReadBytes(connection, Length(header));
    if (IsBad(path)) return End(connection);
    const std::lock_guard lock(mutex_);
    files_[path.substr(path.rfind('/') + 1)] = content;
    return WriteBytes(connection, "OKAY" + Number32(0));
  }

  bool Give(const std::string& path, int connection) {
    if (IsBad(path)) return End(connection);
    return WriteBytes(connection, "DATA" + Number32(7) + "contentDONE" + Number32(0));
  }

  mutable std::mutex mutex_;
  std::map<std::string, std::string> files_;
  std::atomic<int> ended_{0};
  std::atomic<bool> ends_at_naming_{false}, hangs_in_naming_{false};
  std::atomic<bool> is_naming_{false}, removed_while_naming_{false};
  const test::ScriptedPhone phone_;
  const Client client_;
};

class BrokenTransfers : public testing::Test {
 protected:
  using Run = decltype(&dk_push);

  void Transfer(Run run, const std::string& source, const std::string& target) {
    std::vector<std::string> names;
    for (int i = 0; i < kFiles; ++i) {
      names.push_back(source + std::to_string(i));
      names.push_back(target + std::to_string(i));
    }
    std::vector<dk_item> items;
    for (std::size_t i = 0; i < names.size(); i += 2)
      items.push_back({names[i].c_str(), names[i + 1].c_str()});
    dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
    options.keep_going = true;
    options.user = this;
    options.on_error = [](void* user, const dk_error* error) {
      auto& test = *static_cast<BrokenTransfers*>(user);
      test.errors_.push_back(dk_error_code(error));
      test.paths_.emplace_back(dk_error_path(error));
      return true;
    };
    dk_summary summary;
    EXPECT_EQ(run(phone_.device(), items.data(), items.size(), &options, &summary, nullptr), DK_PARTLY_DONE);
    EXPECT_EQ(summary.files_sent, kFiles - 1U);
    EXPECT_EQ(summary.files_failed, 1U);
    EXPECT_EQ(errors_, std::vector<dk_code>{DK_ACCESS_DENIED});
    EXPECT_EQ(phone_.ended_connections(), 2);
  }

  AbruptPhone phone_;
  const test::TemporaryDirectory directory_;
  std::vector<dk_code> errors_;
  std::vector<std::string> paths_;
};

TEST_F(BrokenTransfers, SendEveryFileButTheOneThatIsRefused) {
  for (int i = 0; i < kFiles; ++i) test::WriteFile(directory_.File(std::to_string(i)), "content");
  Transfer(dk_push, directory_.path().native() + "/", "/sdcard/new/");
  EXPECT_EQ(paths_, std::vector<std::string>{"/sdcard/new/7"});
  const auto files = phone_.files();
  EXPECT_EQ(files.size(), kFiles - 1U);
  for (const auto& [name, content] : files) EXPECT_EQ(content, "content") << name;
}

TEST_F(BrokenTransfers, EndAtTheFileThatIsRefusedUnlessTheyKeepGoing) {
  test::WriteFile(directory_.File(kBad), "content");
  test::WriteFile(directory_.File("other"), "content");
  const std::string bad = directory_.File(kBad), other = directory_.File("other");
  const dk_item items[] = {
      {bad.c_str(), "/sdcard/new/7"}, {other.c_str(), "/sdcard/new/a"}, {other.c_str(), "/sdcard/new/b"}};
  EXPECT_EQ(dk_push(phone_.device(), items, 3, nullptr, nullptr, nullptr), DK_ACCESS_DENIED);
  EXPECT_EQ(phone_.ended_connections(), 2);
}

TEST_F(BrokenTransfers, FetchEveryFileButTheOneThatIsRefused) {
  Transfer(dk_pull, "/sdcard/", directory_.path().native() + "/");
  EXPECT_EQ(paths_, std::vector<std::string>{"/sdcard/7"});
  for (int i = 0; i < kFiles; ++i) {
    const std::string file = directory_.File(std::to_string(i));
    EXPECT_EQ(std::filesystem::exists(file), std::to_string(i) != kBad) << i;
    if (std::to_string(i) == kBad) continue;
    EXPECT_EQ(test::ReadFile(file), "content") << i;
  }
}

// Of a small file and a large one: the first gets its name while the second is sent.
class BrokenNamings : public BrokenTransfers {
 protected:
  dk_code Push(const dk_transfer_options* options) {
    test::WriteFile(directory_.File("small"), "content");
    test::WriteFile(directory_.File("large"), std::string(2 << 20, 'x'));
    const std::string small = directory_.File("small"), large = directory_.File("large");
    const dk_item items[] = {{small.c_str(), "/sdcard/new/small"}, {large.c_str(), "/sdcard/new/large"}};
    return dk_push(phone_.device(), items, 2, options, &summary_, nullptr);
  }

  dk_summary summary_ = {};
};

TEST_F(BrokenNamings, AreReportedThoughAllThatFollowsIsWell) {
  phone_.EndAtNextNaming();
  EXPECT_EQ(Push(nullptr), DK_CONNECTION_LOST);
  EXPECT_EQ(phone_.files().size(), 2U);
  EXPECT_EQ(summary_.files_sent, 0U) << "of which it is known that they have their names";
}

TEST_F(BrokenNamings, AreEndedBeforeWhatHasNoNameIsRemoved) {
  phone_.HangInNaming();
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.user = &phone_;
  options.on_progress = [](void* user, const dk_progress* progress) {
    const auto& phone = *static_cast<const AbruptPhone*>(user);
    return progress->files_done == 0 || !test::Eventually([&] { return phone.is_naming(); });
  };
  EXPECT_EQ(Push(&options), DK_STOPPED);
  EXPECT_FALSE(phone_.is_naming());
  EXPECT_FALSE(phone_.removed_while_naming());
  EXPECT_EQ(summary_.files_sent, 0U);
}

}  // namespace
}  // namespace darokleim::client_test
