// Files and folders to the phone and back.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <optional>
#include <thread>
#include <utility>

#include "tests/client/client_on_phone.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;

class Transfers : public ClientOnPhone {
 protected:
  std::string Host(const std::string& name) const { return directory_.File(name); }

  // Every regular file below a folder of this computer, with its content.
  static std::map<std::string, std::string> Content(const std::string& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      if (entry.is_regular_file())
        files[entry.path().native().substr(folder.size() + 1)] = ReadFile(entry.path());
    }
    return files;
  }

  // What no transfer leaves behind, wherever it ended.
  void ExpectNoTemporaryFiles(const std::string& folder) const {
    EXPECT_EQ(Shell("find " + folder + " -name '.darokleim*'"), "");
    for (const auto& entry : fs::recursive_directory_iterator(directory_.path())) {
      EXPECT_NE(entry.path().filename().native().rfind(".darokleim", 0), 0U) << entry.path();
    }
  }

  // The sums are known before the first byte, and hold.
  struct Calls;
  static void ExpectSums(const Calls& calls, std::uint64_t files) {
    ASSERT_TRUE(calls.first);
    EXPECT_EQ(calls.first->bytes_done, 0U);
    EXPECT_EQ(calls.first->files_total, files);
    EXPECT_EQ(calls.first->bytes_total, calls.last.bytes_total);
    EXPECT_EQ(calls.last.files_done, files);
    EXPECT_EQ(calls.last.bytes_done, calls.last.bytes_total);
  }

  struct Calls {
    std::vector<dk_code> errors;
    std::vector<std::string> paths;
    std::optional<dk_progress> first;
    dk_progress last = {};
    std::uint64_t stop_after = ~std::uint64_t{0};
  };
  static dk_transfer_options Options(Calls* calls, dk_existing existing = DK_FAIL_IF_EXISTS,
                                     bool keep_going = true) {
    dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
    options.existing = existing;
    options.keep_going = keep_going;
    options.user = calls;
    options.on_progress = [](void* user, const dk_progress* progress) {
      auto& seen = *static_cast<Calls*>(user);
      if (!seen.first) seen.first = *progress;
      seen.last = *progress;
      return progress->bytes_done < seen.stop_after;
    };
    options.on_error = [](void* user, const dk_error* error) {
      static_cast<Calls*>(user)->errors.push_back(dk_error_code(error));
      static_cast<Calls*>(user)->paths.emplace_back(dk_error_path(error) == nullptr ? ""
                                                                                    : dk_error_path(error));
      return true;
    };
    return options;
  }

  TemporaryDirectory directory_;
};
DAROKLEIM_ON_BOTH_GENERATIONS(Transfers);

TEST_P(Transfers, ATreeGoesThereAndBackWithItsNamesTimesAndEmptyFolders) {
  const std::string source = Host("tree");
  for (const char* name :
       {"my photo.jpg", "it's $HOME;&", "sub/\xff\xfe", "sub/deep/line\nbreak", "sub/-rf"}) {
    fs::create_directories(fs::path(source + "/" + name).parent_path());
    WriteFile(source + "/" + name, std::string("content of ") + name);
  }
  fs::create_directories(source + "/empty/in empty");
  fs::last_write_time(source + "/my photo.jpg", fs::file_time_type::clock::now() - std::chrono::hours(1000));

  Calls calls;
  const dk_summary sent = phone().push({{source, "/sdcard/DCIM/tree"}}, Options(&calls)).value();
  EXPECT_EQ(sent.files_sent, 5U);
  ExpectSums(calls, 5);
  EXPECT_EQ(phone().stat("/sdcard/DCIM/tree/empty/in empty").value().type, DK_DIRECTORY);
  ExpectNoTemporaryFiles("/sdcard/DCIM");

  calls = {};
  const dk_summary fetched = phone().pull({{"/sdcard/DCIM/tree", Host("back")}}, Options(&calls)).value();
  EXPECT_EQ(fetched.files_sent, 5U);
  ExpectSums(calls, 5);
  EXPECT_EQ(Content(Host("back")), Content(source));
  EXPECT_TRUE(fs::is_directory(Host("back/empty/in empty")));
  struct stat before = {}, after = {};
  stat((source + "/my photo.jpg").c_str(), &before);
  stat(Host("back/my photo.jpg").c_str(), &after);
  EXPECT_EQ(before.st_mtime, after.st_mtime);
  ExpectNoTemporaryFiles("/sdcard/DCIM");
}

