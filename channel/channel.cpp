// The four functions of the channel.
#include <exception>
#include <filesystem>
#include <string>
#include <system_error>

#include "channel/channel_log.h"
#include "channel/direct/run.h"
#include "channel/direct/wait_limits.h"
#include "channel/output/output_block.h"
#include "channel/process/run.h"
#include "channel/process/stream_registry.h"
#include "channel/settings.h"
#include "channel/status.h"
#include "src/platform/command_channel.h"

#define DAROKLEIM_CHANNEL_EXPORT __attribute__((visibility("default")))

using namespace darokleim::channel;

namespace {

// No exception may reach the caller. The only possible ones say that memory or another resource ran out.
template <typename Function>
int WithoutException(Function function) {
  try {
    return function();
  } catch (const std::exception&) {
    return kSystemRefused;
  }
}

// So that a host that changes its directory later runs the same adb. A path that cannot be made absolute stays.
std::string AbsolutePath(const char* path) {
  if (*path == '\0') return path;
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.native();
}

int RunByRoute(const Settings& settings, const Command& command, const CancelFlag& cancel,
               OutputBuffer* output, Route* route) {
  if (settings.mode == Mode::kDirect) {
    const direct::FlagInterrupt interrupt(cancel);
    if (const auto ending = direct::Run(command, {.interrupt = &interrupt}, output)) {
      *route = Route::kDirect;
      if (output->status() != kDelivered) return output->status();
      return direct::StatusOf(command, *ending, output->text());
    }
  }
  return RunAdb(settings.adb_path, command, cancel, output);
}

int Run(const Settings& settings, const char* args, const CancelFlag& cancel, OutputBuffer* output,
        Route* route) {
  if (cancel.IsSet()) return kCancelled;
  const Command command = ReadCommand(args, settings.assist());
  const int status = RunByRoute(settings, command, cancel, output, route);
  if (status >= kNotInitialised) return status;
  output->ConvertLineEnds(command.line_ends);
  return output->status() == kDelivered ? status : output->status();
}

int RunIntoBuffer(const Settings& settings, const char* args, const bool* cancel, char** out, int* out_len,
                  Route* route) {
  OutputBuffer output;
  const CancelFlag flag(cancel, settings.time_limit);
  const int status = Run(settings, args, flag, &output, route);
  if (status == kCancelled && flag.TimeIsUp()) LogTimeIsUp();
  if (status >= kNotInitialised) return status;
  *out_len = static_cast<int>(output.text().size());
  *out = output.Release();
  return *out == nullptr ? int{output.status()} : status;
}

}  // namespace

extern "C" {

DAROKLEIM_CHANNEL_EXPORT int InitAdbCommuncation2Server(const char* adb_path, const char* log_dir,
                                                        const void* log_context) {
  return WithoutException([&]() -> int {
    if (log_dir != nullptr) OpenLog(log_context, AbsolutePath(log_dir));
    if (adb_path == nullptr) return kBadArgument;
    SetSettings({AbsolutePath(adb_path), ModeFromEnvironment(), TimeLimitFromEnvironment()});
    return kDelivered;
  });
}

DAROKLEIM_CHANNEL_EXPORT int ExecuteAdbCommandSynchronization(const char* args, const bool* cancel,
                                                              char** out, int* out_len) {
  if (args == nullptr || out == nullptr || out_len == nullptr) return kBadArgument;
  *out = nullptr;
  *out_len = 0;
  return WithoutException([&]() -> int {
    const std::optional<Settings> settings = CurrentSettings();
    if (!settings) return kNotInitialised;
    const CommandTimer timer;
    Route route = Route::kAdb;
    const int status =
        WithoutException([&] { return RunIntoBuffer(*settings, args, cancel, out, out_len, &route); });
    if (*out == nullptr) *out_len = 0;
    timer.Log(args, route, status, *out_len);
    return status;
  });
}

DAROKLEIM_CHANNEL_EXPORT int ExecuteAdbCommandAnsynchronization(const char* args, const bool* cancel,
                                                                void* context, void* on_output) {
  if (args == nullptr) return kBadArgument;
  return WithoutException([&]() -> int {
    const std::optional<Settings> settings = CurrentSettings();
    if (!settings) return kNotInitialised;
    return StartStream(*settings, args, CancelFlag(cancel),
                       {reinterpret_cast<OutputReceiver::Function>(on_output), context});
  });
}

DAROKLEIM_CHANNEL_EXPORT void ReleaseAdbOutBuffer(char* out) {
  FreeBlock(out);
}

}  // extern "C"
