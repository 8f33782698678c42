#include "tools/phone/server/phone.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "tools/phone/common/wire.h"
#include "tools/phone/server/profile.h"

namespace darokleim::phone {

namespace {

using std::chrono::milliseconds;

// How long a phone is away: long enough for a client to see it go.
constexpr milliseconds kReconnectTime(300);
constexpr milliseconds kRebootTime(1500);

constexpr milliseconds kTimeToSwitchOff(2000);

// The phone's first process ends when its link does, and with it every process of the phone; bubblewrap then
// reaps it and ends itself. Killing bubblewrap at once would leave that to the host's first process.
void WaitForSandbox(pid_t pid) {
  const auto deadline = std::chrono::steady_clock::now() + kTimeToSwitchOff;
  while (waitpid(pid, nullptr, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() >= deadline) {
      kill(pid, SIGKILL);
      while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
      }
      return;
    }
    std::this_thread::sleep_for(milliseconds(1));
  }
}

// As the adb server shows a model.
std::string OnlyLettersAndDigits(std::string text) {
  const auto is_other = [](unsigned char c) { return std::isalnum(c) == 0; };
  std::replace_if(text.begin(), text.end(), is_other, '_');
  return text;
}

bool IsNetworkSerial(const std::string& serial) {
  return serial.find(':') != std::string::npos || serial.rfind("emulator-", 0) == 0;
}

// As the adb server of a Linux host names a socket of its first bus.
std::string Bus(const std::string& serial, size_t socket) {
  return IsNetworkSerial(serial) ? "" : "usb:1-" + std::to_string(socket);
}

}  // namespace

Phone::Phone(PhoneOptions options, size_t socket, const SandboxParts* parts, Events events)
    : options_(std::move(options)),
      bus_(Bus(options_.serial, socket)),
      parts_(parts),
      events_(std::move(events)),
      properties_(BuildProperties(options_)),
      folder_(options_, properties_, *parts_),
      faults_(folder_.setup()),
      state_(options_.state) {
  auto wake = MakePipe();
  if (!wake) throw std::runtime_error("no descriptors left");
  wake_ = std::move(*wake);
  for (const Fault& fault : options_.faults) SwitchFaultOn(fault);
}

void Phone::BeginToSwitchOn() {
  std::lock_guard lock(mutex_);
  power_ = Power::kStarting;
  life_ = std::thread([this] { Run(); });
}

bool Phone::WaitUntilOn() {
  std::unique_lock lock(mutex_);
  power_changed_.wait(lock, [this] { return power_ != Power::kStarting; });
  return power_ == Power::kOn;
}

void Phone::BeginToSwitchOff() {
  {
    std::lock_guard lock(mutex_);
    power_ = Power::kOff;
  }
  power_changed_.notify_all();
  [[maybe_unused]] const ssize_t count = write(wake_.second.get(), "x", 1);
}

void Phone::SwitchOff() {
  BeginToSwitchOff();
  if (life_.joinable()) life_.join();
}

std::optional<Transport> Phone::transport() const {
  std::lock_guard lock(mutex_);
  if (transport_id_ == 0) return std::nullopt;
  Transport transport;
  transport.serial = options_.serial;
  transport.state = state_;
  transport.over_network = bus_.empty();
  transport.bus = bus_;
  transport.id = transport_id_;
  transport.generation = options_.generation;
  // adb learns what a phone is from the phone itself, once it is connected.
  if (RefusalOf(state_).empty()) {
    transport.product = ValueOf(properties_, "ro.product.name");
    transport.model = OnlyLettersAndDigits(ValueOf(properties_, "ro.product.model"));
    transport.device = ValueOf(properties_, "ro.product.device");
  }
  return transport;
}

bool Phone::Open(LinkMessage how, const std::string& service, const base::UniqueFd& connection) {
  std::lock_guard lock(mutex_);
  if (transport_id_ == 0 || !link_.valid()) return false;
  return SendPacket(link_.get(), how, service, connection.get());
}

void Phone::SetState(ConnectionState state) {
  {
    std::lock_guard lock(mutex_);
    state_ = state;
    if (!RefusalOf(state).empty() && link_.valid()) SendPacket(link_.get(), LinkMessage::kDropAll, "");
  }
  events_.changed();
}

void Phone::Unplug() {
  {
    std::lock_guard lock(mutex_);
    plugged_ = false;
    Detach();
  }
  events_.detached();
  events_.changed();
}

void Phone::Plug() {
  {
    std::lock_guard lock(mutex_);
    plugged_ = true;
    if (power_ == Power::kOn && transport_id_ == 0) Attach();
  }
  events_.changed();
}

