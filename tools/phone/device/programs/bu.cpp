#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>

#include "tools/phone/common/io.h"
#include "tools/phone/device/backup.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/packages/package_store.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/records.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

// Folders of an application's data, and their names in the archive.
constexpr std::array<std::pair<const char*, const char*>, 3> kDataFolders = {{
    {"files", "f"},
    {"databases", "db"},
    {"shared_prefs", "sp"},
}};

struct BackupWords {
  bool apk = false;
  bool shared = false;
  bool all = false;
  bool system = true;
  Words packages;
};

BackupWords SortBackupWords(const Words& words) {
  BackupWords sorted;
  for (size_t i = 1; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "-apk" || word == "-noapk") {
      sorted.apk = word == "-apk";
    } else if (word == "-shared" || word == "-noshared") {
      sorted.shared = word == "-shared";
    } else if (word == "-system" || word == "-nosystem") {
      sorted.system = word == "-system";
    } else if (word == "-all") {
      sorted.all = true;
    } else if (!word.empty() && word[0] != '-') {
      sorted.packages.push_back(word);
    }
  }
  return sorted;
}

// A folder for putting an archive together or taking it apart.
class WorkFolder {
 public:
  WorkFolder() : path_("/data/local/.backup-" + std::to_string(getpid())) { fs::create_directories(path_); }
  ~WorkFolder() {
    std::error_code error;
    fs::remove_all(path_, error);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

// Runs toybox tar with one end of a pipe in place of its standard input or output.
pid_t StartTar(const Words& options, int pipe_end, int in_place_of) {
  Words command = {kToybox, "tar"};
  command.insert(command.end(), options.begin(), options.end());
  std::vector<char*> arguments;
  for (std::string& word : command) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, pipe_end, in_place_of);
  pid_t pid = -1;
  const int error = posix_spawn(&pid, kToybox, &files, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&files);
  return error == 0 ? pid : -1;
}

bool EndedWell(pid_t pid) {
  int status = 1;
  return pid > 0 && waitpid(pid, &status, 0) == pid && status == 0;
}

std::string ManifestOf(const Package& package, bool with_apk) {
  return "1\n" + package.name + "\n" + std::to_string(package.version_code) + "\n" +
         Property("ro.build.version.sdk") + "\n\n" + (with_apk ? "1" : "0") + "\n0\n";
}

// Links to what goes into the archive, under the names that it has there.
void AddPackage(const Package& package, bool with_apk, const fs::path& work) {
  const fs::path folder = work / "apps" / package.name;
  fs::create_directories(folder);
  WriteFile((folder / "_manifest").string(), ManifestOf(package, with_apk));
  std::error_code error;
  for (const auto& [data, name] : kDataFolders) {
    const std::string target = package.data_folder() + "/" + data;
    if (fs::exists(target, error)) fs::create_directory_symlink(target, folder / name, error);
  }
  if (with_apk) fs::create_directory_symlink(package.code_path, folder / "a", error);
}

int Backup(const BackupWords& words) {
  if (words.packages.empty() && !words.all && !words.shared) {
    std::fprintf(stderr, "backup: no package names supplied and neither -shared nor -all given\n");
    return 1;
  }
  if (!WaitForConfirmation()) return 1;
  const WorkFolder work;
  for (const Package& package : PackageStore().Installed()) {
    const bool named =
        std::find(words.packages.begin(), words.packages.end(), package.name) != words.packages.end();
    if (named || (words.all && (words.system || !package.system)))
      AddPackage(package, words.apk, work.path());
  }
  std::error_code error;
  fs::create_directories(work.path() / "apps", error);
  Words tar = {"-c", "-h", "-C", work.path().string(), "apps"};
  if (words.shared) {
    fs::create_directories(work.path() / "shared", error);
    fs::create_directory_symlink("/data/media/0", work.path() / "shared/0", error);
    tar.push_back("shared");
  }
  auto ends = MakePipe();
  if (!ends) return 1;
  const pid_t pid = StartTar(tar, ends->second.get(), STDOUT_FILENO);
  ends->second.Reset();
  const bool written = WriteBackupFile(ends->first.get(), STDOUT_FILENO);
  ends->first.Reset();
  WriteLog('I', "BackupManagerService", "Full backup processing complete.");
  return EndedWell(pid) && written ? 0 : 1;
}

void RestorePackage(const Package& package, const fs::path& folder) {
  std::error_code error;
  for (const auto& [data, name] : kDataFolders) {
    const fs::path target = package.data_folder() + "/" + data;
    if (!fs::exists(folder / name, error)) continue;
    fs::remove_all(target, error);
    fs::create_directories(target.parent_path(), error);
    fs::rename(folder / name, target, error);
  }
}

// Only the data of applications that are installed has a place to go.
int Restore() {
  if (!WaitForConfirmation()) return 1;
  const WorkFolder work;
  auto ends = MakePipe();
  if (!ends) return 1;
  const pid_t pid = StartTar({"-x", "-C", work.path().string()}, ends->first.get(), STDIN_FILENO);
  ends->first.Reset();
  const bool read = ReadBackupFile(STDIN_FILENO, ends->second.get());
  ends->second.Reset();
  if (!EndedWell(pid) || !read) {
    WriteLog('E', "BackupManagerService", "Invalid restore data");
    return 1;
  }
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(work.path() / "apps", error)) {
    const auto package = PackageStore().Find(entry.path().filename().string());
    if (package && package->installed) RestorePackage(*package, entry.path());
  }
  if (fs::exists(work.path() / "shared/0", error)) {
    fs::copy(work.path() / "shared/0", "/data/media/0",
             fs::copy_options::recursive | fs::copy_options::overwrite_existing, error);
  }
  WriteLog('I', "BackupManagerService", "Full restore processing complete.");
  return 0;
}

}  // namespace

// bu backup OPTIONS PACKAGE… writes a backup file; bu restore reads one.
int RunBu(const Words& words) {
  signal(SIGPIPE, SIG_IGN);
  const std::string command = words.empty() ? "" : words[0];
  if (command == "backup") return Backup(SortBackupWords(words));
  if (command == "restore") return Restore();
  std::fprintf(stderr, "bu: unknown command '%s'\n", command.c_str());
  return 1;
}

}  // namespace darokleim::phone
