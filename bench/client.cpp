// The client on simulated phones, against adb, against adbkit, and against reading the same bytes from a bare socket.
#include <unistd.h>

#include <condition_variable>
#include <darokleim/client.hpp>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adb/features.h"
#include "adb/sync_connection.h"
#include "bench/adbkit.h"
#include "bench/bare_sync.h"
#include "bench/peak_memory.h"
#include "bench/report.h"
#include "tests/support/made_up_phone.h"
#include "tests/support/process.h"
#include "tests/support/simulated_phones.h"
#include "tests/support/temporary_directory.h"

namespace {

using namespace darokleim;
using namespace darokleim::bench;
using test::MadeUpPhone;

constexpr char kSerial[] = "R58BENCH01";
constexpr std::size_t kMiB = 1024 * 1024;
constexpr std::size_t kLargeFile = 256 * kMiB;
constexpr int kSmallFiles = 2000;
// A server that lets small replies wait makes others than us wait for 40 ms a file or a folder: so many have to do.
constexpr int kFewFiles = 100;
constexpr int kFewFolders = 100;

struct Connected {
  explicit Connected(const std::string& address, const std::string& serial) : server(address) {
    dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
    options.server = server.c_str();
    client = std::make_unique<dk::Client>(options);
    device = std::make_unique<dk::Device>(client->open(serial).value());
  }
  std::string server;
  std::unique_ptr<dk::Client> client;
  std::unique_ptr<dk::Device> device;
};

std::size_t EntriesIn(const dk::Device& device, const std::string& folder) {
  std::size_t count = 0;
  device.list(folder, [&](const dk_entry&) { return ++count > 0; }).value();
  return count;
}

std::size_t EntriesBelow(const dk::Device& device, const std::string& folder) {
  std::size_t count = 0;
  device.walk(folder, dk::WalkOptions(), [&](const dk_entry&) { return ++count > 0; }).value();
  return count;
}

void Push(const dk::Device& device, const std::string& source, const std::string& target) {
  device.push({{source, target}}, DK_TRANSFER_OPTIONS_INIT).value();
}
void Pull(const dk::Device& device, const std::string& source, const std::string& target) {
  device.pull({{source, target}}, DK_TRANSFER_OPTIONS_INIT).value();
}

class Phone {
 public:
  explicit Phone(const test::Words& options)
      : phones_({std::string(kSerial) + ",android=modern"}, options),
        connected_("tcp:" + phones_.port(), kSerial) {
    address_.port = static_cast<std::uint16_t>(std::stoi(phones_.port()));
  }

  const dk::Device& device() const { return *connected_.device; }
  const dk::Client& client() const { return *connected_.client; }
  const test::SimulatedPhones& phones() const { return phones_; }
  const adb::ServerAddress& address() const { return address_; }
  std::string OnHost(const std::string& name) const { return folder_.File(name); }

  void Shell(const std::string& script) const {
    const dk::Output output = device().run_script(script).value();
    if (output.exit_status != 0) throw std::runtime_error(script + " fails: " + output.err);
  }

  double SecondsOfAdb(const test::Words& words) const {
    return SecondsOf([&] {
      const test::Outcome outcome = phones_.Adb(words);
      if (outcome.status != 0) throw std::runtime_error("adb fails: " + outcome.errors + outcome.output);
    });
  }

  std::string LargeFile() const {
    return FileBy("large", "head -c " + std::to_string(kLargeFile) + " /dev/urandom >$0");
  }
  std::string SmallFiles(int count) const {
    const std::string number = std::to_string(count);
    return FileBy("small" + number, "mkdir $0; i=0; while [ $i -lt " + number +
                                        " ]; do head -c 4096 /dev/urandom >$0/$i; i=$((i+1)); done");
  }

 private:
  std::string FileBy(const std::string& name, const std::string& script) const {
    std::string path = OnHost(name);
    if (!std::filesystem::exists(path)) test::RunProgram({"sh", "-c", script, path});
    return path;
  }

