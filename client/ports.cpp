// dk_forward_*, dk_reverse_*: ports of this computer that reach the phone, and the other way round.
#include "adb/ports.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <vector>

#include "client/context.h"
#include "client/shell.h"

namespace darokleim::client {
namespace {

constexpr int kAnyPort = 0;

// One line of a list: three words. Addresses hold no spaces but in the paths of local sockets, which end the line.
std::optional<std::array<std::string, 3>> ReadMapping(std::string_view line) {
  const std::size_t first = line.find(' ');
  if (first == std::string_view::npos) return std::nullopt;
  const std::size_t second = line.find(' ', first + 1);
  if (second == std::string_view::npos) return std::nullopt;
  return std::array{std::string(line.substr(0, first)),
                    std::string(line.substr(first + 1, second - first - 1)),
                    std::string(line.substr(second + 1))};
}

enum class ListOf { kForwards, kReverses };

Status ReportMappings(std::string_view text, ListOf kind, const dk_device* device, dk_on_mapping on_mapping,
                      void* user) {
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const auto words = ReadMapping(line);
    if (!words) continue;
    const bool forward = kind == ListOf::kForwards;
    if (forward && (*words)[0] != device->serial) continue;
    const dk_mapping mapping = {forward ? (*words)[0].c_str() : "", (*words)[1].c_str(), (*words)[2].c_str()};
    if (!on_mapping(user, &mapping)) return Stopped("list the ports");
  }
  return {};
}

// The server gives the port that it listens on, at least for tcp:0; otherwise it is in the address.
int PortOf(std::string_view answer, std::string_view address) {
  constexpr std::string_view kTcp = "tcp:";
  if (answer.empty() && address.substr(0, kTcp.size()) == kTcp) answer = address.substr(kTcp.size());
  int port = kAnyPort;
  std::from_chars(answer.data(), answer.data() + answer.size(), port);
  return port;
}

Status FromAdded(const dk_device* device, adb::Result<std::string> answer, const std::string& what,
                 std::string_view from, int* port) {
  if (answer.ok()) {
    const int listening = PortOf(*answer, from);
    if (from == "tcp:0" && listening == kAnyPort)
      return Failed(DK_CONNECTION_LOST, what, "the connection ended before the port was named");
    if (port != nullptr) *port = listening;
    return {};
  }
  Error error = DeviceError(device, answer.error(), what);
  // What the server says of an address in use is its own wording, without a name in it.
  if (error.words && (*error.words == "cannot rebind existing socket" ||
                      error.words->substr(0, 20) == "cannot bind listener")) {
    error.code = DK_ADDRESS_IN_USE;
  }
  return error;
}

adb::Rebind RebindOf(bool replace) {
  return replace ? adb::Rebind::kAllow : adb::Rebind::kRefuse;
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Answer;
using client::AskDevice;
using client::Limits;
using client::Status;

dk_code dk_forward_add(dk_device* device, const char* from, const char* to, bool replace, int* port,
                       const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || from == nullptr || to == nullptr)
      return client::InvalidArgument("a null pointer");
    auto answer = AskDevice(device, limits, [&](const auto& server, const auto& selector) {
      return adb::AddForward(server, selector, from, to, client::RebindOf(replace), limits);
    });
    return client::FromAdded(device, std::move(answer), std::string("forward ") + from, from, port);
  });
}

dk_code dk_forward_list(dk_device* device, dk_on_mapping on_mapping, void* user, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || on_mapping == nullptr) return client::InvalidArgument("a null pointer");
    auto text = AskDevice(
        device, limits, [&](const auto& server, const auto&) { return adb::QueryForwards(server, limits); });
    if (!text.ok()) return client::DeviceError(device, text.error(), "list the forwarded ports");
    return client::ReportMappings(*text, client::ListOf::kForwards, device, on_mapping, user);
  });
}

