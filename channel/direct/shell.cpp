// The forms that run a command in the phone's shell: shell and logcat.
#include "adb/shell.h"

#include <cstdlib>

#include "base/shell_quoting.h"
#include "channel/direct/call.h"

namespace darokleim::channel::direct {
namespace {

std::string FromEnvironment(const char* name) {
  const char* const value = getenv(name);
  return value == nullptr ? "" : value;
}

std::string JoinedBySpaces(std::span<const std::string> words) {
  std::string text;
  for (const std::string& word : words) {
    if (&word != words.data()) text += ' ';
    text += word;
  }
  return text;
}

// Both streams of the command are one here, in the order in which they arrive.
Ending PrintOutput(const Call& call, adb::ShellSession* session) {
  for (;;) {
    const std::span<char> room = call.output->Room();
    if (room.empty()) return {Ending::kOutputRefused};
    const adb::Result<adb::ShellSession::Piece> piece = session->Read(room, call.limits);
    if (!piece.ok()) return EndWithin(piece.error());
    if (piece->size == 0) return {Ending::kExited, piece->exit_status.value_or(0)};
    call.output->Commit(piece->size);
  }
}

Attempt RunInShell(const Call& call, std::string text) {
  const adb::Result<adb::FeatureSet> features = adb::QueryFeatures(call.server, call.device(), call.limits);
  if (!features.ok()) return EndBefore(call, kError, features.error());
  adb::Result<adb::DeviceConnection> phone = adb::SelectDevice(call.server, call.device(), call.limits);
  if (!phone.ok()) return EndBefore(call, kError, phone.error());

  adb::ShellCommand command;
  command.form = features->shell_v2() ? adb::ShellForm::kV2 : adb::ShellForm::kOld;
  command.command = std::move(text);
  command.terminal = FromEnvironment("TERM");
  adb::Result<adb::ShellSession> session =
      adb::ShellSession::Start(std::move(phone->connection), command, call.limits);
  if (!session.ok()) return EndAfter(call, kError, session.error());
  return PrintOutput(call, &*session);
}

}  // namespace

Attempt RunShell(const Call& call) {
  return RunInShell(call, JoinedBySpaces(call.form.operands));
}

// Other than adb, it does not wait for a phone that is absent.
Attempt RunLogcat(const Call& call) {
  std::string text = "export ANDROID_LOG_TAGS=\"" + base::QuoteForShell(FromEnvironment("ANDROID_LOG_TAGS")) +
                     "\"; exec logcat";
  for (const std::string& word : call.form.operands) text.append(" ").append(base::QuoteForShell(word));
  return RunInShell(call, std::move(text));
}

}  // namespace darokleim::channel::direct
