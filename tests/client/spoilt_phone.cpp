#include "tests/client/spoilt_phone.h"

#include <algorithm>
#include <map>
#include <optional>
#include <regex>
#include <utility>
#include <vector>

namespace darokleim::client_test {

using test::Number32;
using test::Number64;
using test::ReadBytes;
using test::Request;
using test::WaitUntilClosed;

namespace {

constexpr char kFile[] = "abcdef";
constexpr std::uint32_t kFileMode = 0100644, kFolderMode = 040755, kLinkMode = 0120777;

bool Begins(std::string_view text, std::string_view begin) {
  return text.substr(0, begin.size()) == begin;
}

std::uint32_t ReadNumber(std::string_view bytes) {
  std::uint32_t number = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[i]);
  return number;
}

// By the path's last letters; 0 for what is not there.
std::uint32_t ModeOf(const std::string& path) {
  const std::string name = path.substr(path.rfind('/') + 1);
  if (Begins(path, "/sdcard/new") || name == "missing") return 0;
  if (name == "link") return kLinkMode;
  return name == "sdcard" || name == "tree" || name == "folder" ? kFolderMode : kFileMode;
}

// The mark that a script for an old phone prints at its end, before the exit status.
std::string MarkIn(const std::string& script) {
  const std::size_t end = script.rfind("'$?");
  const std::size_t begin = end == std::string::npos ? end : script.rfind("echo '", end);
  return begin == std::string::npos ? "" : script.substr(begin + 6, end - begin - 6);
}

std::string Packet(char id, const std::string& data) {
  return id + Number32(static_cast<std::uint32_t>(data.size())) + data;
}

// What the server itself answers, with OKAY before it.
std::optional<std::string> HostAnswer(const std::string& request, const std::string& features) {
  static const std::map<std::string, std::string> kTexts = {
      {"host:list-forward", "X tcp:1 tcp:2\n"},
      {"host:connect:10.0.0.1:5555", "connected to 10.0.0.1:5555"},
      {"host:disconnect:10.0.0.1:5555", "disconnected 10.0.0.1:5555"},
      {"host:pair:123456:10.0.0.1:4000", "Successfully paired to 10.0.0.1:4000 [guid=x]"},
      {"host-serial:X:get-state", "device"},
      {"host-serial:X:reconnect", "reconnecting X [device]\n"},
  };
  if (request == "host:version") return "00040029";
  if (request == "host:kill") return "";
  if (request == "host-serial:X:features") return Request(features);
  if (Begins(request, "host-serial:X:forward:")) return "OKAY" + Request("41000");
  if (Begins(request, "host-serial:X:killforward:")) return "OKAY";
  const auto text = kTexts.find(request);
  if (text == kTexts.end()) return std::nullopt;
  return Request(text->second);
}

}  // namespace

std::string BackupOfApp() {
  return "ANDROID BACKUP\n5\n1\nnone\n" + std::string(300, 'b');
}

std::string LogRecord(std::string_view tag, std::string_view text) {
  constexpr std::uint16_t kHeader = 28;
  const std::string payload = "\x04" + std::string(tag) + '\0' + std::string(text) + '\0';
  std::string record = Number32(static_cast<std::uint32_t>(payload.size()) | kHeader << 16);
  for (const std::uint32_t number : {11U, 12U, 200U, 13U, 0U, 0U}) record += Number32(number);
  return record + payload;
}

SpoiltPhone::SpoiltPhone(bool modern, Spoiling spoiling, test::ScriptedServer::Socket socket)
    : modern_(modern),
      spoiling_(std::move(spoiling)),
      server_([this](int connection) { Serve(connection); }, socket) {}

void SpoiltPhone::Unplug() {
  attached_ = false;
  server_.Disconnect();
}

void SpoiltPhone::Plug() {
  ++transport_;
  attached_ = true;
}

