// What goes wrong between the client and a phone, on every part of the way.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <thread>

#include "tests/client/client_on_phone.h"
#include "tests/client/recorder.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/own_process.h"
#include "tests/support/temporary_directory.h"

#if defined(__linux__)
#include "tests/support/host_disk.h"
#endif

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A call that fails must not need longer than a busy machine may take for one.
constexpr std::chrono::seconds kNoHang{30};

class ClientFaults : public ClientOnPhone {
 protected:
  std::string Host(const std::string& name) const { return directory_.File(name); }

  // Sparse: such a file takes no room on the phone.
  std::string LargeFile(const std::string& size) const {
    Shell("truncate -s " + size + " /sdcard/large");
    return "/sdcard/large";
  }
  static dk_transfer_options Replacing() {
    dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
    options.existing = DK_REPLACE;
    return options;
  }
  // Fetches a file over an older one, which has to survive a failure.
  dk_code Pull(const std::string& file, const std::string& target,
               dk_transfer_options options = Replacing()) const {
    WriteFile(target, "older");
    const auto began = steady_clock::now();
    const auto pulled = phone().pull({{file, target}}, options);
    EXPECT_LT(steady_clock::now() - began, kNoHang);
    if (!pulled) {
      EXPECT_EQ(ReadFile(target), "older") << pulled.error().message();
    }
    ExpectNoTemporaryFiles();
    return pulled.code();
  }
  void ExpectNoTemporaryFiles() const {
    for (const auto& entry : fs::recursive_directory_iterator(directory_.path()))
      EXPECT_NE(entry.path().filename().native().rfind(".darokleim", 0), 0U) << entry.path();
  }
  void ExpectItWorks() const {
    const auto echoed = phone().run({"echo", "hello"});
    ASSERT_TRUE(echoed) << echoed.error().message();
  }
  // Does something when the transfer has begun.
  struct Begun {
    std::function<void()> action;
    bool done = false;
  };
  static dk_transfer_options WhenItHasBegun(Begun* begun) {
    dk_transfer_options options = Replacing();
    options.user = begun;
    options.on_progress = [](void* user, const dk_progress* progress) {
      auto& first = *static_cast<Begun*>(user);
      if (progress->bytes_done > 0 && !std::exchange(first.done, true)) first.action();
      return true;
    };
    return options;
  }

  const TemporaryDirectory directory_;
};
DAROKLEIM_ON_BOTH_GENERATIONS(ClientFaults);

TEST_P(ClientFaults, ThePhoneIsUnpluggedInMidTransfer) {
  Begun begun{[this] { phones().Control({kSerial, "unplug"}); }};
  EXPECT_EQ(Pull(LargeFile("2G"), Host("back"), WhenItHasBegun(&begun)), DK_CONNECTION_LOST);
  EXPECT_EQ(phone().run({"true"}).code(), DK_NO_DEVICE);
  phones().Control({kSerial, "plug"});
  ExpectItWorks();

  WriteFile(Host("large"), std::string(64 << 20, 'x'));
  Shell("rm /sdcard/large; echo older > /sdcard/file");
  begun.done = false;
  const auto pushed = phone().push({{Host("large"), "/sdcard/file"}}, WhenItHasBegun(&begun));
  EXPECT_THAT(pushed.code(), ::testing::AnyOf(DK_CONNECTION_LOST, DK_NO_DEVICE));
  phones().Control({kSerial, "plug"});
  EXPECT_EQ(Shell("cat /sdcard/file"), "older\n");
  ASSERT_TRUE(phone().push({{Host("large"), "/sdcard/file"}}, Replacing()));
  EXPECT_EQ(Shell("stat -c %s /sdcard/file"), "67108864\n");
}

