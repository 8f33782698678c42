// dk_backup, dk_restore, dk_backup_dismiss: an application's data, by Android's backup service.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adb/device_list.h"
#include "adb/host_services.h"
#include "client/apps/package_dump.h"
#include "client/devices.h"
#include "client/shell.h"

namespace darokleim::client {
namespace {

constexpr std::string_view kHead = "ANDROID BACKUP\n";
// A backup without any file of an application: its head and an archive of nothing but folders, compressed. What is
// written of each application besides its files is longer.
constexpr std::uint64_t kLargestEmpty = 200;
// Of a file that breaks off the phone would wait for the rest for ever.
constexpr std::size_t kZerosAtTheEnd = 1024;

Status Dismiss(dk_device* device, const Limits& limits) {
  constexpr std::string_view kWhat = "close the phone's question about a backup";
  auto ran = CollectScript(device, "am force-stop com.android.backupconfirm", kWhat, limits);
  if (!ran.ok()) return ran.TakeError();
  if (ran->exit_status != 0) return CommandFailed(kWhat, *ran);
  return {};
}

// The phone asks its user, and the question stays on the screen when the call ends before the answer.
class Question {
 public:
  explicit Question(dk_device* device) : device_(device) {}
  ~Question() {
    if (answered_) return;
    try {
      Limits limits;
      limits.deadline = adb::Clock::now() + std::chrono::seconds(5);
      static_cast<void>(Dismiss(device_, limits));
    } catch (const std::bad_alloc&) {
    }
  }
  Question(const Question&) = delete;
  Question& operator=(const Question&) = delete;

  void SetAnswered() { answered_ = true; }

 private:
  dk_device* const device_;
  bool answered_ = false;
};

// A running service. Its end and a broken connection look alike: the device must still be attached as it was.
class Service {
 public:
  Service(dk_device* device, std::string what) : device_(device), what_(std::move(what)) {}

  Status Start(const std::string& service, const Limits& limits) {
    auto selected = AskDevice(device_, limits, [&](const auto& server, const auto& selector) {
      return adb::SelectDevice(server, selector, limits);
    });
    if (!selected.ok()) return DeviceError(device_, selected.error(), what_);
    connection_ = std::move(*selected);
    const adb::Status started = adb::StartService(&connection_->connection, service, limits);
    return started.ok() ? Status() : Status(ServiceError(device_, started.error(), what_, limits));
  }

  Status Send(std::string_view data, const Limits& limits) {
    return Checked(connection_->connection.Send(data, limits));
  }

  // Until the service ends.
  Status ReadAll(dk_on_bytes on_bytes, void* user, const Limits& limits) {
    std::vector<char> block(kBlock);
    for (;;) {
      auto size = connection_->connection.Read(block, limits);
      if (!size.ok()) return DeviceError(device_, size.error(), what_);
      if (*size == 0) return CheckStillAttached(limits);
      received_ += *size;
      if (on_bytes != nullptr && !on_bytes(user, block.data(), *size)) return Stopped(what_);
    }
  }

  std::uint64_t received() const { return received_; }

 private:
  Status Checked(const adb::Status& status) const {
    return status.ok() ? Status() : Status(DeviceError(device_, status.error(), what_));
  }

  Status CheckStillAttached(const Limits& limits) const {
    auto text = adb::QueryDeviceList(device_->context->server, adb::ListForm::kLong, limits);
    if (!text.ok()) return DeviceError(device_, text.error(), what_);
    for (const adb::AttachedDevice& attached : adb::ParseDeviceList(*text)) {
      if (attached.serial != device_->serial || StateOf(attached.state) != DK_STATE_READY) continue;
      if (attached.transport_id == connection_->transport_id || attached.transport_id == 0) return {};
    }
    return Failed(DK_CONNECTION_LOST, what_, "the connection to the phone broke");
  }