TEST_P(Transfers, WhatIsThereFailsIsSkippedOrReplaced) {
  WriteFile(Host("a"), "new");
  WriteFile(Host("b"), "new");
  Shell("mkdir -p /sdcard/t/folder; echo old > /sdcard/t/a");
  Calls calls;
  EXPECT_EQ(phone().push({{Host("a"), "/sdcard/t/a"}, {Host("b"), "/sdcard/t/b"}}, Options(&calls)).code(),
            DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>{DK_EXISTS});
  EXPECT_EQ(calls.paths, std::vector<std::string>{"/sdcard/t/a"});
  EXPECT_EQ(Shell("cat /sdcard/t/a"), "old\n");
  EXPECT_EQ(Shell("cat /sdcard/t/b"), "new");
  EXPECT_EQ(
      phone().push({{Host("a"), "/sdcard/t/a"}}, Options(&calls, DK_SKIP_EXISTING)).value().files_skipped,
      1U);
  EXPECT_EQ(phone().push({{Host("a"), "/sdcard/t/a"}}, Options(&calls, DK_REPLACE)).value().files_sent, 1U);
  EXPECT_EQ(Shell("cat /sdcard/t/a"), "new");
  const dk_summary again = phone().push({{Host("a"), "/sdcard/t/a"}}, Options(&calls, DK_SKIP_SAME)).value();
  EXPECT_EQ(again.files_skipped, 1U);
  EXPECT_EQ(again.bytes_sent, 0U);
  calls.errors.clear();
  EXPECT_EQ(phone().push({{Host("a"), "/sdcard/t/folder"}}, Options(&calls, DK_REPLACE)).code(),
            DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>{DK_IS_A_DIRECTORY});

  EXPECT_EQ(phone().write("/sdcard/t/folder", "x", 0644, true).code(), DK_IS_A_DIRECTORY);

  WriteFile(Host("old"), "older content");
  calls.errors.clear();
  EXPECT_EQ(phone().pull({{"/sdcard/t/a", Host("old")}}, Options(&calls)).code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>{DK_EXISTS});
  EXPECT_EQ(ReadFile(Host("old")), "older content");
  EXPECT_EQ(
      phone().pull({{"/sdcard/t/a", Host("old")}}, Options(&calls, DK_SKIP_EXISTING)).value().files_skipped,
      1U);
  EXPECT_TRUE(phone().pull({{"/sdcard/t/a", Host("old")}}, Options(&calls, DK_REPLACE)));
  EXPECT_EQ(ReadFile(Host("old")), "new");
  fs::create_directory(Host("folder"));
  calls.errors.clear();
  EXPECT_EQ(phone().pull({{"/sdcard/t/a", Host("folder")}}, Options(&calls, DK_REPLACE)).code(),
            DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>{DK_IS_A_DIRECTORY});
}

