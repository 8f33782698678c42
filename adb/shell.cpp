#include "adb/shell.h"

#include <algorithm>
#include <cassert>

#include "adb/message.h"
#include "base/little_endian.h"

namespace darokleim::adb {

namespace {

// A packet of the second form: its kind, a length in four bytes, and that many bytes.
enum PacketId : std::uint8_t {
  kInput = 0,
  kOutput = 1,
  kErrors = 2,
  kExit = 3,
  kCloseInput = 4,
  kWindowSize = 5  // "24x80,0x0": rows, columns, and pixels, which nobody knows
};
constexpr size_t kHeader = 5;
// Daemons send at most what fits into one of their messages.
constexpr size_t kLongestPacket = 1024 * 1024;
// Old daemons take no more at once.
constexpr size_t kLongestInput = 4096 - kHeader;

constexpr size_t kShellBuffer = 64 * 1024;

Error UnexpectedPacket(std::string_view received) {
  return Unexpected("a packet of the shell's output, error output or exit status", received);
}

}  // namespace

std::string ShellCommand::Service() const {
  std::string service;
  switch (form) {
    case ShellForm::kV2:
      service = "shell,v2";
      if (!terminal.empty()) service += ",TERM=" + terminal;
      service += pseudo_terminal ? ",pty:" : ",raw:";
      break;
    case ShellForm::kOld:
      service = "shell:";
      break;
    case ShellForm::kRaw:
      service = "exec:";
  }
  return service + command;
}

Result<ShellSession> ShellSession::Start(Connection connection, const ShellCommand& command,
                                         const Limits& limits) {
  const std::string service = command.Service();
  if (Status status = StartService(&connection, service, limits); !status.ok()) return status.TakeError();
  connection.GrowBuffer(kShellBuffer);
  ShellSession session(std::move(connection), command.form);
  if (command.form == ShellForm::kV2 && !command.with_input) {
    // At once: a command that reads its input would wait for ever. One that has ended takes nothing more.
    if (Status status = session.CloseInput(limits);
        !status.ok() && status.error().code != ErrorCode::kConnectionBroken) {
      return status.TakeError();
    }
  }
  return session;
}

Result<ShellSession> ShellSession::Start(const ServerAddress& server, const DeviceSelector& device,
                                         const ShellCommand& command, const Limits& limits) {
  Result<DeviceConnection> selected = SelectDevice(server, device, limits);
  if (!selected.ok()) return selected.TakeError();
  return Start(std::move(selected->connection), command, limits);
}

Result<bool> ShellSession::TakeHeaders() {
  while (left_ == 0 && !ended_) {
    const std::string_view header = connection_.buffered();
    if (header.size() < kHeader) return false;
    const auto id = static_cast<std::uint8_t>(header[0]);
    const size_t length = base::GetLe32(header.data() + 1);
    if (id == kExit && length == 1) {
      if (header.size() < kHeader + 1) return false;
      exit_status_ = static_cast<unsigned char>(header[kHeader]);
      ended_ = true;
    } else if ((id == kOutput || id == kErrors) && length <= kLongestPacket) {
      stream_ = id == kOutput ? ShellStream::kOutput : ShellStream::kErrors;
      left_ = length;
      connection_.Consume(kHeader);
    } else {
      return UnexpectedPacket(header);
    }
  }
  return true;
}

Status ShellSession::ReceiveMore(const Limits& limits) {
  Result<bool> more = connection_.Fill(limits);
  if (!more.ok()) return more.TakeError();
  if (!*more && form_ == ShellForm::kV2) return connection_.Broken("the shell's exit status");
  if (!*more) ended_ = true;
  return {};
}

Status ShellSession::AwaitPacket(const Limits& limits) {
  for (;;) {
    Result<bool> taken = TakeHeaders();
    if (!taken.ok()) return taken.TakeError();
    if (*taken) return {};
    if (Status status = ReceiveMore(limits); !status.ok()) return status;
  }
}

Result<ShellSession::Piece> ShellSession::Read(std::span<char> buffer, const Limits& limits) {
  assert(!buffer.empty());
  if (form_ == ShellForm::kV2) {
    if (Status status = AwaitPacket(limits); !status.ok()) return status.TakeError();
    buffer = buffer.first(std::min(buffer.size(), left_));
  }
  if (ended_) return Piece{stream_, 0, exit_status_};
  Result<size_t> count = connection_.Read(buffer, limits);
  if (!count.ok()) return count.TakeError();
  if (form_ == ShellForm::kV2) {
    if (*count == 0) return connection_.Broken("the shell's exit status");
    left_ -= *count;
  } else if (*count == 0) {
    ended_ = true;
  }
  return Piece{stream_, *count, exit_status_};
}

Result<bool> ShellSession::Deliver(const Receive& receive) {
  for (;;) {
    if (form_ == ShellForm::kV2) {
      if (Result<bool> taken = TakeHeaders(); !taken.ok() || !*taken) return taken;
    }
    if (ended_) return true;
    std::string_view data = connection_.buffered();
    if (data.empty()) return false;
    if (form_ == ShellForm::kV2) {
      data = data.substr(0, left_);
      left_ -= data.size();
    }
    const bool go_on = receive(stream_, data);
    connection_.Consume(data.size());
    if (!go_on) return Error{ErrorCode::kStopped, {}};
  }
}

Result<ShellEnd> ShellSession::ReadAll(const Receive& receive, const Limits& limits) {
  for (;;) {
    Result<bool> ended = Deliver(receive);
    if (!ended.ok()) return ended.TakeError();
    if (*ended) return ShellEnd{exit_status_};
    if (Status status = ReceiveMore(limits); !status.ok()) return status.TakeError();
  }
}

Result<ShellEnd> ShellSession::Exchange(const NextInput& next_input, const Receive& receive,
                                        const Limits& limits) {
  for (;;) {
    Result<bool> ended = Deliver(receive);
    if (!ended.ok()) return ended.TakeError();
    if (*ended) return ShellEnd{exit_status_};
    if (connection_.queued() == 0) {
      const std::string_view data = next_input();
      if (data.empty()) {
        // A command that has ended takes no more; its exit status follows.
        if (Status status = CloseInput(limits);
            !status.ok() && status.error().code != ErrorCode::kConnectionBroken) {
          return status.TakeError();
        }
        return ReadAll(receive, limits);
      }
      QueueInput(data);
    }
    if (Status status = connection_.Serve(limits); !status.ok()) return status.TakeError();
  }
}

void ShellSession::QueuePacket(std::uint8_t id, std::string_view data) {
  std::string header(1, static_cast<char>(id));
  base::PutLe32(&header, static_cast<std::uint32_t>(data.size()));
  connection_.Queue(header);
  connection_.Queue(data);
}

void ShellSession::QueueInput(std::string_view data) {
  if (form_ != ShellForm::kV2) return connection_.Queue(data);
  for (; !data.empty(); data.remove_prefix(std::min(data.size(), kLongestInput))) {
    QueuePacket(kInput, data.substr(0, kLongestInput));
  }
}

void ShellSession::QueueEndOfInput() {
  if (form_ == ShellForm::kV2) QueuePacket(kCloseInput, {});
}

void ShellSession::QueueWindowSize(std::uint16_t rows, std::uint16_t columns) {
  if (form_ == ShellForm::kV2)
    QueuePacket(kWindowSize, std::to_string(rows) + "x" + std::to_string(columns) + ",0x0");
}

Result<bool> ShellSession::Advance(const Receive& receive) {
  connection_.WriteSome();
  const bool goes_on = connection_.Poll();
  Result<bool> ended = Deliver(receive);
  if (!ended.ok() || *ended || goes_on) return ended;
  if (form_ == ShellForm::kV2) return connection_.Broken("the shell's exit status");
  ended_ = true;
  return true;
}

Status ShellSession::WriteInput(std::string_view data, const Limits& limits) {
  QueueInput(data);
  return connection_.Flush(limits);
}

Status ShellSession::CloseInput(const Limits& limits) {
  if (form_ != ShellForm::kV2)
    return Error{ErrorCode::kUnsupported, "this form of shell has no end of its input"};
  QueueEndOfInput();
  return connection_.Flush(limits);
}

}  // namespace darokleim::adb
