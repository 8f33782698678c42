// Calls of the client, from the request to the server to their outcome, with a server that says any bytes.
//
// The first byte of an input chooses the call, the second how the server speaks (the bits below); the rest is what it says to
// one request after the other, with the bytes fe ed between two of them.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <iterator>
#include <mutex>
#include <thread>

#include "darokleim/client.h"
#include "tests/fuzz/fuzz.h"
#include "tests/support/file_content.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_directory.h"

namespace {

using namespace darokleim;
using sdk::Require;

constexpr unsigned kOldPhone = 1;  // no features
constexpr unsigned kRawShell =
    2;  // a piece is all that a command gives; otherwise its output, with exit status 0
constexpr unsigned kRawServer = 4;    // pieces also answer what only the server is asked, OKAY and all
constexpr unsigned kWithRefusal = 8;  // the service after the last piece is refused, not empty
// The fuzzer itself reports a hang before that.
constexpr int kLongerThanABusyMachine = 60;  // seconds
constexpr std::string_view kBetweenPieces = "\xfe\xed";

// With phones whose services say the pieces of the current input.
class ServerOfPieces {
 public:
  ServerOfPieces()
      : server_([this](int connection) { Serve(connection); }, test::ScriptedServer::Socket::kLocal) {}

  std::string address() const { return server_.name(); }
  // The client has ended all of its connections; the server sees it a moment later.
  bool AreConnectionsClosed() const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(kLongerThanABusyMachine);
    while (server_.open_connections() > 0) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::yield();
    }
    return true;
  }

  // devices_too: the list of devices is a piece as well.
  void Say(std::string_view text, unsigned manner, bool devices_too) {
    const std::lock_guard lock(mutex_);
    manner_ = manner;
    devices_too_ = devices_too;
    pieces_.clear();
    while (!text.empty()) {
      const std::string_view piece = text.substr(0, text.find(kBetweenPieces));
      pieces_.emplace_back(piece);
      text.remove_prefix(std::min(piece.size() + kBetweenPieces.size(), text.size()));
    }
  }

 private:
  struct Piece {
    std::string bytes;
    unsigned manner = 0;
    bool is_there = false;
    bool has(unsigned bit) const { return (manner & bit) != 0; }
  };

  Piece Take() {
    const std::lock_guard lock(mutex_);
    Piece piece = {{}, manner_, !pieces_.empty()};
    if (!piece.is_there) return piece;
    piece.bytes = std::move(pieces_.front());
    pieces_.pop_front();
    return piece;
  }
  bool Is(unsigned bit) {
    const std::lock_guard lock(mutex_);
    return (manner_ & bit) != 0;
  }

  void Serve(int connection) {
    for (;;) {
      const std::string request = test::ReadRequest(connection);
      if (request.empty()) return;
      if (request.rfind("host:tport:", 0) == 0) {
        const std::string id = test::Number64(7), answer = Is(kRawServer) ? Take().bytes : "OKAY" + id;
        test::WriteBytes(connection, answer);
        if (answer.size() != 4 + id.size()) return;
      } else if (request.rfind("host", 0) == 0) {
        test::WriteBytes(connection, HostAnswer(request));
        return;
      } else {
        AnswerService(request, connection);
        return;
      }
    }
  }

  std::string HostAnswer(const std::string& request) {
    if (Is(kRawServer)) return Take().bytes;
    const bool is_features = request.find(":features") != std::string::npos;
    const bool is_attached = request == "host:devices-l";
    if (is_features) return "OKAY" + test::Request(Is(kOldPhone) ? "" : "shell_v2,cmd,stat_v2,ls_v2");
    if (is_attached && !devices_too_) return "OKAY" + test::Request("X device transport_id:7\n");
    return "OKAY" + test::Request(Take().bytes.substr(0, 0xffff));
  }

  void AnswerService(const std::string& service, int connection) {
    const Piece piece = Take();
    if (!piece.is_there && piece.has(kWithRefusal)) {
      test::WriteBytes(connection, "FAIL" + test::Request("closed"));
      return;
    }
    test::WriteBytes(connection, "OKAY");
    if (service == "sync:") TakeRequest(connection);
    const bool is_shell = service.rfind("shell", 0) == 0 || service.rfind("exec:", 0) == 0;
    test::WriteBytes(connection,
                     is_shell && !piece.has(kRawShell) ? Output(service, piece.bytes) : piece.bytes);
  }

  // The first request of a sync connection. Of a file, all of it: nothing is answered before its end.
  static void TakeRequest(int connection) {
    const auto take = [connection] {
      const std::string header = test::ReadBytes(connection, 8);
      return header.size() < 8 ? std::string() : header;
    };
    const auto length = [](const std::string& header) {
      return static_cast<unsigned char>(header[4]) |
             static_cast<unsigned>(static_cast<unsigned char>(header[5])) << 8;
    };
    const std::string request = take();
    if (request.empty()) return;
    test::ReadBytes(connection, length(request));
    if (request.rfind("SEND", 0) != 0) return;
    for (std::string data = take(); data.rfind("DATA", 0) == 0; data = take())
      test::ReadBytes(connection, length(data));
  }

  static std::string Output(const std::string& service, const std::string& printed) {
    if (service.rfind("shell,v2", 0) == 0) {
      const auto size = static_cast<std::uint32_t>(printed.size());
      return "\1" + test::Number32(size) + printed + "\3" + test::Number32(1) + '\0';
    }
    // The mark that a script for an old phone prints at its end, before the exit status.
    const std::size_t end = service.rfind("'$?");
    const std::size_t begin = end == std::string::npos ? end : service.rfind("echo '", end);
    if (begin == std::string::npos) return printed;
    return printed + service.substr(begin + 6, end - begin - 6) + "0\n";
  }

  std::mutex mutex_;
  std::deque<std::string> pieces_;
  std::atomic<bool> devices_too_ = false;
  unsigned manner_ = 0;
  test::ScriptedServer server_;
};