TEST_P(ClientFaults, AFolderMadeMeanwhileInPlaceOfAFileIsTheOnlyFailure) {
  std::vector<dk_item> items;
  const std::string sources[] = {Host("a"), Host("b"), Host("c")};
  std::string targets[] = {"/sdcard/t/a", "/sdcard/t/b", "/sdcard/t/c"};
  for (int i = 0; i < 3; ++i) {
    WriteFile(sources[i], "content");
    items.push_back({sources[i].c_str(), targets[i].c_str()});
  }
  struct Failures : Begun {
    std::vector<std::string> paths;
  } failures;
  failures.action = [this] { Shell("mkdir -p /sdcard/t/b/folder"); };
  dk_transfer_options options = WhenItHasBegun(&failures);
  options.keep_going = true;
  options.on_error = [](void* user, const dk_error* error) {
    static_cast<Failures*>(static_cast<Begun*>(user))->paths.emplace_back(dk_error_path(error));
    return true;
  };
  dk_summary summary;
  EXPECT_EQ(dk_push(phone().get(), items.data(), items.size(), &options, &summary, nullptr), DK_PARTLY_DONE);
  EXPECT_EQ(summary.files_sent, 2U);
  EXPECT_EQ(summary.files_failed, 1U);
  EXPECT_EQ(failures.paths, std::vector<std::string>{"/sdcard/t/b"});
  EXPECT_EQ(Shell("cd /sdcard/t; ls -a | grep darokleim; cat a c"), "contentcontent");

  // Where the first failure ends the transfer, too, what is there is counted.
  for (std::string& target : targets) target += "2";
  for (std::size_t i = 0; i < items.size(); ++i) items[i].target = targets[i].c_str();
  failures = {};
  failures.action = [this] { Shell("mkdir -p /sdcard/t/b2/folder"); };
  options.keep_going = false;
  EXPECT_NE(dk_push(phone().get(), items.data(), items.size(), &options, &summary, nullptr), DK_OK);
  EXPECT_EQ(summary.files_sent, 2U);
  EXPECT_EQ(summary.files_failed, 1U);
}

TEST_P(ClientFaults, WhatCouldNotBeRemovedGoesWithTheNextTransfer) {
  fs::create_directories(Host("tree/sub"));
  WriteFile(Host("tree/sub/large"), std::string(4 << 20, 'x'));
  const auto temporary = [this] { return Shell("ls -a /sdcard/tree/sub | grep darokleim"); };
  Begun begun{[&] {
    ASSERT_TRUE(Eventually([&] { return !temporary().empty(); }));
    phones().Control({kSerial, "unplug"});
  }};
  EXPECT_FALSE(phone().push({{Host("tree"), "/sdcard/tree"}}, WhenItHasBegun(&begun)));
  phones().Control({kSerial, "plug"});
  ASSERT_NE(temporary(), "");

  // They are not part of what is in the folder.
  fs::create_directories(Host("back"));
  ASSERT_TRUE(phone().pull({{"/sdcard/tree", Host("back/tree")}}, Replacing()));
  EXPECT_TRUE(fs::is_empty(Host("back/tree/sub")));

  // One that is under way is nobody's to remove.
  WriteFile(Host("other"), std::string(4 << 20, 'y'));
  Begun meanwhile{[this] { ASSERT_TRUE(phone().push({{Host("tree"), "/sdcard/tree"}}, Replacing())); }};
  const auto pushed = phone().push({{Host("other"), "/sdcard/tree/sub/other"}}, WhenItHasBegun(&meanwhile));
  EXPECT_TRUE(pushed) << pushed.error().message();
  EXPECT_EQ(temporary(), "");
  EXPECT_EQ(Shell("cat /sdcard/tree/sub/large /sdcard/tree/sub/other | wc -c"), "8388608\n");
}

TEST_P(ClientFaults, ThePhoneVanishesAndComesBack) {
  for (int i = 0; i < 3; ++i) {
    phones().Control({kSerial, "unplug"});
    EXPECT_EQ(phone().list("/sdcard").code(), DK_NO_DEVICE);
    EXPECT_EQ(phone().state().code(), DK_NO_DEVICE);
    phones().Control({kSerial, "plug"});
    EXPECT_TRUE(phone().list("/sdcard"));
  }
}

