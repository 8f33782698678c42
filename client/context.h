// Where the adb server is, and starting one.
#ifndef DAROKLEIM_CLIENT_CONTEXT_H
#define DAROKLEIM_CLIENT_CONTEXT_H

#include <mutex>
#include <string>
#include <string_view>

#include "adb/address.h"
#include "adb/transport.h"
#include "client/call.h"

struct dk_context {
  darokleim::adb::ServerAddress server;
  std::string server_text;  // as the caller gave it; empty: from the environment
  std::string adb_path;     // empty: no server is started
  void (*log)(void* user, const char* line) = nullptr;
  void* log_user = nullptr;
  std::mutex starting;  // held while a server is being started
};

struct dk_device {
  dk_context* context;
  std::string serial;
};

namespace darokleim::client {

// One line of the caller's log. `what` was done and `outcome` came of it; neither holds what a user types on the phone.
void Log(const dk_context& context, std::string_view what, std::string_view outcome);

// Runs adb to start a server. Several threads that miss one at the same time start one.
Status StartServer(dk_context* context, const Limits& limits);

// Asks the server by `ask`, which connects to it and gives an adb::Result. Where none answers, and the context may, one is
// started and asked: nothing has been sent before, so that nothing is sent twice.
template <typename Ask>
auto AskServer(dk_context* context, const Limits& limits, Ask ask) -> decltype(ask()) {
  auto answer = ask();
  if (answer.ok() || answer.error().code != adb::ErrorCode::kCannotConnect || context->adb_path.empty())
    return answer;
  if (!StartServer(context, limits).ok()) {
    if (auto status = adb::Check(limits); !status.ok()) return status.TakeError();
    return answer;
  }
  return ask();
}

// The same for what is asked about, or of, a device.
template <typename Ask>
auto AskDevice(const dk_device* device, const Limits& limits, Ask ask)
    -> decltype(ask(device->context->server, adb::DeviceSelector::Any())) {
  const auto selector = adb::DeviceSelector::Serial(device->serial);
  return AskServer(device->context, limits, [&] { return ask(device->context->server, selector); });
}

inline Error DeviceError(const dk_device* device, const adb::Error& error, std::string_view what) {
  return FromAdb(error, what, device->serial);
}

// The same, of a service of the phone that could not be started. A server says "closed" of one that the phone does not have, and of
// any where the phone goes at that moment: it is asked which.
Error ServiceError(const dk_device* device, const adb::Error& error, std::string_view what,
                   const Limits& limits);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_CONTEXT_H
