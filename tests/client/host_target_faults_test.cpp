// What goes wrong with this computer's folders while files are fetched into them.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/client/calls.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/file_content.h"
#include "tests/support/own_process.h"
#include "tests/support/temporary_directory.h"

#if defined(__linux__)
#include "tests/support/host_disk.h"
#endif

namespace darokleim::client_test {
namespace {

namespace fs = std::filesystem;

// The phone has the files a and folder/c in /sdcard/tree; each holds this.
constexpr char kContent[] = "abcdef";

class HostTarget : public testing::Test {
 protected:
  std::string File(const std::string& name) const { return directory_.File(name); }

  struct Outcome {
    dk_code code = DK_OK;
    bool on_host = false;
    std::string path;
  };
  // Does something at the first block, when nothing has its name yet; or nothing.
  Outcome Pull(const std::string& source, const std::string& target, dk_existing existing,
               const std::function<void()>& meanwhile) const {
    const dk_item items[] = {{source.c_str(), target.c_str()}};
    struct Once {
      const std::function<void()>& action;
      bool done = false;
    } once = {meanwhile};
    dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
    options.existing = existing;
    options.user = &once;
    options.on_progress = [](void* user, const dk_progress*) {
      auto& first = *static_cast<Once*>(user);
      if (!std::exchange(first.done, true) && first.action) first.action();
      return true;
    };
    dk_error* error = nullptr;
    dk_call call = DK_CALL_INIT;
    call.error = &error;
    Outcome outcome;
    outcome.code = dk_pull(client_.device(), items, 1, &options, nullptr, &call);
    EXPECT_TRUE(once.done || !meanwhile);
    if (outcome.code != DK_OK) {
      outcome.on_host = dk_error_on_host(error);
      if (dk_error_path(error) != nullptr) outcome.path = dk_error_path(error);
    }
    dk_error_free(error);
    return outcome;
  }
  Outcome PullTree(dk_existing existing, const std::function<void()>& meanwhile) const {
    return Pull("/sdcard/tree", File("back"), existing, meanwhile);
  }
  std::vector<std::string> TemporaryFiles() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(directory_.path())) {
      if (entry.path().filename().native().rfind(".darokleim", 0) == 0) found.push_back(entry.path());
    }
    return found;
  }

  const test::TemporaryDirectory directory_;
  // With a port, which also a process of another user reaches.
  const SpoiltPhone phone_{true, {}, test::ScriptedServer::Socket::kPort};
  const Client client_{phone_.address()};
};

TEST_F(HostTarget, ThatIsReplacedByALinkIsNotLeftThroughIt) {
  fs::create_directory(File("elsewhere"));
  const Outcome outcome = PullTree(DK_REPLACE, [&] {
    fs::rename(File("back"), File("moved"));
    fs::create_directory_symlink(File("elsewhere"), File("back"));
  });
  EXPECT_EQ(outcome.code, DK_OK);
  EXPECT_TRUE(fs::is_empty(File("elsewhere")));
  EXPECT_EQ(test::ReadFile(File("moved/a")), kContent) << "the folder that was there at the beginning";
  EXPECT_EQ(test::ReadFile(File("moved/folder/c")), kContent);
}

TEST_F(HostTarget, WithALinkInPlaceOfAFolderBelowIsNotLeftThroughIt) {
  fs::create_directory(File("elsewhere"));
  const Outcome outcome = PullTree(DK_REPLACE, [&] {
    fs::remove_all(File("back/folder"));
    fs::create_directory_symlink(File("elsewhere"), File("back/folder"));
  });
  // The folder was open already, and is removed; another pull finds the link.
  EXPECT_EQ(outcome.code, DK_NOT_FOUND);
  EXPECT_TRUE(outcome.on_host);
  EXPECT_TRUE(fs::is_empty(File("elsewhere")));
  const Outcome again = PullTree(DK_REPLACE, nullptr);
  EXPECT_EQ(again.code, DK_UNSAFE_NAME);
  EXPECT_TRUE(again.on_host);
  EXPECT_EQ(again.path, File("back/folder"));
  EXPECT_TRUE(fs::is_empty(File("elsewhere")));
}

TEST_F(HostTarget, ThatIsRemovedIsNotMadeAgain) {
  const Outcome outcome = PullTree(DK_REPLACE, [&] { fs::remove_all(File("back")); });
  EXPECT_EQ(outcome.code, DK_NOT_FOUND);
  EXPECT_TRUE(outcome.on_host);
  EXPECT_FALSE(fs::exists(File("back")));
}

TEST_F(HostTarget, GetsAFileMeanwhileThatSurvivesUnlessItMayBeReplaced) {
  for (const dk_existing existing : {DK_FAIL_IF_EXISTS, DK_SKIP_EXISTING, DK_REPLACE, DK_SKIP_SAME}) {
    SCOPED_TRACE(existing);
    const bool is_replaced = existing == DK_REPLACE || existing == DK_SKIP_SAME;
    const std::string target = File("file");
    fs::remove(target);
    const Outcome outcome =
        Pull("/sdcard/file", target, existing, [&] { test::WriteFile(target, "of another program"); });
    EXPECT_EQ(outcome.code, is_replaced ? DK_OK : DK_EXISTS);
    EXPECT_EQ(outcome.on_host, !is_replaced);
    EXPECT_EQ(test::ReadFile(target), is_replaced ? kContent : "of another program");
    EXPECT_THAT(TemporaryFiles(), testing::IsEmpty());
  }
}

