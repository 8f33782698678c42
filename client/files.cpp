// dk_stat, dk_list, dk_read: what is on the phone, looked at.
#include "client/files.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <string>

#include "base/shell_quoting.h"
#include "client/phone_errors.h"
#include "client/phone_path.h"
#include "client/shell.h"
#include "client/sync.h"

namespace darokleim::client {
namespace {

using Links = adb::SyncConnection::Links;

// Positions in a file have 63 bits, and programs of phones calculate with them.
constexpr std::uint64_t kBeyondAnyFile = std::uint64_t{1} << 62;

constexpr int kNotDirectory = 20;
constexpr int kAccessDenied = 13;

// An entry with the texts that it points to.
struct OwnedEntry {
  dk_entry entry = {};
  std::string path, name, link_target;
};

// What `readlink` says, without its line break; nothing where it cannot be had.
Result<std::optional<std::string>> ReadLink(dk_device* device, const std::string& path, const char* option,
                                            std::string_view what, const Limits& limits) {
  const std::string script = std::string("readlink ") + option + " " + base::QuoteForShell(path);
  auto printed = CollectScript(device, script, what, limits);
  if (!printed.ok()) return printed.TakeError();
  std::string target = printed->out;
  if (printed->exit_status != 0 || target.empty()) return std::optional<std::string>();
  if (target.back() == '\n') target.pop_back();
  return std::optional<std::string>(target);
}

// On phones that only know the first form: a status without an error, of a link itself, with a size of 32 bits.
Result<adb::FileStatus> OldStat(dk_device* device, Sync* sync, const std::string& path, dk_follow follow,
                                std::string_view what, const Limits& limits) {
  auto status = sync->connection.Stat(path, Links::kThemselves, limits);
  if (!status.ok()) return SyncError(device, status.error(), what, path);
  if (!status->exists()) {
    if (Status why = WhyNot(device, path, what, limits); !why.ok()) return why.TakeError();
    return FromPhoneErrno(kAccessDenied, what, path);
  }
  if (follow == DK_FOLLOW && TypeOf(status->mode) == DK_LINK) {
    auto target = ReadLink(device, path, "-f", what, limits);
    if (!target.ok()) return target.TakeError();
    constexpr int kMissing = 2;
    if (!*target) return FromPhoneErrno(kMissing, what, path);
    auto followed = OldStat(device, sync, **target, DK_NO_FOLLOW, what, limits);
    if (!followed.ok() && followed.error().path == **target) {
      Error error = followed.TakeError();
      error.path = path;
      return error;
    }
    return followed;
  }
  return *status;
}

}  // namespace

Result<adb::FileStatus> StatOf(dk_device* device, Sync* sync, const std::string& path, dk_follow follow,
                               std::string_view what, const Limits& limits) {
  if (!sync->features.stat_v2()) return OldStat(device, sync, path, follow, what, limits);
  auto status =
      sync->connection.Stat(path, follow == DK_FOLLOW ? Links::kFollowed : Links::kThemselves, limits);
  if (!status.ok()) return SyncError(device, status.error(), what, path);
  if (status->error != 0) return FromPhoneErrno(static_cast<int>(status->error), what, path);
  return *status;
}

Result<std::optional<std::string>> RealPath(dk_device* device, const std::string& path, std::string_view what,
                                            const Limits& limits) {
  return ReadLink(device, path, "-f", what, limits);
}

namespace {

// The whole size of a file whose size came in 32 bits, as the phone's own program says it. Nothing on phones without the program.
Result<std::optional<std::uint64_t>> SizeByShell(dk_device* device, const std::string& path,
                                                 std::string_view what, const Limits& limits) {
  auto printed = CollectScript(device, CommandLine({"stat", "-L", "-c", "%s", path}), what, limits);
  if (!printed.ok()) return printed.TakeError();
  std::uint64_t size = 0;
  const char* const begin = printed->out.data();
  const char* const end = begin + printed->out.size();
  const auto [parsed, error] = std::from_chars(begin, end, size);
  const bool is_number = printed->exit_status == 0 && error == std::errc() && parsed != end &&
                         (*parsed == '\r' || *parsed == '\n');
  return is_number ? std::optional(size) : std::nullopt;
}

Status Stat(dk_device* device, const std::string& path, dk_follow follow, dk_entry** made,
            const Limits& limits) {
  const std::string what = "look at " + Shown(path);
  auto sync = OpenSync(device, what, limits);
  if (!sync.ok()) return sync.TakeError();
  auto status = StatOf(device, &*sync, path, follow, what, limits);
  if (!status.ok()) return status.TakeError();
  auto owned = std::make_unique<OwnedEntry>();
  owned->path = path;
  owned->name = std::string(NameOf(path));
  owned->entry = EntryOf(*status, owned->path, owned->name.c_str());
  if (owned->entry.type == DK_FILE && !status->second_form) {
    auto size = SizeByShell(device, path, what, limits);
    if (!size.ok()) return size.TakeError();
    if (*size) {
      owned->entry.size = **size;
    } else {
      auto large = LargeFiles::Query(device, ParentOf(path), false, what, limits);
      if (!large.ok()) return large.TakeError();
      owned->entry.size_known = !large->Has(owned->name);
    }
  }
  if (owned->entry.type == DK_LINK) {
    auto target = ReadLink(device, path, "", what, limits);
    if (!target.ok()) return target.TakeError();
    if (*target) {
      owned->link_target = **target;
      owned->entry.link_target = owned->link_target.c_str();
    }
  }
  *made = &owned.release()->entry;
  return {};
}

// A folder of which the protocol gave no entry at all, not even itself: why.
Status WhyEmpty(dk_device* device, Sync* sync, const std::string& folder, std::string_view what,
                const Limits& limits) {
  auto status = StatOf(device, sync, folder, DK_FOLLOW, what, limits);
  if (!status.ok()) return status.TakeError();
  if (TypeOf(status->mode) != DK_DIRECTORY) return FromPhoneErrno(kNotDirectory, what, folder);
  const std::string inside = folder == "/" ? folder : folder + "/";
  auto listed = CollectScript(device, CommandLine({"ls", inside}), what, limits);
  if (!listed.ok()) return listed.TakeError();
  const std::string& said = listed->err.empty() ? listed->out : listed->err;
  if (listed->exit_status == 0 && ErrnoAtEnd(said) == 0) return {};  // a folder that does not list itself
  return FromProgram(*listed, what, folder);
}

Status List(dk_device* device, const std::string& folder, dk_on_entry on_entry, void* user,
            const Limits& limits) {
  const std::string what = "list " + Shown(folder);
  auto sync = OpenSync(device, what, limits);
  if (!sync.ok()) return sync.TakeError();
  LargeFiles large;
  if (!sync->features.list_v2()) {
    auto asked = LargeFiles::Query(device, folder, false, what, limits);
    if (!asked.ok()) return asked.TakeError();
    large = *std::move(asked);
  }
  bool any = false;
  std::optional<Error> unsafe;
  const auto receive = [&](const adb::DirectoryEntry& found) {
    any = true;
    if (found.name == "." || found.name == "..") return true;
    if (!IsSafeName(found.name)) {
      if (!unsafe) unsafe = UnsafeEntry(folder, found.name);
      return true;
    }
    const std::string name(found.name);
    const std::string path = Joined(folder, name);
    dk_entry entry = EntryOf(found.status, path, name.c_str());
    entry.size_known = found.status.second_form || !large.Has(name);
    return on_entry(user, &entry);
  };
  if (auto listed = sync->connection.List(folder, receive, limits); !listed.ok()) {
    return SyncError(device, listed.error(), what, folder);
  }
  if (unsafe) return *std::move(unsafe);
  return any ? Status() : WhyEmpty(device, &*sync, folder, what, limits);
}

// From the beginning: the connection is closed when there is enough.
Status ReadBeginning(dk_device* device, const std::string& path, std::uint64_t length, dk_on_bytes on_bytes,
                     void* user, const Limits& limits) {
  const std::string what = "read " + Shown(path);
  auto sync = OpenSync(device, what, limits);
  if (!sync.ok()) return sync.TakeError();
  std::uint64_t left = length;
  bool stopped = false;
  const auto receive = [&](std::string_view data) {
    if (length != 0)
      data = data.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(left, data.size())));
    left -= data.size();
    stopped = !on_bytes(user, data.data(), data.size());
    return !stopped && (length == 0 || left > 0);
  };
  auto read = sync->connection.Receive(path, receive, limits);
  if (stopped) return Stopped(what);
  const bool has_enough = length != 0 && left == 0;
  if (read.ok() || has_enough) return {};
  return SyncError(device, read.error(), what, path);
}

