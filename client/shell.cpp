#include "client/shell.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdlib>
#include <functional>

#include "base/shell_quoting.h"
#include "client/exit_mark.h"

namespace darokleim::client {
namespace {

using adb::ShellForm;

// The newest form that this phone, behind this server, has.
Result<ShellForm> FormOf(Features* features, std::string_view what, const Limits& limits) {
  auto known = features->Get(what, limits);
  if (!known.ok()) return known.TakeError();
  return (*known)->shell_v2() ? ShellForm::kV2 : ShellForm::kRaw;
}

// What phones without the newest form take, with the name of the service. The server of one before Android 6 may even end at more.
constexpr std::size_t kLongestOldCommand = 4096;

Result<adb::ShellSession> Start(dk_device* device, ShellForm form, std::string command, bool with_input,
                                std::string_view what, const Limits& limits) {
  adb::ShellCommand shell;
  shell.form = form;
  shell.command = std::move(command);
  shell.with_input = with_input;
  if (form != ShellForm::kV2 && shell.Service().size() >= kLongestOldCommand)
    return Failed(DK_NAME_TOO_LONG, what, "the path or text is too long for this phone");
  const auto selector = adb::DeviceSelector::Serial(device->serial);
  auto session = adb::ShellSession::Start(device->context->server, selector, shell, limits);
  if (!session.ok()) return ServiceError(device, session.error(), what, limits);
  return *std::move(session);
}

// Phones before Android 5 do not know exec; they close the connection or refuse. Nothing has run then.
bool RefusesExec(const Error& error) {
  return error.code == DK_SERVER_REFUSED;
}

struct Started {
  adb::ShellSession session;
  ShellForm form;
};

Result<Started> StartOld(dk_device* device, const std::string& command, std::string_view what,
                         const Limits& limits) {
  auto raw = Start(device, ShellForm::kRaw, command, false, what, limits);
  if (raw.ok()) return Started{*std::move(raw), ShellForm::kRaw};
  if (!RefusesExec(raw.error())) return raw.TakeError();
  auto old = Start(device, ShellForm::kOld, command, false, what, limits);
  if (!old.ok()) return old.TakeError();
  return Started{*std::move(old), ShellForm::kOld};
}

Result<int> RunModern(dk_device* device, std::string_view script, std::string_view what,
                      const Receive& receive, const Limits& limits, const NextInput& input) {
  auto session = Start(device, ShellForm::kV2, std::string(script), input != nullptr, what, limits);
  if (!session.ok()) return session.TakeError();
  auto end = input ? session->Exchange(input, receive, limits) : session->ReadAll(receive, limits);
  if (!end.ok()) return DeviceError(device, end.error(), what);
  return end->exit_status.value_or(-1);
}

Result<int> FollowOld(adb::ShellSession* session, ShellForm form, const ExitMark& mark, std::string_view what,
                      const Receive& receive, const dk_device* device, const Limits& limits) {
  ExitMarkReader reader(mark, form == ShellForm::kOld);
  const auto pass = [&](adb::ShellStream, std::string_view data) {
    const std::string passed = reader.Pass(data);
    return passed.empty() || receive(adb::ShellStream::kOutput, passed);
  };
  auto end = session->ReadAll(pass, limits);
  if (!end.ok()) return DeviceError(device, end.error(), what);
  const std::optional<int> status = reader.Finish();
  if (!status) return Failed(DK_CONNECTION_LOST, what, "the end of the phone's answer is missing");
  const std::string rest = reader.TakeRest();
  if (!rest.empty() && !receive(adb::ShellStream::kOutput, rest)) return Stopped(what);
  return *status;
}

Result<int> RunOld(dk_device* device, std::string_view script, std::string_view what, const Receive& receive,
                   const Limits& limits) {
  const ExitMark mark;
  auto started = StartOld(device, mark.Wrap(script), what, limits);
  if (!started.ok()) return started.TakeError();
  return FollowOld(&started->session, started->form, mark, what, receive, device, limits);
}

void LogEnd(const dk_device* device, std::string_view what, const Result<int>& status) {
  Log(*device->context, what,
      status.ok() ? "exit status " + std::to_string(*status) : status.error().message);
}

// Takes what a script prints, as far as it is not too much.
struct Collector {
  bool operator()(adb::ShellStream stream, std::string_view data) {
    std::string& text = stream == adb::ShellStream::kErrors ? collected.err : collected.out;
    too_much = text.size() + data.size() > most;
    if (!too_much) text.append(data);
    return !too_much;
  }
  Result<Collected> Finish(Result<int> status, std::string_view what) {
    if (too_much) return Failed(DK_ANSWER_UNREADABLE, what, "the phone's answer does not end");
    if (!status.ok()) return status.TakeError();
    collected.exit_status = *status;
    return std::move(collected);
  }

