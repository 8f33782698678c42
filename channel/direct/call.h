// What all forms of direct commands work with.
#ifndef DAROKLEIM_CHANNEL_DIRECT_CALL_H
#define DAROKLEIM_CHANNEL_DIRECT_CALL_H

#include <optional>
#include <string>
#include <string_view>

#include "adb/transport.h"
#include "channel/direct/form.h"
#include "channel/direct/run.h"

namespace darokleim::channel::direct {

// None: adb must run the command.
using Attempt = std::optional<Ending>;
inline constexpr std::nullopt_t kGiveWay = std::nullopt;

// How adb begins what it says of a command that failed.
inline constexpr std::string_view kError = "error: ";

struct Call {
  const FormCall& form;
  const adb::ServerAddress& server;
  const adb::Limits& limits;
  OutputSink* output;

  adb::DeviceSelector device() const { return adb::DeviceSelector::Serial(form.serial); }

  // False when the output takes no more.
  bool Print(std::string_view text) const;
  // Prints and ends as adb does.
  Ending Finish(std::string_view text, int exit_status) const;
};

// What an error comes to before the phone, or for commands to the server the server, was asked to do what the command is
// for. A refusal is printed after `prefix`, as adb prints it. With any other error adb runs the command, unless the caller
// or the system has ended it.
Attempt EndBefore(const Call& call, std::string_view prefix, const adb::Error& error);
// What it comes to from then on, when the command must not run once more. Only a request that is too long to be sent goes
// to adb, which fails with words of its own.
Attempt EndAfter(const Call& call, std::string_view prefix, const adb::Error& error);
// What it comes to in the middle of an answer.
Ending EndWithin(const adb::Error& error);

// Prints all that arrives up to the end of the stream.
Ending PrintStream(const Call& call, adb::Connection* connection);

// The part of a text that C's functions would print.
std::string_view UpToZero(std::string_view text);

Attempt RunDevices(const Call& call);
Attempt RunShell(const Call& call);
Attempt RunLogcat(const Call& call);
Attempt RunList(const Call& call);
Attempt RunPull(const Call& call);
Attempt RunPush(const Call& call);
Attempt RunForward(const Call& call);
Attempt RunReverse(const Call& call);
Attempt RunReconnect(const Call& call);
Attempt RunReboot(const Call& call);

}  // namespace darokleim::channel::direct

#endif  // DAROKLEIM_CHANNEL_DIRECT_CALL_H
