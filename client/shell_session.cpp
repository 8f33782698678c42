// dk_shell_start and its like: a command that is given input while it runs.
#include <poll.h>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "client/shell.h"
#include "client/worker.h"

namespace darokleim::client {

constexpr std::string_view kRunAShell = "run a shell";
// Bytes of input that wait for the connection, besides those that it has.
constexpr std::size_t kMostInputWaiting = 64 * 1024;
// A terminal's input cannot end; this is what the end is typed as.
constexpr char kTypedEndOfFile[] = "\x04";

struct ShellWindow {
  std::uint16_t rows;
  std::uint16_t columns;
};

// What callers ask of a session, from any thread, until its own thread takes it.
class SessionInput {
 public:
  struct Taken {
    std::string bytes;
    bool is_end = false;  // after them
    std::optional<ShellWindow> size;
  };

  Status Open() {
    for (auto* const token : {&wake_, &room_}) {
      auto made = adb::CancelToken::Create();
      if (!made.ok()) return FromAdb(made.error(), kRunAShell, "");
      *token = std::move(*made);
    }
    return {};
  }

  // may_wait: for room.
  Status Write(std::string_view bytes, bool may_wait, const Limits& limits) {
    for (;;) {
      {
        const std::lock_guard lock(mutex_);
        if (ended_) return Failed(DK_STOPPED, kWrite, "the session has ended");
        if (closed_) return Failed(DK_STOPPED, kWrite, "its input was closed");
        const std::size_t room = kMostInputWaiting - std::min(kMostInputWaiting, bytes_.size());
        const std::string_view piece = bytes.substr(0, may_wait ? room : bytes.size());
        bytes_.append(piece);
        bytes.remove_prefix(piece.size());
        if (!piece.empty()) wake_->Set();
        if (bytes.empty()) return {};
        room_->Reset();
      }
      auto ready = adb::WaitFor(room_->descriptor(), POLLIN, limits);
      if (!ready.ok()) return FromAdb(ready.error(), kWrite, "");
    }
  }

  void Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    wake_->Set();
  }

  void Resize(ShellWindow size) {
    const std::lock_guard lock(mutex_);
    size_ = size;
    wake_->Set();
  }

  // For the session's thread. Readable when there is something to take.
  int descriptor() const { return wake_->descriptor(); }
  Taken Take() {
    const std::lock_guard lock(mutex_);
    wake_->Reset();
    Taken taken;
    taken.size = std::exchange(size_, std::nullopt);
    taken.bytes = std::exchange(bytes_, {});
    taken.is_end = closed_ && !std::exchange(end_is_taken_, true);
    room_->Set();
    return taken;
  }
  void End() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    room_->Set();
  }

 private:
  static constexpr std::string_view kWrite = "give input to a shell";

  std::mutex mutex_;
  std::string bytes_;
  std::optional<ShellWindow> size_;
  bool closed_ = false, end_is_taken_ = false, ended_ = false;
  std::unique_ptr<adb::CancelToken> wake_, room_;
};

}  // namespace darokleim::client

struct dk_shell : darokleim::client::Worker {
 public:
  dk_shell(darokleim::client::OpenedShell shell, bool has_terminal, dk_on_shell_output on_output,
           dk_on_shell_end on_end, void* user)
      : shell_(std::move(shell)),
        has_terminal_(has_terminal),
        on_output_(on_output),
        on_end_(on_end),
        user_(user) {}

  darokleim::client::SessionInput& input() { return input_; }
  using Worker::is_own_thread;

 private:
  void Work() override {
    ServeToEnd([this] { return Serve(); }, [this](dk_code code, const dk_error* error) { End(code, error); });
  }

  void End(dk_code code, const dk_error* error) {
    input_.End();
    if (on_end_ == nullptr || stopped_by_callback()) return;
    on_end_(user_, code, shell_.session.exit_status().value_or(-1), error);
  }

  darokleim::client::Status Serve() {
    const auto receive = [this](darokleim::adb::ShellStream stream, std::string_view data) {
      const bool is_error = stream == darokleim::adb::ShellStream::kErrors;
      if (!stopping() && !data.empty())
        on_output_(user_, is_error ? DK_STDERR : DK_STDOUT, data.data(), data.size());
      return !stopping();
    };
    while (!stopping()) {
      QueueInput();
      auto ended = shell_.session.Advance(receive);
      if (!ended.ok())
        return darokleim::client::FromAdb(ended.error(), darokleim::client::kRunAShell, shell_.device_serial);
      if (*ended) break;
      Wait();
    }
    return {};
  }