TEST_P(ClientFaults, ThePhoneIsNotReady) {
  phones().Control({kSerial, "state", "unauthorized"});
  EXPECT_EQ(phone().list("/sdcard").code(), DK_DEVICE_UNAUTHORIZED);
  EXPECT_EQ(phone().pull({{"/sdcard", Host("back")}}, Replacing()).code(), DK_DEVICE_UNAUTHORIZED);
  phones().Control({kSerial, "state", "offline"});
  EXPECT_EQ(phone().run({"true"}).code(), DK_DEVICE_OFFLINE);
  phones().Control({kSerial, "state", "recovery"});
  EXPECT_EQ(phone().state().value(), DK_STATE_RECOVERY);
  EXPECT_EQ(client().open().code(), DK_NO_DEVICE) << "none is ready";
  phones().Control({kSerial, "state", "device"});
  ExpectItWorks();
}

TEST_P(ClientFaults, TheConnectionBreaksInMidCommand) {
  const std::string file = LargeFile("4M");
  Shell("mkdir /sdcard/many; cd /sdcard/many; for i in $(seq 1000); do : > a_file_with_a_long_name_$i; done");
  phones().Control({kSerial, "fault", "drop-after=40K"});
  EXPECT_EQ(Pull(file, Host("back")), DK_CONNECTION_LOST);
  EXPECT_EQ(phone().list("/sdcard/many").code(), DK_CONNECTION_LOST);
  EXPECT_EQ(phone().run({"ls", "-l", "/sdcard/many"}).code(), DK_CONNECTION_LOST) << "also of the old shell";
  phones().Control({kSerial, "clear", "drop-after"});
  EXPECT_EQ(Pull(file, Host("back")), DK_OK);
  EXPECT_EQ(phone().list("/sdcard/many").value().size(), 1000U);
}

TEST_P(ClientFaults, ThePhoneHangs) {
  phones().Control({kSerial, "fault", "slow=60"});
  const auto began = steady_clock::now();
  EXPECT_EQ(phone().run({"true"}, {{}, milliseconds(200)}).code(), DK_TIMED_OUT);
  EXPECT_EQ(phone().properties({{}, milliseconds(200)}).code(), DK_TIMED_OUT);
  const dk::Cancel cancel;
  std::thread user([&] {
    std::this_thread::sleep_for(milliseconds(100));
    cancel.set();
  });
  EXPECT_EQ(phone().run({"true"}, {cancel, {}}).code(), DK_CANCELLED);
  user.join();
  EXPECT_LT(steady_clock::now() - began, kNoHang);
  phones().Control({kSerial, "clear", "slow"});
  ExpectItWorks();
}

TEST_P(ClientFaults, ASlowPhoneHoldsNoOtherUp) {
  Start({std::string(kSerial) + ",android=" + GetParam(), "SLOW1,fault=slow=20,android=" + GetParam()});
  const dk::Device slow = client().open("SLOW1").value();
  const dk::Cancel cancel;
  std::vector<std::thread> threads;
  for (int i = 0; i < 32; ++i)
    threads.emplace_back([&] { EXPECT_EQ(slow.run({"true"}, {cancel, {}}).code(), DK_CANCELLED); });
  const auto began = steady_clock::now();
  std::vector<std::thread> quick;
  for (int i = 0; i < 32; ++i) {
    quick.emplace_back([&] {
      for (int call = 0; call < 4; ++call) ExpectItWorks();
    });
  }
  for (std::thread& thread : quick) thread.join();
  EXPECT_LT(steady_clock::now() - began, std::chrono::seconds(18)) << "none has waited for the slow phone";
  cancel.set();
  for (std::thread& thread : threads) thread.join();
}

