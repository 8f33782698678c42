// dk_pull: files and folders of the phone to this computer.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client/files.h"
#include "client/phone_path.h"
#include "client/temporary_name.h"
#include "client/transfer/host_target.h"
#include "client/transfer/receiver.h"
#include "client/walk.h"

namespace darokleim::client {
namespace {

constexpr std::uint32_t kPermissionsKept = 0777;

// Splits a path of this computer; a name alone is in the current folder.
std::string HostParent(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}
std::string HostName(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

// What a walk has found.
struct FoundOnPhone {
  std::string path;
  dk_type type;
  std::uint64_t size;
  std::int64_t modified;
  std::uint32_t mode;
};
FoundOnPhone Remembered(const dk_entry& entry) {
  return {entry.path, entry.type, entry.size, entry.mtime, entry.mode};
}

// A folder of the phone on its way to one of this computer.
class FolderPull {
 public:
  FolderPull(dk_device* device, Tally* tally, Receiver* receiver, std::string source,
             std::shared_ptr<HostFolder> target, const Limits& limits)
      : device_(device),
        tally_(tally),
        receiver_(receiver),
        source_(std::move(source)),
        target_(std::move(target)),
        limits_(limits) {}

  // Gives what is below the folder to `found` where that is at most `most` files and folders, and can all be listed.
  Status Count(Sync* sync, std::size_t most, std::optional<std::vector<FoundOnPhone>>* found) {
    std::vector<FoundOnPhone> all;
    bool is_remembered = true;
    WalkVisitor visitor;
    visitor.visit = [&](const dk_entry& entry, std::uint32_t, bool* descend) {
      if (IsTemporary(entry.name)) return LeaveOut(descend);
      if (entry.type == DK_FILE) tally_->Expect(entry.size);
      is_remembered = is_remembered && all.size() < most;
      if (is_remembered) all.push_back(Remembered(entry));
      return Status();
    };
    visitor.fail = [&](const Error&) {  // said by the second walk
      is_remembered = false;
      return Status();
    };
    Status walked = WalkPhone(device_, sync, source_, visitor, limits_);
    if (walked.ok() && is_remembered) *found = std::move(all);
    return walked;
  }

  Status Run(Sync* sync) {
    WalkVisitor visitor;
    visitor.visit = [this](const dk_entry& entry, std::uint32_t, bool* descend) {
      if (IsTemporary(entry.name)) return LeaveOut(descend);
      return Take(Remembered(entry), descend);
    };
    visitor.fail = [this](Error error) { return tally_->Failed(std::move(error)); };
    return WalkPhone(device_, sync, source_, visitor, limits_);
  }

  Status Run(const std::vector<FoundOnPhone>& found) {
    std::vector<std::string> left_out;  // folders, with a slash
    const auto is_left_out = [&](const std::string& path) {
      return std::any_of(left_out.begin(), left_out.end(), [&](const std::string& folder) {
        return path.compare(0, folder.size(), folder) == 0;
      });
    };
    for (const FoundOnPhone& entry : found) {
      if (is_left_out(entry.path)) continue;
      bool descends = true;
      if (Status taken = Take(entry, &descends); !taken.ok()) return taken;
      if (!descends) left_out.push_back(entry.path + "/");
    }
    return {};
  }

 private:
  static Status LeaveOut(bool* descend) {
    *descend = false;
    return {};
  }

  Status Take(const FoundOnPhone& entry, bool* descend) {
    const std::string& path = entry.path;
    const std::string name(NameOf(path));
    if (entry.type == DK_DIRECTORY) {
      auto made = FolderFor(path);
      *descend = made.ok();
      if (!made.ok()) return tally_->Failed(made.TakeError());
      RemoveLeftOvers(**made);
      return {};
    }
    if (entry.type == DK_LINK) return TakeLink(path, name);
    if (entry.type != DK_FILE) return {};
    return Fetch({path, entry.size, entry.modified, entry.mode & kPermissionsKept}, name);
  }

  // Links to files in the same tree are those files; all others are not followed.
  Status TakeLink(const std::string& path, const std::string& name) {
    const std::string what = Fetching(path);
    if (real_source_.empty()) {
      auto real = RealPath(device_, source_, what, limits_);
      if (!real.ok()) return real.TakeError();
      real_source_ = real->value_or(source_);
    }
    auto real = RealPath(device_, path, what, limits_);
    if (!real.ok()) return real.TakeError();
    const std::string inside = real_source_ + "/";
    const bool stays = *real && (*real)->compare(0, inside.size(), inside) == 0;
    auto sync = OpenSync(device_, what, limits_);
    if (!sync.ok()) return sync.TakeError();
    auto status = StatOf(device_, &*sync, path, DK_FOLLOW, what, limits_);
    if (!status.ok()) return tally_->Failed(status.TakeError());
    if (!stays || TypeOf(status->mode) != DK_FILE) {
      Error error =
          Failed(DK_UNSUPPORTED, what, "it is a link to a folder, or to outside of what is fetched");
      error.path = path;
      return tally_->Failed(std::move(error));
    }
    tally_->Expect(status->size);
    return Fetch({path, status->size, status->modified, status->mode & kPermissionsKept}, name);
  }

  Status Fetch(PhoneFile file, const std::string& name) {
    auto folder = FolderFor(ParentOf(file.path));
    if (!folder.ok()) return tally_->Failed(folder.TakeError());
    return receiver_->Fetch(std::move(file), *std::move(folder), name);
  }

  // The folder of this computer for one of the phone; the last one is kept, since what is in a folder comes together.
  Result<std::shared_ptr<HostFolder>> FolderFor(const std::string& path) {
    if (path == last_path_) return last_;
    std::shared_ptr<HostFolder> folder = target_;
    std::string_view below = std::string_view(path).substr(std::min(source_.size(), path.size()));
    while (!below.empty()) {
      below.remove_prefix(below.front() == '/' ? 1 : 0);
      const std::string name(below.substr(0, below.find('/')));
      below.remove_prefix(name.size());
      if (name.empty()) continue;
      auto entered = folder->Enter(name);
      if (!entered.ok()) return entered;
      folder = *std::move(entered);
    }
    last_path_ = path;
    last_ = folder;
    return folder;
  }

  dk_device* const device_;
  Tally* const tally_;
  Receiver* const receiver_;
  const std::string source_;
  const std::shared_ptr<HostFolder> target_;
  const Limits& limits_;
  std::string real_source_;
  std::string last_path_;
  std::shared_ptr<HostFolder> last_;
};

class Pull {
 public:
  Pull(dk_device* device, const dk_transfer_options& options, const Limits& limits)
      : device_(device),
        limits_(limits),
        tally_(options, "fetch files"),
        features_(device),
        receiver_(&features_, &tally_, limits) {}

  const dk_summary& summary() const { return tally_.summary(); }

  Status Run(const dk_item* items, std::size_t count) {
    std::vector<Item> all;
    for (std::size_t i = 0; i < count; ++i) {
      auto source = ReadPath(items[i].source);
      if (!source.ok()) return source.TakeError();
      if (items[i].target == nullptr || *items[i].target == '\0') return InvalidArgument("a target is empty");
      std::string target = items[i].target;
      while (target.size() > 1 && target.back() == '/') target.pop_back();
      all.push_back({*std::move(source), std::move(target), {}, {}, {}});
    }
    if (Status looked = LookAt(&all); !looked.ok()) return looked;
    for (Item& item : all) {
      if (Status counted = Count(&item); !counted.ok()) return counted;
    }
    for (Item& item : all) {
      if (Status fetched = Fetch(&item); !fetched.ok()) return fetched;
    }
    if (Status finished = receiver_.Finish(); !finished.ok()) return finished;
    return tally_.Finish();
  }

 private:
  struct Item {
    std::string source, target;
    adb::FileStatus status;
    std::optional<Error> error;
    std::optional<std::vector<FoundOnPhone>> found;  // below a folder that has little in it
  };

  // One on which nothing is asked, for what comes before the first file and beside the files.
  Result<Sync*> Connection() {
    if (!sync_) {
      auto sync = OpenSync(&features_, tally_.what(), limits_);
      if (!sync.ok()) return sync.TakeError();
      sync_.emplace(*std::move(sync));
    }
    return &*sync_;
  }

  // All of them in one time of waiting; links, and what the protocol does not explain, one by one.
  Status LookAt(std::vector<Item>* items) {
    auto sync = Connection();
    if (!sync.ok()) return sync.TakeError();
    std::vector<std::string> paths;
    paths.reserve(items->size());
    for (const Item& item : *items) paths.push_back(item.source);
    auto statuses = StatMany(device_, *sync, paths, tally_.what(), limits_);
    if (!statuses.ok()) return statuses.TakeError();
    for (std::size_t i = 0; i < items->size(); ++i) {
      Item& item = (*items)[i];
      item.status = (*statuses)[i];
      const dk_type type = TypeOf(item.status.mode);
      if (item.status.exists() && (type == DK_FILE || type == DK_DIRECTORY)) continue;
      auto followed = StatOf(device_, *sync, item.source, DK_FOLLOW, Fetching(item.source), limits_);
      if (followed.ok()) {
        item.status = *followed;
      } else if (IsOfOneFile(followed.error().code)) {
        item.error = followed.TakeError();
      } else {
        return followed.TakeError();
      }
    }
    return {};
  }

  bool IsFolder(const Item& item) const { return TypeOf(item.status.mode) == DK_DIRECTORY; }

  Status Count(Item* item) {
    if (item->error) return {};
    if (!IsFolder(*item)) {
      tally_.Expect(item->status.size);
      return {};
    }
    auto sync = Connection();
    if (!sync.ok()) return sync.TakeError();
    Status counted = FolderPull(device_, &tally_, &receiver_, item->source, nullptr, limits_)
                         .Count(*sync, kMostRemembered - remembered_, &item->found);
    if (item->found) remembered_ += item->found->size();
    if (counted.ok()) return counted;
    sync_.reset();
    if (!IsOfOneFile(counted.error().code)) return counted;
    item->error = counted.TakeError();
    return {};
  }

  Status Fetch(Item* item) {
    if (item->error) return tally_.Failed(*std::move(item->error));
    const bool walks = IsFolder(*item) && !item->found;
    if (!walks && !receiver_.has_connection()) receiver_.UseConnection(std::exchange(sync_, std::nullopt));
    return IsFolder(*item) ? FetchFolder(*item) : FetchFile(*item);
  }

  Status FetchFolder(const Item& item) {
    auto target = HostFolder::Open(item.target);
    if (!target.ok()) return tally_.Failed(target.TakeError());
    RemoveLeftOvers(**target);
    FolderPull pull(device_, &tally_, &receiver_, item.source, *std::move(target), limits_);
    if (item.found) return pull.Run(*item.found);
    auto sync = Connection();
    if (!sync.ok()) return sync.TakeError();
    return pull.Run(*sync);
  }

  Status FetchFile(const Item& item) {
    auto parent = OpenParent(HostParent(item.target));
    if (!parent.ok()) return tally_.Failed(parent.TakeError());
    PhoneFile file{item.source, item.status.size, item.status.modified, item.status.mode & kPermissionsKept};
    return receiver_.Fetch(std::move(file), *std::move(parent), HostName(item.target));
  }

  Result<std::shared_ptr<HostFolder>> OpenParent(const std::string& path) {
    if (last_parent_ != nullptr && last_parent_->path() == path) return last_parent_;
    auto opened = HostFolder::Open(path);
    if (!opened.ok()) return opened;
    RemoveLeftOvers(**opened);
    last_parent_ = *opened;
    return last_parent_;
  }

  dk_device* const device_;
  const Limits& limits_;
  Tally tally_;
  Features features_;
  std::optional<Sync> sync_;
  std::size_t remembered_ = 0;
  Receiver receiver_;
  std::shared_ptr<HostFolder> last_parent_;
};

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;

dk_code dk_pull(dk_device* device, const dk_item* items, size_t count, const dk_transfer_options* given,
                dk_summary* summary, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (summary != nullptr) *summary = {};
    if (device == nullptr || (items == nullptr && count > 0))
      return client::InvalidArgument("a null pointer");
    client::Pull pull(device, client::ReadOptions<dk_transfer_options>(given, DK_TRANSFER_OPTIONS_INIT),
                      limits);
    client::Status status = pull.Run(items, count);
    if (summary != nullptr) *summary = pull.summary();
    return status;
  });
}
