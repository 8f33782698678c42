#include "tests/client/calls.h"

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <stdexcept>

#include "tests/client/spoilt_phone.h"
#include "tests/support/file_content.h"

namespace darokleim::client_test {
namespace {

namespace fs = std::filesystem;

constexpr char kOlder[] = "older";

void Append(void* result, std::string_view text) {
  static_cast<std::string*>(result)->append(text);
}

bool AppendName(void* result, const dk_entry* entry) {
  Append(result, entry->name);
  Append(result, ";");
  return true;
}

bool AppendBytes(void* result, const char* data, size_t size) {
  Append(result, {data, size});
  return true;
}

bool AppendMapping(void* result, const dk_mapping* mapping) {
  for (const char* text : {mapping->from, ">", mapping->to, ";"}) Append(result, text);
  return true;
}

bool AppendApp(void* result, const dk_app* app) {
  Append(result, app->package);
  Append(result, " ");
  Append(result, app->version_name);
  Append(result, app->size == 6 ? " 6;" : ";");
  return true;
}

bool AppendVolume(void* result, const dk_volume* volume) {
  Append(result, volume->path);
  Append(result, volume->total == 4096000 ? ";" : "?");
  return true;
}

ClientCall OfServer(std::string name, std::string expected,
                    std::function<dk_code(const Place&, const dk_call*, std::string*)> run) {
  ClientCall call = {std::move(name), std::move(expected), std::move(run)};
  call.of_server = true;
  return call;
}

std::vector<ClientCall> ServerCalls() {
  std::vector<ClientCall> all;
  all.push_back(OfServer("Version", "41", [](const Place& place, const dk_call* call, std::string* result) {
    int version = 0;
    const dk_code code = dk_server_version(place.context, &version, call);
    if (code == DK_OK) *result = version == 41 ? "41" : "?";
    return code;
  }));
  all.push_back(
      OfServer("Devices", "X device m;", [](const Place& place, const dk_call* call, std::string* result) {
        const auto append = [](void* user, const dk_device_info* device) {
          for (const char* text : {device->serial, " ", device->state_text, " ", device->model, ";"})
            Append(user, text);
          return true;
        };
        return dk_devices(place.context, append, result, call);
      }));
  all.push_back(
      OfServer("OpenTheOnlyDevice", "X", [](const Place& place, const dk_call* call, std::string* result) {
        dk_device* device = nullptr;
        const dk_code code = dk_device_open(place.context, nullptr, &device, call);
        if (code == DK_OK) *result = dk_device_serial(device);
        if ((code == DK_OK) != (device != nullptr)) *result = "an output of a failure";
        dk_device_free(device);
        return code;
      }));
  all.push_back(OfServer("WaitForDevice", "", [](const Place& place, const dk_call* call, std::string*) {
    return dk_device_wait(place.device, DK_STATE_READY, call);
  }));
  all.push_back(OfServer("Connect", "", [](const Place& place, const dk_call* call, std::string*) {
    return dk_connect(place.context, "10.0.0.1:5555", call);
  }));
  all.push_back(OfServer("Disconnect", "", [](const Place& place, const dk_call* call, std::string*) {
    return dk_disconnect(place.context, "10.0.0.1:5555", call);
  }));
  all.push_back(OfServer("Pair", "", [](const Place& place, const dk_call* call, std::string*) {
    return dk_pair(place.context, "10.0.0.1:4000", "123456", call);
  }));
  all.push_back(OfServer("StopServer", "", [](const Place& place, const dk_call* call, std::string*) {
    return dk_server_stop(place.context, call);
  }));
  all.back().ends_server = true;
  all.push_back(OfServer("ForwardList", "tcp:1>tcp:2;",
                         [](const Place& place, const dk_call* call, std::string* result) {
                           return dk_forward_list(place.device, AppendMapping, result, call);
                         }));
  return all;
}

std::vector<ClientCall> DeviceCalls() {
  std::vector<ClientCall> all;
  all.push_back({"State", "ready", [](const Place& place, const dk_call* call, std::string* result) {
                   dk_state state = DK_STATE_UNKNOWN;
                   const dk_code code = dk_device_state(place.device, &state, call);
                   if (code == DK_OK) *result = state == DK_STATE_READY ? "ready" : "?";
                   return code;
                 }});
  all.push_back({"Reboot", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_device_reboot(place.device, nullptr, call);
                 }});
  all.push_back({"Reconnect", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_device_reconnect(place.device, call);
                 }});
  all.push_back({"ForwardAdd", "41000", [](const Place& place, const dk_call* call, std::string* result) {
                   int port = 0;
                   const dk_code code = dk_forward_add(place.device, "tcp:0", "tcp:7", false, &port, call);
                   if (code == DK_OK) *result = port == 41000 ? "41000" : "?";
                   return code;
                 }});
  all.push_back({"ForwardRemove", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_forward_remove(place.device, nullptr, call);
                 }});
  all.push_back({"ReverseAdd", "5000", [](const Place& place, const dk_call* call, std::string* result) {
                   int port = 0;
                   const dk_code code = dk_reverse_add(place.device, "tcp:0", "tcp:7", true, &port, call);
                   if (code == DK_OK) *result = port == 5000 ? "5000" : "?";
                   return code;
                 }});
  all.push_back(
      {"ReverseList", "tcp:1>tcp:2;", [](const Place& place, const dk_call* call, std::string* result) {
         return dk_reverse_list(place.device, AppendMapping, result, call);
       }});
  all.push_back({"ReverseRemove", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_reverse_remove(place.device, nullptr, call);
                 }});
  return all;
}

