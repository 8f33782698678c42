// dk_push: files and folders of this computer to the phone.
#include <string>
#include <vector>

#include "client/phone_errors.h"
#include "client/phone_path.h"
#include "client/transfer/sender.h"
#include "client/transfer/target_check.h"

namespace darokleim::client {
namespace {

// Targets that are looked at together.
constexpr std::size_t kCheckedTogether = 128;

class Push {
 public:
  Push(dk_device* device, const dk_transfer_options& options, const Limits& limits)
      : limits_(limits),
        tally_(options, "send files"),
        left_overs_(device),
        check_(device, limits),
        sender_(device, &tally_, limits) {}

  const dk_summary& summary() const { return tally_.summary(); }

  Status Run(const dk_item* items, std::size_t count) {
    std::vector<std::string> targets, folders;
    for (std::size_t i = 0; i < count; ++i) {
      auto target = ReadPath(items[i].target);
      if (!target.ok()) return target.TakeError();
      if (items[i].source == nullptr || *items[i].source == '\0') return InvalidArgument("a source is empty");
      folders.push_back(ParentOf(*target));
      targets.push_back(*std::move(target));
    }
    left_overs_.Look(folders, limits_);
    for (std::size_t i = 0; i < count; ++i) {
      if (Status counted = Count(items[i].source); !counted.ok()) return counted;
    }
    for (std::size_t i = 0; i < count; ++i) {
      if (Status sent = SendItem(items[i].source, targets[i]); !sent.ok()) return sent;
    }
    if (Status checked = CheckPending(); !checked.ok()) return checked;
    if (Status finished = sender_.Finish(); !finished.ok()) return finished;
    return tally_.Finish();
  }

 private:
  struct Pending {
    HostFile file;
    std::string target;
  };

  // Errors are those of the second walk.
  Status Count(const std::string& source) {
    const auto use = [this](const HostFile& file) {
      if (!file.is_folder) tally_.Expect(file.size);
      return Status();
    };
    return WalkHost(source, use, [](const Error&) { return Status(); });
  }

  Status SendItem(const std::string& source, const std::string& target) {
    const auto use = [&](const HostFile& file) -> Status {
      if (file.is_folder) return sender_.MakeFolder(target + file.below);
      pending_.push_back({file, target + file.below});
      return pending_.size() < kCheckedTogether ? Status() : CheckPending();
    };
    return WalkHost(source, use, [this](Error error) { return tally_.Failed(std::move(error)); });
  }

  Status CheckPending() {
    std::vector<Pending> files = std::exchange(pending_, {});
    std::vector<std::string> targets;
    targets.reserve(files.size());
    for (const Pending& file : files) targets.push_back(file.target);
    auto found = check_.Look(targets);
    if (!found.ok()) return found.TakeError();
    left_overs_.Remove(limits_);
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (Status sent = SendUnlessThere(std::move(files[i]), (*found)[i]); !sent.ok()) return sent;
    }
    return {};
  }

  Status SendUnlessThere(Pending pending, const Existing& existing) {
    constexpr int kFileExists = 17, kIsFolder = 21;
    switch (Decide(tally_.options().existing, existing, pending.file.size, pending.file.modified)) {
      case Decision::kSkip:
        tally_.Skipped(pending.file.size);
        return {};
      case Decision::kIsFolder:
        return tally_.Failed(FromPhoneErrno(kIsFolder, "send " + Shown(pending.file.path), pending.target));
      case Decision::kExists:
        return tally_.Failed(FromPhoneErrno(kFileExists, "send " + Shown(pending.file.path), pending.target));
      case Decision::kTransfer:
        break;
    }
    return sender_.Send(std::move(pending.file), ParentOf(pending.target),
                        std::string(NameOf(pending.target)));
  }

  const Limits& limits_;
  Tally tally_;
  LeftOvers left_overs_;
  TargetCheck check_;
  Sender sender_;
  std::vector<Pending> pending_;
};

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;

dk_code dk_push(dk_device* device, const dk_item* items, size_t count, const dk_transfer_options* given,
                dk_summary* summary, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (summary != nullptr) *summary = {};
    if (device == nullptr || (items == nullptr && count > 0))
      return client::InvalidArgument("a null pointer");
    client::Push push(device, client::ReadOptions<dk_transfer_options>(given, DK_TRANSFER_OPTIONS_INIT),
                      limits);
    client::Status status = push.Run(items, count);
    if (summary != nullptr) *summary = push.summary();
    return status;
  });
}
