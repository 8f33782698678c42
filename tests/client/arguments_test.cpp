// What calls refuse before anyone is asked: there is no server here, which each of them would say otherwise.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/client/calls.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

std::string AddressOfNobody() {
  return SpoiltPhone(true).address();
}

class Refused : public testing::Test {
 protected:
  const Client client_{AddressOfNobody()};
  dk_context* const context_ = client_.context();
  dk_device* const device_ = client_.device();
};

bool IgnoreEntry(void*, const dk_entry*) {
  return true;
}
bool IgnoreBytes(void*, const char*, size_t) {
  return true;
}
bool IgnoreMapping(void*, const dk_mapping*) {
  return true;
}
int64_t NoMore(void*, char*, size_t) {
  return 0;
}

struct NullCall {
  const char* name;
  dk_code code;
};

TEST_F(Refused, ANullDeviceOrContext) {
  const char* const words[] = {"ls"};
  const dk_item item = {"/a", "/b"};
  dk_state state;
  dk_entry* entry;
  dk_app* app;
  dk_bytes bytes;
  dk_battery battery;
  dk_screen screen;
  dk_memory memory;
  dk_log* log;
  dk_shell* shell;
  dk_watch* watch;
  dk_device* opened;
  int number = 0;
  const auto on_app = [](void*, const dk_app*) { return true; };
  const auto on_device = [](void*, const dk_device_info*) { return true; };
  const auto on_property = [](void*, const char*, const char*) { return true; };
  const auto on_volume = [](void*, const dk_volume*) { return true; };
  const auto on_record = [](void*, const dk_log_record*) {};
  const auto on_output = [](void*, dk_stream, const char*, size_t) {};
  const auto on_change = [](void*, dk_change, const dk_device_info*) {};
  const NullCall calls[] = {
      {"version", dk_server_version(nullptr, &number, nullptr)},
      {"stop", dk_server_stop(nullptr, nullptr)},
      {"devices", dk_devices(nullptr, on_device, nullptr, nullptr)},
      {"open", dk_device_open(nullptr, "X", &opened, nullptr)},
      {"state", dk_device_state(nullptr, &state, nullptr)},
      {"wait", dk_device_wait(nullptr, DK_STATE_READY, nullptr)},
      {"reboot", dk_device_reboot(nullptr, nullptr, nullptr)},
      {"reconnect", dk_device_reconnect(nullptr, nullptr)},
      {"connect", dk_connect(nullptr, "10.0.0.1", nullptr)},
      {"disconnect", dk_disconnect(nullptr, nullptr, nullptr)},
      {"pair", dk_pair(nullptr, "10.0.0.1:1", "123456", nullptr)},
      {"watch", dk_watch_start(nullptr, on_change, nullptr, &watch, nullptr)},
      {"stat", dk_stat(nullptr, "/a", DK_FOLLOW, &entry, nullptr)},
      {"list", dk_list(nullptr, "/a", IgnoreEntry, nullptr, nullptr)},
      {"walk", dk_walk(nullptr, "/a", nullptr, IgnoreEntry, nullptr, nullptr)},
      {"read", dk_read(nullptr, "/a", 0, 0, IgnoreBytes, nullptr, nullptr)},
      {"make_folder", dk_make_folder(nullptr, "/a/b", true, nullptr)},
      {"remove", dk_remove(nullptr, "/sdcard/b/c", true, nullptr)},
      {"move", dk_move(nullptr, "/a/b", "/a/c", true, nullptr)},
      {"copy", dk_copy(nullptr, "/a/b", "/a/c", true, nullptr)},
      {"chmod", dk_chmod(nullptr, "/a/b", 0644, nullptr)},
      {"push", dk_push(nullptr, &item, 1, nullptr, nullptr, nullptr)},
      {"pull", dk_pull(nullptr, &item, 1, nullptr, nullptr, nullptr)},
      {"write", dk_write(nullptr, "/a", 0644, 0, true, NoMore, nullptr, nullptr)},
      {"run", dk_run(nullptr, words, 1, nullptr, nullptr, nullptr)},
      {"run_script", dk_run_script(nullptr, "ls", nullptr, nullptr, nullptr)},
      {"shell", dk_shell_start(nullptr, nullptr, on_output, nullptr, nullptr, &shell, nullptr)},
      {"shell_write", dk_shell_write(nullptr, "a", 1, nullptr)},
      {"shell_close_input", dk_shell_close_input(nullptr, nullptr)},
      {"shell_resize", dk_shell_resize(nullptr, 25, 80, nullptr)},
      {"apps", dk_apps(nullptr, DK_ALL_APPS, false, on_app, nullptr, nullptr)},
      {"app_get", dk_app_get(nullptr, "a.b", &app, nullptr)},
      {"install", dk_app_install(nullptr, words, 1, nullptr, nullptr)},
      {"uninstall", dk_app_uninstall(nullptr, "a.b", false, nullptr)},
      {"start", dk_app_start(nullptr, "a.b", nullptr, nullptr)},
      {"stop", dk_app_stop(nullptr, "a.b", nullptr)},
      {"clear", dk_app_clear(nullptr, "a.b", nullptr)},
      {"backup", dk_backup(nullptr, "a.b", IgnoreBytes, nullptr, nullptr)},
      {"restore", dk_restore(nullptr, NoMore, nullptr, nullptr)},
      {"dismiss", dk_backup_dismiss(nullptr, nullptr)},
      {"properties", dk_properties(nullptr, on_property, nullptr, nullptr)},
      {"battery", dk_battery_get(nullptr, &battery, nullptr)},
      {"screen", dk_screen_get(nullptr, &screen, nullptr)},
      {"memory", dk_memory_get(nullptr, &memory, nullptr)},
      {"volumes", dk_volumes(nullptr, on_volume, nullptr, nullptr)},
      {"screenshot", dk_screenshot(nullptr, &bytes, nullptr)},
      {"type_text", dk_type_text(nullptr, "a", nullptr)},
      {"press_key", dk_press_key(nullptr, "3", nullptr)},
      {"tap", dk_tap(nullptr, 1, 1, nullptr)},
      {"swipe", dk_swipe(nullptr, 1, 1, 2, 2, 10, nullptr)},
      {"log", dk_log_start(nullptr, nullptr, on_record, nullptr, nullptr, &log, nullptr)},
      {"log_clear", dk_log_clear(nullptr, nullptr)},
      {"forward_add", dk_forward_add(nullptr, "tcp:1", "tcp:2", false, nullptr, nullptr)},
      {"forward_remove", dk_forward_remove(nullptr, nullptr, nullptr)},
      {"forward_list", dk_forward_list(nullptr, IgnoreMapping, nullptr, nullptr)},
      {"reverse_add", dk_reverse_add(nullptr, "tcp:1", "tcp:2", false, nullptr, nullptr)},
      {"reverse_remove", dk_reverse_remove(nullptr, nullptr, nullptr)},
      {"reverse_list", dk_reverse_list(nullptr, IgnoreMapping, nullptr, nullptr)},
  };
  for (const NullCall& call : calls) EXPECT_EQ(call.code, DK_INVALID_ARGUMENT) << call.name;
}

