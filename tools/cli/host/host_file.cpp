#include "tools/cli/host/host_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "tools/cli/device/argument_text.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void ThrowFor(const std::string& what, const std::error_code& error) {
  throw ToolError("cannot " + what + ": " + error.message());
}

void RenameOnHost(const fs::path& from, const fs::path& to) {
  if (rename(from.c_str(), to.c_str()) != 0) {
    throw ToolError("cannot put " + to.native() + " in its place: " + SystemErrorText(errno));
  }
}

constexpr std::string_view kUnfinished = ".darokleim-";

base::UniqueFd OpenFolder(const fs::path& path) {
  return base::UniqueFd(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool IsStill(const fs::path& path, const base::UniqueFd& folder) {
  struct stat by_path {};
  struct stat by_descriptor {};
  if (!folder.valid()) return true;
  return lstat(path.c_str(), &by_path) == 0 && fstat(folder.get(), &by_descriptor) == 0 &&
         by_path.st_ino == by_descriptor.st_ino && by_path.st_dev == by_descriptor.st_dev;
}

// A run that was killed has left its folder, which is no longer locked.
void RemoveLeftovers(const fs::path& parent) {
  std::error_code error;
  for (fs::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error)) {
    if (!entry->path().filename().native().starts_with(kUnfinished)) continue;
    const auto folder = OpenFolder(entry->path());
    struct stat facts {};
    if (!folder.valid() || fstat(folder.get(), &facts) != 0 || facts.st_uid != geteuid()) continue;
    if (flock(folder.get(), LOCK_EX | LOCK_NB) != 0) continue;
    std::error_code ignored;
    fs::remove_all(entry->path(), ignored);
  }
}

// What was written survives a loss of power. A file system that cannot do that is no reason to fail.
void Sync(const fs::path& path) {
  const base::UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.valid()) fsync(file.get());
}

bool IsRealFolder(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(fs::symlink_status(path, error));
}

void Merge(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::create_directories(to, error);
  if (error) ThrowFor("make the folder " + to.native(), error);
  for (fs::directory_iterator entry(from, error), end; !error && entry != end; entry.increment(error)) {
    const fs::path target = to / entry->path().filename();
    if (IsRealFolder(entry->path()) && fs::exists(target)) {
      Merge(entry->path(), target);
    } else {
      if (fs::exists(target)) Sync(entry->path());
      RenameOnHost(entry->path(), target);
    }
  }
  if (error) ThrowFor("read the folder " + from.native(), error);
}

}  // namespace

std::uint64_t SizeOnHost(const fs::path& path) {
  std::error_code error;
  if (!IsRealFolder(path)) {
    const auto size = fs::file_size(path, error);
    return error ? 0 : size;
  }
  std::uint64_t sum = 0;
  for (fs::recursive_directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code entry_error;
    if (!entry->is_regular_file(entry_error)) continue;
    const auto size = entry->file_size(entry_error);
    if (!entry_error) sum += size;
  }
  return sum;
}

std::vector<HostFile> FilesBelow(const fs::path& folder) {
  std::vector<HostFile> files;
  std::error_code error;
  const std::size_t prefix = folder.native().size() + (folder.native().ends_with('/') ? 0 : 1);
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code entry_error;
    if (!fs::is_regular_file(entry->symlink_status(entry_error))) continue;
    files.push_back({entry->path().native().substr(prefix), entry->file_size(entry_error)});
  }
  if (error) ThrowFor("read the folder " + folder.native(), error);
  return files;
}

fs::path AbsolutePath(const std::string& path) {
  std::error_code error;
  fs::path absolute = fs::absolute(path, error).lexically_normal();
  if (error) ThrowFor("find the current folder", error);
  return absolute.has_filename() ? absolute : absolute.parent_path();
}

UnfinishedOnHost::UnfinishedOnHost(fs::path final_path) : final_path_(std::move(final_path)) {
  CheckCanBeCarried(final_path_.native());
  RemoveLeftovers(final_path_.parent_path());
  do {
    MakeFolder();
  } while (!IsStill(folder_, lock_));
  path_ = folder_ / "unfinished";
}

UnfinishedOnHost::~UnfinishedOnHost() {
  std::error_code error;
  fs::remove_all(folder_, error);
}

// Another run may remove the folder before it is locked.
void UnfinishedOnHost::MakeFolder() {
  std::string name = (final_path_.parent_path() / (std::string(kUnfinished) + "XXXXXX")).native();
  if (mkdtemp(name.data()) == nullptr) {
    throw ToolError("cannot write in " + final_path_.parent_path().native() + ": " + SystemErrorText(errno));
  }
  folder_ = name;
  lock_ = OpenFolder(folder_);
  // Where folders cannot be locked, no run removes what another one left.
  if (lock_.valid()) flock(lock_.get(), LOCK_EX);
}

void UnfinishedOnHost::PutInPlace() {
  if (IsRealFolder(path_) && fs::exists(final_path_)) {
    Merge(path_, final_path_);
  } else {
    Sync(path_);
    RenameOnHost(path_, final_path_);
  }
  Sync(final_path_.parent_path());
}

}  // namespace darokleim::cli
