// Calls that end because a callback of them wants no more.
#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/client/calls.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

struct StoppedCall {
  std::string name;
  std::function<dk_code(const Place& place, const dk_call* call)> run;
};

bool NoMoreEntries(void*, const dk_entry*) {
  return false;
}
bool NoMoreBytes(void*, const char*, size_t) {
  return false;
}
bool NoMoreMappings(void*, const dk_mapping*) {
  return false;
}
bool NoMoreErrors(void*, const dk_error*) {
  return false;
}
int64_t NoSource(void*, char*, size_t) {
  return -1;
}
// More than there is room for; the bytes do not exist.
int64_t SourceOfTooMuch(void*, char*, size_t capacity) {
  return static_cast<int64_t>(capacity) + 1;
}

// Gives the backup at once, and then -1 or too much.
struct SpoiltBackup {
  static int64_t Give(void* user, char* buffer, size_t capacity) {
    auto& self = *static_cast<SpoiltBackup*>(user);
    if (self.given) return self.too_much ? static_cast<int64_t>(capacity) + 1 : -1;
    self.given = true;
    return static_cast<int64_t>(BackupOfApp().copy(buffer, capacity));
  }
  bool too_much;
  bool given = false;
};

dk_transfer_options StoppedByProgress() {
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.existing = DK_REPLACE;
  options.on_progress = [](void*, const dk_progress*) { return false; };
  return options;
}

dk_transfer_options StoppedByAnError() {
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.existing = DK_REPLACE;
  options.keep_going = true;
  options.on_error = NoMoreErrors;
  return options;
}

dk_code PushUntil(const Place& place, const std::string& source, const dk_transfer_options& options,
                  const dk_call* call) {
  const std::string missing = place.folder + "/send/" + source;
  const dk_item items[] = {{missing.c_str(), "/sdcard/new/file"}};
  return dk_push(place.device, items, 1, &options, nullptr, call);
}

dk_code PullUntil(const Place& place, const char* source, const dk_transfer_options& options,
                  const dk_call* call) {
  const std::string target = place.folder + "/file";
  const dk_item items[] = {{source, target.c_str()}};
  return dk_pull(place.device, items, 1, &options, nullptr, call);
}

dk_code InstallUntil(const Place& place, size_t count, const dk_call* call) {
  const std::string apk = place.folder + "/send/a";
  const char* const apks[] = {apk.c_str(), apk.c_str()};
  dk_install_options options = DK_INSTALL_OPTIONS_INIT;
  options.on_progress = [](void*, std::uint64_t, std::uint64_t) { return false; };
  return dk_app_install(place.device, apks, count, &options, call);
}

dk_code WriteFrom(const Place& place, dk_source source, const dk_call* call) {
  return dk_write(place.device, "/sdcard/new/file", 0644, 0, true, source, nullptr, call);
}

dk_code RestoreFrom(const Place& place, bool too_much, const dk_call* call) {
  SpoiltBackup backup{too_much};
  return dk_restore(place.device, SpoiltBackup::Give, &backup, call);
}

