#include "tools/phone/server/phone_folder.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

#include "tools/phone/common/io.h"
#include "tools/phone/device/filesystem_view/view_paths.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/tools.h"
#include "tools/phone/server/file_owners.h"

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
    : path_(options.root.empty() ? temporary_.emplace().path() : fs::absolute(options.root).string()) {
  try {
    LayOut(options, properties, parts);
  } catch (const fs::filesystem_error& error) {
    throw std::runtime_error("cannot keep a phone in " + path_ + ": " + error.code().message());
  }
}

void PhoneFolder::LayOut(const PhoneOptions& options, const KeyValues& properties,
                         const SandboxParts& parts) {
  fs::create_directories(files());
  fs::create_directories(state());
  lock_ = LockFolder(path_);
  if (!lock_.valid()) throw std::runtime_error(path_ + " is the folder of another phone");
  LayOutFileSystem(files());
  LayOutCommands(files(), options);
  WriteKeyValues(files() + kBuildProperties, properties);
  volumes_ = LayOutStorage(files(), options);
  WriteFile(state() + "/owners", OwnersFile(options, volumes_));
  WriteFile(state() + "/mounts", MountsFile(volumes_));
  for (const char* file : {kShell, kToybox, kDeviceProgram, VIEW_LIBRARY}) MakeMountPoint(files() + file);
  for (const std::string& library : parts.libraries) MakeMountPoint(files() + library);
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
