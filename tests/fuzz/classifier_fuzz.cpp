// The classifier compared with its rules spelt out one by one, with and without the flag for other packages' failures.
#include <vector>

#include "darokleim.h"
#include "src/core/classifier.h"
#include "src/core/string_helper.h"
#include "tests/fuzz/fuzz.h"

namespace {

class PlainClassifier {
 public:
  explicit PlainClassifier(const std::string& text) : text_(text) {}

  int Code(int ret, bool line_failure_only) const {
    int code = ret;
    if (IsOfAdb(&code) || IsOfAnInstallation(&code)) return code;
    if (Has("Permission denied") && (Has("grep") || Has("find:"))) return ADB_RESULT_PERMISSION_DENIED;
    if (Has("Failure")) return line_failure_only && !IsOfOnePackage() ? ret : ADB_RESULT_FAILURE;
    IsOfTheRest(&code);
    return code;
  }

 private:
  bool Has(const char* part) const { return text_.find(part) != std::string::npos; }

  // Sets the code when the text holds the part.
  bool Means(const char* part, int value, int* code) const {
    if (!Has(part)) return false;
    *code = value;
    return true;
  }

  bool IsOfAdb(int* code) const {
    return Means("no devices/emulators found", ADB_RESULT_NO_DEVICE, code) ||
           Means("cannot connect to daemon", ADB_RESULT_CANNOT_CONNECT_DAEMON, code) ||
           Means("No such file or directory", ADB_RESULT_NO_SUCH_FILE, code) ||
           Means("Can't open non-file", ADB_RESULT_NO_SUCH_FILE, code) ||
           (Has("device") && Means("not found", ADB_RESULT_NO_DEVICE, code)) ||
           Means("error: unknown host service", ADB_RESULT_UNKNOWN_HOST_SERVICE, code);
  }

  bool IsOfAnInstallation(int* code) const {
    return Means("[INSTALL_FAILED_ALREADY_EXISTS]", ADB_RESULT_INSTALL_ALREADY_EXISTS, code) ||
           Means("Failure [-99]", ADB_RESULT_INSTALL_FAILURE_99, code) ||
           Means("INSTALL_FAILED_VERSION_DOWNGRADE", ADB_RESULT_INSTALL_VERSION_DOWNGRADE, code) ||
           Means("[INSTALL_FAILED_USER_RESTRICTED: Install canceled by user]",
                 ADB_RESULT_INSTALL_CANCELED_BY_USER, code) ||
           Means("[INSTALL_FAILED_CANCELLED_BY_USER]", ADB_RESULT_INSTALL_CANCELLED_BY_USER, code) ||
           Means("[INSTALL_FAILED_USER_RESTRICTED]", ADB_RESULT_INSTALL_USER_RESTRICTED, code) ||
           Means("[INSTALL_CANCELED_BY_USER]", ADB_RESULT_INSTALL_USER_RESTRICTED, code) ||
           Means("[INSTALL_PARSE_FAILED_NO_CERTIFICATES]", ADB_RESULT_INSTALL_NO_CERTIFICATES, code);
  }

  bool IsOfOnePackage() const {
    std::vector<std::string> lines;
    StringHelper::StringSplit(lines, text_, "\n");
    for (const std::string& line : lines) {
      const PlainClassifier one(line);
      if (one.Has("Failure") && one.Has("jp.naver.line.android")) return true;
    }
    return false;
  }

  // What only counts without the word Failure.
  bool IsOfTheRest(int* code) const {
    return Means("daemon still not running", ADB_RESULT_DAEMON_NOT_RUNNING, code) ||
           Means("no closing quote", ADB_RESULT_NO_CLOSING_QUOTE, code) ||
           (Has("/system/bin/sh") && Means("not found", ADB_RESULT_SHELL_NOT_FOUND, code)) ||
           Means("protocol fault", ADB_RESULT_PROTOCOL_FAULT, code) ||
           Means("device unauthorized", ADB_RESULT_DEVICE_UNAUTHORIZED, code) ||
           Means("not enough space", ADB_RESULT_NOT_ENOUGH_SPACE, code) ||
           Means("Shell does not have permission to access user", ADB_RESULT_USER_ACCESS_DENIED, code) ||
           Means("No space left on device", ADB_RESULT_NO_SPACE_LEFT, code);
  }

  const std::string& text_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  const std::string text = Text(data, size);
  for (const int ret : {0, 1001}) {
    for (const bool line_failure_only : {false, true}) {
      Require(CheckOutbufErrorWithRet(text, ret, line_failure_only) ==
              PlainClassifier(text).Code(ret, line_failure_only));
    }
  }
  Require(IsOutbufSuccess(text) == (text.find("Success") != std::string::npos));
  return 0;
}
