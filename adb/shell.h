// Commands on a phone.
#ifndef DAROKLEIM_ADB_SHELL_H
#define DAROKLEIM_ADB_SHELL_H

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "adb/features.h"
#include "adb/transport.h"

namespace darokleim::adb {

enum class ShellForm {
  kV2,  // output, error output and exit status apart; the phone's features name shell_v2
  kOld,  // one stream, through a terminal on old phones; its end is the end of the command, or of the connection
  kRaw,  // exec: one stream without a terminal, otherwise as kOld; phones since Android 5
};

struct ShellCommand {
  ShellForm form = ShellForm::kV2;
  std::string command = {};   // read by the phone's shell; a whole session where empty
  std::string terminal = {};  // the value of TERM on the phone, for kV2; empty: none is passed
  bool with_input = false;    // whether WriteInput() will be used; otherwise the command's input ends at once
  bool pseudo_terminal = false;  // for kV2; otherwise "raw", as adb has it for a command

  // The service's name, such as "shell,v2,TERM=xterm,raw:ls".
  std::string Service() const;
};

// How a command ended. The exit status is not known of kOld and kRaw: there a connection that breaks cannot be told
// from an end either.
struct ShellEnd {
  std::optional<int> exit_status;
};

enum class ShellStream { kOutput, kErrors };  // kErrors: in kV2 alone

// A running command. Closing it (destruction) ends the connection; what the phone does with the command then is its
// own affair.
class ShellSession {
 public:
  // On a connection from SelectDevice.
  static Result<ShellSession> Start(Connection connection, const ShellCommand& command, const Limits& limits);
  // With one of its own.
  static Result<ShellSession> Start(const ServerAddress& server, const DeviceSelector& device,
                                    const ShellCommand& command, const Limits& limits);

  // What Read() has found.
  struct Piece {
    ShellStream stream = ShellStream::kOutput;
    std::size_t size = 0;            // bytes now at the start of the buffer; 0: the command has ended
    std::optional<int> exit_status;  // at the end, in kV2
  };
  // Reads the next bytes straight into `buffer`, which is not empty. In kV2 an end without an exit status is
  // kConnectionBroken. After the end it gives the end again.
  Result<Piece> Read(std::span<char> buffer, const Limits& limits);

  // Everything until the end, as it comes. False from `receive` ends it with kStopped.
  using Receive = std::function<bool(ShellStream stream, std::string_view data)>;
  Result<ShellEnd> ReadAll(const Receive& receive, const Limits& limits);
  // The same, while the command is given input as fast as it takes it. `next_input` gives the next piece, valid until it
  // is called again; an empty one is the end of the input, which the
  // command sees in kV2.
  using NextInput = std::function<std::string_view()>;
  Result<ShellEnd> Exchange(const NextInput& next_input, const Receive& receive, const Limits& limits);

  // Passes input on to the command, and keeps the output that arrives meanwhile as far as there is room. A command whose
  // output nobody reads may take no more input: for more than a few lines, use Exchange().
  Status WriteInput(std::string_view data, const Limits& limits);
  // Ends the command's input. kUnsupported but in kV2: a server gives a connection up whose client has finished writing,
  // so that the command itself has to know how much input to take.
  Status CloseInput(const Limits& limits);

  // For a caller that waits by itself, for connection().descriptor() among others (to be readable, and writable while something
  // is queued). What is queued goes out in this order. Input has an end in kV2 alone; the size of a terminal's window is nothing
  // that other forms can say.
  void QueueInput(std::string_view data);
  void QueueEndOfInput();
  void QueueWindowSize(std::uint16_t rows, std::uint16_t columns);
  // One round without waiting: writes what the system takes, and hands over what has arrived. True at the end of the command.
  // False from `receive` ends it with kStopped.
  Result<bool> Advance(const Receive& receive);
  // At the end, in kV2.
  std::optional<int> exit_status() const { return exit_status_; }

  Connection& connection() { return connection_; }

 private:
  ShellSession(Connection connection, ShellForm form) : connection_(std::move(connection)), form_(form) {}

  // In kV2: takes headers off the buffer until a packet of output with bytes left is current or the exit status has
  // come. False: more has to be received for that.
  Result<bool> TakeHeaders();
  Status AwaitPacket(const Limits& limits);
  // Hands over what is buffered. False: more has to be received.
  Result<bool> Deliver(const Receive& receive);
  Status ReceiveMore(const Limits& limits);
  void QueuePacket(std::uint8_t id, std::string_view data);

  Connection connection_;
  ShellForm form_;
  bool ended_ = false;
  std::optional<int> exit_status_;
  ShellStream stream_ = ShellStream::kOutput;
  std::size_t left_ = 0;  // of the current packet
};

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_SHELL_H