// The protocol reads whole files; a part is read by the phone's dd, in blocks, and what the first block has too much is
// dropped.
Status ReadPart(dk_device* device, const std::string& path, std::uint64_t offset, std::uint64_t length,
                dk_on_bytes on_bytes, void* user, const Limits& limits) {
  const std::string what = "read " + Shown(path);
  const std::uint64_t first = std::min(offset, kBeyondAnyFile) / kBlock;
  std::uint64_t to_drop = offset % kBlock;
  std::uint64_t left = length;
  std::string script = "dd if=" + base::QuoteForShell(path) + " bs=" + std::to_string(kBlock) +
                       " skip=" + std::to_string(first);
  if (length != 0 && length < kBeyondAnyFile)
    script += " count=" + std::to_string((to_drop + length + kBlock - 1) / kBlock);
  script += " 2>/dev/null";
  const auto receive = [&](adb::ShellStream, std::string_view data) {
    const auto dropped = static_cast<std::size_t>(std::min<std::uint64_t>(to_drop, data.size()));
    to_drop -= dropped;
    data.remove_prefix(dropped);
    if (length != 0)
      data = data.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(left, data.size())));
    left -= data.size();
    return data.empty() || on_bytes(user, data.data(), data.size());
  };
  auto status = RunScript(device, script, what, receive, limits);
  if (!status.ok()) return status.TakeError();
  if (*status == 0) return {};
  if (Status why = WhyNot(device, path, what, limits); !why.ok()) return why;
  auto said = CollectScript(device, "cat < " + base::QuoteForShell(path) + " > /dev/null", what, limits);
  if (!said.ok()) return said.TakeError();
  return FromProgram(*said, what, path);
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Answer;
using client::Limits;
using client::Status;