const std::vector<StoppedCall>& StoppedCalls() {
  static const std::vector<StoppedCall> all = {
      {"Devices",
       [](const Place& place, const dk_call* call) {
         return dk_devices(
             place.context, [](void*, const dk_device_info*) { return false; }, nullptr, call);
       }},
      {"List",
       [](const Place& place, const dk_call* call) {
         return dk_list(place.device, "/sdcard/tree", NoMoreEntries, nullptr, call);
       }},
      {"Walk",
       [](const Place& place, const dk_call* call) {
         return dk_walk(place.device, "/sdcard/tree", nullptr, NoMoreEntries, nullptr, call);
       }},
      {"Read",
       [](const Place& place, const dk_call* call) {
         return dk_read(place.device, "/sdcard/file", 0, 0, NoMoreBytes, nullptr, call);
       }},
      {"ReadAPart",
       [](const Place& place, const dk_call* call) {
         return dk_read(place.device, "/sdcard/file", 2, 4, NoMoreBytes, nullptr, call);
       }},
      {"PushAtABlock", [](const Place& place,
                          const dk_call* call) { return PushUntil(place, "a", StoppedByProgress(), call); }},
      {"PushAtAnError",
       [](const Place& place, const dk_call* call) {
         return PushUntil(place, "missing", StoppedByAnError(), call);
       }},
      {"PullAtABlock",
       [](const Place& place, const dk_call* call) {
         return PullUntil(place, "/sdcard/file", StoppedByProgress(), call);
       }},
      {"PullAtAnError",
       [](const Place& place, const dk_call* call) {
         return PullUntil(place, "/sdcard/missing", StoppedByAnError(), call);
       }},
      {"Write", [](const Place& place, const dk_call* call) { return WriteFrom(place, NoSource, call); }},
      {"WriteOfTooMuch",
       [](const Place& place, const dk_call* call) { return WriteFrom(place, SourceOfTooMuch, call); }},
      {"Run",
       [](const Place& place, const dk_call* call) {
         dk_run_options options = DK_RUN_OPTIONS_INIT;
         options.on_output = [](void*, dk_stream, const char*, size_t) { return false; };
         return dk_run_script(place.device, "echo hello", &options, nullptr, call);
       }},
      {"Apps",
       [](const Place& place, const dk_call* call) {
         return dk_apps(
             place.device, DK_ALL_APPS, true, [](void*, const dk_app*) { return false; }, nullptr, call);
       }},
      {"Install", [](const Place& place, const dk_call* call) { return InstallUntil(place, 1, call); }},
      {"InstallTwo", [](const Place& place, const dk_call* call) { return InstallUntil(place, 2, call); }},
      {"Backup",
       [](const Place& place, const dk_call* call) {
         return dk_backup(place.device, "com.x", NoMoreBytes, nullptr, call);
       }},
      {"RestoreAtOnce",
       [](const Place& place, const dk_call* call) {
         return dk_restore(place.device, NoSource, nullptr, call);
       }},
      {"RestoreOfTooMuch",
       [](const Place& place, const dk_call* call) {
         return dk_restore(place.device, SourceOfTooMuch, nullptr, call);
       }},
      {"RestoreInTheMiddle",
       [](const Place& place, const dk_call* call) { return RestoreFrom(place, false, call); }},
      {"RestoreOfTooMuchInTheMiddle",
       [](const Place& place, const dk_call* call) { return RestoreFrom(place, true, call); }},
      {"Properties",
       [](const Place& place, const dk_call* call) {
         return dk_properties(
             place.device, [](void*, const char*, const char*) { return false; }, nullptr, call);
       }},
      {"Volumes",
       [](const Place& place, const dk_call* call) {
         return dk_volumes(
             place.device, [](void*, const dk_volume*) { return false; }, nullptr, call);
       }},
      {"Forwards",
       [](const Place& place, const dk_call* call) {
         return dk_forward_list(place.device, NoMoreMappings, nullptr, call);
       }},
      {"Reverses",
       [](const Place& place, const dk_call* call) {
         return dk_reverse_list(place.device, NoMoreMappings, nullptr, call);
       }},
  };
  return all;
}

class CallbackStops : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(, CallbackStops, testing::Bool(), [](const auto& parameter) {
  return std::string(parameter.param ? "modern" : "legacy");
});

TEST_P(CallbackStops, EndTheCallAndHarmNothing) {
  const SpoiltPhone phone(GetParam());
  const Client client(phone.address());
  const test::TemporaryDirectory directory;
  const std::string folder = directory.File("place");
  PreparePlace(folder);
  for (const StoppedCall& stopped : StoppedCalls()) {
    SCOPED_TRACE(stopped.name);
    dk_error* error = nullptr;
    dk_call call = DK_CALL_INIT;
    call.error = &error;
    EXPECT_EQ(stopped.run({client.context(), client.device(), folder}, &call), DK_STOPPED)
        << dk_error_message(error);
    dk_error_free(error);
    EXPECT_EQ(HarmAt(folder), "");
    EXPECT_TRUE(test::Eventually([&] { return phone.open_connections() == 0; })) << "a connection is left";
    dk_state state = DK_STATE_UNKNOWN;
    EXPECT_EQ(dk_device_state(client.device(), &state, nullptr), DK_OK) << "the next call works";
  }
  EXPECT_EQ(phone.harm(), "");
}

}  // namespace
}  // namespace darokleim::client_test
