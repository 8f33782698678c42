// dk_walk: everything below a folder.
#include "client/walk.h"

#include <strings.h>

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "client/phone_errors.h"
#include "client/phone_path.h"
#include "client/shell.h"

namespace darokleim::client {
namespace {

constexpr std::size_t kListsAhead = 32;

struct Folder {
  std::string path;
  std::uint32_t depth;
};

bool HasSuffix(std::string_view name, const dk_walk_options& options) {
  if (options.suffixes == nullptr || options.suffix_count == 0) return true;
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return false;
  const std::string suffix(name.substr(dot + 1));
  return std::any_of(options.suffixes, options.suffixes + options.suffix_count,
                     [&](const char* wanted) { return strcasecmp(suffix.c_str(), wanted) == 0; });
}

bool IsWanted(const dk_entry& entry, const dk_walk_options& options) {
  if (options.types != 0 && (options.types & (1U << entry.type)) == 0) return false;
  if (options.newer_than != 0 && entry.mtime <= options.newer_than) return false;
  const bool filters_files = options.suffix_count > 0 || options.min_size > 0 || options.max_size > 0;
  if (!filters_files) return true;
  if (entry.type != DK_FILE || !HasSuffix(entry.name, options)) return false;
  if (entry.size < options.min_size && entry.size_known) return false;
  return options.max_size == 0 || (entry.size_known && entry.size <= options.max_size);
}

class Walk {
 public:
  Walk(dk_device* device, const WalkVisitor& visitor, const Limits& limits)
      : device_(device), visitor_(visitor), limits_(limits) {}

  // Without a connection it opens its own.
  Status Run(const std::string& root, Sync* sync) {
    what_ = "list what is below " + Shown(root);
    std::optional<Sync> own;
    if (sync == nullptr) {
      auto opened = OpenSync(device_, what_, limits_);
      if (!opened.ok()) return opened.TakeError();
      sync = &own.emplace(*std::move(opened));
    }
    if (!sync->features.list_v2()) {
      auto large = LargeFiles::Query(device_, root, true, what_, limits_);
      if (!large.ok()) return large.TakeError();
      large_ = *std::move(large);
    }
    waiting_.push_back({root, 0});
    while (!waiting_.empty() || !asked_.empty()) {
      if (Status status = AskAhead(&sync->connection); !status.ok()) return status;
      if (asked_.empty()) break;  // none of those waiting could be asked for
      if (Status status = ReadOne(&sync->connection); !status.ok()) return status;
    }
    return {};
  }

 private:
  // The folder that was found last is asked for next: what waits stays little.
  Status AskAhead(adb::SyncConnection* sync) {
    while (!waiting_.empty() && asked_.size() < kListsAhead) {
      Folder folder = std::move(waiting_.back());
      waiting_.pop_back();
      if (auto asked = sync->RequestList(folder.path); !asked.ok()) {
        Error error = SyncError(device_, asked.error(), "list " + Shown(folder.path), folder.path);
        if (Status status = Fail(std::move(error), folder); !status.ok()) return status;
        continue;
      }
      asked_.push_back(std::move(folder));
    }
    return {};
  }

  Status ReadOne(adb::SyncConnection* sync) {
    const Folder folder = std::move(asked_.front());
    asked_.pop_front();
    bool any = false;
    Status visited;
    const auto receive = [&](const adb::DirectoryEntry& found) {
      any = true;
      if (found.name != "." && found.name != "..") visited = Visit(folder, found);
      return visited.ok();
    };
    auto listed = sync->ReadList(receive, limits_);
    if (!visited.ok()) return visited;
    if (!listed.ok()) return SyncError(device_, listed.error(), what_, folder.path);
    return any ? Status() : Explain(folder);
  }

  Status Visit(const Folder& folder, const adb::DirectoryEntry& found) {
    if (!IsSafeName(found.name)) return visitor_.fail(UnsafeEntry(folder.path, found.name));
    const std::string name(found.name);
    std::string path = Joined(folder.path, name);
    dk_entry entry = EntryOf(found.status, path, name.c_str());
    entry.size_known = found.status.second_form || !large_.Has(name);
    bool descend = entry.type == DK_DIRECTORY;
    if (Status status = visitor_.visit(entry, folder.depth + 1, &descend); !status.ok()) return status;
    if (descend) waiting_.push_back({std::move(path), folder.depth + 1});
    return {};
  }

  // A folder without any entry, not even itself, may be one that cannot be read.
  Status Explain(const Folder& folder) {
    const std::string what = "list " + Shown(folder.path);
    const std::string inside = folder.path == "/" ? folder.path : folder.path + "/";
    auto listed = CollectScript(device_, CommandLine({"ls", inside}), what, limits_);
    if (!listed.ok()) return listed.TakeError();
    const std::string& said = listed->err.empty() ? listed->out : listed->err;
    if (listed->exit_status == 0 && ErrnoAtEnd(said) == 0) return {};
    return Fail(FromProgram(*listed, what, folder.path), folder);
  }

  Status Fail(Error error, const Folder& folder) {
    if (folder.depth == 0) return error;
    return visitor_.fail(std::move(error));
  }

  dk_device* const device_;
  const WalkVisitor& visitor_;
  const Limits& limits_;
  std::string what_;
  LargeFiles large_;
  std::vector<Folder> waiting_;
  std::deque<Folder> asked_;
};

// The caller's walk: filters, its callbacks, and what is said at the end.
Status WalkForCaller(dk_device* device, const std::string& root, const dk_walk_options& options,
                     dk_on_entry on_entry, void* user, const Limits& limits) {
  const std::string what = "list what is below " + Shown(root);
  bool failed = false;
  WalkVisitor visitor;
  visitor.visit = [&](const dk_entry& entry, std::uint32_t depth, bool* descend) -> Status {
    *descend = *descend && (options.max_depth == 0 || depth < options.max_depth);
    if (!IsWanted(entry, options) || on_entry(user, &entry)) return {};
    return Stopped(what);
  };
  visitor.fail = [&](Error error) -> Status {
    failed = true;
    if (options.on_error == nullptr) return {};
    const dk_error shown{std::move(error)};
    if (options.on_error(user, &shown)) return {};
    return Stopped(what);
  };
  if (Status status = WalkPhone(device, root, visitor, limits); !status.ok()) return status;
  if (failed) return Failed(DK_PARTLY_DONE, what, "a part of it cannot be listed");
  return {};
}

}  // namespace

Status WalkPhone(dk_device* device, const std::string& root, const WalkVisitor& visitor,
                 const Limits& limits) {
  return Walk(device, visitor, limits).Run(root, nullptr);
}

Status WalkPhone(dk_device* device, Sync* sync, const std::string& root, const WalkVisitor& visitor,
                 const Limits& limits) {
  return Walk(device, visitor, limits).Run(root, sync);
}

}  // namespace darokleim::client

using namespace darokleim;

dk_code dk_walk(dk_device* device, const char* folder, const dk_walk_options* given, dk_on_entry on_entry,
                void* user, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (device == nullptr || on_entry == nullptr) return client::InvalidArgument("a null pointer");
    auto root = client::ReadPath(folder);
    if (!root.ok()) return root.TakeError();
    const auto options = client::ReadOptions<dk_walk_options>(given, DK_WALK_OPTIONS_INIT);
    return client::WalkForCaller(device, *root, options, on_entry, user, limits);
  });
}
