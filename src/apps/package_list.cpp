// AdbCheckAppInstalled, AdbGetPackagesNameOfInstalled, AdbGetPackagesNameList: which packages a device has.
#include <functional>
#include <string>
#include <string_view>

#include "darokleim.h"
#include "src/apps/package_output.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"
#include "src/core/text.h"
#include "src/platform/log_library.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// What to do after a listing without any output.
enum class AfterSilence { kGiveUp, kTryAgain };

constexpr int kAttempts = 2;
constexpr std::size_t kListCapacity = 256;

// The result of a step, and whether the query ends or makes another attempt, if one is left.
struct Progress {
  int code;
  enum { kSettled, kRefused, kTryAgain } next;
};

std::string ListCommand(const char* serial, const std::string& user_option, const char* filter) {
  if (!filter) {
    return Cut(kListCapacity, " -s %s shell pm list packages%s", serial, user_option.c_str());
  }
  return Cut(kListCapacity, " -s %s shell pm list packages%s %s", serial, user_option.c_str(), filter);
}

Progress List(const std::string& command, const bool* cancel, AfterSilence after_silence,
              const std::function<void(std::string_view)>& use) {
  const AdbRun run(command, cancel);
  const int code = run.Classify();
  if (!run.has_output()) {
    return {code, after_silence == AfterSilence::kTryAgain ? Progress::kTryAgain : Progress::kSettled};
  }
  if (code == ADB_RESULT_USER_ACCESS_DENIED) return {code, Progress::kRefused};
  if (code == ADB_RESULT_OK) use(run.output());
  return {code, Progress::kSettled};
}

// Sets the user option to the device's current user. Unchanged when the device does not report one.
Progress ChooseCurrentUser(const char* serial, const bool* cancel, std::string& user_option) {
  const AdbRun run(Cut(kListCapacity, " -s %s shell dumpsys user", serial), cancel);
  const int code = run.Classify();
  if (run.has_output() && code != ADB_RESULT_OK) return {code, Progress::kSettled};
  const auto user = FindCurrentUser(run.output());
  if (user) user_option = std::string(" --user ").append(*user);
  return {code, Progress::kTryAgain};
}

// Lists packages in at most two attempts, and calls use with the listing, which is valid during the call. When the
// device refuses because the shell may not act for all users, the second attempt lists the packages of the current
// user. A null filter adds nothing to the command.
//
// Returns the result code of the last command. ADB_RESULT_OK without a call of use means that the second attempt was
// refused as well; the code is then that of the query for the user, and applications rely on it.
int ListPackages(const char* serial, const char* filter, const bool* cancel, AfterSilence after_silence,
                 const std::function<void(std::string_view listing)>& use) {
  std::string user_option;
  Progress progress{ADB_RESULT_OK, Progress::kTryAgain};
  for (int attempt = 0; attempt < kAttempts && progress.next == Progress::kTryAgain; ++attempt) {
    progress = List(ListCommand(serial, user_option, filter), cancel, after_silence, use);
    if (progress.next == Progress::kRefused) progress = ChooseCurrentUser(serial, cancel, user_option);
  }
  return progress.code;
}

// The device lists every package whose name contains the given one. Each of the others is logged.
bool Lists(std::string_view listing, const char* package, const CallLog& log) {
  bool found = false;
  ForEachPiece(listing, "\n", [&](std::string_view line) {
    const auto listed = MatchPackageLine(line);
    if (!listed) return true;
    found = *listed == package;
    LogEx(kLogModule, kLogInfo, found ? "%s  %s is installed." : "%s  %s is not installed.", log.function(),
          package);
    return !found;
  });
  return found;
}

// Hands out the listing as the device printed it, line breaks included.
int HandOutListing(const char* serial, const char* filter, char** list, int* list_len, const bool* cancel) {
  return ListPackages(serial, filter, cancel, AfterSilence::kGiveUp, [&](std::string_view listing) {
    *list_len = static_cast<int>(listing.size());
    *list = NewBlock(listing);
  });
}

}  // namespace
}  // namespace darokleim::sdk

int AdbCheckAppInstalled(const char* serial, const char* package, bool* installed, const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, package, installed)) return log.InvalidParam();
  *installed = false;
  return log.Leave(
      ListPackages(serial, package, cancel, AfterSilence::kTryAgain,
                   [&](std::string_view listing) { *installed = Lists(listing, package, log); }));
}

int AdbGetPackagesNameOfInstalled(const char* serial, const char* filter, char** list, int* list_len,
                                  const bool* cancel) {
  CallLog log(__func__);
  if (AnyNull(serial, filter)) return log.InvalidParam();
  return log.Leave(HandOutListing(serial, filter, list, list_len, cancel));
}

int AdbGetPackagesNameList(const char* serial, const char* filter, char** list, int* list_len) {
  CallLog log(__func__);
  if (AnyNull(serial)) return log.InvalidParam();
  const bool never_cancelled = false;
  return log.Leave(HandOutListing(serial, filter, list, list_len, &never_cancelled));
}
