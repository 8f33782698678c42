#include "server/phone_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "common/io.h"
#include "device/tools.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

std::string MakeTemporaryFolder() {
  std::string path = (fs::temp_directory_path() / "darokleim-phone-XXXXXX").string();
  if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("cannot make a folder " + path);
  return path;
}

// A folder that its owner may not read would stop the removal of the rest.
void MakeRemovable(const fs::path& folder) {
  std::error_code error;
  fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, error);
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (entry.is_directory(error) && !entry.is_symlink(error)) MakeRemovable(entry.path());
  }
}

void LinkIfAbsent(const std::string& target, const fs::path& link) {
  std::error_code error;
  if (!fs::is_symlink(fs::symlink_status(link, error))) fs::create_symlink(target, link);
}

// Users and groups by the numbers and names that every Android knows.
constexpr char kUsers[] =
    "root:x:0:0::/:/system/bin/sh\n"
    "system:x:1000:1000::/:/bin/sh\n"
    "media_rw:x:1023:1023::/:/bin/sh\n"
    "shell:x:2000:2000::/:/system/bin/sh\n";
constexpr char kGroups[] =
    "root:x:0:\nsystem:x:1000:\nlog:x:1007:\nsdcard_rw:x:1015:\nmedia_rw:x:1023:\nsdcard_r:x:1028:\n"
    "shell:x:2000:\ncache:x:2001:\neverybody:x:9997:\n";

void LayOutFileSystem(const fs::path& root) {
  for (const char* folder :
       {"system/bin", "system/xbin", "system/etc", "data/local/tmp", "data/media/0", "storage/self",
        "storage/emulated", "mnt", "cache", "proc", "dev", "etc", "lib", "lib64"}) {
    fs::create_directories(root / folder);
  }
  for (const char* folder : {"Android/data", "DCIM", "Download", "Movies", "Music", "Pictures"}) {
    fs::create_directories(root / "data/media/0" / folder);
  }
  WriteFile((root / "etc/passwd").string(), kUsers);
  WriteFile((root / "etc/group").string(), kGroups);
  LinkIfAbsent("/storage/self/primary", root / "sdcard");
  LinkIfAbsent("/storage/emulated/0", root / "storage/self/primary");
  for (const std::string& name : ToyboxCommands()) LinkIfAbsent("toybox", root / "system/bin" / name);
}

}  // namespace

PhoneFolder::PhoneFolder(const PhoneOptions& options)
    : path_(options.root.empty() ? MakeTemporaryFolder() : fs::absolute(options.root).string()),
      temporary_(options.root.empty()) {
  fs::create_directories(files());
  fs::create_directories(state());
  LayOutFileSystem(files());
}

PhoneFolder::~PhoneFolder() {
  if (!temporary_) return;
  MakeRemovable(path_);
  std::error_code error;
  fs::remove_all(path_, error);
}

}  // namespace darokleim::phone
