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

}  // namespace

fs::path AbsolutePath(const std::string& path) {
  std::error_code error;
  fs::path absolute = fs::absolute(path, error).lexically_normal();
  if (error) ThrowFor("find the current folder", error);
  return absolute.has_filename() ? absolute : absolute.parent_path();
}

UnfinishedOnHost::UnfinishedOnHost(fs::path final_path) : final_path_(std::move(final_path)) {
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
  Sync(path_);
  RenameOnHost(path_, final_path_);
  Sync(final_path_.parent_path());
}

}  // namespace darokleim::cli
