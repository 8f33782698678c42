#include "tools/cli/connection/error_text.h"

#include <algorithm>
#include <string_view>

#include "base/terminal_text.h"
#include "tools/cli/output/json_text.h"

namespace darokleim::cli {
namespace {

constexpr std::size_t kLongestWords = 2000;  // of the phone, in a message; JSON has all of them

// What helps, besides what the client's sentence says.
const char* AdviceFor(const dk::Error& error) {
  switch (error.code()) {
    case DK_NOT_FOUND:
      return "Paths are case-sensitive.";
    case DK_ACCESS_DENIED:
      return error.on_host() ? "Check the permissions on this computer."
                             : "The phone does not allow that to adb's user.";
    case DK_EXISTS:
      return "";
    case DK_NO_SPACE:
      return error.on_host() ? "Free some space on this computer." : "Free some space on the phone.";
    case DK_READ_ONLY:
      return error.on_host() ? "" : "The phone does not let that part of it be changed.";
    case DK_CONNECTION_LOST:
      return "Changes already made on the device are kept. Check the connection and try again.";
    case DK_SYSTEM_REFUSED:
      return "Close other programs, or raise the limits of open files and processes (see `ulimit -a`).";
    case DK_CHANGED:
      return "Try again when nothing writes to it.";
    case DK_SERVER_PROTOCOL:
      return "Another program may listen at the adb server's port; see ANDROID_ADB_SERVER_PORT.";
    default:
      return "";
  }
}

// As the middle of a line: the client's sentences begin with a capital.
std::string AfterAColon(std::string message) {
  if (message.size() > 1 && message[1] >= 'a' && message[1] <= 'z' && message[0] >= 'A' &&
      message[0] <= 'Z') {
    message[0] = static_cast<char>(message[0] - 'A' + 'a');
  }
  return message;
}

std::string Trimmed(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ')) text.pop_back();
  return text;
}

}  // namespace

std::string ErrorText(const dk::Error& error) {
  std::string text = AfterAColon(error.message());
  const std::string words = base::EscapeControls(Trimmed(error.words().substr(0, kLongestWords)), "\n");
  const bool is_news =
      ExitStatusFor(error.code()) == kExitFailed;  // the states of a device have sentences of their own
  if (is_news && !words.empty() && text.find(words) == std::string::npos) {
    text += (error.code() == DK_SERVER_REFUSED ? " The server says: " : " The phone says: ") + words;
    if (words.back() != '.') text += '.';
  }
  const std::string_view advice = AdviceFor(error);
  if (!advice.empty()) text.append(" ").append(advice);
  return text;
}

std::string ErrorJson(const dk::Error& error, const std::string& text) {
  constexpr std::string_view kPrefix = "DK_";
  JsonObject json;
  json.Text("code", std::string_view(dk_code_name(error.code())).substr(kPrefix.size()));
  json.Text("message", text);
  if (!error.path().empty()) json.Text("path", error.path());
  if (!error.reason().empty()) json.Text("reason", error.reason());
  if (!error.words().empty()) json.Text("words", error.words());
  if (error.system_error() != 0) json.Integer("errno", error.system_error());
  if (error.exit_status() >= 0) json.Integer("exit_status", error.exit_status());
  json.Bool("on_host", error.on_host());
  return json.text();
}

std::string ErrorJson(const char* code, const std::string& text) {
  return JsonObject().Text("code", code).Text("message", text).text();
}

ExitStatus ExitStatusFor(dk_code code) {
  switch (code) {
    case DK_OK:
      return kExitOk;
    case DK_CANCELLED:
      return kExitCancelled;
    case DK_SEVERAL_DEVICES:
      return kExitUsage;
    case DK_NO_SERVER:
    case DK_NO_DEVICE:
    case DK_DEVICE_OFFLINE:
    case DK_DEVICE_UNAUTHORIZED:
    case DK_DEVICE_NO_PERMISSIONS:
      return kExitNoDevice;
    default:
      return kExitFailed;
  }
}

bool IsOfOneOperand(dk_code code) {
  switch (code) {
    case DK_CANCELLED:
    case DK_TIMED_OUT:
    case DK_OUT_OF_MEMORY:
    case DK_SYSTEM_REFUSED:
    case DK_SERVER_PROTOCOL:
    case DK_CONNECTION_LOST:
      return false;
    default:
      return ExitStatusFor(code) == kExitFailed;
  }
}

}  // namespace darokleim::cli