  std::size_t most;
  Collected collected = {};
  bool too_much = false;
};

}  // namespace

Result<ShellForm> ShellFormOf(dk_device* device, std::string_view what, const Limits& limits) {
  Features features(device);
  return FormOf(&features, what, limits);
}

std::string CommandLine(std::initializer_list<std::string_view> words) {
  std::string line;
  for (const std::string_view word : words) {
    if (!line.empty()) line += ' ';
    line += base::QuoteForShell(word);
  }
  return line;
}

Result<int> RunScript(dk_device* device, std::string_view script, std::string_view what,
                      const Receive& receive, const Limits& limits, const NextInput& input) {
  auto form = ShellFormOf(device, what, limits);
  if (!form.ok()) return form.TakeError();
  Result<int> status =
      *form == ShellForm::kV2 ? RunModern(device, script, what, receive, limits, input)
      : input ? Failed(DK_UNSUPPORTED, what, "phones before Android 7 take no input for a command")
              : RunOld(device, script, what, receive, limits);
  LogEnd(device, what, status);
  return status;
}

Result<OpenedShell> OpenShell(dk_device* device, std::string_view script, std::string_view what,
                              const Limits& limits) {
  auto form = ShellFormOf(device, what, limits);
  if (!form.ok()) return form.TakeError();
  auto session = Start(device, *form, std::string(script), false, what, limits);
  if (session.ok()) return OpenedShell{*std::move(session), device->serial};
  if (*form == ShellForm::kRaw && RefusesExec(session.error())) {
    return Failed(DK_UNSUPPORTED, what, "the phone is older than Android 5");
  }
  return session.TakeError();
}

Result<int> FollowShell(OpenedShell* shell, std::string_view what,
                        const std::function<bool(std::string_view)>& receive, const Limits& limits) {
  const auto pass = [&](adb::ShellStream stream, std::string_view data) {
    return stream == adb::ShellStream::kErrors || receive(data);
  };
  auto end = shell->session.ReadAll(pass, limits);
  if (!end.ok()) return FromAdb(end.error(), what, shell->device_serial);
  return end->exit_status.value_or(0);
}

Result<Collected> CollectScript(dk_device* device, std::string_view script, std::string_view what,
                                const Limits& limits, std::size_t most) {
  Collector collector{most};
  auto status = RunScript(device, script, what, std::ref(collector), limits);
  return collector.Finish(std::move(status), what);
}

Result<RunningScript> RunningScript::Start(Features* features, std::string_view script, std::string_view what,
                                           const Limits& limits) {
  auto form = FormOf(features, what, limits);
  if (!form.ok()) return form.TakeError();
  dk_device* const device = features->device();
  if (*form == ShellForm::kV2) {
    auto session = client::Start(device, *form, std::string(script), false, what, limits);
    if (!session.ok()) return session.TakeError();
    return RunningScript(device, what, *std::move(session), *form, std::nullopt);
  }
  ExitMark mark;
  auto started = StartOld(device, mark.Wrap(script), what, limits);
  if (!started.ok()) return started.TakeError();
  return RunningScript(device, what, std::move(started->session), started->form, std::move(mark));
}

Result<Collected> RunningScript::Finish(const Limits& limits) {
  Collector collector{kMostCollected};
  const auto follow = [&]() -> Result<int> {
    if (mark_) return FollowOld(&session_, form_, *mark_, what_, std::ref(collector), device_, limits);
    auto end = session_.ReadAll(std::ref(collector), limits);
    if (!end.ok()) return DeviceError(device_, end.error(), what_);
    return end->exit_status.value_or(-1);
  };
  Result<int> status = follow();
  LogEnd(device_, what_, status);
  return collector.Finish(std::move(status), what_);
}

Error CommandFailed(std::string_view what, const Collected& collected) {
  const std::string& said = collected.err.empty() ? collected.out : collected.err;
  std::string first;
  ForEachLine(said, [&](std::string_view line) {
    first = Shown(line);
    return line.empty();
  });
  if (first.empty())
    first = "the phone's program ended with exit status " + std::to_string(collected.exit_status);
  Error error = Failed(DK_COMMAND_FAILED, what, first);
  constexpr std::size_t kMostWords = 64 * 1024;
  if (!said.empty()) error.words = said.substr(0, kMostWords);
  error.exit_status = collected.exit_status;
  return error;
}

}  // namespace darokleim::client

