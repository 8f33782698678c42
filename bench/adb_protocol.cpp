// The adb library on a simulated phone, against adb, and against reading the same bytes from a bare socket.
#include <fcntl.h>
#include <sys/stat.h>

#include <deque>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "adb/device_list.h"
#include "adb/features.h"
#include "adb/shell.h"
#include "adb/sync_connection.h"
#include "base/unique_fd.h"
#include "bench/bare_sync.h"
#include "bench/report.h"
#include "tests/support/process.h"
#include "tests/support/simulated_phones.h"
#include "tests/support/temporary_directory.h"

namespace {

using namespace darokleim;
using namespace darokleim::bench;

const adb::DeviceSelector kPhone = adb::DeviceSelector::Serial("R58BENCH01");
constexpr int kFolders = 1000;
constexpr int kSmallFilesSent = 2000;
constexpr int kSmallFilesReceived = 200;  // for each of which adb waits 40 ms, as with a real server
constexpr std::size_t kLargeFile = 256 * 1024 * 1024;

class Phone {
 public:
  Phone() : phones_({"R58BENCH01,android=modern"}) {
    server_.port = static_cast<std::uint16_t>(std::stoi(phones_.port()));
    features_ = Require(adb::QueryFeatures(server_, kPhone, {}));
    sync_.emplace(Require(adb::SyncConnection::Start(server_, kPhone, features_, {})));
  }

  const adb::ServerAddress& server() const { return server_; }
  const adb::FeatureSet& features() const { return features_; }
  adb::SyncConnection& sync() { return *sync_; }
  std::string OnHost(const std::string& name) const { return folder_.File(name); }

  void Adb(const test::Words& words) const {
    const test::Outcome outcome = phones_.Adb(words);
    if (outcome.status != 0) throw std::runtime_error("adb fails: " + outcome.errors + outcome.output);
  }

  std::string Shell(const std::string& command) const {
    auto shell = Require(adb::ShellSession::Start(server_, kPhone, {.command = command}, {}));
    std::string output;
    const auto end = Require(shell.ReadAll(
        [&](adb::ShellStream, std::string_view data) {
          output += data;
          return true;
        },
        {}));
    if (end.exit_status != 0) throw std::runtime_error(command + " fails: " + output);
    return output;
  }