std::string SpoiltPhone::DeviceList() const {
  if (!attached_) return Request("");
  return Request("X                      device usb:1-1 product:p model:m device:d transport_id:" +
                 std::to_string(transport_) + "\n");
}

std::size_t SpoiltPhone::sent() const {
  const std::lock_guard lock(mutex_);
  return sent_;
}

bool SpoiltPhone::is_spoilt() const {
  const std::lock_guard lock(mutex_);
  return spoilt_;
}

std::string SpoiltPhone::harm() const {
  const std::lock_guard lock(mutex_);
  return harm_;
}

bool SpoiltPhone::Write(int connection, std::string_view bytes) {
  std::size_t good = bytes.size();
  {
    const std::lock_guard lock(mutex_);
    const bool later_ones_are_good =
        spoiling_.then == Spoiling::Then::kHang || spoiling_.then == Spoiling::Then::kBytes;
    if (!spoilt_ || !later_ones_are_good) good = std::min(good, spoiling_.good - sent_);
    spoilt_ = spoilt_ || good < bytes.size();
    if (!spoilt_) sent_ += good;
    if (spoilt_ && good < bytes.size()) sent_ = spoiling_.good;
  }
  const std::string_view whole = bytes.substr(0, good);
  const std::size_t piece = spoiling_.byte_by_byte ? 1 : std::max<std::size_t>(whole.size(), 1);
  for (std::size_t at = 0; at < whole.size(); at += piece) {
    if (!test::WriteBytes(connection, whole.substr(at, piece))) return false;
  }
  if (good == bytes.size()) return true;
  switch (spoiling_.then) {
    case Spoiling::Then::kClose:
      break;
    case Spoiling::Then::kHang:
    case Spoiling::Then::kHangAll:
      WaitUntilClosed(connection);
      break;
    case Spoiling::Then::kBytes:
      test::WriteBytes(connection, spoiling_.bytes);
      break;
  }
  return false;
}

void SpoiltPhone::Serve(int connection) {
  for (;;) {
    const std::string request = test::ReadRequest(connection);
    if (request.empty()) return;
    if (!AnswerHost(request, connection)) return;
    if (request != "host:tport:serial:X") continue;
    const std::string service = test::ReadRequest(connection);
    if (!service.empty()) AnswerService(service, connection);
    return;
  }
}

bool SpoiltPhone::AnswerHost(const std::string& request, int connection) {
  const bool asks_phone = Begins(request, "host-serial:") || Begins(request, "host:tport:");
  if (asks_phone && !spoiling_.refuses_phone.empty()) {
    Write(connection, "FAIL" + Request(spoiling_.refuses_phone));
    return false;
  }
  if (asks_phone && !attached_) {
    Write(connection, "FAIL" + Request("device 'X' not found"));
    return false;
  }
  if (request == "host:devices-l" || request == "host:track-devices-l")
    return Write(connection, "OKAY" + DeviceList());
  if (request == "host:track-devices") {
    const bool goes_on = attached_;
    return Write(connection, "OKAY" + Request(goes_on ? "X\tdevice\n" : "")) && goes_on;
  }
  if (request == "host:tport:serial:X") return Write(connection, "OKAY" + Number64(transport_));
  const auto answer = HostAnswer(request, modern_ ? "shell_v2,cmd,stat_v2,ls_v2" : "");
  if (!answer) {
    const std::lock_guard lock(mutex_);
    harm_ += "asked for " + request + "\n";
    return false;
  }
  return Write(connection, "OKAY" + *answer);
}