TEST_F(Refused, ANullOutputOrCallback) {
  const dk_item no_source = {nullptr, "/b"}, no_target = {"/a", nullptr};
  const char* const null_word[] = {nullptr};
  const NullCall calls[] = {
      {"version", dk_server_version(context_, nullptr, nullptr)},
      {"devices", dk_devices(context_, nullptr, nullptr, nullptr)},
      {"open", dk_device_open(context_, "X", nullptr, nullptr)},
      {"state", dk_device_state(device_, nullptr, nullptr)},
      {"connect", dk_connect(context_, "", nullptr)},
      {"pair", dk_pair(context_, "10.0.0.1:1", "", nullptr)},
      {"watch", dk_watch_start(context_, nullptr, nullptr, nullptr, nullptr)},
      {"stat", dk_stat(device_, "/a", DK_FOLLOW, nullptr, nullptr)},
      {"list", dk_list(device_, "/a", nullptr, nullptr, nullptr)},
      {"list without a path", dk_list(device_, nullptr, IgnoreEntry, nullptr, nullptr)},
      {"walk", dk_walk(device_, "/a", nullptr, nullptr, nullptr, nullptr)},
      {"read", dk_read(device_, "/a", 0, 0, nullptr, nullptr, nullptr)},
      {"push", dk_push(device_, &no_source, 1, nullptr, nullptr, nullptr)},
      {"push to nowhere", dk_push(device_, &no_target, 1, nullptr, nullptr, nullptr)},
      {"push of nothing", dk_push(device_, nullptr, 1, nullptr, nullptr, nullptr)},
      {"pull", dk_pull(device_, &no_source, 1, nullptr, nullptr, nullptr)},
      {"pull to nowhere", dk_pull(device_, &no_target, 1, nullptr, nullptr, nullptr)},
      {"pull of nothing", dk_pull(device_, nullptr, 1, nullptr, nullptr, nullptr)},
      {"write", dk_write(device_, "/a", 0644, 0, true, nullptr, nullptr, nullptr)},
      {"write before 1970", dk_write(device_, "/a", 0644, -1, true, NoMore, nullptr, nullptr)},
      {"run", dk_run(device_, nullptr, 0, nullptr, nullptr, nullptr)},
      {"run of a null word", dk_run(device_, null_word, 1, nullptr, nullptr, nullptr)},
      {"run_script", dk_run_script(device_, nullptr, nullptr, nullptr, nullptr)},
      {"quote", dk_quote("a", nullptr)},
      {"apps", dk_apps(device_, DK_ALL_APPS, false, nullptr, nullptr, nullptr)},
      {"app_get", dk_app_get(device_, "a.b", nullptr, nullptr)},
      {"install", dk_app_install(device_, nullptr, 0, nullptr, nullptr)},
      {"backup", dk_backup(device_, "a.b", nullptr, nullptr, nullptr)},
      {"restore", dk_restore(device_, nullptr, nullptr, nullptr)},
      {"volumes", dk_volumes(device_, nullptr, nullptr, nullptr)},
      {"screenshot", dk_screenshot(device_, nullptr, nullptr)},
      {"type_text", dk_type_text(device_, nullptr, nullptr)},
      {"log", dk_log_start(device_, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr)},
      {"forward_add", dk_forward_add(device_, nullptr, "tcp:2", false, nullptr, nullptr)},
      {"forward_list", dk_forward_list(device_, nullptr, nullptr, nullptr)},
      {"reverse_add", dk_reverse_add(device_, nullptr, "tcp:2", false, nullptr, nullptr)},
      {"reverse_list", dk_reverse_list(device_, nullptr, nullptr, nullptr)},
      {"reboot into an unknown mode", dk_device_reboot(device_, "fastboot; rm", nullptr)},
      {"wait for an unknown state", dk_device_wait(device_, DK_STATE_UNKNOWN, nullptr)},
      {"cancel", dk_cancel_new(nullptr)},
      {"context", dk_context_new(nullptr, nullptr, nullptr)},
  };
  for (const NullCall& call : calls) EXPECT_EQ(call.code, DK_INVALID_ARGUMENT) << call.name;
}

