#include "client/devices.h"

#include <algorithm>
#include <array>

#include "adb/device_services.h"
#include "adb/host_services.h"
#include "client/context.h"

namespace darokleim::client {
namespace {

struct StateWord {
  std::string_view word;
  dk_state state;
};

constexpr std::array<StateWord, 12> kStateWords = {{
    {"device", DK_STATE_READY},
    {"offline", DK_STATE_OFFLINE},
    {"unauthorized", DK_STATE_UNAUTHORIZED},
    {"authorizing", DK_STATE_AUTHORIZING},
    {"connecting", DK_STATE_CONNECTING},
    {"no permissions", DK_STATE_NO_PERMISSIONS},
    {"bootloader", DK_STATE_BOOTLOADER},
    {"recovery", DK_STATE_RECOVERY},
    {"rescue", DK_STATE_RESCUE},
    {"sideload", DK_STATE_SIDELOAD},
    {"detached", DK_STATE_DETACHED},
    {"host", DK_STATE_HOST},
}};

dk_link LinkOf(const adb::AttachedDevice& device) {
  if (device.serial.starts_with("emulator-")) return DK_LINK_EMULATOR;
  if (device.plug.starts_with("usb:")) return DK_LINK_USB;
  if (device.serial.find(':') != std::string::npos || device.serial.find("._adb-tls") != std::string::npos) {
    return DK_LINK_NETWORK;
  }
  return DK_LINK_UNKNOWN;
}

using Devices = std::vector<adb::AttachedDevice>;

Result<Devices> QueryDevices(dk_context* context, const Limits& limits) {
  auto text = AskServer(context, limits,
                        [&] { return adb::QueryDeviceList(context->server, adb::ListForm::kLong, limits); });
  if (!text.ok()) return FromAdb(text.error(), "list the devices", "");
  return adb::ParseDeviceList(*text);
}

Result<std::string> OnlyReadySerial(dk_context* context, const Limits& limits) {
  auto devices = QueryDevices(context, limits);
  if (!devices.ok()) return devices.TakeError();
  std::string serial;
  for (const adb::AttachedDevice& device : *devices) {
    if (StateOf(device.state) != DK_STATE_READY) continue;
    if (!serial.empty()) {
      return Failed(DK_SEVERAL_DEVICES, "choose a device", "several are ready; name one by its serial");
    }
    serial = device.serial;
  }
  if (!serial.empty()) return serial;
  const char* const why = devices->empty() ? "none is attached" : "none of those attached is ready";
  return Failed(DK_NO_DEVICE, "choose a device", why);
}

}  // namespace

dk_state StateOf(std::string_view text) {
  for (const StateWord& known : kStateWords) {
    const bool is_explained = known.state == DK_STATE_NO_PERMISSIONS;  // by a text in parentheses after it
    if (is_explained ? text.starts_with(known.word) : text == known.word) return known.state;
  }
  return DK_STATE_UNKNOWN;
}

dk_device_info InfoOf(const adb::AttachedDevice& device) {
  dk_device_info info = {};
  info.serial = device.serial.c_str();
  info.state = StateOf(device.state);
  info.state_text = device.state.c_str();
  info.link = LinkOf(device);
  info.product = device.product.c_str();
  info.model = device.model.c_str();
  info.device = device.device.c_str();
  info.usb_path = device.plug.c_str();
  info.transport_id = device.transport_id;
  return info;
}

namespace {

std::string_view WordOf(dk_state state) {
  const auto* const known = std::find_if(std::begin(kStateWords), std::end(kStateWords),
                                         [state](const StateWord& word) { return word.state == state; });
  return known == std::end(kStateWords) ? std::string_view() : known->word;
}

// The server waits for an absent device only by a service that names it; for other states the list is followed.
Status WaitFor(dk_device* device, dk_state wanted, const Limits& limits) {
  const std::string what =
      "wait until " + Shown(device->serial) + " is in the state " + std::string(WordOf(wanted));
  auto tracker = AskServer(device->context, limits, [&] {
    return adb::DeviceTracker::Open(device->context->server, adb::ListForm::kShort, limits);
  });
  if (!tracker.ok()) return DeviceError(device, tracker.error(), what);
  for (;;) {
    auto text = tracker->Next(limits);
    if (!text.ok()) return DeviceError(device, text.error(), what);
    for (const adb::AttachedDevice& attached : adb::ParseDeviceList(*text)) {
      if (attached.serial == device->serial && StateOf(attached.state) == wanted) return {};
    }
  }
}

// connect, disconnect and pair answer OKAY whatever came of it; the text says it, in words of the server's own that begin
// in one of a few ways.
Status FromServerText(adb::Result<std::string> answer, std::string_view what,
                      std::initializer_list<std::string_view> successes) {
  if (!answer.ok()) return FromAdb(answer.error(), what, "");
  for (const std::string_view success : successes) {
    if (answer->starts_with(success)) return {};
  }
  Error error = Failed(DK_SERVER_REFUSED, what, Shown(*answer));
  error.words = *answer;
  return error;
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Answer;
using client::Limits;
using client::Status;

dk_code dk_devices(dk_context* context, dk_on_device on_device, void* user, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (context == nullptr || on_device == nullptr) return client::InvalidArgument("a null pointer");
    auto devices = client::QueryDevices(context, limits);
    if (!devices.ok()) return devices.TakeError();
    for (const adb::AttachedDevice& device : *devices) {
      const dk_device_info info = client::InfoOf(device);
      if (!on_device(user, &info)) return client::Stopped("list the devices");
    }
    return {};
  });
}

dk_code dk_device_open(dk_context* context, const char* serial, dk_device** device, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no place for the device");
    *device = nullptr;
    if (context == nullptr) return client::InvalidArgument("no context");
    if (serial != nullptr && *serial == '\0') return client::InvalidArgument("the serial is empty");
    std::string name;
    if (serial != nullptr) {
      name = serial;
    } else {
      auto only = client::OnlyReadySerial(context, limits);
      if (!only.ok()) return only.TakeError();
      name = *std::move(only);
    }
    *device = new dk_device{context, std::move(name)};
    return {};
  });
}