TEST_P(Transfers, OneBadFileKeepsNoOtherUp) {
  std::vector<dk::Item> items;
  for (int i = 0; i < 300; ++i) {
    const std::string name = "f" + std::to_string(i);
    if (i % 100 != 50) WriteFile(Host(name), std::string(1000, static_cast<char>('a' + i % 26)));
    items.push_back({Host(name), "/sdcard/many/" + name});
  }
  Calls calls;
  EXPECT_EQ(phone().push(items, Options(&calls)).code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>(3, DK_NOT_FOUND));
  EXPECT_EQ(Shell("ls /sdcard/many | wc -l"), "297\n");

  calls = {};
  Shell("rm /sdcard/many/f7 /sdcard/many/f200");
  items.clear();
  for (int i = 0; i < 300; ++i) {
    const std::string name = "f" + std::to_string(i);
    if (i % 100 != 50) items.push_back({"/sdcard/many/" + name, Host("back/" + name)});
  }
  EXPECT_EQ(phone().pull(items, Options(&calls)).code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>(2, DK_NOT_FOUND));
  EXPECT_EQ(Content(Host("back")).size(), 295U);
  ExpectNoTemporaryFiles("/sdcard/many");
}

TEST_P(Transfers, AFileThatCannotGetItsNameKeepsNoOtherFromIts) {
  fs::create_directories(Host("tree/sub"));
  for (const char* name : {"a", "it's", "-rf", "sub/a"}) WriteFile(Host("tree/") + name, "new");
  Calls calls;
  auto options = Options(&calls, DK_REPLACE);
  struct Both {
    Calls* calls;
    const dk::Device* phone;
  } both = {&calls, &phone()};
  options.user = &both;
  // In its place is a folder since the targets were looked at.
  options.on_progress = [](void* user, const dk_progress*) {
    static_cast<Both*>(user)->phone->run_script("mkdir -p \"/sdcard/tree/it's/x\"").value();
    return true;
  };
  options.on_error = [](void* user, const dk_error* error) {
    static_cast<Both*>(user)->calls->paths.emplace_back(dk_error_path(error));
    return true;
  };
  EXPECT_EQ(phone().push({{Host("tree"), "/sdcard/tree"}}, options).code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.paths, std::vector<std::string>{"/sdcard/tree/it's"});
  EXPECT_EQ(Shell("cat /sdcard/tree/a /sdcard/tree/-rf /sdcard/tree/sub/a"), "newnewnew");
  EXPECT_EQ(Shell("ls \"/sdcard/tree/it's\""), "x\n");
  ExpectNoTemporaryFiles("/sdcard/tree");
}

TEST_P(Transfers, ACancelInTheMiddleHarmsNoOlderFile) {
  WriteFile(Host("large"), std::string(20 << 20, 'x'));
  Shell("mkdir -p /sdcard/t; echo old > /sdcard/t/large");
  Calls calls;
  calls.stop_after = 1 << 20;
  EXPECT_EQ(phone().push({{Host("large"), "/sdcard/t/large"}}, Options(&calls, DK_REPLACE)).code(),
            DK_STOPPED);
  EXPECT_EQ(Shell("cat /sdcard/t/large"), "old\n");
  ExpectNoTemporaryFiles("/sdcard/t");

  calls.stop_after = ~std::uint64_t{0};
  ASSERT_TRUE(phone().push({{Host("large"), "/sdcard/t/large"}}, Options(&calls, DK_REPLACE)));
  WriteFile(Host("target"), "old");
  calls.stop_after = 1 << 20;
  EXPECT_EQ(phone().pull({{"/sdcard/t/large", Host("target")}}, Options(&calls, DK_REPLACE)).code(),
            DK_STOPPED);
  EXPECT_EQ(ReadFile(Host("target")), "old");

  const dk::Cancel cancel;
  std::thread canceller([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    cancel.set();
  });
  calls.stop_after = ~std::uint64_t{0};
  const auto pulled =
      phone().pull({{"/sdcard/t/large", Host("target")}}, Options(&calls, DK_REPLACE), {cancel, {}});
  canceller.join();
  if (!pulled) {  // unless it was faster
    EXPECT_EQ(pulled.code(), DK_CANCELLED);
    EXPECT_EQ(ReadFile(Host("target")), "old");
  }
  ExpectNoTemporaryFiles("/sdcard/t");
}