namespace darokleim::client {
namespace {

// The addresses of this computer that lead to the device.
Result<std::vector<std::string>> ForwardedAddresses(dk_device* device, std::string_view what,
                                                    const Limits& limits) {
  auto text = AskDevice(device, limits,
                        [&](const auto& server, const auto&) { return adb::QueryForwards(server, limits); });
  if (!text.ok()) return DeviceError(device, text.error(), what);
  std::vector<std::string> addresses;
  const auto keep = [](void* user, const dk_mapping* mapping) {
    static_cast<std::vector<std::string>*>(user)->emplace_back(mapping->from);
    return true;
  };
  static_cast<void>(
      ReportMappings(*text, ListOf::kForwards, device, keep, &addresses));  // `keep` never ends it
  return addresses;
}

// The server removes all forwards of all devices at once, or one: those of one device are removed one by one. It refuses one that
// another program has removed meanwhile.
Status RemoveForwardsOf(dk_device* device, const Limits& limits) {
  const std::string what = "remove the forwarded ports";
  auto addresses = ForwardedAddresses(device, what, limits);
  if (!addresses.ok()) return addresses.TakeError();
  for (const std::string& address : *addresses) {
    auto removed = AskDevice(device, limits, [&](const auto& server, const auto& selector) {
      return adb::RemoveForward(server, selector, address, limits);
    });
    if (removed.ok()) continue;
    Error error = DeviceError(device, removed.error(), what);
    if (error.code != DK_SERVER_REFUSED) return error;
    const auto left = ForwardedAddresses(device, what, limits);
    if (!left.ok() || std::find(left->begin(), left->end(), address) != left->end()) return error;
  }
  return {};
}

// Phones before Android 5 refuse the service of reverse mappings, as any that they do not know.
Error ReverseError(dk_device* device, Error error, std::string_view what, const Limits& limits) {
  if (error.code != DK_SERVER_REFUSED) return error;
  const auto level = CollectScript(device, "getprop ro.build.version.sdk", what, limits);
  if (!level.ok()) return error;
  constexpr int kAndroid5 = 21;
  int number = kAndroid5;
  std::from_chars(level->out.data(), level->out.data() + level->out.size(), number);
  if (number >= kAndroid5) return error;
  Error unsupported = Failed(DK_UNSUPPORTED, what, "the phone is older than Android 5");
  unsupported.words = std::move(error.words);
  return unsupported;
}

}  // namespace
}  // namespace darokleim::client

dk_code dk_forward_remove(dk_device* device, const char* from, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    if (from == nullptr) return client::RemoveForwardsOf(device, limits);
    auto removed = AskDevice(device, limits, [&](const auto& server, const auto& selector) {
      return adb::RemoveForward(server, selector, from, limits);
    });
    if (removed.ok()) return {};
    return client::DeviceError(device, removed.error(), std::string("remove the forward of ") + from);
  });
}

dk_code dk_reverse_add(dk_device* device, const char* from, const char* to, bool replace, int* port,
                       const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || from == nullptr || to == nullptr)
      return client::InvalidArgument("a null pointer");
    auto answer = AskDevice(device, limits, [&](const auto& server, const auto& selector) {
      return adb::AddReverse(server, selector, from, to, client::RebindOf(replace), limits);
    });
    const std::string what = std::string("reverse ") + from;
    Status added = client::FromAdded(device, std::move(answer), what, from, port);
    if (added.ok()) return added;
    return client::ReverseError(device, added.TakeError(), what, limits);
  });
}

dk_code dk_reverse_remove(dk_device* device, const char* from, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    auto removed = AskDevice(device, limits, [&](const auto& server, const auto& selector) {
      return from == nullptr ? adb::RemoveAllReverses(server, selector, limits)
                             : adb::RemoveReverse(server, selector, from, limits);
    });
    if (removed.ok()) return {};
    constexpr std::string_view kWhat = "remove reversed ports";
    return client::ReverseError(device, client::DeviceError(device, removed.error(), kWhat), kWhat, limits);
  });
}

dk_code dk_reverse_list(dk_device* device, dk_on_mapping on_mapping, void* user, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || on_mapping == nullptr) return client::InvalidArgument("a null pointer");
    auto text = AskDevice(device, limits, [&](const auto& server, const auto& selector) {
      return adb::QueryReverses(server, selector, limits);
    });
    constexpr std::string_view kWhat = "list the reversed ports";
    if (!text.ok())
      return client::ReverseError(device, client::DeviceError(device, text.error(), kWhat), kWhat, limits);
    return client::ReportMappings(*text, client::ListOf::kReverses, device, on_mapping, user);
  });
}