  // More is taken when what was taken before is on its way.
  void QueueInput() {
    if (shell_.session.connection().queued() > 0) return;
    auto taken = input_.Take();
    if (taken.size) shell_.session.QueueWindowSize(taken.size->rows, taken.size->columns);
    shell_.session.QueueInput(taken.bytes);
    if (!taken.is_end) return;
    if (has_terminal_) {
      shell_.session.QueueInput(darokleim::client::kTypedEndOfFile);
    } else {
      shell_.session.QueueEndOfInput();
    }
  }

  void Wait() {
    auto& connection = shell_.session.connection();
    const bool writes = connection.queued() > 0;
    std::array<pollfd, 3> waits = {
        {{connection.descriptor(), static_cast<short>(POLLIN | (writes ? POLLOUT : 0)), 0},
         {writes ? -1 : input_.descriptor(), POLLIN, 0},
         {limits().interrupt->descriptor(), POLLIN, 0}}};
    poll(waits.data(), waits.size(), -1);
  }

  darokleim::client::OpenedShell shell_;
  const bool has_terminal_;
  const dk_on_shell_output on_output_;
  const dk_on_shell_end on_end_;
  void* const user_;
  darokleim::client::SessionInput input_;
};

namespace darokleim::client {
namespace {

Result<OpenedShell> OpenSession(dk_device* device, const dk_shell_options& options, const Limits& limits) {
  const std::string_view type = options.terminal_type == nullptr ? "" : options.terminal_type;
  if (type.find_first_of(",:") != std::string_view::npos)
    return InvalidArgument("the type of the terminal has a comma or a colon");
  auto form = ShellFormOf(device, kRunAShell, limits);
  if (!form.ok()) return form.TakeError();
  const bool is_modern = *form == adb::ShellForm::kV2;
  if (!is_modern && !options.terminal)
    return Failed(DK_UNSUPPORTED, kRunAShell, "phones before Android 7 take input through a terminal alone");
  adb::ShellCommand command;
  command.form = is_modern ? adb::ShellForm::kV2 : adb::ShellForm::kOld;
  if (options.command != nullptr) command.command = options.command;
  command.terminal = type;
  command.with_input = true;
  command.pseudo_terminal = options.terminal;
  const auto selector = adb::DeviceSelector::Serial(device->serial);
  auto session = adb::ShellSession::Start(device->context->server, selector, command, limits);
  Log(*device->context, kRunAShell, session.ok() ? "runs" : session.error().message);
  if (!session.ok()) return ServiceError(device, session.error(), kRunAShell, limits);
  return OpenedShell{*std::move(session), device->serial};
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Status;

dk_code dk_shell_start(dk_device* device, const dk_shell_options* given, dk_on_shell_output on_output,
                       dk_on_shell_end on_end, void* user, dk_shell** shell, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> Status {
    if (shell == nullptr) return client::InvalidArgument("no place for the session");
    *shell = nullptr;
    if (device == nullptr || on_output == nullptr) return client::InvalidArgument("a null pointer");
    const auto options = client::ReadOptions<dk_shell_options>(given, DK_SHELL_OPTIONS_INIT);
    auto opened = client::OpenSession(device, options, limits);
    if (!opened.ok()) return opened.TakeError();
    auto made = std::make_unique<dk_shell>(*std::move(opened), options.terminal, on_output, on_end, user);
    if (Status ready = made->input().Open(); !ready.ok()) return ready;
    if (options.terminal && options.rows > 0) made->input().Resize({options.rows, options.columns});
    return client::StartFor(std::move(made), client::kRunAShell, shell);
  });
}

dk_code dk_shell_write(dk_shell* shell, const char* data, size_t size, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> Status {
    if (shell == nullptr || (data == nullptr && size > 0)) return client::InvalidArgument("a null pointer");
    return shell->input().Write({data, size}, !shell->is_own_thread(), limits);
  });
}

dk_code dk_shell_close_input(dk_shell* shell, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits&) -> Status {
    if (shell == nullptr) return client::InvalidArgument("no session");
    shell->input().Close();
    return {};
  });
}

dk_code dk_shell_resize(dk_shell* shell, uint16_t rows, uint16_t columns, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits&) -> Status {
    if (shell == nullptr) return client::InvalidArgument("no session");
    shell->input().Resize({rows, columns});
    return {};
  });
}

void dk_shell_stop(dk_shell* shell) {
  if (shell != nullptr) client::Worker::Stop(shell);
}