using namespace darokleim;
using client::Limits;
using client::Status;

namespace darokleim::client {
namespace {

Status RunForCaller(dk_device* device, std::string_view script, const dk_run_options* given,
                    dk_output* output, const Limits& limits) {
  const auto options = ReadOptions<dk_run_options>(given, DK_RUN_OPTIONS_INIT);
  constexpr std::size_t kUsualMost = 1024 * 1024;
  const std::size_t most = options.most_collected == 0 ? kUsualMost : options.most_collected;
  std::string out, err;
  bool cut = false;
  const auto receive = [&](adb::ShellStream stream, std::string_view data) {
    const bool errors = stream == adb::ShellStream::kErrors;
    if (options.on_output != nullptr) {
      return options.on_output(options.user, errors ? DK_STDERR : DK_STDOUT, data.data(), data.size());
    }
    std::string& kept = errors ? err : out;
    const std::size_t room = most - kept.size();
    cut = cut || data.size() > room;
    kept.append(data.substr(0, room));
    return true;
  };
  NextInput input;
  if (options.input != nullptr) {
    input = [rest = std::string_view(options.input, options.input_size)]() mutable {
      const std::string_view piece = rest.substr(0, kBlock);
      rest.remove_prefix(piece.size());
      return piece;
    };
  }
  auto status = RunScript(device, script, "run a command", receive, limits, input);
  if (!status.ok()) return status.TakeError();
  if (output == nullptr) return {};
  dk_output made = {};
  made.exit_status = *status;
  made.cut = cut;
  made.out = NewBytes(out);
  try {
    made.err = NewBytes(err);
  } catch (...) {
    dk_bytes_free(&made.out);
    throw;
  }
  *output = made;
  return {};
}

}  // namespace
}  // namespace darokleim::client

dk_code dk_run(dk_device* device, const char* const* arguments, size_t count, const dk_run_options* options,
               dk_output* output, const dk_call* call) {
  return client::Answer(call, [&](const Limits& limits) -> Status {
    if (output != nullptr) *output = {};
    if (device == nullptr || arguments == nullptr || count == 0)
      return client::InvalidArgument("no command to run");
    std::string script;
    for (size_t i = 0; i < count; ++i) {
      if (arguments[i] == nullptr) return client::InvalidArgument("an argument is null");
      if (i > 0) script += ' ';
      script += base::QuoteForShell(arguments[i]);
    }
    return client::RunForCaller(device, script, options, output, limits);
  });
}

dk_code dk_run_script(dk_device* device, const char* script, const dk_run_options* options, dk_output* output,
                      const dk_call* call) {
  return client::Answer(call, [&](const Limits& limits) -> Status {
    if (output != nullptr) *output = {};
    if (device == nullptr || script == nullptr) return client::InvalidArgument("no script to run");
    return client::RunForCaller(device, script, options, output, limits);
  });
}

void dk_output_free(dk_output* output) {
  if (output == nullptr) return;
  dk_bytes_free(&output->out);
  dk_bytes_free(&output->err);
}

dk_code dk_quote(const char* text, dk_bytes* quoted) {
  return client::Answer(nullptr, [&](const Limits&) -> Status {
    if (quoted == nullptr) return client::InvalidArgument("no place for the text");
    *quoted = {};
    if (text == nullptr) return client::InvalidArgument("no text");
    *quoted = client::NewBytes(base::QuoteForShell(text));
    return {};
  });
}
