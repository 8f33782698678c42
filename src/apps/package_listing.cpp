#include "src/apps/package_listing.h"

#include <string>

#include "darokleim.h"
#include "src/apps/package_output.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"

namespace darokleim::sdk {
namespace {

constexpr int kAttempts = 2;
constexpr std::size_t kCommandCapacity = 256;

// Where a step leaves the query: at the end of it, or, unless the attempts are used up, before another one.
struct Progress {
  int code;
  enum { kSettled, kRefused, kTryAgain } next;
};

std::string ListCommand(const char* serial, const std::string& user_option, const char* filter) {
  if (!filter) {
    return Cut(kCommandCapacity, " -s %s shell pm list packages%s", serial, user_option.c_str());
  }
  return Cut(kCommandCapacity, " -s %s shell pm list packages%s %s", serial, user_option.c_str(), filter);
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

// Makes the user option name the device's current user. When the device names none, it stays.
Progress ChooseCurrentUser(const char* serial, const bool* cancel, std::string& user_option) {
  const AdbRun run(Cut(kCommandCapacity, " -s %s shell dumpsys user", serial), cancel);
  const int code = run.Classify();
  if (run.has_output() && code != ADB_RESULT_OK) return {code, Progress::kSettled};
  const auto user = FindCurrentUser(run.output());
  if (user) user_option = std::string(" --user ").append(*user);
  return {code, Progress::kTryAgain};
}

}  // namespace

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

}  // namespace darokleim::sdk