void RequireAName(const char* name) {
  const std::string_view text = name;
  Require(!text.empty() && text.find('/') == std::string_view::npos && text != "." && text != "..");
}

bool UseEntry(void*, const dk_entry* entry) {
  RequireAName(entry->name);
  return true;
}

bool UseMapping(void*, const dk_mapping* mapping) {
  return mapping->serial != nullptr && mapping->from != nullptr && mapping->to != nullptr;
}

bool UseApp(void*, const dk_app* app) {
  Require(*app->package != '\0' && (app->apk_count == 0) == (app->apk_paths == nullptr));
  return true;
}

struct Place {
  dk_context* context;
  dk_device* device;
};

using RunCall = dk_code (*)(const Place& place, const dk_call* call);

dk_code Pull(const Place& place, const dk_call* call) {
  const test::TemporaryDirectory directory;
  const std::string target = directory.File("below/target");
  const dk_item items[] = {{"/sdcard/tree", target.c_str()}};
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.keep_going = true;
  const dk_code code = dk_pull(place.device, items, 1, &options, nullptr, call);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(directory.path())) {
    const std::string path = entry.path().native();
    Require(path == directory.File("below") || path.compare(0, target.size(), target) == 0);
    Require(entry.path().filename().native().rfind(".darokleim", 0) != 0);
  }
  return code;
}

dk_code Push(const Place& place, const dk_call* call) {
  static const test::TemporaryDirectory directory;
  static const std::string source = directory.File("source");
  test::WriteFile(source, "content");
  const dk_item items[] = {{source.c_str(), "/sdcard/target"}};
  return dk_push(place.device, items, 1, nullptr, nullptr, call);
}

dk_code Stat(const Place& place, const dk_call* call, dk_follow follow) {
  dk_entry* entry = nullptr;
  const dk_code code = dk_stat(place.device, "/sdcard/file", follow, &entry, call);
  Require((code == DK_OK) == (entry != nullptr));
  dk_entry_free(entry);
  return code;
}

// Until its end, which its thread reports.
dk_code Log(const Place& place, const dk_call* call) {
  struct End {
    std::mutex mutex;
    std::condition_variable came;
    bool has_come = false;
  } end;
  const auto on_record = [](void*, const dk_log_record* record) {
    Require(record->tag != nullptr && record->text != nullptr);
  };
  const auto on_end = [](void* user, dk_code, const dk_error*) {
    auto& seen = *static_cast<End*>(user);
    const std::lock_guard lock(seen.mutex);
    seen.has_come = true;
    seen.came.notify_one();
  };
  dk_log* log = nullptr;
  const dk_code code = dk_log_start(place.device, nullptr, on_record, on_end, &end, &log, call);
  Require((code == DK_OK) == (log != nullptr));
  if (log == nullptr) return code;
  std::unique_lock lock(end.mutex);
  Require(
      end.came.wait_for(lock, std::chrono::seconds(kLongerThanABusyMachine), [&] { return end.has_come; }));
  lock.unlock();
  dk_log_stop(log);
  return code;
}

dk_code Restore(const Place& place, const dk_call* call) {
  std::string rest = "ANDROID BACKUP\n5\n0\nnone\n";
  const auto source = [](void* user, char* buffer, size_t capacity) -> int64_t {
    auto* const left = static_cast<std::string*>(user);
    const std::size_t size = std::min(left->size(), capacity);
    left->copy(buffer, size);
    left->erase(0, size);
    return static_cast<int64_t>(size);
  };
  return dk_restore(place.device, source, &rest, call);
}

