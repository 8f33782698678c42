// dk_watch_start, dk_watch_stop: the server's devices, followed.
#include <algorithm>
#include <optional>
#include <vector>

#include "adb/device_list.h"
#include "client/context.h"
#include "client/devices.h"
#include "client/worker.h"

namespace darokleim::client {
namespace {

using Devices = std::vector<adb::AttachedDevice>;

// How soon a server that has ended is looked for again.
constexpr std::chrono::milliseconds kRetry{250};

bool AreTheSame(const adb::AttachedDevice& a, const adb::AttachedDevice& b) {
  return a.serial == b.serial && a.transport_id == b.transport_id;
}

bool LookTheSame(const adb::AttachedDevice& a, const adb::AttachedDevice& b) {
  return a.state == b.state && a.plug == b.plug && a.product == b.product && a.model == b.model &&
         a.device == b.device;
}

const adb::AttachedDevice* Find(const Devices& devices, const adb::AttachedDevice& device) {
  const auto found = std::find_if(devices.begin(), devices.end(),
                                  [&](const auto& other) { return AreTheSame(device, other); });
  return found == devices.end() ? nullptr : &*found;
}

}  // namespace
}  // namespace darokleim::client

struct dk_watch : darokleim::client::Worker {
 public:
  dk_watch(dk_context* context, dk_on_change on_change, void* user)
      : context_(context), on_change_(on_change), user_(user) {}

 private:
  using Devices = darokleim::client::Devices;

  void Work() override {
    while (!stopping()) {
      try {
        FollowOneServer();
      } catch (const std::bad_alloc&) {  // the list is asked for again
      }
      if (!stopping()) Sleep();
    }
  }

  void FollowOneServer() {
    using namespace darokleim;
    auto tracker = client::AskServer(context_, limits(), [&] {
      return adb::DeviceTracker::Open(context_->server, adb::ListForm::kLong, limits());
    });
    if (!tracker.ok()) return LoseServer();
    if (!std::exchange(has_server_, true)) Report(DK_SERVER_FOUND, nullptr);
    while (!stopping()) {
      const auto text = tracker->Next(limits());
      if (!text.ok()) break;
      Update(adb::ParseDeviceList(*text));
    }
    LoseServer();
  }

  void LoseServer() {
    if (!std::exchange(has_server_, false)) return;
    Update({});
    Report(DK_SERVER_LOST, nullptr);
  }

  void Update(Devices now) {
    using namespace darokleim;
    const Devices before = std::exchange(known_, std::move(now));
    for (const auto& device : before) {
      if (client::Find(known_, device) == nullptr) Report(DK_DEVICE_REMOVED, &device);
    }
    for (const auto& device : known_) {
      const adb::AttachedDevice* const old = client::Find(before, device);
      if (old == nullptr) {
        Report(DK_DEVICE_ADDED, &device);
      } else if (!client::LookTheSame(*old, device)) {
        Report(DK_DEVICE_CHANGED, &device);
      }
    }
  }

  void Report(dk_change change, const darokleim::adb::AttachedDevice* device) {
    if (stopping()) return;
    if (device == nullptr) return on_change_(user_, change, nullptr);
    const dk_device_info info = darokleim::client::InfoOf(*device);
    on_change_(user_, change, &info);
  }

  void Sleep() {
    darokleim::adb::Limits until = limits();
    until.deadline = darokleim::adb::Clock::now() + darokleim::client::kRetry;
    static_cast<void>(darokleim::adb::WaitFor(-1, 0, until));
  }

  dk_context* const context_;
  const dk_on_change on_change_;
  void* const user_;
  Devices known_;
  bool has_server_ = false;
};

using namespace darokleim;

dk_code dk_watch_start(dk_context* context, dk_on_change on_change, void* user, dk_watch** watch,
                       const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits&) -> client::Status {
    if (watch == nullptr) return client::InvalidArgument("no place for the watch");
    *watch = nullptr;
    if (context == nullptr || on_change == nullptr) return client::InvalidArgument("a null pointer");
    return client::StartFor(std::make_unique<dk_watch>(context, on_change, user), "watch the devices", watch);
  });
}

void dk_watch_stop(dk_watch* watch) {
  if (watch != nullptr) client::Worker::Stop(watch);
}