dk_code Stat(const Place& place, const char* path, dk_follow follow, const dk_call* call,
             std::string* result) {
  dk_entry* entry = nullptr;
  const dk_code code = dk_stat(place.device, path, follow, &entry, call);
  if (code == DK_OK) {
    *result = entry->type == DK_FILE ? "file" : entry->type == DK_LINK ? "link" : "?";
    if (entry->link_target != nullptr) result->append(" ").append(entry->link_target);
  }
  if ((code == DK_OK) != (entry != nullptr)) *result = "an output of a failure";
  dk_entry_free(entry);
  return code;
}

std::vector<ClientCall> FileCalls() {
  std::vector<ClientCall> all;
  all.push_back({"Stat", "file", [](const Place& place, const dk_call* call, std::string* result) {
                   return Stat(place, "/sdcard/file", DK_FOLLOW, call, result);
                 }});
  all.push_back(
      {"StatOfALink", "link /sdcard/file", [](const Place& place, const dk_call* call, std::string* result) {
         return Stat(place, "/sdcard/link", DK_NO_FOLLOW, call, result);
       }});
  all.push_back({"List", "a;folder;", [](const Place& place, const dk_call* call, std::string* result) {
                   return dk_list(place.device, "/sdcard/tree", AppendName, result, call);
                 }});
  all.push_back({"Walk", "a;folder;c;", [](const Place& place, const dk_call* call, std::string* result) {
                   return dk_walk(place.device, "/sdcard/tree", nullptr, AppendName, result, call);
                 }});
  all.push_back({"Read", "abcdef", [](const Place& place, const dk_call* call, std::string* result) {
                   return dk_read(place.device, "/sdcard/file", 0, 0, AppendBytes, result, call);
                 }});
  all.push_back({"ReadAPart", "cdef", [](const Place& place, const dk_call* call, std::string* result) {
                   return dk_read(place.device, "/sdcard/file", 2, 4, AppendBytes, result, call);
                 }});
  all.push_back({"MakeFolder", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_make_folder(place.device, "/sdcard/new", true, call);
                 }});
  all.push_back({"Remove", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_remove(place.device, "/sdcard/tree", true, call);
                 }});
  all.push_back({"Move", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_move(place.device, "/sdcard/file", "/sdcard/new", true, call);
                 }});
  all.push_back({"Copy", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_copy(place.device, "/sdcard/file", "/sdcard/new", true, call);
                 }});
  all.push_back({"ChangeMode", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_chmod(place.device, "/sdcard/file", 0644, call);
                 }});
  return all;
}

dk_transfer_options Replacing() {
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.existing = DK_REPLACE;
  return options;
}

dk_code Push(const Place& place, const dk_call* call, std::string* result) {
  const std::string source = place.folder + "/send";
  const dk_item items[] = {{source.c_str(), "/sdcard/new/tree"}};
  const dk_transfer_options options = Replacing();
  dk_summary summary;
  const dk_code code = dk_push(place.device, items, 1, &options, &summary, call);
  if (code == DK_OK) *result = summary.files_sent == 2 ? "2 files" : "?";
  return code;
}

dk_code Pull(const Place& place, const dk_call* call, std::string* result) {
  const std::string tree = place.folder + "/fetched", file = place.folder + "/file";
  const dk_item items[] = {{"/sdcard/tree", tree.c_str()}, {"/sdcard/file", file.c_str()}};
  const dk_transfer_options options = Replacing();
  dk_summary summary;
  const dk_code code = dk_pull(place.device, items, 2, &options, &summary, call);
  if (code == DK_OK) *result = summary.files_sent == 3 ? "3 files" : "?";
  return code;
}