TEST_P(Transfers, AnUnpluggedPhoneIsSaidToBeGone) {
  WriteFile(Host("a"), "new");
  phones().Control({kSerial, "unplug"});
  Calls calls;
  EXPECT_EQ(phone().push({{Host("a"), "/sdcard/a"}}, Options(&calls)).code(), DK_NO_DEVICE);
  EXPECT_EQ(phone().pull({{"/sdcard/a", Host("b")}}, Options(&calls)).code(), DK_NO_DEVICE);
  EXPECT_FALSE(fs::exists(Host("b")));
}

TEST_P(Transfers, AFullStorageKeepsTheOlderFile) {
  WriteFile(Host("large"), std::string(4 << 20, 'x'));
  Shell("mkdir -p /sdcard/t; echo old > /sdcard/t/large");
  phones().Control({kSerial, "fault", "full-storage"});
  Calls calls;
  EXPECT_EQ(phone().push({{Host("large"), "/sdcard/t/large"}}, Options(&calls, DK_REPLACE)).code(),
            DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>{DK_NO_SPACE});
  EXPECT_EQ(Shell("cat /sdcard/t/large"), "old\n");
}

TEST_P(Transfers, LinksLeadNowhere) {
  fs::create_directories(Host("tree/folder"));
  WriteFile(Host("outside"), "secret");
  WriteFile(Host("tree/file"), "content");
  fs::create_symlink("file", Host("tree/inside"));
  fs::create_symlink(Host("outside"), Host("tree/out"));
  fs::create_symlink("folder", Host("tree/to folder"));
  WriteFile(Host("tree/zebra"), "after the errors");
  Calls calls;
  EXPECT_EQ(phone().push({{Host("tree"), "/sdcard/tree"}}, Options(&calls)).code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, (std::vector<dk_code>{DK_UNSUPPORTED, DK_UNSUPPORTED}));
  EXPECT_EQ(Shell("cat /sdcard/tree/inside"), "content");
  EXPECT_EQ(phone().stat("/sdcard/tree/out").code(), DK_NOT_FOUND);

  // A link that is named itself is what it leads to.
  Shell("ln -s /sdcard/tree/file /data/local/tmp/link");
  EXPECT_TRUE(phone().pull({{"/data/local/tmp/link", Host("followed")}}, DK_TRANSFER_OPTIONS_INIT));
  EXPECT_EQ(ReadFile(Host("followed")), "content");

  // A link that is here already is not written through.
  fs::create_directories(Host("target"));
  fs::create_directories(Host("elsewhere"));
  fs::create_symlink(Host("elsewhere"), Host("target/folder"));
  Shell("echo x > /sdcard/tree/folder/x");
  calls = {};
  EXPECT_EQ(phone().pull({{"/sdcard/tree", Host("target")}}, Options(&calls)).code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>{DK_UNSAFE_NAME});
  EXPECT_TRUE(fs::is_empty(Host("elsewhere")));
  EXPECT_EQ(ReadFile(Host("target/file")), "content");
}

TEST_P(Transfers, LinksOfThePhoneLeadNowhereElse) {
  Shell(
      "cd /data/local/tmp; mkdir -p tree/folder; echo secret > outside; echo content > tree/file; "
      "ln -s file tree/inside; ln -s /data/local/tmp/outside tree/out; ln -s folder tree/to-folder");
  Calls calls;
  const auto pulled = phone().pull({{"/data/local/tmp/tree", Host("back")}}, Options(&calls));
  EXPECT_EQ(pulled.code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, (std::vector<dk_code>{DK_UNSUPPORTED, DK_UNSUPPORTED}));
  EXPECT_EQ(ReadFile(Host("back/file")), "content\n");
  EXPECT_EQ(ReadFile(Host("back/inside")), "content\n");
  EXPECT_FALSE(fs::is_symlink(Host("back/inside")));
  EXPECT_FALSE(fs::exists(Host("back/out")));
  EXPECT_FALSE(fs::exists(Host("back/to-folder")));
}