TEST_F(Refused, AValueOfWhichTheErrorSaysWhatIsWrong) {
  struct Row {
    const char* why;
    std::function<dk_code(const dk_call*)> run;
  };
  const dk_item no_source = {"", "/sdcard/a"}, no_target = {"/sdcard/a", ""};
  const char* const null_word[] = {nullptr};
  dk_device* opened = nullptr;
  dk_shell_options odd_type = DK_SHELL_OPTIONS_INIT;
  odd_type.terminal = true;
  odd_type.terminal_type = "a,b";
  const auto on_output = [](void*, dk_stream, const char*, size_t) {};
  dk_shell* shell = nullptr;
  const Row rows[] = {
      {"the path is empty", [&](auto* call) { return dk_list(device_, "", IgnoreEntry, nullptr, call); }},
      {"the phone's path is not absolute: a",
       [&](auto* call) { return dk_list(device_, "a", IgnoreEntry, nullptr, call); }},
      {"that would remove the phone's system or a whole volume: /sdcard",
       [&](auto* call) { return dk_remove(device_, "/sdcard", true, call); }},
      {"source and target are the same: /sdcard/a",
       [&](auto* call) { return dk_move(device_, "/sdcard/a", "/sdcard/a", false, call); }},
      {"not a mode, for example 0644",
       [&](auto* call) { return dk_chmod(device_, "/sdcard/a", 010000, call); }},
      {"a source is empty",
       [&](auto* call) { return dk_push(device_, &no_source, 1, nullptr, nullptr, call); }},
      {"a target is empty",
       [&](auto* call) { return dk_pull(device_, &no_target, 1, nullptr, nullptr, call); }},
      {"a time that adb cannot carry",
       [&](auto* call) { return dk_write(device_, "/sdcard/a", 0644, -1, true, NoMore, nullptr, call); }},
      {"a time that adb cannot carry",
       [&](auto* call) {
         return dk_write(device_, "/sdcard/a", 0644, std::int64_t{1} << 32, true, NoMore, nullptr, call);
       }},
      {"the serial is empty", [&](auto* call) { return dk_device_open(context_, "", &opened, call); }},
      {"not a state to wait for",
       [&](auto* call) { return dk_device_wait(device_, DK_STATE_UNKNOWN, call); }},
      {"not a mode to reboot into: moon",
       [&](auto* call) { return dk_device_reboot(device_, "moon", call); }},
      {"an address and a code are needed to pair",
       [&](auto* call) { return dk_pair(context_, "10.0.0.1:1", "", call); }},
      {"not the name of a package", [&](auto* call) { return dk_app_stop(device_, "a b", call); }},
      {"no APK to install", [&](auto* call) { return dk_app_install(device_, nullptr, 0, nullptr, call); }},
      {"an APK's path is null",
       [&](auto* call) { return dk_app_install(device_, null_word, 1, nullptr, call); }},
      {"an argument is null",
       [&](auto* call) { return dk_run(device_, null_word, 1, nullptr, nullptr, call); }},
      {"phones take typed text in ASCII alone",
       [&](auto* call) { return dk_type_text(device_, "\xc3\xa4", call); }},
      {"not the name of a key", [&](auto* call) { return dk_press_key(device_, "1; reboot", call); }},
      {"the type of the terminal has a comma or a colon",
       [&](auto* call) {
         return dk_shell_start(device_, &odd_type, on_output, nullptr, nullptr, &shell, call);
       }},
  };
  for (const Row& row : rows) {
    dk_error* error = nullptr;
    dk_call call = DK_CALL_INIT;
    call.error = &error;
    EXPECT_EQ(row.run(&call), DK_INVALID_ARGUMENT) << row.why;
    ASSERT_NE(error, nullptr) << row.why;
    EXPECT_EQ(dk_error_message(error), "Invalid argument: " + std::string(row.why) + ".");
    dk_error_free(error);
  }
}

