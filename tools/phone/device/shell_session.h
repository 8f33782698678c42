#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_SESSION_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_SESSION_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tools/phone/device/shell_command.h"
#include "tools/phone/device/shell_packets.h"
#include "tools/phone/device/shell_service.h"

namespace darokleim::phone {

// Carries a command's streams to its client and back.
class ShellSession {
 public:
  ShellSession(const ShellRequest& request, ShellCommand command, base::UniqueFd client);

  // Until the command has ended, or the client has closed its connection and the command was ended.
  void Run();

 private:
  using Clock = std::chrono::steady_clock;

  bool PassStreams();
  int WaitMilliseconds() const;
  void FromClient();
  void ClientWentAway();
  void ToCommand();
  void CloseInput();
  void FromCommand(base::UniqueFd* from, ShellPacket kind);
  void Receive(ShellPacket kind, std::string_view data);
  void SetWindowSize(const std::string& size);
  // The exit status, or nothing when the client went away before.
  std::optional<int> WaitForEnd();

  const ShellRequest& request_;
  ShellCommand command_;
  base::UniqueFd client_;
  ShellPacketReader packets_;
  std::string pending_input_;
  bool close_input_when_empty_ = false;
  bool client_gone_ = false;
  // Whether what was passed on last ended in the middle of a line.
  bool output_in_line_ = false;
  bool errors_in_line_ = false;
  // Until when a command without a terminal may finish with what its client sent before it went away.
  std::optional<Clock::time_point> last_chance_;
  std::vector<char> buffer_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_SHELL_SESSION_H