const char* dk_device_serial(const dk_device* device) {
  return device == nullptr ? nullptr : device->serial.c_str();
}
void dk_device_free(dk_device* device) {
  delete device;
}

dk_code dk_device_state(dk_device* device, dk_state* state, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || state == nullptr) return client::InvalidArgument("a null pointer");
    auto word = client::AskDevice(device, limits, [&](const auto& server, const auto& selector) {
      return adb::QueryState(server, selector, limits);
    });
    if (!word.ok())
      return client::DeviceError(device, word.error(),
                                 "ask for the state of " + client::Shown(device->serial));
    *state = client::StateOf(*word);
    return {};
  });
}

dk_code dk_device_wait(dk_device* device, dk_state state, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    if (client::WordOf(state).empty()) return client::InvalidArgument("not a state to wait for");
    return client::WaitFor(device, state, limits);
  });
}

dk_code dk_device_reboot(dk_device* device, const char* mode, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    const std::string_view target = mode == nullptr ? std::string_view() : mode;
    constexpr std::array<std::string_view, 5> kModes = {"", "bootloader", "recovery", "sideload",
                                                        "sideload-auto-reboot"};
    if (std::find(kModes.begin(), kModes.end(), target) == kModes.end()) {
      return client::InvalidArgument("not a mode to reboot into: " + client::Shown(target));
    }
    const std::string what = "reboot " + client::Shown(device->serial);
    auto selected = client::AskDevice(device, limits, [&](const auto& server, const auto& selector) {
      return adb::SelectDevice(server, selector, limits);
    });
    if (!selected.ok()) return client::DeviceError(device, selected.error(), what);
    const auto said = adb::Reboot(std::move(selected->connection), target, limits);
    // The phone may go before it has answered.
    if (said.ok() || said.error().code == adb::ErrorCode::kConnectionBroken) return {};
    return client::ServiceError(device, said.error(), what, limits);
  });
}

dk_code dk_device_reconnect(dk_device* device, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    auto said = client::AskDevice(device, limits, [&](const auto& server, const auto& selector) {
      return adb::ReconnectFromServer(server, selector, limits);
    });
    if (said.ok()) return {};
    return client::DeviceError(device, said.error(), "reconnect " + client::Shown(device->serial));
  });
}

dk_code dk_connect(dk_context* context, const char* address, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (context == nullptr || address == nullptr || *address == '\0')
      return client::InvalidArgument("no address");
    auto answer = client::AskServer(
        context, limits, [&] { return adb::ConnectOverNetwork(context->server, address, limits); });
    return client::FromServerText(std::move(answer), std::string("connect to ") + address,
                                  {"connected to ", "already connected to "});
  });
}

dk_code dk_disconnect(dk_context* context, const char* address, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (context == nullptr) return client::InvalidArgument("no context");
    const std::string_view which = address == nullptr ? std::string_view() : address;
    auto answer =
        client::AskServer(context, limits, [&] { return adb::Disconnect(context->server, which, limits); });
    const std::string what =
        "disconnect " + (which.empty() ? std::string("all devices") : std::string(which));
    // Servers since 2017 refuse an unknown address; older ones say so in the text.
    return client::FromServerText(std::move(answer), what, {"disconnected "});
  });
}

dk_code dk_pair(dk_context* context, const char* address, const char* code, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (context == nullptr || address == nullptr || code == nullptr || *address == '\0' || *code == '\0') {
      return client::InvalidArgument("an address and a code are needed to pair");
    }
    const std::string what = std::string("pair with ") + address;
    auto answer =
        client::AskServer(context, limits, [&] { return adb::Pair(context->server, code, address, limits); });
    if (!answer.ok() && answer.error().code == adb::ErrorCode::kRefused &&
        answer.error().message == "unknown host service") {
      return client::Failed(DK_UNSUPPORTED, what, "the adb server is too old to pair");
    }
    return client::FromServerText(std::move(answer), what, {"Successfully paired "});
  });
}
