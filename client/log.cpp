// dk_log_start, dk_log_stop, dk_log_clear: the phone's log, followed.
#include <charconv>
#include <string>
#include <utility>

#include "base/shell_quoting.h"
#include "client/log_records.h"
#include "client/shell.h"
#include "client/worker.h"

namespace darokleim::client {
namespace {

// The phone's time first, in seconds: what is older than the start can be left out by it.
std::string LogScript(const dk_log_options& options) {
  std::string script = "date +%s; exec logcat -B";
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
  dk_log(darokleim::client::OpenedShell shell, const dk_log_options& options, dk_on_record on_record,
         dk_on_log_end on_end, void* user)
      : shell_(std::move(shell)),
        leaves_out_(options.only_new),
        stop_at_end_(options.stop_at_end),
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
      readable = Take(data);
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

  bool Take(std::string_view data) {
    if (!begun_) {
      constexpr std::size_t kLongestTime = 32;
      first_line_.append(data);
      const std::size_t end = first_line_.find('\n');
      if (end == std::string::npos) return first_line_.size() < kLongestTime;
      std::from_chars(first_line_.data(), first_line_.data() + end, started_at_);
      begun_ = true;
      const std::string rest = first_line_.substr(end + 1);
      return TakeRecords(rest);
    }
    return TakeRecords(data);
  }

  bool TakeRecords(std::string_view data) {
    return records_.Read(data, [this](const dk_log_record& record) {
      leaves_out_ = leaves_out_ && record.seconds < started_at_;
      if (!stopping() && !leaves_out_) on_record_(user_, &record);
    });
  }

  darokleim::client::OpenedShell shell_;
  bool
      leaves_out_;  // records, until the first one of the start or later: the phone's clock may be set back after it
  const bool stop_at_end_;
  const dk_on_record on_record_;
  const dk_on_log_end on_end_;
  void* const user_;
  bool begun_ = false;
  std::string first_line_;
  std::int64_t started_at_ = 0;
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
    auto shell = client::OpenShell(device, client::LogScript(options), kWhat, limits);
    if (!shell.ok()) return shell.TakeError();
    return client::StartFor(std::make_unique<dk_log>(*std::move(shell), options, on_record, on_end, user),
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