dk_code Write(const Place& place, const dk_call* call, std::string*) {
  int pieces = 0;
  const auto source = [](void* user, char* buffer, size_t capacity) -> int64_t {
    if ((*static_cast<int*>(user))++ == 3 || capacity < 5) return 0;
    std::copy_n("piece", 5, buffer);
    return 5;
  };
  return dk_write(place.device, "/sdcard/new/file", 0644, 0, true, source, &pieces, call);
}

std::vector<ClientCall> TransferCalls() {
  std::vector<ClientCall> all;
  all.push_back({"Push", "2 files", Push});
  all.back().cleans_up = true;
  all.push_back({"Pull", "3 files", Pull});
  all.push_back({"Write", "", Write});
  all.back().cleans_up = true;
  return all;
}

dk_code TakeOutput(dk_code code, dk_output* output, std::string* result) {
  if (code == DK_OK) result->append(output->out.data, output->out.size);
  if (code != DK_OK && output->out.data != nullptr) *result = "an output of a failure";
  dk_output_free(output);
  return code;
}

std::vector<ClientCall> ShellCalls() {
  std::vector<ClientCall> all;
  all.push_back({"Run", "hello\n", [](const Place& place, const dk_call* call, std::string* result) {
                   const char* const words[] = {"echo", "hello"};
                   dk_output output;
                   return TakeOutput(dk_run(place.device, words, 2, nullptr, &output, call), &output, result);
                 }});
  all.push_back({"RunWithInput", "hello\n", [](const Place& place, const dk_call* call, std::string* result) {
                   dk_run_options options = DK_RUN_OPTIONS_INIT;
                   options.input = "some input";
                   options.input_size = 10;
                   dk_output output;
                   return TakeOutput(
                       dk_run_script(place.device, "grep hello || echo hello", &options, &output, call),
                       &output, result);
                 }});
  all.back().modern_only = true;
  return all;
}

dk_code Install(const Place& place, size_t count, const dk_call* call) {
  const std::string apk = place.folder + "/send/a";
  const char* const apks[] = {apk.c_str(), apk.c_str()};
  return dk_app_install(place.device, apks, count, nullptr, call);
}

std::vector<ClientCall> AppCalls() {
  std::vector<ClientCall> all;
  all.push_back({"Apps", "com.x 1.2 6;", [](const Place& place, const dk_call* call, std::string* result) {
                   return dk_apps(place.device, DK_ALL_APPS, true, AppendApp, result, call);
                 }});
  all.push_back({"App", "com.x 1.2 6;", [](const Place& place, const dk_call* call, std::string* result) {
                   dk_app* app = nullptr;
                   const dk_code code = dk_app_get(place.device, "com.x", &app, call);
                   if (code == DK_OK) AppendApp(result, app);
                   if ((code == DK_OK) != (app != nullptr)) *result = "an output of a failure";
                   dk_app_free(app);
                   return code;
                 }});
  all.push_back({"Install", "", [](const Place& place, const dk_call* call, std::string*) {
                   return Install(place, 1, call);
                 }});
  all.back().cleans_up = true;
  all.push_back({"InstallTwo", "", [](const Place& place, const dk_call* call, std::string*) {
                   return Install(place, 2, call);
                 }});
  all.back().cleans_up = true;
  all.push_back({"Uninstall", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_app_uninstall(place.device, "com.x", false, call);
                 }});
  all.push_back({"StartApp", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_app_start(place.device, "com.x", nullptr, call);
                 }});
  all.push_back({"StopApp", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_app_stop(place.device, "com.x", call);
                 }});
  all.push_back({"ClearApp", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_app_clear(place.device, "com.x", call);
                 }});
  return all;
}

dk_code Backup(const Place& place, const dk_call* call, std::string* result) {
  std::string saved;
  saved.reserve(1024);
  const dk_code code = dk_backup(place.device, "com.x", AppendBytes, &saved, call);
  if (code == DK_OK) *result = saved == BackupOfApp() ? "saved" : "?";
  return code;
}

dk_code Restore(const Place& place, const dk_call* call, std::string*) {
  std::string rest = BackupOfApp();
  const auto source = [](void* user, char* buffer, size_t capacity) -> int64_t {
    auto* const left = static_cast<std::string*>(user);
    constexpr std::size_t kPiece = 100;
    const std::size_t size = std::min({left->size(), capacity, kPiece});
    left->copy(buffer, size);
    left->erase(0, size);
    return static_cast<int64_t>(size);
  };
  return dk_restore(place.device, source, &rest, call);
}

// A call that fails closes the phone's question.
std::vector<ClientCall> BackupCalls() {
  std::vector<ClientCall> all;
  all.push_back({"Backup", "saved", Backup});
  all.back().cleans_up = true;
  all.push_back({"Restore", "", Restore});
  all.back().cleans_up = true;
  all.push_back({"DismissBackup", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_backup_dismiss(place.device, call);
                 }});
  return all;
}