void Phone::Reconnect() {
  {
    std::lock_guard lock(mutex_);
    if (transport_id_ == 0) return;
    Detach();
    attach_at_ = Clock::now() + kReconnectTime;
  }
  [[maybe_unused]] const ssize_t count = write(wake_.second.get(), "a", 1);
  events_.detached();
  events_.changed();
}

void Phone::Reboot() {
  std::lock_guard lock(mutex_);
  if (link_.valid()) SendPacket(link_.get(), LinkMessage::kPowerButton, "");
}

void Phone::SwitchFaultOn(const Fault& fault) {
  faults_.SwitchOn(fault);
  folder_.ApplyFaults(faults_);
}

void Phone::SwitchFaultOff(const std::string& name) {
  faults_.SwitchOff(name);
  folder_.ApplyFaults(faults_);
}

void Phone::Run() {
  bool first_boot = true;
  for (;;) {
    const bool started = Boot();
    if (started) ListenUntilGone();
    ReleaseSandbox();
    events_.detached();
    events_.changed();

    std::unique_lock lock(mutex_);
    if (power_ == Power::kStarting || (!started && first_boot)) power_ = Power::kFailed;
    power_changed_.notify_all();
    if (power_ == Power::kOff || power_ == Power::kFailed) return;
    power_ = Power::kRebooting;
    if (power_changed_.wait_for(lock, kRebootTime, [this] { return power_ == Power::kOff; })) return;
    first_boot = false;
  }
}

bool Phone::Boot() {
  auto ends = MakeDeviceLink();
  if (!ends) return false;
  const std::vector<std::string> daemon = {"--daemon",
                                           options_.generation == Generation::kLegacy ? "legacy" : "modern"};
  const pid_t pid = StartSandbox(SandboxCommand(*parts_, folder_, daemon), std::move(ends->second));
  if (pid < 0) {
    std::fprintf(stderr, "darokleim-phone: cannot start %s: %s\n", parts_->bubblewrap.c_str(),
                 std::strerror(-pid));
    return false;
  }
  std::lock_guard lock(mutex_);
  link_ = std::move(ends->first);
  sandbox_ = pid;
  return true;
}

void Phone::ListenUntilGone() {
  for (;;) {
    int timeout = -1;
    {
      std::lock_guard lock(mutex_);
      if (power_ == Power::kOff) return;
      if (attach_at_) {
        const auto left = std::chrono::duration_cast<milliseconds>(*attach_at_ - Clock::now()).count() + 1;
        timeout = left > 0 ? static_cast<int>(left) : 0;
      }
    }
    std::array<pollfd, 2> ends = {{{link_.get(), POLLIN, 0}, {wake_.first.get(), POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), timeout) < 0 && errno != EINTR) return;
    if (ends[1].revents != 0) {
      char reason;
      ReadSome(wake_.first.get(), &reason, 1);
    }
    if (ends[0].revents != 0) {
      auto packet = ReceivePacket(link_.get());
      if (!packet || packet->message == LinkMessage::kReboot) return;
      HandlePacket(std::move(*packet));
    }
    bool attached;
    {
      std::lock_guard lock(mutex_);
      attached = AttachIfDue();
    }
    if (attached) events_.changed();
  }
}

void Phone::HandlePacket(LinkPacket packet) {
  switch (packet.message) {
    case LinkMessage::kReady: {
      {
        std::lock_guard lock(mutex_);
        if (power_ != Power::kOff) power_ = Power::kOn;
        if (plugged_) Attach();
      }
      power_changed_.notify_all();
      events_.changed();
      break;
    }
    case LinkMessage::kReverse:
      events_.reversed(packet.text, std::move(packet.descriptor));
      break;
    case LinkMessage::kReconnect:
      Reconnect();
      break;
    default:
      break;
  }
}

void Phone::ReleaseSandbox() {
  pid_t pid;
  {
    std::lock_guard lock(mutex_);
    Detach();
    attach_at_.reset();
    link_.Reset();
    pid = std::exchange(sandbox_, -1);
  }
  if (pid > 0) WaitForSandbox(pid);
}

void Phone::Attach() {
  transport_id_ = events_.next_transport_id();
}

void Phone::Detach() {
  if (transport_id_ == 0) return;
  transport_id_ = 0;
  if (link_.valid()) SendPacket(link_.get(), LinkMessage::kDropAll, "");
}

bool Phone::AttachIfDue() {
  if (!attach_at_ || Clock::now() < *attach_at_) return false;
  attach_at_.reset();
  if (!plugged_ || power_ != Power::kOn) return false;
  Attach();
  return true;
}

}  // namespace darokleim::phone
