// dk_push: files and folders of this computer to the phone.
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client/phone_errors.h"
#include "client/phone_path.h"
#include "client/transfer/sender.h"
#include "client/transfer/target_check.h"

namespace darokleim::client {
namespace {

// Targets that are looked at together.
constexpr std::size_t kCheckedTogether = 128;
// A transfer that waits until the phone is free of what killed processes left, which may be as large.
constexpr std::uint64_t kLargeTransfer = std::uint64_t{512} * 1024 * 1024;

class Push {
 public:
  Push(dk_device* device, const dk_transfer_options& options, const Limits& limits)
      : limits_(limits),
        tally_(options, "send files"),
        features_(device),
        left_overs_(&features_),
        check_(&features_, limits),
        sender_(&features_, &tally_, limits) {}

  dk_summary summary() const {
    dk_summary summary = tally_.summary();
    summary.files_sent = sender_.named();
    return summary;
  }

  Status Run(const dk_item* items, std::size_t count) {
    std::vector<Item> all;
    for (std::size_t i = 0; i < count; ++i) {
      auto target = ReadPath(items[i].target);
      if (!target.ok()) return target.TakeError();
      if (items[i].source == nullptr || *items[i].source == '\0') return InvalidArgument("a source is empty");
      all.push_back({items[i].source, *std::move(target), std::nullopt});
    }
    for (Item& item : all) {
      if (Status counted = Count(&item); !counted.ok()) return counted;
    }
    LookForLeftOvers(all);
    for (const Item& item : all) {
      if (Status sent = SendItem(item); !sent.ok()) return sent;
    }
    if (Status checked = CheckPending(); !checked.ok()) return checked;
    if (Status finished = sender_.Finish(); !finished.ok()) return finished;
    left_overs_.Remove(limits_);
    return tally_.Finish();
  }

 private:
  struct Item {
    std::string source, target;
    std::optional<std::vector<HostFile>> found;  // what a short walk without errors has found
  };
  struct Pending {
    HostFile file;
    std::string target;
  };

  // Errors are those of the second walk.
  Status Count(Item* item) {
    std::vector<HostFile> found;
    bool is_remembered = true;
    const auto use = [&](const HostFile& file) {
      if (!file.is_folder) tally_.Expect(file.size);
      is_remembered = is_remembered && remembered_ + found.size() < kMostRemembered;
      if (is_remembered) found.push_back(file);
      return Status();
    };
    const auto fail = [&](const Error&) {
      is_remembered = false;
      return Status();
    };
    if (Status walked = WalkHost(item->source, use, fail); !walked.ok()) return walked;
    if (!is_remembered) return {};
    remembered_ += found.size();
    item->found = std::move(found);
    return {};
  }

  // Most are found where the files get their names, after the transfer. Before it, where it may need their space; meanwhile, where
  // it may be that no file is sent.
  void LookForLeftOvers(const std::vector<Item>& items) {
    const dk_existing existing = tally_.options().existing;
    const bool is_large = tally_.expected_bytes() >= kLargeTransfer;
    if (!is_large && existing != DK_SKIP_SAME && existing != DK_SKIP_EXISTING) return;
    std::vector<std::string> folders;
    folders.reserve(items.size());
    for (const Item& item : items) folders.push_back(ParentOf(item.target));
    left_overs_.Look(folders, limits_);
    if (is_large) left_overs_.Remove(limits_);
  }

  Status SendItem(const Item& item) {
    const auto use = [&](const HostFile& file) -> Status {
      if (file.is_folder) return sender_.MakeFolder(item.target + file.below);
      pending_.push_back({file, item.target + file.below});
      return pending_.size() < kCheckedTogether ? Status() : CheckPending();
    };
    if (!item.found)
      return WalkHost(item.source, use, [this](Error error) { return tally_.Failed(std::move(error)); });
    for (const HostFile& file : *item.found) {
      if (Status used = use(file); !used.ok()) return used;
    }
    return {};
  }

  Status CheckPending() {
    std::vector<Pending> files = std::exchange(pending_, {});
    std::vector<std::string> targets;
    targets.reserve(files.size());
    for (const Pending& file : files) targets.push_back(file.target);
    auto found = check_.Look(targets);
    if (!found.ok()) return found.TakeError();
    if (!sender_.has_connection()) sender_.UseConnection(check_.TakeConnection());
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
  Features features_;
  LeftOvers left_overs_;
  TargetCheck check_;
  Sender sender_;
  std::vector<Pending> pending_;
  std::size_t remembered_ = 0;
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