TEST_P(ClientFaults, TheServerIsKilledInMidCall) {
  phones().Control({kSerial, "fault", "slow=20"});
  std::thread killer([this] {
    std::this_thread::sleep_for(milliseconds(300));
    phones().process().Signal(SIGKILL);
  });
  const auto began = steady_clock::now();
  EXPECT_EQ(phone().run({"true"}).code(), DK_CONNECTION_LOST);
  EXPECT_LT(steady_clock::now() - began, std::chrono::seconds(15)) << "the phone would have answered";
  killer.join();
  // Its sockets close one after the other: the one that listens may still take a connection and reset it.
  siginfo_t ended{};
  ASSERT_EQ(waitid(P_PID, static_cast<id_t>(phones().process().pid()), &ended, WEXITED | WNOWAIT), 0);
  EXPECT_EQ(phone().run({"true"}).code(), DK_NO_SERVER);
}

TEST_P(ClientFaults, TheStorageIsFull) {
  WriteFile(Host("large"), std::string(4 << 20, 'x'));
  Shell("echo older > /sdcard/file");
  phones().Control({kSerial, "fault", "full-storage"});
  EXPECT_EQ(phone().push({{Host("large"), "/sdcard/file"}}, Replacing()).code(), DK_NO_SPACE);
  EXPECT_EQ(phone().write("/sdcard/file", std::string(4 << 20, 'x'), 0644, true).code(), DK_NO_SPACE);
  EXPECT_EQ(Shell("cat /sdcard/file"), "older\n");
  phones().Control({kSerial, "clear", "full-storage"});
  EXPECT_TRUE(phone().push({{Host("large"), "/sdcard/file"}}, Replacing()));
}

TEST_P(ClientFaults, ThePhoneLacksACommand) {
  for (const char* fault : {"no-find", "no-stat"}) phones().Control({kSerial, "fault", fault});
  Shell("mkdir -p /sdcard/tree/sub; echo x > /sdcard/tree/sub/file");
  int found = 0;
  EXPECT_TRUE(phone().walk("/sdcard/tree", {}, [&](const dk_entry&) { return ++found > 0; }));
  EXPECT_EQ(found, 2);
  ASSERT_FALSE(phone().volumes().value().empty());
  EXPECT_GT(phone().volumes().value().front().total, 0U);
}

TEST_P(ClientFaults, ThePhoneIsUnpluggedDuringAnInstallation) {
  // Two, since a phone installs one APK whose last byte arrived before it was unplugged.
  const std::string data = DAROKLEIM_PHONE_TEST_DATA;
  const std::vector<std::string> apks = {data + "/notes-1.apk", data + "/notes-1-split.apk"};
  Begun unplug{[this] { phones().Control({kSerial, "unplug"}); }};
  dk_install_options options = DK_INSTALL_OPTIONS_INIT;
  options.user = &unplug;
  options.on_progress = [](void* user, std::uint64_t, std::uint64_t) {
    auto& once = *static_cast<Begun*>(user);
    if (!std::exchange(once.done, true)) once.action();
    return true;
  };
  EXPECT_THAT(phone().install(apks, options).code(), ::testing::AnyOf(DK_CONNECTION_LOST, DK_NO_DEVICE));
  phones().Control({kSerial, "plug"});
  EXPECT_EQ(phone().app("com.example.notes").code(), DK_NO_PACKAGE);
  EXPECT_TRUE(phone().install(apks, DK_INSTALL_OPTIONS_INIT));
}

// Newer phones get no file.
class OldPhoneFaults : public ClientFaults {};
INSTANTIATE_TEST_SUITE_P(, OldPhoneFaults, ::testing::Values("legacy"), GenerationName);