TEST_P(Transfers, MemoryIsWrittenAsAFile) {
  const std::string content(200000, 'm');
  ASSERT_TRUE(phone().write("/sdcard/new/from memory", content));
  EXPECT_EQ(phone().read("/sdcard/new/from memory").value(), content);
  EXPECT_EQ(phone().write("/sdcard/new/from memory", "other").code(), DK_EXISTS);
  ASSERT_TRUE(phone().write("/sdcard/new/from memory", "other", 0600, true));
  EXPECT_EQ(Shell("cat '/sdcard/new/from memory'"), "other");
  ExpectNoTemporaryFiles("/sdcard/new");
}

// The phone's shell reaches them from folder to folder.
TEST_P(Transfers, FilesAndFoldersBeyondAdbsLongestPathAreErrorsOfTheirOwn) {
  const std::string name(200, 'd');
  Shell("cd /sdcard; for i in 1 2 3 4 5; do mkdir " + name + " && cd " + name +
        "; done; echo x > ok; echo x > " + std::string(100, 'f') + "; mkdir " + std::string(100, 'g'));
  Calls calls;
  EXPECT_EQ(phone().pull({{"/sdcard/" + name, Host("deep")}}, Options(&calls)).code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>(2, DK_NAME_TOO_LONG));
  EXPECT_EQ(Content(Host("deep")).size(), 1U);
  int found = 0;
  EXPECT_EQ(phone().walk("/sdcard/" + name, {}, [&](const dk_entry&) { return ++found > 0; }).code(),
            DK_PARTLY_DONE);
  EXPECT_EQ(found, 7);
}

TEST_P(Transfers, AFileWhosePathWouldBeTooLongUntilItHasItsNameKeepsNoOtherUp) {
  std::string folder = "/sdcard";
  for (int i = 0; i < 5; ++i) folder += "/" + std::string(200, 'd');
  for (const char* name : {"a", "b", "c"}) WriteFile(Host(name), name);
  Calls calls;
  const std::vector<dk::Item> items = {
      {Host("a"), "/sdcard/a"}, {Host("b"), folder + "/b"}, {Host("c"), "/sdcard/c"}};
  EXPECT_EQ(phone().push(items, Options(&calls)).code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors, std::vector<dk_code>{DK_NAME_TOO_LONG});
  EXPECT_EQ(calls.paths, std::vector<std::string>{folder + "/b"});
  EXPECT_EQ(Shell("cat /sdcard/a /sdcard/c"), "ac");
}