void SpoiltPhone::AnswerService(const std::string& service, int connection) {
  constexpr std::size_t kLongestOfOldPhones = 4096;
  if (!modern_ && service.size() >= kLongestOfOldPhones) {
    const std::lock_guard lock(mutex_);
    harm_ += "a request of " + std::to_string(service.size()) + " bytes\n";
  }
  if (!spoiling_.refuses_service.empty()) {
    Write(connection, "FAIL" + Request(spoiling_.refuses_service));
    return;
  }
  if (!Write(connection, "OKAY")) return;
  if (service == "sync:") return AnswerFiles(connection);
  if (Begins(service, "shell,v2"))
    return AnswerShell(service.substr(service.find(':') + 1), true, connection);
  if (Begins(service, "exec:")) return AnswerShell(service.substr(5), false, connection);
  if (Begins(service, "backup:")) Write(connection, BackupOfApp());
  if (service == "restore:") TakeBackup(connection);
  if (Begins(service, "reverse:forward:")) Write(connection, "OKAY" + Request("5000"));
  if (Begins(service, "reverse:killforward")) Write(connection, "OKAY");
  if (service == "reverse:list-forward") Write(connection, Request("UsbFfs tcp:1 tcp:2\n"));
}

void SpoiltPhone::AnswerShell(const std::string& script, bool apart, int connection) {
  const Printed printed = Print(script);
  if (!apart) {
    const std::string mark = MarkIn(script);
    const std::string end = mark.empty() ? "" : mark + std::to_string(printed.status) + "\n";
    Write(connection, printed.out + printed.err + end);
    return;
  }
  constexpr char kCloseInput = 4;
  for (;;) {  // the input of the command
    const std::string header = ReadBytes(connection, 5);
    if (header.size() < 5) return;
    if (header[0] == kCloseInput) break;
    ReadBytes(connection, ReadNumber(header.substr(1)));
  }
  std::string packets;
  if (!printed.out.empty()) packets += Packet(1, printed.out);
  if (!printed.err.empty()) packets += Packet(2, printed.err);
  Write(connection, packets + Packet(3, std::string(1, static_cast<char>(printed.status))));
}

SpoiltPhone::Printed SpoiltPhone::Print(const std::string& script) {
  static const std::vector<std::pair<std::string, std::string>> kOutputs = {
      {"dumpsys battery",
       "  level: 43\n  scale: 100\n  USB powered: true\n  temperature: 281\n  voltage: 4000\n"},
      {"wm size", "Physical size: 1080x2340\nPhysical density: 440\n"},
      {"/proc/meminfo", "MemTotal: 2000 kB\nMemAvailable: 1000 kB\n"},
      {"getprop", "[a]: [1]\n[b]: [2]\n"},
      {"stat -f", "V /storage/emulated/0\nS 4096 1000 400 300\n"},
      {"screencap", "\x89PNG\r\n\x1a\npicture"},
      {"pm list packages",
       "package:/data/app/x/base.apk=com.x\n\n--- the dump ---\nPackages:\n  Package [com.x] (1):\n"
       "    versionCode=12 minSdk=21\n    versionName=1.2\n"},
      {"install-create", "Success: created install session [12]\n"},
      {" install", "Success\n"},
      {"pm path", "package:/data/app/x/base.apk\n"},
      {"pm uninstall", "Success\n"},
      {"pm clear", "Success\n"},
      {"readlink", "/sdcard/file\n"},
      {"dd if=", kFile},
      {"logcat -B", LogRecord("Tag", "one") + LogRecord("Tag", "two")},
      {"hello", "hello\n"},
  };
  if (script.find("mv -f ") != std::string::npos) CheckMove(script);
  for (const auto& [words, output] : kOutputs) {
    if (script.find(words) != std::string::npos) return {output, "", 0};
  }
  return {};
}

