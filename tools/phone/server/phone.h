#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tools/phone/common/device_link.h"
#include "tools/phone/common/faults.h"
#include "tools/phone/server/phone_folder.h"
#include "tools/phone/server/phone_options.h"
#include "tools/phone/server/sandbox.h"

namespace darokleim::phone {

// What the adb server shows of an attached phone.
struct Transport {
  std::string serial;
  ConnectionState state;
  bool over_network;  // a serial such as 192.168.1.5:5555 or emulator-5554
  uint64_t id;        // new each time the phone is attached
  std::string bus;    // where it is plugged in; empty over the network
  std::string product;
  std::string model;
  std::string device;
  Generation generation;
};

// One phone, switched on and off by the server. It has a thread of its own, which starts the phone's sandbox and
// listens to it, and starts it again after a reboot.
class Phone {
 public:
  struct Events {
    std::function<void()> changed;  // attached, detached or in another state
    std::function<void()> detached;
    std::function<uint64_t()> next_transport_id;
    // A program on the phone reached a reversed port: connect it to this address of the host.
    std::function<void(const std::string& address, base::UniqueFd connection)> reversed;
  };

  // `socket` is the number of the USB socket that it is plugged into when it is. Throws std::runtime_error when its
  // folder cannot be made.
  Phone(PhoneOptions options, size_t socket, const SandboxParts* parts, Events events);
  ~Phone() { SwitchOff(); }

  // Each begins and is then waited for, so that many phones boot at once.
  void BeginToSwitchOn();
  // True once the phone has booted; false when it cannot.
  bool WaitUntilOn();
  void BeginToSwitchOff();
  void SwitchOff();

  const std::string& serial() const { return options_.serial; }
  // Nothing while the phone is not attached.
  std::optional<Transport> transport() const;

  // Hands the client's connection over to the phone, which answers it. False when the phone is away.
  bool Open(LinkMessage how, const std::string& service, const base::UniqueFd& connection);

  void SetState(ConnectionState state);
  void Unplug();
  void Plug();
  // The connection is dropped and made again.
  void Reconnect();
  void Reboot();

  // Both throw std::invalid_argument.
  void SwitchFaultOn(const Fault& fault);
  void SwitchFaultOff(const std::string& name);
  std::vector<Fault> faults() const { return faults_.All(); }
  const PhoneFolder& folder() const { return folder_; }

 private:
  using Clock = std::chrono::steady_clock;
  enum class Power { kStarting, kOn, kRebooting, kFailed, kOff };

  void Run();
  bool Boot();
  void ListenUntilGone();
  void HandlePacket(LinkPacket packet);
  void ReleaseSandbox();
  // The three below expect the lock to be held.
  void Attach();
  void Detach();
  bool AttachIfDue();

  const PhoneOptions options_;
  const std::string bus_;
  const SandboxParts* parts_;
  const Events events_;
  const KeyValues properties_;
  const PhoneFolder folder_;
  const Faults faults_;

  mutable std::mutex mutex_;
  std::condition_variable power_changed_;
  Power power_ = Power::kOff;
  ConnectionState state_;
  bool plugged_ = true;
  uint64_t transport_id_ = 0;  // 0: not attached
  std::optional<Clock::time_point> attach_at_;
  base::UniqueFd link_;
  pid_t sandbox_ = -1;
  FdPair wake_;  // ends the thread's wait for the phone
  std::thread life_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_H