TEST_F(Refused, AFolderInPlaceOfAnApk) {
  const char* const apks[] = {"/tmp", "/missing.apk"};
  EXPECT_EQ(dk_app_install(device_, apks, 1, nullptr, nullptr), DK_IS_A_DIRECTORY);
  EXPECT_EQ(dk_app_install(device_, apks + 1, 1, nullptr, nullptr), DK_NOT_FOUND);
}

TEST(Install, EndsWhereTheFileChangesWhileItIsRead) {
  const test::TemporaryDirectory directory;
  std::string apk = directory.File("a.apk");
  test::WriteFile(apk, std::string(200'000, 'x'));
  const SpoiltPhone phone(true);
  const Client client(phone.address());
  dk_install_options options = DK_INSTALL_OPTIONS_INIT;
  options.user = &apk;
  options.on_progress = [](void* user, uint64_t done, uint64_t) {
    if (done > 0) test::WriteFile(*static_cast<std::string*>(user), "");
    return true;
  };
  const char* const apks[] = {apk.c_str()};
  EXPECT_EQ(dk_app_install(client.device(), apks, 1, &options, nullptr), DK_CHANGED);
}

TEST(Tokens, AreSetAndReset) {
  dk_cancel* cancel = nullptr;
  ASSERT_EQ(dk_cancel_new(&cancel), DK_OK);
  EXPECT_FALSE(dk_cancel_is_set(cancel));
  dk_cancel_set(cancel);
  dk_cancel_set(cancel);
  EXPECT_TRUE(dk_cancel_is_set(cancel));
  const SpoiltPhone phone(true);
  const Client client(phone.address());
  int version = 0;
  dk_call call = DK_CALL_INIT;
  call.cancel = cancel;
  EXPECT_EQ(dk_server_version(client.context(), &version, &call), DK_CANCELLED);
  dk_cancel_reset(cancel);
  dk_cancel_reset(cancel);
  EXPECT_FALSE(dk_cancel_is_set(cancel));
  EXPECT_EQ(dk_server_version(client.context(), &version, &call), DK_OK);
  dk_cancel_free(cancel);
  for (const auto ignores_null : {dk_cancel_set, dk_cancel_reset, dk_cancel_free}) ignores_null(nullptr);
  EXPECT_FALSE(dk_cancel_is_set(nullptr));
}

// Paths that adb does not carry fail one by one.
class LongPaths : public testing::TestWithParam<bool> {
 protected:
  static bool AppendCode(void* codes, const dk_error* error) {
    static_cast<std::vector<dk_code>*>(codes)->push_back(dk_error_code(error));
    return true;
  }
  dk_transfer_options Options() {
    dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
    options.existing = DK_REPLACE;
    options.keep_going = true;
    options.on_error = AppendCode;
    options.user = &codes_;
    return options;
  }

  const test::TemporaryDirectory directory_;
  const std::string long_path_ = "/sdcard/new" + std::string(1010, 'x');
  std::vector<dk_code> codes_;
};
INSTANTIATE_TEST_SUITE_P(, LongPaths, testing::Bool(), [](const auto& parameter) {
  return std::string(parameter.param ? "modern" : "legacy");
});

TEST_P(LongPaths, KeepNoOtherFileFromBeingTransferred) {
  const SpoiltPhone phone(GetParam());
  const Client client(phone.address());
  const std::string a = directory_.File("a"), back = directory_.File("back"),
                    long_back = directory_.File("long");
  test::WriteFile(a, "content");
  const std::string long_target = long_path_ + "/file";
  const dk_item pushed[] = {{a.c_str(), long_target.c_str()}, {a.c_str(), "/sdcard/new/file"}};
  dk_transfer_options options = Options();
  dk_summary summary;
  EXPECT_EQ(dk_push(client.device(), pushed, 2, &options, &summary, nullptr), DK_PARTLY_DONE);
  EXPECT_EQ(summary.files_sent, 1U);
  const std::string long_source = "/sdcard/" + std::string(1100, 'y');
  const dk_item pulled[] = {{long_source.c_str(), long_back.c_str()}, {"/sdcard/file", back.c_str()}};
  EXPECT_EQ(dk_pull(client.device(), pulled, 2, &options, &summary, nullptr), DK_PARTLY_DONE);
  EXPECT_EQ(summary.files_sent, 1U);
  EXPECT_EQ(codes_, std::vector<dk_code>(2, DK_NAME_TOO_LONG));
  EXPECT_EQ(phone.harm(), "");
}

// An adb that starts no server.
class StartedServer : public testing::Test {
 protected:
  std::string Program(const std::string& script) {
    const std::string path = directory_.File("adb");
    test::WriteFile(path, "#!/bin/sh\n" + script + "\n");
    chmod(path.c_str(), 0755);
    return path;
  }
  static dk_code Version(dk_context* context, int timeout_ms) {
    dk_call call = DK_CALL_INIT;
    call.timeout_ms = timeout_ms;
    int version = 0;
    return dk_server_version(context, &version, &call);
  }
  dk_context* ContextWith(const std::string& adb) {
    dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
    options.server = server_.c_str();
    options.adb_path = adb.c_str();
    dk_context* context = nullptr;
    EXPECT_EQ(dk_context_new(&options, &context, nullptr), DK_OK);
    return context;
  }

  const test::TemporaryDirectory directory_;
  const std::string server_ = AddressOfNobody();
};

TEST_F(StartedServer, IsNotThereWhereAdbIsMissingOrFails) {
  for (const std::string& adb : {directory_.File("missing"), Program("exit 1")}) {
    dk_context* const context = ContextWith(adb);
    EXPECT_EQ(Version(context, 20'000), DK_NO_SERVER) << adb;
    dk_context_free(context);
  }
}

TEST_F(StartedServer, IsWaitedForUntilTheDeadlineOfEachCall) {
  dk_context* const context = ContextWith(Program("exec sleep 600"));
  std::thread first([&] { EXPECT_EQ(Version(context, 1500), DK_TIMED_OUT); });
  std::this_thread::sleep_for(milliseconds(100));
  const auto began = Clock::now();
  EXPECT_EQ(Version(context, 100), DK_TIMED_OUT) << "while another thread starts one";
  EXPECT_LT(Clock::now() - began, milliseconds(1200));
  first.join();
  dk_context_free(context);
}

TEST_F(StartedServer, IsWaitedForWhereTheSystemReapsChildren) {
  const auto usual = signal(SIGCHLD, SIG_IGN);
  dk_context* const failing = ContextWith(Program("exit 1"));
  EXPECT_EQ(Version(failing, 20'000), DK_NO_SERVER);
  dk_context_free(failing);
  dk_context* const silent = ContextWith(Program("exec sleep 600"));
  const auto began = Clock::now();
  EXPECT_EQ(Version(silent, 100), DK_TIMED_OUT);
  EXPECT_LT(Clock::now() - began, milliseconds(10'000));
  dk_context_free(silent);
  signal(SIGCHLD, usual);
}

}  // namespace
}  // namespace darokleim::client_test
