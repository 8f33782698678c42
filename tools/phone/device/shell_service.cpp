#include "tools/phone/device/shell_service.h"

#include "tools/phone/common/wire.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/shell_command.h"
#include "tools/phone/device/shell_session.h"

namespace darokleim::phone {

namespace {

std::vector<std::string> ShellWords(std::string_view command) {
  if (command.empty()) return {kShell, "-"};
  return {kShell, "-c", std::string(command)};
}

// "shell" or "shell,v2,TERM=xterm,pty" before the colon.
std::optional<ShellRequest> ParseShell(std::string_view head, std::string_view command, bool legacy) {
  const std::vector<std::string> options = Split(head, ',');
  ShellRequest request;
  request.command = ShellWords(command);
  // Since Android 7 only a shell without a command gets a terminal that changes line breaks.
  if (!legacy && !command.empty()) request.streams = ShellRequest::Streams::kPipes;
  for (size_t i = 1; i < options.size(); ++i) {
    std::string_view option = options[i];
    if (option == "v2" && !legacy) {
      request.packets = true;
    } else if (option == "raw") {
      request.streams = ShellRequest::Streams::kPipes;
    } else if (option == "pty") {
      request.streams = ShellRequest::Streams::kTerminal;
    } else if (TakePrefix(&option, "TERM=")) {
      request.terminal = option;
    }
  }
  // Without packets only a terminal lets the command notice that its client is gone.
  if (!request.packets && request.streams == ShellRequest::Streams::kPipes) {
    request.streams = ShellRequest::Streams::kRawTerminal;
  }
  return request;
}

ShellRequest ThroughPipes(std::vector<std::string> command, bool packets) {
  ShellRequest request;
  request.command = std::move(command);
  request.streams = ShellRequest::Streams::kPipes;
  request.packets = packets;
  return request;
}

// The words of abb and abb_exec are separated by NUL bytes and go to the named service without a shell.
std::vector<std::string> ServiceWords(std::string_view text) {
  std::vector<std::string> words = Split(text, '\0');
  words.insert(words.begin(), "/system/bin/cmd");
  return words;
}

}  // namespace

std::optional<ShellRequest> ParseShellService(std::string_view service, bool legacy) {
  const size_t colon = service.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const std::string_view head = service.substr(0, colon);
  const std::string_view rest = service.substr(colon + 1);
  if (head == "shell" || head.substr(0, 6) == "shell,") return ParseShell(head, rest, legacy);
  if (head == "backup")
    return ThroughPipes(ShellWords("/system/bin/bu backup " + std::string(rest)), /*packets=*/false);
  if (head == "restore") return ThroughPipes(ShellWords("/system/bin/bu restore"), /*packets=*/false);
  if (head == "exec") return ThroughPipes(ShellWords(rest), /*packets=*/false);
  if (!legacy && head == "abb") return ThroughPipes(ServiceWords(rest), /*packets=*/true);
  if (!legacy && head == "abb_exec") return ThroughPipes(ServiceWords(rest), /*packets=*/false);
  return std::nullopt;
}

void RunShell(const ShellRequest& request, base::UniqueFd stream) {
  auto command = StartShellCommand(request);
  if (!command) {
    SendFail(stream.get(), "cannot start a shell");
    return;
  }
  SendOkay(stream.get());
  ShellSession(request, std::move(*command), std::move(stream)).Run();
}

}  // namespace darokleim::phone
