#include "tools/cli/host/adb_location.h"

#include <errno.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

#include "tools/cli/errors.h"
#include "tools/cli/host/host_directories.h"
#include "tools/cli/host/own_process.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

// The interpreter that a script names on its first line; nothing for other files.
std::optional<std::string> ScriptInterpreter(const fs::path& path) {
  constexpr char kSpaces[] = " \t\r";
  constexpr std::size_t kLongestLine = 4096;
  std::string line(kLongestLine, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(line.data(), static_cast<std::streamsize>(line.size()));
  line.resize(static_cast<std::size_t>(file.gcount()));
  line.resize(std::min(line.find('\n'), line.size()));
  if (line.compare(0, 2, "#!") != 0) return std::nullopt;
  const auto start = line.find_first_not_of(kSpaces, 2);
  if (start == std::string::npos) return "";
  return line.substr(start, line.find_first_of(kSpaces, start) - start);
}

// Why the system would not start the file as a program; nothing when it would, as far as one can see.
std::optional<std::string> ReasonNotToRun(const fs::path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return SystemErrorText(errno);
  if (S_ISDIR(status.st_mode)) return "it is a directory, not the adb executable in it";
  if (!S_ISREG(status.st_mode)) return "it is not a regular file";
  if (access(path.c_str(), X_OK) != 0) return "it is not executable: " + SystemErrorText(errno);
  if (status.st_size == 0) return "it is empty";
  const auto interpreter = ScriptInterpreter(path);
  if (interpreter && access(interpreter->c_str(), X_OK) != 0) {
    return "it is a script for \"" + *interpreter + "\", which cannot be run: " + SystemErrorText(errno);
  }
  return std::nullopt;
}

fs::path CheckedAdb(const std::string& named) {
  if (const auto reason = ReasonNotToRun(named)) {
    throw ToolError("cannot use " + named + " as adb: " + *reason + ".");
  }
  return fs::absolute(named);
}

fs::path CheckedBusybox(const std::string& named) {
  struct stat status {};
  const auto fail = [&named](const std::string& why) {
    throw ToolError("cannot use " + named + " as busybox: " + why + ".");
  };
  if (stat(named.c_str(), &status) != 0) fail(SystemErrorText(errno));
  if (!S_ISREG(status.st_mode)) fail("it is not a regular file");
  if (access(named.c_str(), R_OK) != 0) fail(SystemErrorText(errno));
  return fs::absolute(named);
}

// In the tool's own folder, as in a build or an application bundle, and in an installed tree.
std::vector<fs::path> BundledFolders() {
  const fs::path own = ExecutableDirectory();
  if (own.empty()) return {};
  return {own / "resources", own.parent_path() / "share/darokleim/resources"};
}

std::vector<fs::path> PathFolders() {
  std::vector<fs::path> folders;
  const char* path = getenv("PATH");
  std::string_view rest = path == nullptr ? "" : path;
  while (!rest.empty()) {
    const auto entry = rest.substr(0, rest.find(':'));
    // A relative entry would run whatever lies in the current directory.
    if (entry.substr(0, 1) == "/") folders.emplace_back(entry);
    rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
  }
  return folders;
}

std::vector<fs::path> InstallFolders() {
  std::vector<fs::path> folders;
  for (const char* variable : {"ANDROID_HOME", "ANDROID_SDK_ROOT"}) {
    const char* sdk = getenv(variable);
    if (sdk != nullptr && *sdk == '/') folders.push_back(fs::path(sdk) / "platform-tools");
  }
  if (const auto home = HomeDirectory()) {
    folders.push_back(*home / "Library/Android/sdk/platform-tools");
    folders.push_back(*home / "Android/Sdk/platform-tools");
  }
  for (const char* folder : {"/opt/homebrew/bin", "/usr/local/bin", "/usr/lib/android-sdk/platform-tools",
                             "/opt/android-sdk/platform-tools"}) {
    folders.emplace_back(folder);
  }
  return folders;
}

fs::path SearchAdb() {
  for (const auto& folders : {BundledFolders(), PathFolders(), InstallFolders()}) {
    for (const auto& folder : folders) {
      auto candidate = folder / "adb";
      if (!ReasonNotToRun(candidate)) return candidate;
    }
  }
  throw ToolError(
      "cannot find adb: it is neither in PATH nor where the Android SDK or Homebrew install it. Install the "
      "Android "
      "platform-tools (https://developer.android.com/tools/releases/platform-tools), or name it with --adb "
      "PATH.");
}

std::optional<fs::path> SearchBusybox() {
  for (const auto& folder : BundledFolders()) {
    if (access((folder / "busybox").c_str(), R_OK) == 0) return folder / "busybox";
  }
  return std::nullopt;
}

}  // namespace

HostPrograms FindHostPrograms(const std::string& named_adb, const std::string& named_busybox) {
  HostPrograms programs;
  programs.adb = named_adb.empty() ? SearchAdb() : CheckedAdb(named_adb);
  programs.busybox = named_busybox.empty() ? SearchBusybox() : CheckedBusybox(named_busybox);
  return programs;
}

}  // namespace darokleim::cli