TEST_F(HostTarget, GetsAFolderMeanwhileThatSurvives) {
  for (const dk_existing existing : {DK_FAIL_IF_EXISTS, DK_REPLACE}) {
    const std::string target = File(std::to_string(existing));
    const Outcome outcome = Pull("/sdcard/file", target, existing, [&] { fs::create_directory(target); });
    EXPECT_EQ(outcome.code, existing == DK_REPLACE ? DK_IS_A_DIRECTORY : DK_EXISTS);
    EXPECT_TRUE(outcome.on_host);
    EXPECT_TRUE(fs::is_empty(target));
    EXPECT_THAT(TemporaryFiles(), testing::IsEmpty());
  }
}

TEST_F(HostTarget, ThatBecomesReadOnlyKeepsWhatIsThere) {
  fs::create_directories(File("back"));
  test::WriteFile(File("back/a"), "older");
  for (const char* folder : {".", "back"}) fs::permissions(File(folder), fs::perms::all);
  test::InProcessOfItsOwn([&] {
    constexpr uid_t kNobody = 65534;  // the superuser may write everywhere
    if (geteuid() == 0) {
      ASSERT_EQ(chown(File("back").c_str(), kNobody, kNobody), 0);
      ASSERT_EQ(setuid(kNobody), 0);
    }
    const Outcome outcome = PullTree(DK_REPLACE, [&] { chmod(File("back").c_str(), 0555); });
    EXPECT_EQ(outcome.code, DK_ACCESS_DENIED);
    EXPECT_TRUE(outcome.on_host);
    EXPECT_EQ(test::ReadFile(File("back/a")), "older");
    chmod(File("back").c_str(), 0755);
  });
  // What could not be removed then goes with the next transfer, when its process has ended.
  EXPECT_EQ(TemporaryFiles().size(), 1U);
  EXPECT_EQ(PullTree(DK_REPLACE, nullptr).code, DK_OK);
  EXPECT_THAT(TemporaryFiles(), testing::IsEmpty());
  EXPECT_EQ(test::ReadFile(File("back/a")), kContent);
}

// --- The disk

#if defined(__linux__)
// A disk without any space left, in a process of its own.
class FullHostDisk : public HostTarget {
 protected:
  void OnFullDisk(const std::function<void(const std::string& disk)>& use) const {
    const std::string disk = File("disk");
    fs::create_directory(disk);
    test::InProcessOfItsOwn([&] {
      ASSERT_TRUE(test::MountDisk(disk, 0));
      test::WriteFile(disk + "/older", "older");
      std::ofstream(disk + "/ballast") << std::string(2 << 20, 'x');
      use(disk);
      EXPECT_EQ(test::ReadFile(disk + "/older"), "older");
      for (const auto& entry : fs::directory_iterator(disk))
        EXPECT_NE(entry.path().filename().native().rfind(".darokleim", 0), 0U) << entry.path();
    });
  }
};

TEST_F(FullHostDisk, TakesNoApk) {
  OnFullDisk([&](const std::string& disk) {
    dk_app* app = nullptr;
    ASSERT_EQ(dk_app_get(client_.device(), "com.x", &app, nullptr), DK_OK);
    const std::string apk = app->apk_paths[0];
    dk_app_free(app);
    for (const char* name : {"/new.apk", "/older"}) {
      const Outcome outcome = Pull(apk, disk + name, DK_REPLACE, nullptr);
      EXPECT_EQ(outcome.code, DK_NO_SPACE);
      EXPECT_TRUE(outcome.on_host);
    }
    EXPECT_FALSE(fs::exists(disk + "/new.apk"));
    fs::remove(disk + "/ballast");
    EXPECT_EQ(Pull(apk, disk + "/new.apk", DK_REPLACE, nullptr).code, DK_OK);
    EXPECT_EQ(test::ReadFile(disk + "/new.apk"), kContent);
  });
}

// The caller writes it, and says that it does not want more.
TEST_F(FullHostDisk, EndsABackup) {
  OnFullDisk([&](const std::string& disk) {
    FILE* const file = std::fopen((disk + "/backup").c_str(), "w");
    ASSERT_NE(file, nullptr);
    std::setvbuf(file, nullptr, _IONBF, 0);
    const auto save = [](void* user, const char* data, size_t size) {
      return std::fwrite(data, 1, size, static_cast<FILE*>(user)) == size;
    };
    EXPECT_EQ(dk_backup(client_.device(), "com.x", save, file, nullptr), DK_STOPPED);
    std::fclose(file);
    dk_state state = DK_STATE_UNKNOWN;
    EXPECT_EQ(dk_device_state(client_.device(), &state, nullptr), DK_OK);
  });
}

TEST_F(FullHostDisk, IsNotNeededForAScreenshot) {
  OnFullDisk([&](const std::string& disk) {
    fs::current_path(disk);
    setenv("TMPDIR", disk.c_str(), 1);
    dk_bytes png;
    EXPECT_EQ(dk_screenshot(client_.device(), &png, nullptr), DK_OK);
    EXPECT_GT(png.size, 0U);
    dk_bytes_free(&png);
  });
}
#endif

}  // namespace
}  // namespace darokleim::client_test