TEST_P(Transfers, AFileThatChangesWhileItIsReadIsNotSent) {
  WriteFile(Host("log"), std::string(200'000, 'x'));
  std::string path = Host("log");
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.user = &path;
  options.on_progress = [](void* user, const dk_progress* progress) {
    const std::string& file = *static_cast<std::string*>(user);
    if (progress->file_done > 0) fs::resize_file(file, fs::file_size(file) + 1);
    return true;
  };
  const auto pushed = phone().push({{path, "/sdcard/t/log"}}, options);
  EXPECT_EQ(pushed.code(), DK_CHANGED);
  EXPECT_TRUE(pushed.error().on_host());
  EXPECT_EQ(phone().stat("/sdcard/t/log").code(), DK_NOT_FOUND);
  ExpectNoTemporaryFiles("/sdcard");
}

TEST_P(Transfers, PermissionsAreKeptWhereAsked) {
  WriteFile(Host("script"), "content");
  fs::permissions(Host("script"), static_cast<fs::perms>(0755));
  Calls calls;
  dk_transfer_options options = Options(&calls);
  ASSERT_TRUE(phone().push({{Host("script"), "/data/local/tmp/usual"}}, options));
  options.keep_modes = true;
  ASSERT_TRUE(phone().push({{Host("script"), "/data/local/tmp/kept"}}, options));
  // Phones give everyone what the owner may.
  EXPECT_EQ(Shell("cd /data/local/tmp; stat -c %a usual kept"), "666\n777\n");
}

TEST_P(Transfers, AFolderThatCannotBeMadeIsAnError) {
  fs::create_directories(Host("tree/empty"));
  Shell("echo x > /sdcard/file");
  Calls calls;
  dk_transfer_options options = Options(&calls);
  EXPECT_EQ(phone().push({{Host("tree"), "/sdcard/file/tree"}}, options).code(), DK_PARTLY_DONE);
  EXPECT_EQ(calls.errors.size(), 1U);
  options.on_error = [](void*, const dk_error*) { return false; };
  EXPECT_EQ(phone().push({{Host("tree"), "/sdcard/file/tree"}}, options).code(), DK_STOPPED);
}

// Not all of them at the end, when a transfer that takes its time may have broken.
TEST_P(Transfers, FilesHaveTheirNamesEarly) {
  constexpr int kFiles = 12;
  for (int i = 0; i < kFiles; ++i) {
    fs::create_directories(Host("tree"));
    WriteFile(Host("tree/") + std::to_string(i), std::string(128 << 10, 'x'));
  }
  struct Look {
    const dk::Device* phone;
    bool is_due = true, found = false;
  } look = {&phone()};
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.user = &look;
  options.on_progress = [](void* user, const dk_progress* progress) {
    auto& seen = *static_cast<Look*>(user);
    if (progress->bytes_done * 10 < progress->bytes_total * 6 || !std::exchange(seen.is_due, false))
      return true;
    seen.found = Eventually(
        [&] { return seen.phone->run_script("ls /sdcard/early/tree").value().out.find("0\n") == 0; });
    return true;
  };
  ASSERT_TRUE(phone().push({{Host("tree"), "/sdcard/early/tree"}}, options));
  EXPECT_TRUE(look.found);
  EXPECT_EQ(Shell("ls /sdcard/early/tree | wc -l"), "12\n");
}

TEST_P(Transfers, LeftOversOfAKilledProcessAreRemoved) {
  fs::create_directories(Host("tree/sub"));
  WriteFile(Host("tree/a"), "a");
  WriteFile(Host("tree/sub/large"), std::string(8 << 20, 'x'));
  // One that ends in the middle, without any clean-up.
  dk_transfer_options ending = DK_TRANSFER_OPTIONS_INIT;
  ending.on_progress = [](void*, const dk_progress* progress) -> bool {
    if (progress->file_done > 100) _exit(0);
    return true;
  };
  static_cast<void>(WaitStatusOfFork([&] {
    static_cast<void>(phone().push({{Host("tree"), "/sdcard/t"}}, ending));
  }));
  ASSERT_TRUE(Eventually([&] { return !Shell("ls -d /sdcard/t/sub/.darokleim*").empty(); }));
  // What another computer is sending is not touched.
  Shell("mkdir /sdcard/t/.darokleim-00000000-1-1");
  // The daemon removes an unfinished file; its temporary folder stays.
  WriteFile(Host("tree/sub/large"), "b");
  Calls calls;
  ASSERT_TRUE(phone().push({{Host("tree"), "/sdcard/t"}}, Options(&calls, DK_REPLACE)));
  EXPECT_EQ(Shell("rmdir /sdcard/t/.darokleim-00000000-1-1"), "");

  Shell("truncate -s 8M /sdcard/t/sub/large");
  static_cast<void>(WaitStatusOfFork([&] {
    static_cast<void>(phone().pull({{"/sdcard/t", Host("back")}}, ending));
  }));
  Shell("rm /sdcard/t/sub/large");
  ASSERT_TRUE(phone().pull({{"/sdcard/t", Host("back")}}, Options(&calls, DK_REPLACE)));
  ExpectNoTemporaryFiles("/sdcard/t");
}

}  // namespace
}  // namespace darokleim::test