std::vector<ClientCall> FactCalls() {
  std::vector<ClientCall> all;
  all.push_back({"Properties", "a=1;b=2;", [](const Place& place, const dk_call* call, std::string* result) {
                   const auto append = [](void* user, const char* name, const char* value) {
                     for (const char* text : {name, "=", value, ";"}) Append(user, text);
                     return true;
                   };
                   return dk_properties(place.device, append, result, call);
                 }});
  all.push_back({"Battery", "43", [](const Place& place, const dk_call* call, std::string* result) {
                   dk_battery battery = {};
                   const dk_code code = dk_battery_get(place.device, &battery, call);
                   if (code == DK_OK)
                     *result = battery.level == 43 && battery.voltage_mv == 4000 ? "43" : "?";
                   return code;
                 }});
  all.push_back({"Screen", "1080", [](const Place& place, const dk_call* call, std::string* result) {
                   dk_screen screen = {};
                   const dk_code code = dk_screen_get(place.device, &screen, call);
                   if (code == DK_OK) *result = screen.width == 1080 && screen.density == 440 ? "1080" : "?";
                   return code;
                 }});
  all.push_back({"Memory", "1000", [](const Place& place, const dk_call* call, std::string* result) {
                   dk_memory memory = {};
                   const dk_code code = dk_memory_get(place.device, &memory, call);
                   if (code == DK_OK) *result = memory.available == 1000 * 1024 ? "1000" : "?";
                   return code;
                 }});
  all.push_back(
      {"Volumes", "/storage/emulated/0;", [](const Place& place, const dk_call* call, std::string* result) {
         return dk_volumes(place.device, AppendVolume, result, call);
       }});
  all.push_back({"Screenshot", "picture", [](const Place& place, const dk_call* call, std::string* result) {
                   dk_bytes png;
                   const dk_code code = dk_screenshot(place.device, &png, call);
                   if (code == DK_OK) result->append(png.data + 8, png.size - 8);
                   if (code != DK_OK && png.data != nullptr) *result = "an output of a failure";
                   dk_bytes_free(&png);
                   return code;
                 }});
  all.push_back({"TypeText", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_type_text(place.device, "it's 100%sure", call);
                 }});
  all.push_back({"PressKey", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_press_key(place.device, "HOME", call);
                 }});
  all.push_back({"Tap", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_tap(place.device, 1, 2, call);
                 }});
  all.push_back({"Swipe", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_swipe(place.device, 1, 2, 3, 4, 100, call);
                 }});
  all.push_back({"ClearLog", "", [](const Place& place, const dk_call* call, std::string*) {
                   return dk_log_clear(place.device, call);
                 }});
  return all;
}

}  // namespace

Client::Client(const std::string& server) {
  dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
  options.server = server.c_str();
  if (dk_context_new(&options, &context_, nullptr) != DK_OK ||
      dk_device_open(context_, "X", &device_, nullptr) != DK_OK) {
    throw std::runtime_error("no context for " + server);
  }
}

Client::~Client() {
  dk_device_free(device_);
  dk_context_free(context_);
}

std::ostream& operator<<(std::ostream& out, const ClientCall& call) {
  return out << call.name;
}

const std::vector<ClientCall>& ClientCalls() {
  static const std::vector<ClientCall> all = [] {
    std::vector<ClientCall> calls;
    for (const auto family :
         {ServerCalls, DeviceCalls, FileCalls, TransferCalls, ShellCalls, AppCalls, BackupCalls, FactCalls}) {
      for (ClientCall& call : family()) calls.push_back(std::move(call));
    }
    return calls;
  }();
  return all;
}

void PreparePlace(const std::string& folder) {
  fs::remove_all(folder);
  for (const char* made : {"/send/folder", "/fetched/folder"}) fs::create_directories(folder + made);
  for (const char* sent : {"/send/a", "/send/folder/c"}) test::WriteFile(folder + sent, "content");
  for (const char* older : {"/fetched/a", "/fetched/folder/c", "/file"})
    test::WriteFile(folder + older, kOlder);
}

std::string HarmAt(const std::string& folder) {
  std::string harm;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const std::string path = entry.path().native(), content = test::ReadFile(path);
    const bool is_sent = path.compare(folder.size(), 6, "/send/") == 0;
    const bool is_whole = is_sent ? content == "content" : content == kOlder || content == "abcdef";
    const bool is_temporary = entry.path().filename().native().rfind(".darokleim", 0) == 0;
    if (!is_whole || is_temporary) harm += path + ": " + content + "\n";
  }
  return harm;
}

}  // namespace darokleim::client_test