TEST_P(OldPhoneFaults, ThePhoneIsUnpluggedBeforeTheSentApkCouldBeRemoved) {
  const std::string folder = phones().FilesOf(kSerial) + "/data/local/tmp";
  const std::string apk = std::string(DAROKLEIM_PHONE_TEST_DATA) + "/notes-1.apk";
  const auto has_whole_apk = [&] {
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (fs::file_size(entry) == fs::file_size(apk)) return true;
    }
    return false;
  };
  // The package manager is asked a second after the APK was sent.
  Begun slow{[this] { phones().Control({kSerial, "fault", "slow=1"}); }};
  dk_install_options options = DK_INSTALL_OPTIONS_INIT;
  options.user = &slow;
  options.on_progress = [](void* user, std::uint64_t, std::uint64_t) {
    auto& once = *static_cast<Begun*>(user);
    if (!std::exchange(once.done, true)) once.action();
    return true;
  };
  std::thread installing([&] { EXPECT_FALSE(phone().install({apk}, options)); });
  const bool is_sent = Eventually(has_whole_apk);
  phones().Control({kSerial, "unplug"});
  installing.join();
  phones().Control({kSerial, "clear", "slow"});
  phones().Control({kSerial, "plug"});
  ASSERT_TRUE(is_sent);
  EXPECT_TRUE(has_whole_apk());
  EXPECT_TRUE(phone().install({apk}, DK_INSTALL_OPTIONS_INIT));
  EXPECT_TRUE(fs::is_empty(folder));
}

TEST_P(ClientFaults, AnInstallationIsRefused) {
  phones().Control({kSerial, "fault", "install-failure=INSTALL_FAILED_INSUFFICIENT_STORAGE"});
  const auto installed =
      phone().install({std::string(DAROKLEIM_PHONE_TEST_DATA) + "/notes-1.apk"}, DK_INSTALL_OPTIONS_INIT);
  EXPECT_EQ(installed.code(), DK_INSTALL_FAILED);
  EXPECT_EQ(installed.error().reason(), "INSTALL_FAILED_INSUFFICIENT_STORAGE");
  EXPECT_EQ(Shell("ls -a /data/local/tmp | grep darokleim"), "");
}

TEST_P(ClientFaults, ThePackageManagerRefusesTheUser) {
  phones().Control({kSerial, "fault", "user-restricted=10"});
  const auto apps = phone().apps();
  if (!apps) {
    EXPECT_EQ(apps.code(), DK_COMMAND_FAILED);
    EXPECT_NE(apps.error().words(), "");
  }
  phones().Control({kSerial, "clear", "user-restricted"});
  EXPECT_FALSE(phone().apps().value().empty());
}

TEST_P(ClientFaults, ThePhoneIsUnpluggedWhileItsLogIsFollowed) {
  std::mutex mutex;
  std::vector<dk_code> ends;
  dk_log_options options = DK_LOG_OPTIONS_INIT;
  dk::Log log = phone()
                    .log(
                        options, [](const dk_log_record&) {},
                        [&](dk_code code, const dk::Error*) {
                          const std::lock_guard lock(mutex);
                          ends.push_back(code);
                        })
                    .value();
  phones().Control({kSerial, "unplug"});
  EXPECT_TRUE(Eventually([&] {
    const std::lock_guard lock(mutex);
    return !ends.empty();
  }));
  log.stop();
  // Before Android 7 the shell does not mark its end: the log has ended, and why is not known.
  EXPECT_EQ(ends, std::vector<dk_code>{legacy() ? DK_COMMAND_FAILED : DK_CONNECTION_LOST});
}

// --- This computer

