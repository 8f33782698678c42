#include "tools/phone/server/phone_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "tools/phone/common/io.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/filesystem_view/view_paths.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/server/file_owners.h"
#include "tools/phone/server/sandbox.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

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
  for (const char* folder : {"system/bin", "system/xbin", "system/etc", "system/lib64", "storage/self",
                             "data", "cache", "mnt", "proc", "dev", "etc"}) {
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
    volumes.push_back({"/storage/emulated", "/data/media"});
    SetLink("/storage/emulated/0", root / "storage/self/primary");
    SetLink("/storage/self/primary", root / "sdcard");
  } else if (options.storage == "sdcard0") {
    volumes.push_back({"/storage/sdcard0", "/data/media/0"});
    SetLink("/storage/sdcard0", root / "sdcard");
  } else {
    volumes.push_back({"/sdcard1", "/data/media/0"});
  }
  for (const std::string& card : options.cards)
    volumes.push_back({"/storage/" + card, "/mnt/media_rw/" + card});
  for (const StorageVolume& volume : volumes) fs::create_directories(root / volume.path.substr(1));
  return volumes;
}

// A folder as a descriptor, reached without following a link; not valid when there is none.
base::UniqueFd OpenFolder(int parent, const std::string& name) {
  return base::UniqueFd(openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// Older versions kept a volume where its link is now. Moves it, unless the volume has files already.
void MoveOldVolume(const std::string& root, const StorageVolume& volume) {
  base::UniqueFd folder(open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  std::vector<std::string> names = Split(volume.linked.substr(1), '/');
  const std::string last = names.back();
  names.pop_back();
  for (const std::string& name : names) folder = OpenFolder(folder.get(), name);
  if (!OpenFolder(folder.get(), last).valid()) return;
  renameat(folder.get(), last.c_str(), AT_FDCWD, (root + volume.path).c_str());
}

std::string FoldersToMake(const PhoneOptions& options, const std::vector<StorageVolume>& volumes) {
  std::string folders = "/data/local/tmp\n/data/app\n/data/data\n/mnt/media_rw\n";
  const std::string internal = volumes.front().path + (options.storage == "emulated" ? "/0" : "");
  for (const char* folder : {"Android/data", "DCIM", "Download", "Movies", "Music", "Pictures"})
    folders += internal + "/" + folder + "\n";
  return folders;
}

std::string LinksToMake(const std::vector<StorageVolume>& volumes) {
  std::string links;
  for (const StorageVolume& volume : volumes) {
    // Relative, so that a link leads to the same place on the host.
    const std::string target =
        fs::path(volume.path).lexically_relative(fs::path(volume.linked).parent_path());
    links += volume.linked + " " + target + "\n";
  }
  return links;
}

}  // namespace

PhoneFolder::PhoneFolder(const PhoneOptions& options, const KeyValues& properties, const SandboxParts& parts)
    : path_(options.root.empty() ? temporary_.emplace().path() : fs::absolute(options.root).string()) {
  try {
    LayOut(options, properties, parts);
  } catch (const fs::filesystem_error& error) {
    throw std::runtime_error("cannot keep a phone in " + path_ + ": " + error.code().message());
  }
}

void PhoneFolder::LayOut(const PhoneOptions& options, const KeyValues& properties,
                         const SandboxParts& parts) {
  for (const std::string& folder : {files(), state(), setup(), HiddenCommands()})
    fs::create_directories(folder);
  lock_ = LockFolder(path_);
  if (!lock_.valid()) throw std::runtime_error(path_ + " is the folder of another phone");
  LayOutFileSystem(files());
  LayOutCommands(files(), options);
  WriteKeyValues(files() + kBuildProperties, properties);
  volumes_ = LayOutStorage(files(), options);
  for (const StorageVolume& volume : volumes_) MoveOldVolume(files(), volume);
  WriteFile(setup() + "/owners", OwnersFile(options, volumes_));
  WriteFile(setup() + "/mounts", MountsFile(volumes_));
  WriteFile(setup() + "/" + kFoldersToMake, FoldersToMake(options, volumes_));
  WriteFile(setup() + "/" + kLinksToMake, LinksToMake(volumes_));
  for (const char* file : {kShell, kToybox, kDeviceProgram, VIEW_LIBRARY}) MakeMountPoint(files() + file);
  for (const std::string& library : parts.libraries) MakeMountPoint(files() + library);
}

void PhoneFolder::ApplyFaults(const Faults& faults) const {
  const fs::path commands = files() + "/system/bin";
  const fs::path hidden = HiddenCommands();
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
