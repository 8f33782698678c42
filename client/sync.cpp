#include "client/sync.h"

#include <sys/stat.h>

#include "base/shell_quoting.h"
#include "client/phone_errors.h"
#include "client/shell.h"

namespace darokleim::client {

Result<Sync> OpenSync(dk_device* device, std::string_view what, const Limits& limits) {
  Features features(device);
  return OpenSync(&features, what, limits);
}

Result<Sync> OpenSync(Features* features, std::string_view what, const Limits& limits) {
  auto known = features->Get(what, limits);
  if (!known.ok()) return known.TakeError();
  const dk_device* const device = features->device();
  auto connection = adb::SyncConnection::Start(device->context->server,
                                               adb::DeviceSelector::Serial(device->serial), **known, limits);
  if (!connection.ok()) return ServiceError(device, connection.error(), what, limits);
  return Sync{*std::move(connection), **known};
}

Error SyncError(const dk_device* device, const adb::Error& error, std::string_view what,
                std::string_view path) {
  const int number = error.code == adb::ErrorCode::kRefused ? ErrnoAtEnd(error.message) : 0;
  if (number != 0) {
    Error typed = FromPhoneErrno(number, what, path);
    typed.words = error.message;
    return typed;
  }
  Error made = DeviceError(device, error, what);
  made.path = std::string(path);
  return made;
}

Result<std::vector<adb::FileStatus>> StatMany(dk_device* device, Sync* sync,
                                              const std::vector<std::string>& paths, std::string_view what,
                                              const Limits& limits) {
  std::vector<adb::FileStatus> found(paths.size());
  std::vector<std::size_t> asked;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const bool can_be_asked =
        sync->connection.RequestStat(paths[i], adb::SyncConnection::Links::kThemselves).ok();
    if (can_be_asked) asked.push_back(i);
  }
  for (const std::size_t i : asked) {
    auto status = sync->connection.ReadStat(limits);
    if (!status.ok()) return SyncError(device, status.error(), what, paths[i]);
    found[i] = *status;
  }
  return found;
}

dk_type TypeOf(std::uint32_t mode) {
  constexpr std::uint32_t kTypeBits = 0170000;
  switch (mode & kTypeBits) {
    case 0100000:
      return DK_FILE;
    case 0040000:
      return DK_DIRECTORY;
    case 0120000:
      return DK_LINK;
    case 0:
      return DK_UNKNOWN_TYPE;
    default:
      return DK_SPECIAL;
  }
}

dk_entry EntryOf(const adb::FileStatus& status, const std::string& path, const char* name) {
  dk_entry entry = {};
  entry.path = path.c_str();
  entry.name = name;
  entry.type = TypeOf(status.mode);
  entry.mode = status.mode;
  entry.size = status.size;
  entry.size_known = true;
  entry.mtime = status.modified;
  entry.has_owner = status.second_form;
  entry.uid = status.user;
  entry.gid = status.group;
  entry.device = status.device;
  entry.inode = status.inode;
  return entry;
}

Status WhyNot(dk_device* device, const std::string& path, std::string_view what, const Limits& limits) {
  auto listed = CollectScript(device, CommandLine({"ls", "-d", path}), what, limits);
  if (!listed.ok()) return listed.TakeError();
  // Old phones' ls ends with 0 whatever it says.
  const std::string& said = listed->err.empty() ? listed->out : listed->err;
  if (ErrnoAtEnd(said) == 0 && listed->exit_status == 0) return {};
  return FromProgram(*listed, what, path);
}

Result<LargeFiles> LargeFiles::Query(dk_device* device, const std::string& folder, bool recursive,
                                     std::string_view what, const Limits& limits) {
  // With a slash at its end a link to a folder is followed.
  const std::string inside = folder == "/" ? folder : folder + "/";
  const std::string script = std::string("ls -la") + (recursive ? "R " : " ") + base::QuoteForShell(inside) +
                             " 2>/dev/null | grep ' [0-9]\\{10\\}'";
  auto lines = CollectScript(device, script, what, limits);
  if (!lines.ok()) return lines.TakeError();
  LargeFiles files;
  // Names with spaces: old listings escape them.
  ForEachLine(lines->out, [&](std::string_view line) {
    std::string plain;
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (line[i] == '\\' && i + 1 < line.size() && line[i + 1] == ' ') ++i;
      plain += line[i];
    }
    files.lines_.append(plain) += '\n';
    return true;
  });
  return files;
}

bool LargeFiles::Has(std::string_view name) const {
  if (lines_.empty()) return false;
  return lines_.find(" " + std::string(name) + "\n") != std::string::npos;
}

}  // namespace darokleim::client
