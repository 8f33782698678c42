#include "tools/phone/device/shell_session.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "tools/phone/common/io.h"
#include "tools/phone/common/numbers.h"

namespace darokleim::phone {

namespace {

constexpr size_t kBufferSize = 64 * 1024;
constexpr std::chrono::milliseconds kTimeToFinishInput(1000);

int ExitStatusOf(int status) {
  return WIFSIGNALED(status) ? 0x80 | WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

ShellSession::ShellSession(const ShellRequest& request, ShellCommand command, base::UniqueFd client)
    : request_(request), command_(std::move(command)), client_(std::move(client)), buffer_(kBufferSize) {
  // A command that does not read its input must not keep its output waiting.
  fcntl(command_.input.get(), F_SETFL, fcntl(command_.input.get(), F_GETFL) | O_NONBLOCK);
}

void ShellSession::Run() {
  while (PassStreams()) {
  }
  CloseInput();
  const std::optional<int> status = client_gone_ ? std::nullopt : WaitForEnd();
  if (!status) {
    command_.output.Reset();
    command_.errors.Reset();
    EndSession(command_.pid);
    return;
  }
  if (request_.packets)
    SendShellPacket(client_.get(), ShellPacket::kExit, std::string(1, static_cast<char>(*status)));
  FinishStream(std::move(client_));
}

// One round of whatever is ready; false when there is nothing more to pass.
bool ShellSession::PassStreams() {
  if (!command_.output.valid() && !command_.errors.valid()) return false;
  if (client_gone_ && (!last_chance_ || Clock::now() >= *last_chance_)) return false;
  const bool input_waits = !pending_input_.empty();
  std::array<pollfd, 4> ends = {{
      {client_gone_ ? -1 : client_.get(), static_cast<short>(input_waits ? 0 : POLLIN), 0},
      {input_waits ? command_.input.get() : -1, POLLOUT, 0},
      {command_.output.get(), POLLIN, 0},
      {command_.errors.get(), POLLIN, 0},
  }};
  if (poll(ends.data(), ends.size(), WaitMilliseconds()) < 0) return errno == EINTR;
  if (ends[0].revents != 0) FromClient();
  if (ends[1].revents != 0) ToCommand();
  const auto pass_output = [&] {
    if (ends[2].revents != 0) FromCommand(&command_.output, ShellPacket::kOutput);
  };
  // Programs write both in pieces. Whichever was left in the middle of a line goes on first, so that neither is in the
  // middle of the other; otherwise an error, which is written before what follows it.
  const bool output_first = output_in_line_ && !errors_in_line_;
  if (output_first) pass_output();
  if (ends[3].revents != 0) FromCommand(&command_.errors, ShellPacket::kErrors);
  if (!output_first) pass_output();
  return true;
}

int ShellSession::WaitMilliseconds() const {
  if (!last_chance_) return -1;
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(*last_chance_ - Clock::now()).count();
  return left > 0 ? static_cast<int>(left) + 1 : 0;
}

void ShellSession::FromClient() {
  const ssize_t count = ReadSome(client_.get(), buffer_.data(), buffer_.size());
  if (count <= 0) {
    ClientWentAway();
    return;
  }
  const std::string_view bytes(buffer_.data(), static_cast<size_t>(count));
  if (!request_.packets) {
    Receive(ShellPacket::kInput, bytes);
  } else if (!packets_.Feed(bytes,
                            [this](ShellPacket kind, std::string_view data) { Receive(kind, data); })) {
    ClientWentAway();
  }
}

void ShellSession::ClientWentAway() {
  client_gone_ = true;
  // exec-in has no other way to end its input.
  if (!request_.packets && request_.streams == ShellRequest::Streams::kPipes) {
    last_chance_ = Clock::now() + kTimeToFinishInput;
    Receive(ShellPacket::kCloseInput, "");
  }
}

void ShellSession::Receive(ShellPacket kind, std::string_view data) {
  switch (kind) {
    case ShellPacket::kInput:
      pending_input_.append(data);
      ToCommand();
      break;
    case ShellPacket::kCloseInput:
      close_input_when_empty_ = true;
      ToCommand();
      break;
    case ShellPacket::kWindowSize:
      SetWindowSize(std::string(data));
      break;
    default:
      break;
  }
}

void ShellSession::ToCommand() {
  while (!pending_input_.empty()) {
    const ssize_t count = command_.input.valid()
                              ? write(command_.input.get(), pending_input_.data(), pending_input_.size())
                              : static_cast<ssize_t>(pending_input_.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return;
    if (count < 0) CloseInput();  // nobody reads any more; the rest is thrown away
    pending_input_.erase(0, count < 0 ? std::string::npos : static_cast<size_t>(count));
  }
  // A terminal's input cannot end by itself; its last reader sees the hang-up.
  if (close_input_when_empty_ && request_.streams == ShellRequest::Streams::kPipes) CloseInput();
}

void ShellSession::CloseInput() {
  command_.input.Reset();
}

void ShellSession::FromCommand(base::UniqueFd* from, ShellPacket kind) {
  const ssize_t count = ReadSome(from->get(), buffer_.data(), buffer_.size());
  if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return;
  if (count <= 0) {
    from->Reset();
    return;
  }
  if (client_gone_) return;
  const std::string_view bytes(buffer_.data(), static_cast<size_t>(count));
  (kind == ShellPacket::kErrors ? errors_in_line_ : output_in_line_) = bytes.back() != '\n';
  const bool sent = request_.packets ? SendShellPacket(client_.get(), kind, bytes)
                                     : WriteAll(client_.get(), bytes.data(), bytes.size());
  if (!sent) client_gone_ = true;
}

void ShellSession::SetWindowSize(const std::string& size) {
  const auto numbers = ParseNumbers<uint16_t>(size, "x,x");
  if (!numbers || !command_.output.valid()) return;
  const auto [rows, columns, width, height] = *numbers;
  const winsize window = {rows, columns, width, height};
  ioctl(command_.output.get(), TIOCSWINSZ, &window);
}

std::optional<int> ShellSession::WaitForEnd() {
  sigset_t child_ended;
  sigset_t before;
  sigemptyset(&child_ended);
  sigaddset(&child_ended, SIGCHLD);
  sigprocmask(SIG_BLOCK, &child_ended, &before);
  signal(SIGCHLD, [](int) {});
  for (;;) {
    int status = 0;
    if (waitpid(command_.pid, &status, WNOHANG) == command_.pid) return ExitStatusOf(status);
    pollfd client = {client_.get(), POLLIN, 0};
    if (ppoll(&client, 1, nullptr, &before) > 0 &&
        ReadSome(client_.get(), buffer_.data(), buffer_.size()) <= 0) {
      return std::nullopt;
    }
  }
}

}  // namespace darokleim::phone
