#include "src/core/classifier.h"

#include <array>
#include <cstddef>
#include <optional>

#include "darokleim.h"
#include "src/core/call_log.h"
#include "src/core/text.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// A message that decides alone, or together with a second part anywhere in the text.
struct Rule {
  std::string_view message;
  std::string_view and_part;
  int code;
  bool logs_text = false;
};

// Order matters: the first rule that matches decides. adb's connection errors come first, then the package
// manager's messages, from the exact to the vague.
constexpr Rule kRulesBeforeFailure[] = {
    {"no devices/emulators found", "", ADB_RESULT_NO_DEVICE},
    {"cannot connect to daemon", "", ADB_RESULT_CANNOT_CONNECT_DAEMON},
    {"No such file or directory", "", ADB_RESULT_NO_SUCH_FILE},
    {"Can't open non-file", "", ADB_RESULT_NO_SUCH_FILE},
    {"device", "not found", ADB_RESULT_NO_DEVICE},
    {"error: unknown host service", "", ADB_RESULT_UNKNOWN_HOST_SERVICE},
    {"[INSTALL_FAILED_ALREADY_EXISTS]", "", ADB_RESULT_INSTALL_ALREADY_EXISTS},
    {"Failure [-99]", "", ADB_RESULT_INSTALL_FAILURE_99},
    {"INSTALL_FAILED_VERSION_DOWNGRADE", "", ADB_RESULT_INSTALL_VERSION_DOWNGRADE},
    {"[INSTALL_FAILED_USER_RESTRICTED: Install canceled by user]", "", ADB_RESULT_INSTALL_CANCELED_BY_USER},
    {"[INSTALL_FAILED_CANCELLED_BY_USER]", "", ADB_RESULT_INSTALL_CANCELLED_BY_USER},
    {"[INSTALL_FAILED_USER_RESTRICTED]", "", ADB_RESULT_INSTALL_USER_RESTRICTED},
    {"[INSTALL_CANCELED_BY_USER]", "", ADB_RESULT_INSTALL_USER_RESTRICTED},
    {"[INSTALL_PARSE_FAILED_NO_CERTIFICATES]", "", ADB_RESULT_INSTALL_NO_CERTIFICATES},
    // Only searches have a code for a refusal; the result of a refused cp or push is the channel's status.
    {"Permission denied", "grep", ADB_RESULT_PERMISSION_DENIED},
    {"Permission denied", "find:", ADB_RESULT_PERMISSION_DENIED},
};

constexpr Rule kRulesFromFailureOn[] = {
    {"Failure", "", ADB_RESULT_FAILURE, true},
    {"error:device", "not found", ADB_RESULT_NO_DEVICE, true},
    {"daemon still not running", "", ADB_RESULT_DAEMON_NOT_RUNNING},
    {"no closing quote", "", ADB_RESULT_NO_CLOSING_QUOTE},
    {"/system/bin/sh", "not found", ADB_RESULT_SHELL_NOT_FOUND},
    {"protocol fault", "", ADB_RESULT_PROTOCOL_FAULT},
    {"device unauthorized", "", ADB_RESULT_DEVICE_UNAUTHORIZED},
    {"Failure [-200]", "", ADB_RESULT_INSTALL_CANCELLED_BY_USER},
    {"not enough space", "", ADB_RESULT_NOT_ENOUGH_SPACE},
    {"Shell does not have permission to access user", "", ADB_RESULT_USER_ACCESS_DENIED},
    {"No space left on device", "", ADB_RESULT_NO_SPACE_LEFT},
};

// The only package whose dump turns "Failure" into a failure.
constexpr std::string_view kPackageWithFailureLines = "jp.naver.line.android";

void LogText(std::string_view text) {
  LogEx(kLogModule, kLogInfo, "%.*s", PrintedLength(text), text.data());
}

// Every message is searched in one block before the next block, so that a text of a gigabyte is read from memory once.
constexpr std::size_t kBlock = 32 * 1024;
constexpr std::size_t kLongestMessage = 64;

template <std::size_t N>
consteval bool FitsBlocks(const Rule (&rules)[N]) {
  for (const Rule& rule : rules) {
    if (rule.message.size() > kLongestMessage || rule.and_part.size() > kLongestMessage) return false;
  }
  return true;
}
static_assert(FitsBlocks(kRulesBeforeFailure) && FitsBlocks(kRulesFromFailureOn));

// Blocks overlap by what a message that begins in one of them may need of the next.
template <typename Visit>
void ForEachBlock(std::string_view text, Visit visit) {
  while (text.size() > kBlock) {
    visit(text.substr(0, kBlock + kLongestMessage - 1));
    text.remove_prefix(kBlock);
  }
  visit(text);
}

template <std::size_t N>
std::optional<int> FirstRuleThatHolds(const Rule (&rules)[N], std::string_view text) {
  struct Found {
    bool message = false;
    bool and_part = false;
  };
  std::array<Found, N> found;
  ForEachBlock(text, [&](std::string_view block) {
    for (std::size_t i = 0; i < N; ++i) {
      found[i].message = found[i].message || Contains(block, rules[i].message);
      found[i].and_part = found[i].and_part || Contains(block, rules[i].and_part);
    }
  });
  for (std::size_t i = 0; i < N; ++i) {
    if (!found[i].message || !found[i].and_part) continue;
    if (rules[i].logs_text) LogText(text);
    return rules[i].code;
  }
  return std::nullopt;
}

int ClassifyFailureLines(std::string_view text, int ret) {
  int code = ret;
  ForEachPiece(text, "\n", [&](std::string_view line) {
    if (!Contains(line, "Failure") || !Contains(line, kPackageWithFailureLines)) return true;
    LogText(line);
    code = ADB_RESULT_FAILURE;
    return false;
  });
  return code;
}

}  // namespace

int Classify(std::string_view text, int ret, bool line_failure_only) {
  if (ret != 0)
    LogEx(kLogModule, kLogError, "ret is %d,outbuf is:%.*s", ret, PrintedLength(text), text.data());
  if (const auto code = FirstRuleThatHolds(kRulesBeforeFailure, text)) return *code;
  if (line_failure_only && Contains(text, "Failure")) return ClassifyFailureLines(text, ret);
  return FirstRuleThatHolds(kRulesFromFailureOn, text).value_or(ret);
}

bool ReportsSuccess(std::string_view text) {
  return Contains(text, "Success");
}

}  // namespace darokleim::sdk

int CheckOutbufErrorWithRet(const std::string& text, int ret, bool line_failure_only) {
  return Classify(text, ret, line_failure_only);
}

bool IsOutbufSuccess(const std::string& text) {
  return ReportsSuccess(text);
}
