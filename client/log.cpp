// dk_log_start, dk_log_stop, dk_log_clear: the phone's log, followed.
#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/shell_quoting.h"
#include "client/log_records.h"
#include "client/shell.h"
#include "client/worker.h"

namespace darokleim::client {
namespace {

// What the phone's clock shows, in seconds: by it, what was logged before can be left out.
Result<std::int64_t> SecondOfPhone(dk_device* device, std::string_view what, const Limits& limits) {
  constexpr std::size_t kMostOfNumber = 4096;
  auto ran = CollectScript(device, "date +%s", what, limits, kMostOfNumber);
  if (!ran.ok()) return ran.TakeError();
  if (ran->exit_status != 0) return CommandFailed(what, *ran);
  std::int64_t second = 0;
  if (std::from_chars(ran->out.data(), ran->out.data() + ran->out.size(), second).ec != std::errc())
    return Failed(DK_ANSWER_UNREADABLE, what, "the phone's clock shows no time");
  return second;
}

std::string LogScript(const dk_log_options& options) {
  std::string script = "exec logcat -B";
  if (options.stop_at_end) script += " -d";
  // With -T the phone goes on after them, with -t it ends.
  if (options.most_old > 0)
    script += (options.stop_at_end ? " -t " : " -T ") + std::to_string(options.most_old);
  if (options.buffers != nullptr) script += " -b " + base::QuoteForShell(options.buffers);
  for (std::size_t i = 0; i < options.filter_count; ++i)
    script += " " + base::QuoteForShell(options.filters[i]);
  return script;
}

}  // namespace
}  // namespace darokleim::client

struct dk_log : darokleim::client::Worker {
 public:
  dk_log(darokleim::client::OpenedShell shell, std::optional<std::int64_t> leave_out_before, bool stop_at_end,
         dk_on_record on_record, dk_on_log_end on_end, void* user)
      : shell_(std::move(shell)),
        leave_out_before_(leave_out_before),
        stop_at_end_(stop_at_end),
        on_record_(on_record),
        on_end_(on_end),
        user_(user) {}

 private:
  void Work() override {
    ServeToEnd([this] { return Follow(); },
               [this](dk_code code, const dk_error* error) { End(code, error); });
  }

  void End(dk_code code, const dk_error* error) {
    if (on_end_ != nullptr && !stopped_by_callback()) on_end_(user_, code, error);
  }

  darokleim::client::Status Follow() {
    using namespace darokleim;
    constexpr std::string_view kWhat = "follow the phone's log";
    bool readable = true;
    const auto receive = [&](std::string_view data) {
      readable = TakeRecords(data);
      return readable && !stopping();
    };
    auto status = client::FollowShell(&shell_, kWhat, receive, limits());
    if (!readable) return client::Failed(DK_ANSWER_UNREADABLE, kWhat, "the phone's log has an unknown form");
    if (!status.ok()) return status.TakeError();
    if (*status == 0 && stop_at_end_) return {};
    client::Error error = client::Failed(DK_COMMAND_FAILED, kWhat, "the phone's logcat ended");
    error.exit_status = *status;
    return error;
  }

  bool TakeRecords(std::string_view data) {
    return records_.Read(data, [this](const dk_log_record& record) {
      if (leave_out_before_ && record.seconds >= *leave_out_before_) leave_out_before_.reset();
      if (!stopping() && !leave_out_before_) on_record_(user_, &record);
    });
  }

  darokleim::client::OpenedShell shell_;
  // Up to the first record of this second or later: the phone's clock may be set back after it.
  std::optional<std::int64_t> leave_out_before_;
  const bool stop_at_end_;
  const dk_on_record on_record_;
  const dk_on_log_end on_end_;
  void* const user_;
  darokleim::client::LogRecords records_;
};

using namespace darokleim;

dk_code dk_log_start(dk_device* device, const dk_log_options* given, dk_on_record on_record,
                     dk_on_log_end on_end, void* user, dk_log** log, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (log == nullptr) return client::InvalidArgument("no place for the log");
    *log = nullptr;
    if (device == nullptr || on_record == nullptr) return client::InvalidArgument("a null pointer");
    constexpr std::string_view kWhat = "follow the phone's log";
    const auto options = client::ReadOptions<dk_log_options>(given, DK_LOG_OPTIONS_INIT);
    std::optional<std::int64_t> leave_out_before;
    if (options.only_new) {
      auto now = client::SecondOfPhone(device, kWhat, limits);
      if (!now.ok()) return now.TakeError();
      leave_out_before = *now;
    }
    auto shell = client::OpenShell(device, client::LogScript(options), kWhat, limits);
    if (!shell.ok()) return shell.TakeError();
    return client::StartFor(std::make_unique<dk_log>(*std::move(shell), leave_out_before, options.stop_at_end,
                                                     on_record, on_end, user),
                            kWhat, log);
  });
}

void dk_log_stop(dk_log* log) {
  if (log != nullptr) client::Worker::Stop(log);
}

dk_code dk_log_clear(dk_device* device, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    constexpr std::string_view kWhat = "clear the phone's log";
    auto ran = client::CollectScript(device, "logcat -c", kWhat, limits);
    if (!ran.ok()) return ran.TakeError();
    if (ran->exit_status != 0) return client::CommandFailed(kWhat, *ran);
    return {};
  });
}