dk_code dk_stat(dk_device* device, const char* path, dk_follow follow, dk_entry** entry,
                const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (entry == nullptr) return client::InvalidArgument("no place for the entry");
    *entry = nullptr;
    if (device == nullptr) return client::InvalidArgument("no device");
    auto file = client::ReadPath(path);
    if (!file.ok()) return file.TakeError();
    return client::Stat(device, *file, follow, entry, limits);
  });
}

// The entry is the first member of what it points into.
void dk_entry_free(dk_entry* entry) {
  delete reinterpret_cast<client::OwnedEntry*>(entry);
}

dk_code dk_list(dk_device* device, const char* folder, dk_on_entry on_entry, void* user,
                const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || on_entry == nullptr) return client::InvalidArgument("a null pointer");
    auto path = client::ReadPath(folder);
    if (!path.ok()) return path.TakeError();
    return client::List(device, *path, on_entry, user, limits);
  });
}

dk_code dk_read(dk_device* device, const char* path, uint64_t offset, uint64_t length, dk_on_bytes on_bytes,
                void* user, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || on_bytes == nullptr) return client::InvalidArgument("a null pointer");
    auto file = client::ReadPath(path);
    if (!file.ok()) return file.TakeError();
    if (offset == 0) return client::ReadBeginning(device, *file, length, on_bytes, user, limits);
    return client::ReadPart(device, *file, offset, length, on_bytes, user, limits);
  });
}
