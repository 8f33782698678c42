#include "client/context.h"

#include <algorithm>
#include <chrono>

#include "adb/host_services.h"
#include "client/server_start.h"

namespace darokleim::client {

void Log(const dk_context& context, std::string_view what, std::string_view outcome) {
  if (context.log == nullptr) return;
  context.log(context.log_user, Shown(std::string(what).append(": ").append(outcome)).c_str());
}

Status StartServer(dk_context* context, const Limits& limits) {
  // Another thread may be starting one, with a later deadline than this call's.
  std::unique_lock lock(context->starting, std::try_to_lock);
  while (!lock.owns_lock()) {
    constexpr std::chrono::milliseconds kLook{10};
    Limits look = limits;
    look.deadline = std::min(limits.deadline, adb::Clock::now() + kLook);
    static_cast<void>(adb::WaitFor(-1, 0, look));
    if (adb::Status status = adb::Check(limits); !status.ok())
      return FromAdb(status.error(), "start an adb server", "");
    static_cast<void>(lock.try_lock());
  }
  if (adb::QueryVersion(context->server, limits).ok()) return {};  // another thread has started it
  Status started = RunStartServer(context->adb_path, context->server_text, limits);
  Log(*context, context->adb_path + " start-server", started.ok() ? "started" : started.error().message);
  return started;
}

Error ServiceError(const dk_device* device, const adb::Error& error, std::string_view what,
                   const Limits& limits) {
  const bool may_be_gone = error.code == adb::ErrorCode::kRefused && error.message == "closed";
  if (may_be_gone) {
    const auto selector = adb::DeviceSelector::Serial(device->serial);
    const auto state = adb::QueryState(device->context->server, selector, limits);
    if (!state.ok()) return DeviceError(device, state.error(), what);
    if (*state == "offline") {
      return DeviceError(device, {adb::ErrorCode::kRefused, "device offline", 0}, what);
    }
  }
  return DeviceError(device, error, what);
}

namespace {

Status MakeContext(const dk_context_options& options, dk_context** made) {
  auto server = options.server == nullptr ? adb::ServerAddress::FromEnvironment()
                                          : adb::ServerAddress::Parse(options.server);
  if (!server.ok()) return FromAdb(server.error(), "use the adb server", "");
  auto context = std::make_unique<dk_context>();
  context->server = std::move(*server);
  if (options.server != nullptr) context->server_text = options.server;
  if (options.adb_path != nullptr) context->adb_path = options.adb_path;
  context->log = options.log;
  context->log_user = options.log_user;
  *made = context.release();
  return {};
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;

dk_code dk_context_new(const dk_context_options* options, dk_context** context, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits&) -> client::Status {
    if (context == nullptr) return client::InvalidArgument("no place for the context");
    *context = nullptr;
    return client::MakeContext(client::ReadOptions<dk_context_options>(options, DK_CONTEXT_OPTIONS_INIT),
                               context);
  });
}

const char* dk_version() {
  return DK_VERSION;
}

void dk_context_free(dk_context* context) {
  delete context;
}

dk_code dk_server_version(dk_context* context, int* version, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (context == nullptr || version == nullptr) return client::InvalidArgument("a null pointer");
    auto number =
        client::AskServer(context, limits, [&] { return adb::QueryVersion(context->server, limits); });
    if (!number.ok()) return client::FromAdb(number.error(), "ask the adb server for its version", "");
    *version = static_cast<int>(*number);
    return {};
  });
}

dk_code dk_server_stop(dk_context* context, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (context == nullptr) return client::InvalidArgument("no context");
    const adb::Status ended = adb::KillServer(context->server, limits);
    client::Log(*context, "end the adb server", ended.ok() ? "ended" : ended.error().message);
    if (!ended.ok()) return client::FromAdb(ended.error(), "end the adb server", "");
    return {};
  });
}