TEST_P(ClientFaults, TheFolderIsRemovedInMidTransfer) {
  for (int i = 0; i < 20; ++i)
    Shell("mkdir -p /sdcard/tree; truncate -s 2M /sdcard/tree/" + std::to_string(i));
  Begun begun{[this] { fs::remove_all(Host("back")); }};
  dk_transfer_options options = WhenItHasBegun(&begun);
  const auto pulled = phone().pull({{"/sdcard/tree", Host("back")}}, options);
  EXPECT_EQ(pulled.code(), DK_NOT_FOUND);
  EXPECT_TRUE(pulled.error().on_host());

  fs::create_directory(Host("send"));
  for (int i = 0; i < 20; ++i) WriteFile(Host("send/") + std::to_string(i), std::string(1 << 20, 'x'));
  begun = {[this] { fs::remove_all(Host("send")); }};
  const auto pushed = phone().push({{Host("send"), "/sdcard/there"}}, options);
  EXPECT_EQ(pushed.code(), DK_NOT_FOUND);
  EXPECT_TRUE(pushed.error().on_host());
  EXPECT_EQ(Shell("find /sdcard/there -name '.darokleim*'"), "");
  ExpectItWorks();
}

TEST_P(ClientFaults, TheHostIsOutOfDescriptors) {
  const std::string file = LargeFile("64K");
  WriteFile(Host("sent"), "content");
  InProcessOfItsOwn([&] {
    std::vector<base::UniqueFd> taken;
    for (base::UniqueFd more(dup(0)); more.valid(); more.Reset(dup(0))) {
      taken.push_back(std::move(more));
      if (taken.size() == 64) break;
    }
    struct rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlim_t before = limit.rlim_cur;
    const auto highest = static_cast<rlim_t>(taken.back().get()) + 1;
    for (rlim_t spare = 0; spare < 6; ++spare) {
      limit.rlim_cur = highest + spare;
      setrlimit(RLIMIT_NOFILE, &limit);
      const dk_code listed = phone().list("/sdcard").code();
      const dk_code pulled = phone().pull({{file, Host("back")}}, Replacing()).code();
      const dk_code pushed = phone().push({{Host("sent"), "/sdcard/sent"}}, Replacing()).code();
      const dk_code watched = client().watch([](dk_change, const dk::DeviceInfo*) {}).code();
      const dk_code logged = phone().log(DK_LOG_OPTIONS_INIT, [](const dk_log_record&) {}).code();
      dk::ShellOptions terminal;
      terminal.terminal = true;
      const dk_code typed = phone().shell(terminal, [](dk_stream, std::string_view) {}).code();
      limit.rlim_cur = before;
      setrlimit(RLIMIT_NOFILE, &limit);
      for (const dk_code code : {listed, pulled, pushed, watched, logged, typed}) {
        EXPECT_TRUE(code == DK_SYSTEM_REFUSED || (code == DK_OK && spare > 0))
            << spare << ' ' << dk_code_name(code);
      }
    }
    ExpectItWorks();
    EXPECT_TRUE(phone().pull({{file, Host("back")}}, Replacing()));
    ExpectNoTemporaryFiles();
  });
}

#if defined(__linux__)
TEST_P(ClientFaults, TheHostsDiskIsFull) {
  const std::string file = LargeFile("4M");
  const std::string disk = Host("disk");
  fs::create_directory(disk);
  InProcessOfItsOwn([&] {
    ASSERT_TRUE(MountDisk(disk, 0)) << std::strerror(errno);
    EXPECT_EQ(Pull(file, disk + "/back"), DK_NO_SPACE);
    Shell("truncate -s 4K /sdcard/large");
    EXPECT_EQ(Pull(file, disk + "/back"), DK_OK) << "there is space again";
  });
}

TEST_P(ClientFaults, TheHostsDiskIsReadOnly) {
  const std::string file = LargeFile("4K");
  const std::string disk = Host("disk");
  fs::create_directory(disk);
  InProcessOfItsOwn([&] {
    ASSERT_TRUE(MountDisk(disk, MS_RDONLY)) << std::strerror(errno);
    const auto pulled = phone().pull({{file, disk + "/back"}}, Replacing());
    EXPECT_EQ(pulled.code(), DK_READ_ONLY);
    EXPECT_FALSE(fs::exists(disk + "/back"));
  });
}
#endif

}  // namespace
}  // namespace darokleim::test
