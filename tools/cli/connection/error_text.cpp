#include "tools/cli/connection/error_text.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "base/terminal_text.h"
#include "tools/cli/output/json_text.h"

namespace darokleim::cli {
namespace {

constexpr std::size_t kLongestWords = 2000;  // of the phone, in a message; JSON has all of them

struct ReasonText {
  std::string_view reason;  // as Android names it, or how it begins
  const char* meaning;
};

constexpr ReasonText kReasons[] = {
    {"INSTALL_FAILED_ALREADY_EXISTS", "The application is installed already."},
    {"INSTALL_FAILED_VERSION_DOWNGRADE",
     "A newer version is installed. Try --downgrade, or uninstall it first, which deletes its data."},
    {"INSTALL_FAILED_UPDATE_INCOMPATIBLE",
     "The installed version has another signature. Uninstall it first, which deletes its data."},
    {"INSTALL_FAILED_SHARED_USER_INCOMPATIBLE",
     "An installed application that it shares data with has another signature."},
    {"INSTALL_FAILED_INSUFFICIENT_STORAGE", "The phone's storage is full. Free some space on the phone."},
    {"INSTALL_FAILED_OLDER_SDK", "It needs a newer Android than the phone has."},
    {"INSTALL_FAILED_NEWER_SDK", "It is made for an older Android than the phone has."},
    {"INSTALL_FAILED_DEPRECATED_SDK_VERSION", "It is made for an older Android than the phone has."},
    {"INSTALL_FAILED_NO_MATCHING_ABIS", "It is made for another kind of processor."},
    {"INSTALL_FAILED_CPU_ABI_INCOMPATIBLE", "It is made for another kind of processor."},
    {"INSTALL_FAILED_TEST_ONLY", "It is marked as for tests only: use --test."},
    {"INSTALL_FAILED_USER_RESTRICTED",
     "The phone does not allow installing over USB, or it was refused on its screen. Allow it in the "
     "developer "
     "options, and confirm on the screen."},
    {"INSTALL_FAILED_ABORTED", "It was refused on the phone's screen, or the phone ended it."},
    {"INSTALL_FAILED_VERIFICATION", "The phone's check of new applications refused it."},
    {"INSTALL_FAILED_MISSING_SPLIT", "Parts of it are missing: install all its APKs together, with --split."},
    {"INSTALL_FAILED_MISSING_SHARED_LIBRARY", "The phone does not have a library that it needs."},
    {"INSTALL_FAILED_MISSING_FEATURE", "The phone does not have a feature that it needs."},
    {"INSTALL_FAILED_CONFLICTING_PROVIDER", "Another application has a content provider of the same name."},
    {"INSTALL_FAILED_DUPLICATE_PERMISSION", "Another application defines the same permission."},
    {"INSTALL_FAILED_INVALID_APK",
     "The APK is not complete or not valid. The parts of one application are installed together, with "
     "--split."},
    {"INSTALL_PARSE_FAILED_NO_CERTIFICATES", "The APK is not signed. Take it from where it was published."},
    {"INSTALL_PARSE_FAILED_INCONSISTENT_CERTIFICATES",
     "Its parts, or its versions, have different signatures."},
    {"INSTALL_PARSE_FAILED_NOT_APK", "The file is not an APK."},
    {"INSTALL_PARSE_FAILED", "The phone cannot read the APK."},
    {"DELETE_FAILED_INTERNAL_ERROR", "It is part of the system, or protected."},
    {"DELETE_FAILED_DEVICE_POLICY_MANAGER",
     "It administers the device: end that in the phone's settings first."},
};

// Why an application was not installed or removed; empty for a reason that is not known.
const char* MeaningOfReason(std::string_view reason) {
  const auto begins = [reason](const ReasonText& known) { return reason.rfind(known.reason, 0) == 0; };
  const auto found = std::find_if(std::begin(kReasons), std::end(kReasons), begins);
  return reason.empty() || found == std::end(kReasons) ? "" : found->meaning;
}

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
    case DK_INSTALL_FAILED:
    case DK_COMMAND_FAILED:
      return MeaningOfReason(error.reason());
    case DK_NO_PACKAGE:
      return "See `darokleim app list`.";
    case DK_ADDRESS_IN_USE:
      return "Use --replace, or another port.";
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
