#include "tools/cli/host/host_directories.h"

#include <errno.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <system_error>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

constexpr char kOwnName[] = "darokleim";

// A relative path is ignored: it would mean another directory from call to call.
std::optional<fs::path> AbsolutePathFromEnvironment(const char* variable) {
  const char* value = getenv(variable);
  if (value == nullptr || *value != '/') return std::nullopt;
  return value;
}

std::optional<fs::path> UserDirectory([[maybe_unused]] const char* xdg_variable, const char* below_home) {
#if !defined(__APPLE__)
  if (const auto directory = AbsolutePathFromEnvironment(xdg_variable)) return *directory / kOwnName;
#endif
  if (const auto home = HomeDirectory()) return *home / below_home / kOwnName;
  return std::nullopt;
}

#if defined(__APPLE__)
constexpr char kStateBelowHome[] = "Library/Logs";
constexpr char kCacheBelowHome[] = "Library/Caches";
#else
constexpr char kStateBelowHome[] = ".local/state";
constexpr char kCacheBelowHome[] = ".cache";
#endif

}  // namespace

std::optional<fs::path> HomeDirectory() {
  if (auto home = AbsolutePathFromEnvironment("HOME")) return home;
  const passwd* user = getpwuid(getuid());
  if (user == nullptr || user->pw_dir == nullptr || *user->pw_dir != '/') return std::nullopt;
  return user->pw_dir;
}

fs::path StateDirectory() {
  return UserDirectory("XDG_STATE_HOME", kStateBelowHome).value_or(TemporaryUserDirectory());
}

std::optional<fs::path> CacheDirectory() {
  return UserDirectory("XDG_CACHE_HOME", kCacheBelowHome);
}

fs::path TemporaryUserDirectory() {
  const auto base = AbsolutePathFromEnvironment("TMPDIR").value_or("/tmp");
  return base / (std::string(kOwnName) + "-" + std::to_string(getuid()));
}

// FNV-1a.
std::uint64_t StableHash(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
  return hash;
}

void MakePrivateDirectory(const fs::path& directory) {
  const auto fail = [&directory](const std::string& why) {
    throw ToolError("cannot use the directory " + directory.native() + ": " + why);
  };
  std::error_code error;
  fs::create_directories(directory.parent_path(), error);  // a failure shows below
  if (mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) fail(SystemErrorText(errno));
  struct stat status {};
  if (lstat(directory.c_str(), &status) != 0) fail(SystemErrorText(errno));
  if (!S_ISDIR(status.st_mode)) fail("it is not a directory");
  if (status.st_uid != geteuid()) fail("it belongs to another user");
  if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) fail("other users can write in it");
}

}  // namespace darokleim::cli