  dk_device* const device_;
  const std::string what_;
  std::optional<adb::DeviceConnection> connection_;
  std::uint64_t received_ = 0;
};

Status CheckInstalled(dk_device* device, const std::string& package, const std::string& what,
                      const Limits& limits) {
  auto known = CollectScript(device, "pm path " + package, what, limits);
  if (!known.ok()) return known.TakeError();
  if (known->out.find("package:") != std::string::npos) return {};
  return Failed(DK_NO_PACKAGE, what, "it is not installed");
}

Status Backup(dk_device* device, const std::string& package, dk_on_bytes on_bytes, void* user,
              const Limits& limits) {
  const std::string what = "back up " + package;
  if (Status installed = CheckInstalled(device, package, what, limits); !installed.ok()) return installed;
  Question question(device);
  Service service(device, what);
  if (Status started = service.Start("backup:-noapk -nosystem " + package, limits); !started.ok())
    return started;
  if (Status read = service.ReadAll(on_bytes, user, limits); !read.ok()) return read;
  question.SetAnswered();
  if (service.received() > kLargestEmpty) return {};
  return Failed(DK_COMMAND_FAILED, what,
                "the phone saved nothing: it was refused on its screen, or the application forbids backups");
}

// Whether the pieces begin as a backup does.
class HeadCheck {
 public:
  bool Take(std::string_view piece) {
    const std::size_t more = std::min(kHead.size() - begin_.size(), piece.size());
    begin_.append(piece.substr(0, more));
    return kHead.substr(0, begin_.size()) == begin_;
  }
  bool IsWhole() const { return begin_.size() == kHead.size(); }

 private:
  std::string begin_;
};

// The next piece of a backup that the caller hands out; nothing where it stops the call.
std::optional<std::string_view> NextPiece(dk_source source, void* user, std::vector<char>* block) {
  const std::int64_t size = source(user, block->data(), block->size());
  if (size < 0 || size > static_cast<std::int64_t>(block->size())) return std::nullopt;
  return std::string_view(block->data(), static_cast<std::size_t>(size));
}

Status Restore(dk_device* device, dk_source source, void* user, const Limits& limits) {
  const std::string what = "restore a backup";
  const Error no_backup = Failed(DK_INVALID_ARGUMENT, what, "this is not an Android backup");
  std::vector<char> block(kBlock);
  std::string first;  // held back until it is known to be a backup
  HeadCheck head;
  while (!head.IsWhole()) {
    const auto piece = NextPiece(source, user, &block);
    if (!piece) return Stopped(what);
    if (piece->empty() || !head.Take(*piece)) return no_backup;
    first.append(*piece);
  }
  Question question(device);
  Service service(device, what);
  if (Status started = service.Start("restore:", limits); !started.ok()) return started;
  Status sent = service.Send(first, limits);
  while (sent.ok()) {
    const auto piece = NextPiece(source, user, &block);
    if (!piece) return Stopped(what);
    if (piece->empty()) break;
    sent = service.Send(*piece, limits);
  }
  if (sent.ok()) sent = service.Send(std::string(kZerosAtTheEnd, '\0'), limits);
  // A phone that refuses takes no more, and ends the service.
  if (!sent.ok() && sent.error().code != DK_CONNECTION_LOST) return sent;
  if (Status read = service.ReadAll(nullptr, nullptr, limits); !read.ok()) return read;
  question.SetAnswered();
  if (sent.ok()) return {};
  return Failed(DK_COMMAND_FAILED, what,
                "the phone did not take all of it: it was refused on its screen, or is not readable there");
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Answer;
using client::Limits;
using client::Status;

dk_code dk_backup(dk_device* device, const char* package, dk_on_bytes on_bytes, void* user,
                  const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || package == nullptr || on_bytes == nullptr)
      return client::InvalidArgument("a null pointer");
    if (!client::IsPackageName(package)) return client::InvalidArgument("not the name of a package");
    return client::Backup(device, package, on_bytes, user, limits);
  });
}

dk_code dk_restore(dk_device* device, dk_source source, void* user, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || source == nullptr) return client::InvalidArgument("a null pointer");
    return client::Restore(device, source, user, limits);
  });
}

dk_code dk_backup_dismiss(dk_device* device, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    return client::Dismiss(device, limits);
  });
}