// What is moved to its name out of a temporary folder has to be whole.
void SpoiltPhone::CheckMove(const std::string& script) {
  static const std::regex kMove(R"(cd '([^']*/\.darokleim[^']*)' && mv -f((?: \./'[^']*')+) \.\./)");
  static const std::regex kName(R"(\./'([^']*)')");
  // For old phones the whole script is quoted once more.
  const std::string plain = std::regex_replace(script, std::regex(R"('\\'')"), "'");
  const std::lock_guard lock(mutex_);
  std::size_t moved = 0;
  for (auto move = std::sregex_iterator(plain.begin(), plain.end(), kMove); move != std::sregex_iterator();
       ++move) {
    const std::string folder = (*move)[1], names = (*move)[2];
    for (auto name = std::sregex_iterator(names.begin(), names.end(), kName); name != std::sregex_iterator();
         ++name, ++moved) {
      const std::string path = folder + "/" + (*name)[1].str();
      const bool may_seem_whole = spoiling_.then == Spoiling::Then::kBytes;
      if (!may_seem_whole && whole_.count(path) == 0) harm_ += "moved what is not whole: " + path + "\n";
    }
  }
  if (moved == 0 && plain.find("/.darokleim") != std::string::npos)
    harm_ += "moved in an unknown way: " + script + "\n";
}

std::string SpoiltPhone::Status(const std::string& id, const std::string& path) const {
  const std::uint32_t mode = ModeOf(path), size = sizeof kFile - 1, time = 7;
  if (!modern_) return id + Number32(mode) + Number32(mode == 0 ? 0 : size) + Number32(mode == 0 ? 0 : time);
  constexpr std::uint32_t kMissing = 2;
  return id + Number32(mode == 0 ? kMissing : 0) + Number64(1) + Number64(2) + Number32(mode) + Number32(1) +
         Number32(0) + Number32(0) + Number64(size) + Number64(time) + Number64(time) + Number64(time);
}

std::string SpoiltPhone::List(const std::string& folder) const {
  const std::string id = modern_ ? "DNT2" : "DENT";
  const bool is_tree = folder == "/sdcard/tree";
  std::string list;
  for (const std::string& name :
       is_tree ? std::vector<std::string>{".", "a", "folder"} : std::vector<std::string>{"..", "c"}) {
    list += Status(id, folder + "/" + name) + Number32(static_cast<std::uint32_t>(name.size())) + name;
  }
  return list + "DONE" + std::string(modern_ ? 72 : 16, '\0');
}

void SpoiltPhone::AnswerFiles(int connection) {
  for (;;) {
    const std::string header = ReadBytes(connection, 8);
    if (header.size() < 8) return;
    const std::string id = header.substr(0, 4);
    if (id == "QUIT") return;
    const std::string path = ReadBytes(connection, ReadNumber(header.substr(4)));
    bool goes_on = false;
    if (id == "STAT" || id == "LST2") {
      goes_on = Write(connection, Status(id, path));
    } else if (id == "STA2") {
      goes_on =
          Write(connection, Status(id, path.substr(path.rfind('/')) == "/link" ? "/sdcard/file" : path));
    } else if (id == "LIST" || id == "LIS2") {
      goes_on = Write(connection, List(path));
    } else if (id == "RECV") {
      goes_on = Write(connection, "DATA" + Number32(sizeof kFile - 1) + kFile + "DONE" + Number32(0));
    } else if (id == "SEND") {
      goes_on = TakeFile(path.substr(0, path.rfind(',')), connection);
    }
    if (!goes_on) return;
  }
}

bool SpoiltPhone::TakeFile(const std::string& path, int connection) {
  for (;;) {
    const std::string header = ReadBytes(connection, 8);
    if (header.size() < 8) return false;
    if (header.substr(0, 4) == "DONE") break;
    ReadBytes(connection, ReadNumber(header.substr(4)));
  }
  {
    const std::lock_guard lock(mutex_);
    whole_.insert(path);
  }
  return Write(connection, "OKAY" + Number32(0));
}

void SpoiltPhone::TakeBackup(int connection) {
  const std::string whole = BackupOfApp() + std::string(kZerosAfterBackup, '\0');
  const std::string taken = ReadBytes(connection, whole.size());
  if (taken.size() < whole.size() || taken == whole) return;
  const std::lock_guard lock(mutex_);
  harm_ += "restored something else\n";
}

}  // namespace darokleim::client_test
