#include "server/phone_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "common/io.h"
#include "device/filesystem_view/view_paths.h"
#include "device/layout.h"
#include "device/programs/programs.h"
#include "device/tools.h"
#include "server/file_owners.h"

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

void SetLink(const std::string& target, const fs::path& link) {
  std::error_code error;
  fs::remove(link, error);
  fs::create_symlink(target, link);
}

void MakeMountPoint(const fs::path& file) {
  fs::create_directories(file.parent_path());
  if (!fs::exists(fs::symlink_status(file))) WriteFile(file.string(), "");
}

void LayOutFileSystem(const fs::path& root) {
  for (const char* folder :
       {"system/bin", "system/xbin", "system/etc", "system/lib64", "data/local/tmp", "data/app", "data/data",
        "storage/self", "mnt/media_rw", "cache", "proc", "dev", "etc"}) {
    fs::create_directories(root / folder);
  }
  WriteFile((root / "etc/passwd").string(), PasswdFile());
  WriteFile((root / "etc/group").string(), GroupFile());
  WriteFile(root.string() + VIEW_PRELOAD, VIEW_LIBRARY "\n");
}

void LayOutCommands(const fs::path& root, const PhoneOptions& options) {
  const fs::path commands = root / "system/bin";
  const bool toolbox =
      options.tools.empty() ? options.generation == Generation::kLegacy : options.tools == "toolbox";
  for (const std::string& name : ToyboxCommands()) SetLink("toybox", commands / name);
  for (const std::string& name : ProgramNames()) {
    if (name != "su" && (toolbox || !IsToolboxProgram(name))) SetLink("adbd", commands / name);
  }
  for (const char* place : {"bin", "xbin"}) {
    const fs::path su = root / "system" / place / "su";
    std::error_code error;
    if (options.su == place) {
      SetLink(kDeviceProgram, su);
    } else {
      fs::remove(su, error);
    }
  }
}

// The internal storage, and a removable card for each name.
std::vector<StorageVolume> LayOutStorage(const fs::path& root, const PhoneOptions& options) {
  std::vector<StorageVolume> volumes;
  std::error_code error;
  fs::remove(root / "sdcard", error);
  if (options.storage == "emulated") {
    volumes.push_back({"/data/media", "/storage/emulated"});
    SetLink("/storage/emulated/0", root / "storage/self/primary");
    SetLink("/storage/self/primary", root / "sdcard");
  } else if (options.storage == "sdcard0") {
    volumes.push_back({"/data/media/0", "/storage/sdcard0"});
    SetLink("/storage/sdcard0", root / "sdcard");
  } else {
    volumes.push_back({"/data/media/0", "/sdcard1"});
  }
  for (const std::string& card : options.cards)
    volumes.push_back({"/mnt/media_rw/" + card, "/storage/" + card});
  for (const StorageVolume& volume : volumes) {
    for (const std::string& folder : {volume.kept_in, volume.shown_at}) {
      fs::create_directories(root / folder.substr(1));
    }
  }
  for (const char* folder : {"Android/data", "DCIM", "Download", "Movies", "Music", "Pictures"}) {
    fs::create_directories(root / "data/media/0" / folder);
  }
  return volumes;
}

}  // namespace

PhoneFolder::PhoneFolder(const PhoneOptions& options, const KeyValues& properties, const SandboxParts& parts)
    : path_(options.root.empty() ? MakeTemporaryFolder() : fs::absolute(options.root).string()),
      temporary_(options.root.empty()) {
  fs::create_directories(files());
  fs::create_directories(state());
  LayOutFileSystem(files());
  LayOutCommands(files(), options);
  WriteKeyValues(files() + kBuildProperties, properties);
  volumes_ = LayOutStorage(files(), options);
  WriteFile(state() + "/owners", OwnersFile(options, volumes_));
  WriteFile(state() + "/mounts", MountsFile(volumes_));
  for (const char* file : {kShell, kToybox, kDeviceProgram, VIEW_LIBRARY}) MakeMountPoint(files() + file);
  for (const std::string& library : parts.libraries) MakeMountPoint(files() + library);
}

PhoneFolder::~PhoneFolder() {
  if (!temporary_) return;
  MakeRemovable(path_);
  std::error_code error;
  fs::remove_all(path_, error);
}

void PhoneFolder::ForgetUntilBoot() const {
  const std::string path = state() + "/" + kSetProperties;
  KeyValues kept;
  for (const auto& [name, value] : ReadKeyValues(path)) {
    if (name.rfind("persist.", 0) == 0) kept[name] = value;
  }
  WriteKeyValues(path, kept);
}

void PhoneFolder::FollowFaults(const Faults& faults) const {
  const fs::path commands = files() + "/system/bin";
  const fs::path hidden = state() + "/hidden-commands";
  fs::create_directories(hidden);
  std::error_code error;
  for (const fs::directory_entry& command : fs::directory_iterator(hidden)) {
    fs::rename(command.path(), commands / command.path().filename(), error);
  }
  for (const Fault& fault : faults.All()) {
    const std::string name = fault.name.substr(fault::kMissingPrefix.size());
    if (fault.name.compare(0, fault::kMissingPrefix.size(), fault::kMissingPrefix) == 0 &&
        fs::is_symlink(fs::symlink_status(commands / name, error))) {
      fs::rename(commands / name, hidden / name, error);
    }
  }
}

}  // namespace darokleim::phone