const RunCall kCalls[] = {
    [](const Place& place, const dk_call* call) {
      return dk_list(place.device, "/sdcard", UseEntry, nullptr, call);
    },
    [](const Place& place, const dk_call* call) {
      return dk_walk(place.device, "/sdcard", nullptr, UseEntry, nullptr, call);
    },
    Pull,
    Push,
    [](const Place& place, const dk_call* call) { return Stat(place, call, DK_FOLLOW); },
    [](const Place& place, const dk_call* call) { return Stat(place, call, DK_NO_FOLLOW); },
    [](const Place& place, const dk_call* call) {
      const auto use = [](void*, const char*, size_t size) { return size > 0; };
      return dk_read(place.device, "/sdcard/file", 0, 0, use, nullptr, call);
    },
    [](const Place& place, const dk_call* call) {
      dk_output output;
      const dk_code code = dk_run_script(place.device, "script", nullptr, &output, call);
      Require(code == DK_OK || (output.out.data == nullptr && output.err.data == nullptr));
      dk_output_free(&output);
      return code;
    },
    [](const Place& place, const dk_call* call) {
      return dk_apps(place.device, DK_ALL_APPS, true, UseApp, nullptr, call);
    },
    [](const Place& place, const dk_call* call) {
      dk_app* app = nullptr;
      const dk_code code = dk_app_get(place.device, "com.x", &app, call);
      Require((code == DK_OK) == (app != nullptr));
      dk_app_free(app);
      return code;
    },
    [](const Place& place, const dk_call* call) {
      return dk_app_uninstall(place.device, "com.x", false, call);
    },
    [](const Place& place, const dk_call* call) {
      const auto use = [](void*, const dk_volume* volume) { return volume->path != nullptr; };
      return dk_volumes(place.device, use, nullptr, call);
    },
    [](const Place& place, const dk_call* call) {
      dk_bytes png;
      const dk_code code = dk_screenshot(place.device, &png, call);
      Require((code == DK_OK) == (png.data != nullptr));
      dk_bytes_free(&png);
      return code;
    },
    Log,
    [](const Place& place, const dk_call* call) {
      const auto use = [](void*, const char*, size_t size) { return size > 0; };
      return dk_backup(place.device, "com.x", use, nullptr, call);
    },
    Restore,
    [](const Place& place, const dk_call* call) {
      const auto use = [](void*, const dk_device_info* device) {
        Require(device->serial != nullptr && device->model != nullptr);
        return true;
      };
      return dk_devices(place.context, use, nullptr, call);
    },
    [](const Place& place, const dk_call* call) {
      return dk_forward_list(place.device, UseMapping, nullptr, call);
    },
    [](const Place& place, const dk_call* call) {
      return dk_reverse_list(place.device, UseMapping, nullptr, call);
    },
    [](const Place& place, const dk_call* call) {
      int port = -1;
      return dk_reverse_add(place.device, "tcp:0", "tcp:7", false, &port, call);
    },
};
constexpr std::size_t kListOfDevices = 16;

class Client {
 public:
  explicit Client(const std::string& address) {
    dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
    options.server = address.c_str();
    Require(dk_context_new(&options, &place_.context, nullptr) == DK_OK);
    Require(dk_device_open(place_.context, "X", &place_.device, nullptr) == DK_OK);
  }
  ~Client() {
    dk_device_free(place_.device);
    dk_context_free(place_.context);
  }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  const Place& place() const { return place_; }

 private:
  Place place_ = {};
};

// One sentence that may be shown as it is.
void RequireAMessage(const dk_error* error) {
  const std::string_view message = dk_error_message(error);
  Require(!message.empty());
  for (const char c : message) Require(static_cast<unsigned char>(c) >= ' ' && c != '\x7f');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  static ServerOfPieces server;
  static const Client client(server.address());
  const std::string text = sdk::Text(data + 2, size - 2);
  const std::size_t which = data[0] % std::size(kCalls);
  server.Say(text, data[1], which == kListOfDevices);
  dk_error* error = nullptr;
  const dk_call call = {sizeof call, nullptr, kLongerThanABusyMachine * 1000, &error};
  const dk_code code = kCalls[which](client.place(), &call);
  Require(code != DK_TIMED_OUT && code != DK_SYSTEM_REFUSED && code != DK_NO_SERVER);
  Require((code == DK_OK) == (error == nullptr));
  if (error != nullptr) {
    Require(dk_error_code(error) == code);
    RequireAMessage(error);
  }
  dk_error_free(error);
  Require(server.AreConnectionsClosed());
  return 0;
}