 private:
  const test::TemporaryDirectory folder_;
  const test::SimulatedPhones phones_;
  adb::ServerAddress server_;
  adb::FeatureSet features_;
  std::optional<adb::SyncConnection> sync_;
};

Row CompareDeviceList(const Phone& phone) {
  return Compare(
      {"the list of devices", "adb devices", 0.1, 100},
      [&] { Require(adb::QueryDeviceList(phone.server(), adb::ListForm::kShort, {})); },
      [&] { phone.Adb({"devices"}); });
}

Row CompareProperty(const Phone& phone) {
  return Compare(
      {"one property", "adb shell getprop", 0.6, 50}, [&] { phone.Shell("getprop ro.product.model"); },
      [&] {
        phone.Adb({"shell", "getprop", "ro.product.model"});
      });
}

std::vector<std::string> MakeFolders(const Phone& phone) {
  phone.Shell("cd /sdcard; mkdir tree; cd tree; i=0; while [ $i -lt " + std::to_string(kFolders) +
              " ]; do mkdir $i; : >$i/a.jpg; : >$i/b.jpg; i=$((i+1)); done");
  std::vector<std::string> folders;
  for (int i = 0; i < kFolders; ++i) folders.push_back("/sdcard/tree/" + std::to_string(i));
  return folders;
}

std::size_t ListAhead(Phone* phone, const std::vector<std::string>& folders) {
  std::size_t bytes = 0;
  for (const std::string& folder : folders) Require(phone->sync().RequestList(folder));
  for (std::size_t i = 0; i < folders.size(); ++i) {
    Require(phone->sync().ReadList(
        [&](const adb::DirectoryEntry& entry) { return (bytes += adb::kEntry2Size + entry.name.size()) > 0; },
        {}));
    bytes += adb::kEntry2Size;
  }
  return bytes;
}

Row CompareTree(Phone* phone, const std::vector<std::string>& folders) {
  const std::size_t bytes = ListAhead(phone, folders);
  BareSync bare(phone->server(), kPhone);
  return Compare(
      {"1,000 folders over one connection", "the same bytes from a bare socket", 1.25, 15},
      [&] { ListAhead(phone, folders); }, [&] { bare.List(folders, bytes); });
}

Row CompareFolder(Phone* phone) {
  phone->Shell(
      "mkdir /sdcard/many; cd /sdcard/many; i=0; while [ $i -lt 10000 ]; do : >IMG_$i.jpg; i=$((i+1)); done");
  const std::vector<std::string> folder = {"/sdcard/many"};
  const std::size_t bytes = ListAhead(phone, folder);
  BareSync bare(phone->server(), kPhone);
  return Compare(
      {"a folder of 10,000 files", "the same bytes from a bare socket", 1.25, 15},
      [&] { ListAhead(phone, folder); }, [&] { bare.List(folder, bytes); });
}

Row CompareOneByOne(Phone* phone, const std::vector<std::string>& folders) {
  constexpr std::size_t kListedByAdb = 50;
  const std::vector<std::string> some(folders.begin(), folders.begin() + kListedByAdb);
  return Compare(
      {"50 folders over one connection", "adb ls of each", 0.05, 5}, [&] { ListAhead(phone, some); },
      [&] {
        for (const std::string& folder : some) phone->Adb({"ls", folder});
      });
}

// --- Files

void Send(adb::SyncConnection* sync, const std::string& source, const std::string& target) {
  const base::UniqueFd file(open(source.c_str(), O_RDONLY | O_CLOEXEC));
  std::vector<char> block(adb::kLongestSyncData);
  Require(sync->BeginSend(target, 0100644, {}));
  for (;;) {
    const ssize_t count = read(file.get(), block.data(), block.size());
    if (count < 0) throw std::runtime_error("cannot read " + source);
    if (count == 0) break;
    Require(sync->SendData({block.data(), static_cast<std::size_t>(count)}, {}));
  }
  Require(sync->EndSend(1, {}));
}

void ReadInto(adb::SyncConnection* sync, const std::string& target) {
  const base::UniqueFd file(open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  Require(sync->ReadContent(
      [&](std::string_view data) {
        while (!data.empty()) {
          const ssize_t count = write(file.get(), data.data(), data.size());
          if (count < 0) return false;
          data.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
      },
      {}));
}

void CompareLargeFile(Phone* phone, std::vector<Row>* rows) {
  const std::string source = phone->OnHost("large");
  const std::string back = phone->OnHost("back");
  test::RunProgram({"sh", "-c", "head -c " + std::to_string(kLargeFile) + " /dev/urandom >" + source});
  rows->push_back(Compare(
      {"256 MiB sent", "adb push", 1, 7},
      [&] {
        Send(&phone->sync(), source, "/sdcard/large");
        Require(phone->sync().AwaitSends(0, {}));
      },
      [&] {
        phone->Adb({"push", source, "/sdcard/large"});
      }));
  const auto received = [&](auto&& receive) {
    std::filesystem::remove(back);
    return SecondsOf(receive);
  };
  rows->push_back(CompareSeconds(
      {"256 MiB received", "adb pull", 1, 7},
      [&] {
        return received([&] {
          Require(phone->sync().RequestContent("/sdcard/large"));
          ReadInto(&phone->sync(), back);
        });
      },
      [&] { return received([&] {
              phone->Adb({"pull", "/sdcard/large", back});
            }); }));
}

// `count` files of 4 KiB in a new folder of the host, which is returned.
std::string MakeSmallFiles(const Phone& phone, const std::string& name, int count) {
  const std::string folder = phone.OnHost(name);
  test::RunProgram({"sh", "-c",
                    "mkdir " + folder + "; i=0; while [ $i -lt " + std::to_string(count) +
                        " ]; do head -c 4096 /dev/urandom >" + folder + "/$i; i=$((i+1)); done"});
  return folder;
}

Row CompareSmallFilesSent(Phone* phone) {
  const std::string source = MakeSmallFiles(*phone, "sent", kSmallFilesSent);
  const auto emptied = [&](auto&& send) {
    phone->Shell("rm -rf /sdcard/sent");
    return SecondsOf(send);
  };
  return CompareSeconds(
      {"2,000 files of 4 KiB sent", "adb push of their folder", 1, 5},
      [&] {
        return emptied([&] {
          for (int i = 0; i < kSmallFilesSent; ++i) {
            const std::string name = "/" + std::to_string(i);
            Send(&phone->sync(), source + name, "/sdcard/sent" + name);
            Require(phone->sync().AwaitSends(32, {}));
          }
          Require(phone->sync().AwaitSends(0, {}));
        });
      },
      [&] { return emptied([&] {
              phone->Adb({"push", source, "/sdcard/"});
            }); });
}

Row CompareSmallFilesReceived(Phone* phone) {
  phone->Adb({"push", MakeSmallFiles(*phone, "received", kSmallFilesReceived), "/sdcard/"});
  const std::string back = phone->OnHost("received_back");
  const auto removed = [&](auto&& receive) {
    std::filesystem::remove_all(back);
    return SecondsOf(receive);
  };
  return CompareSeconds(
      {"200 files of 4 KiB received", "adb pull of their folder", 0.3, 5},
      [&] {
        return removed([&] {
          std::filesystem::create_directory(back);
          for (int i = 0; i < kSmallFilesReceived; ++i)
            Require(phone->sync().RequestContent("/sdcard/received/" + std::to_string(i)));
          for (int i = 0; i < kSmallFilesReceived; ++i)
            ReadInto(&phone->sync(), back + "/" + std::to_string(i));
        });
      },
      [&] { return removed([&] {
              phone->Adb({"pull", "/sdcard/received", back});
            }); });
}

}  // namespace

int main() {
  Phone phone;
  std::vector<Row> rows;
  rows.push_back(CompareDeviceList(phone));
  rows.push_back(CompareProperty(phone));
  const std::vector<std::string> folders = MakeFolders(phone);
  rows.push_back(CompareOneByOne(&phone, folders));
  rows.push_back(CompareTree(&phone, folders));
  rows.push_back(CompareFolder(&phone));
  CompareLargeFile(&phone, &rows);
  rows.push_back(CompareSmallFilesSent(&phone));
  rows.push_back(CompareSmallFilesReceived(&phone));
  Print(rows);
}