  const test::TemporaryDirectory folder_;
  const test::SimulatedPhones phones_;
  const Connected connected_;
  adb::ServerAddress address_;
};

// --- Lists

void MakeManyFiles(const Phone& phone) {
  phone.Shell(
      "mkdir /sdcard/many; cd /sdcard/many; i=0; while [ $i -lt 10000 ]; do : >IMG_$i.jpg; i=$((i+1)); done");
}
void MakeTree(const Phone& phone, int folders) {
  phone.Shell("mkdir /sdcard/tree; cd /sdcard/tree; i=0; while [ $i -lt " + std::to_string(folders) +
              " ]; do mkdir $i; : >$i/a.jpg; : >$i/b.jpg; i=$((i+1)); done");
}

// The bytes of the lists of these folders.
std::size_t BytesOfLists(const Phone& phone, const std::vector<std::string>& folders) {
  const auto selector = adb::DeviceSelector::Serial(kSerial);
  const auto features = Require(adb::QueryFeatures(phone.address(), selector, {}));
  auto sync = Require(adb::SyncConnection::Start(phone.address(), selector, features, {}));
  std::size_t bytes = 0;
  for (const std::string& folder : folders) {
    const auto count = [&](const adb::DirectoryEntry& entry) {
      bytes += adb::kEntry2Size + entry.name.size();
      return true;
    };
    Require(sync.List(folder, count, {}));
    bytes += adb::kEntry2Size;
  }
  return bytes;
}

void CompareLists(const Phone& phone, std::vector<Row>* rows) {
  constexpr char kAgainst[] = "the same bytes from a bare socket";
  const auto selector = adb::DeviceSelector::Serial(kSerial);
  MakeManyFiles(phone);
  const std::vector<std::string> many = {"/sdcard/many"};
  const std::size_t many_bytes = BytesOfLists(phone, many);
  rows->push_back(Compare(
      {"dk_list, a folder of 10,000 files", kAgainst, 1.25, 21}, [&] { EntriesIn(phone.device(), many[0]); },
      [&] { BareSync(phone.address(), selector).List(many, many_bytes); }));

  constexpr int kFolders = 1000;
  MakeTree(phone, kFolders);
  const std::vector<std::string> root = {"/sdcard/tree"};
  std::vector<std::string> below;
  for (int i = 0; i < kFolders; ++i) below.push_back(root[0] + "/" + std::to_string(i));
  const std::size_t root_bytes = BytesOfLists(phone, root), below_bytes = BytesOfLists(phone, below);
  rows->push_back(Compare(
      {"dk_walk, 1,000 folders", kAgainst, 1.25, 21}, [&] { EntriesBelow(phone.device(), root[0]); },
      [&] {
        BareSync bare(phone.address(), selector);
        bare.List(root, root_bytes);
        bare.List(below, below_bytes);
      }));
}

// --- Transfers

// Each to a phone or a folder where nothing is yet.
class Transfers {
 public:
  explicit Transfers(const Phone& phone) : phone_(phone), back_(phone.OnHost("back")) {}

  double Pushed(const std::string& source) const {
    return SentAnew([&] { return SecondsOf([&] { Push(phone_.device(), source, kSent); }); });
  }
  double PushedByAdb(const std::string& source) const {
    return SentAnew([&] { return phone_.SecondsOfAdb({"push", source, kSent}); });
  }
  double PushedByAdbkit(Adbkit* adbkit, const std::string& operation, const std::string& source) const {
    return SentAnew([&] { return adbkit->Run(operation, source, kSent); });
  }
  double Pulled() const {
    return FetchedAnew([&] { return SecondsOf([&] { Pull(phone_.device(), kSent, back_); }); });
  }
  double PulledByAdb() const {
    return FetchedAnew([&] { return phone_.SecondsOfAdb({"pull", kSent, back_}); });
  }
  double PulledByAdbkit(Adbkit* adbkit, const std::string& operation) const {
    return FetchedAnew([&] { return adbkit->Run(operation, kSent, back_); });
  }

 private:
  static constexpr char kSent[] = "/sdcard/sent";

  template <typename Send>
  double SentAnew(const Send& send) const {
    phone_.Shell(std::string("rm -rf ") + kSent);
    return send();
  }
  template <typename Fetch>
  double FetchedAnew(const Fetch& fetch) const {
    std::filesystem::remove_all(back_);
    return fetch();
  }

  const Phone& phone_;
  const std::string back_;
};

void CompareTransfers(const Phone& phone, std::vector<Row>* rows) {
  const Transfers transfers(phone);
  const std::string large = phone.LargeFile();
  rows->push_back(CompareSeconds(
      {"dk_push, 256 MiB", "adb push", 1, 9}, [&] { return transfers.Pushed(large); },
      [&] { return transfers.PushedByAdb(large); }));
  rows->push_back(CompareSeconds(
      {"dk_pull, 256 MiB", "adb pull", 1, 9}, [&] { return transfers.Pulled(); },
      [&] { return transfers.PulledByAdb(); }));
  const std::string small = phone.SmallFiles(kSmallFiles);
  rows->push_back(CompareSeconds(
      {"dk_push, 2,000 files of 4 KiB", "adb push of their folder", 1, 9},
      [&] { return transfers.Pushed(small); }, [&] { return transfers.PushedByAdb(small); }));
  rows->push_back(CompareSeconds(
      {"dk_pull, 2,000 files of 4 KiB", "adb pull of their folder", 1, 9}, [&] { return transfers.Pulled(); },
      [&] { return transfers.PulledByAdb(); }));
}

// As a real server has them.
void CompareWithDelays(const Phone& phone, std::vector<Row>* rows) {
  const Transfers transfers(phone);
  const std::string few = phone.SmallFiles(kFewFiles);
  transfers.Pushed(few);
  rows->push_back(CompareSeconds(
      {"dk_pull, 100 files of 4 KiB, a real server's delays", "adb pull of their folder", 0.3, 3},
      [&] { return transfers.Pulled(); }, [&] { return transfers.PulledByAdb(); }));
}

void CompareWithAdbkit(const Phone& phone, Adbkit* adbkit, std::vector<Row>* rows) {
  constexpr char kAgainst[] = "adbkit";
  const std::string delays = ", a real server's delays";
  MakeManyFiles(phone);
  rows->push_back(CompareSeconds(
      {"dk_list, a folder of 10,000 files" + delays, kAgainst, 1, 9},
      [&] { return SecondsOf([&] { EntriesIn(phone.device(), "/sdcard/many"); }); },
      [&] { return adbkit->Run("list", "/sdcard/many"); }));
  MakeTree(phone, kFewFolders);
  rows->push_back(CompareSeconds(
      {"dk_walk, 100 folders" + delays, kAgainst, 1, 3},
      [&] { return SecondsOf([&] { EntriesBelow(phone.device(), "/sdcard/tree"); }); },
      [&] { return adbkit->Run("tree", "/sdcard/tree"); }));
  const Transfers transfers(phone);
  const std::string large = phone.LargeFile(), small = phone.SmallFiles(kSmallFiles),
                    few = phone.SmallFiles(kFewFiles);
  rows->push_back(CompareSeconds(
      {"dk_push, 256 MiB" + delays, kAgainst, 1, 5}, [&] { return transfers.Pushed(large); },
      [&] { return transfers.PushedByAdbkit(adbkit, "push", large); }));
  rows->push_back(CompareSeconds(
      {"dk_pull, 256 MiB" + delays, kAgainst, 1, 5}, [&] { return transfers.Pulled(); },
      [&] { return transfers.PulledByAdbkit(adbkit, "pull"); }));
  rows->push_back(CompareSeconds(
      {"dk_push, 2,000 files of 4 KiB" + delays, kAgainst, 1, 5}, [&] { return transfers.Pushed(small); },
      [&] { return transfers.PushedByAdbkit(adbkit, "pushFolder", small); }));
  transfers.Pushed(few);
  rows->push_back(CompareSeconds(
      {"dk_pull, 100 files of 4 KiB" + delays, kAgainst, 1, 3}, [&] { return transfers.Pulled(); },
      [&] { return transfers.PulledByAdbkit(adbkit, "pullFolder"); }));
}

// --- Limits that are no comparison

Row AgainstLimit(const std::string& name, double value, double limit, const char* limit_text,
                 const char* unit) {
  return {name, limit_text, 1, value, limit, value / limit, unit};
}

void MeasureMemory(std::vector<Row>* rows) {
  const test::TemporaryDirectory folder;
  const std::string source = folder.File("source"), target = folder.File("target");
  test::RunProgram({"truncate", "-s", "1G", source});
  MadeUpPhone::Content content;
  content.files = 1'000'000;
  content.file_size = 1024 * kMiB;
  const MadeUpPhone phone(content);
  const auto measure = [&](const std::string& name, auto use) {
    const double bytes = PeakBytesOf([&] { use(*Connected(phone.address(), MadeUpPhone::kSerial).device); });
    rows->push_back(AgainstLimit(name, bytes, 4.0 * kMiB, "4 MiB more than before", "B"));
  };
  measure("dk_push of 1 GiB, memory", [&](const dk::Device& device) { Push(device, source, "/made/new"); });
  measure("dk_pull of 1 GiB, memory",
          [&](const dk::Device& device) { Pull(device, MadeUpPhone::PathOfFile(0), target); });
  measure("dk_list of a million files, memory",
          [](const dk::Device& device) { EntriesIn(device, MadeUpPhone::kFolder); });
  measure("dk_walk over a million files, memory",
          [](const dk::Device& device) { EntriesBelow(device, MadeUpPhone::kFolder); });
}

// From just before the command that plugs the phone in until the watch reports it.
void MeasurePlugging(const Phone& phone, std::vector<Row>* rows) {
  using Clock = std::chrono::steady_clock;
  std::mutex mutex;
  std::condition_variable changed;
  dk_change last = DK_SERVER_LOST;
  Clock::time_point at;
  const dk::Watch watch =
      phone.client()
          .watch([&](dk_change change, const dk::DeviceInfo* info) {
            if (info != nullptr && change == DK_DEVICE_CHANGED && info->state == DK_STATE_READY)
              change = DK_DEVICE_ADDED;
            const std::lock_guard lock(mutex);
            last = change;
            at = Clock::now();
            changed.notify_all();
          })
          .value();
  const auto await = [&](dk_change change) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return last == change; });
    return at;
  };
  std::vector<double> seconds;
  for (int i = 0; i < 15; ++i) {
    await(DK_DEVICE_ADDED);
    phone.phones().Control({kSerial, "unplug"});
    await(DK_DEVICE_REMOVED);
    const Clock::time_point start = Clock::now();
    phone.phones().Control({kSerial, "plug"});
    seconds.push_back(std::chrono::duration<double>(await(DK_DEVICE_ADDED) - start).count());
  }
  rows->push_back(AgainstLimit("dk_watch_start, plugging noticed", Median(seconds), 0.020, "20 ms", "s"));
}

}  // namespace

int main() {
  std::vector<Row> rows;
  {
    const Phone quick({"--quick"});
    CompareLists(quick, &rows);
    CompareTransfers(quick, &rows);
    MeasurePlugging(quick, &rows);
  }
  MeasureMemory(&rows);
  const Phone real({});
  CompareWithDelays(real, &rows);
  if (const auto adbkit = Adbkit::Start(real.phones().port(), kSerial))
    CompareWithAdbkit(real, adbkit.get(), &rows);
  Print(rows);
}
