#include "tools/phone/device/packages/installer.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <random>
#include <utility>

#include "tools/phone/common/faults.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/key_values.h"
#include "tools/phone/common/numbers.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/packages/apk_file.h"
#include "tools/phone/device/packages/package_store.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/records.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

constexpr char kNoSpace[] = "INSTALL_FAILED_INSUFFICIENT_STORAGE";

// 16 random bytes as Android writes them into the names of folders.
std::string RandomName() {
  static constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  std::random_device random;
  std::string name;
  for (int i = 0; i < 22; ++i) name += kLetters[random() % 64];
  return name + "==";
}

// Where the files of a new installation go: since Android 11 below a folder that cannot be guessed.
std::string NewCodePath(const std::string& package) {
  if (!IsLegacyPhone()) return "/data/app/~~" + RandomName() + "/" + package + "-" + RandomName();
  const std::string first = "/data/app/" + package + "-1";
  return fs::exists(first) ? "/data/app/" + package + "-2" : first;
}

bool CopyFile(const std::string& from, const std::string& to) {
  const base::UniqueFd in(open(from.c_str(), O_RDONLY | O_CLOEXEC));
  const base::UniqueFd out(open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  return in.valid() && out.valid() && CopyUntilEnd(in.get(), out.get());
}

// Removes the code and the random folder it was alone in.
void RemoveCode(const std::string& code_path) {
  if (code_path.rfind("/data/app/", 0) != 0) return;
  std::error_code error;
  fs::remove_all(code_path, error);
  const fs::path parent = fs::path(code_path).parent_path();
  if (parent != "/data/app") fs::remove(parent, error);
}

bool FitsProcessor(const ApkFile& apk) {
  if (apk.abis.empty()) return true;
  const std::vector<std::string> known = Split(Property("ro.product.cpu.abilist"), ',');
  return std::any_of(apk.abis.begin(), apk.abis.end(), [&known](const std::string& abi) {
    return std::find(known.begin(), known.end(), abi) != known.end();
  });
}

// Why this phone refuses the package, before anything is copied.
std::string RefusalOf(const ApkFile& apk, const std::optional<Package>& existing,
                      const InstallOptions& options) {
  const unsigned sdk = ParseNumber<unsigned>(Property("ro.build.version.sdk")).value_or(0);
  if (apk.min_sdk > sdk) {
    return "INSTALL_FAILED_OLDER_SDK: Failed parse during installPackageLI: Requires newer sdk version #" +
           std::to_string(apk.min_sdk) + " (current version is #" + std::to_string(sdk) + ")";
  }
  if (apk.test_only && !options.allow_test) return "INSTALL_FAILED_TEST_ONLY: installPackageLI";
  if (!FitsProcessor(apk))
    return "INSTALL_FAILED_NO_MATCHING_ABIS: Failed to extract native libraries, res=-113";
  if (!existing) return "";
  if (existing->installed && !options.replace) {
    return "INSTALL_FAILED_ALREADY_EXISTS: Attempt to re-install " + apk.package +
           " without first uninstalling.";
  }
  if (apk.version_code < existing->version_code && !options.allow_downgrade) {
    return "INSTALL_FAILED_VERSION_DOWNGRADE: Downgrade detected: Update version code " +
           std::to_string(apk.version_code) + " is older than current " +
           std::to_string(existing->version_code);
  }
  return "";
}

// The files of one installation, read; the base first.
struct Parts {
  std::vector<std::pair<std::string, ApkFile>> files;
  std::string failure;
};

Parts ReadParts(const std::vector<std::string>& paths) {
  Parts parts;
  for (const std::string& path : paths) {
    auto read = ReadApk(path);
    if (const std::string* failure = std::get_if<std::string>(&read)) {
      parts.failure = *failure;
      return parts;
    }
    parts.files.emplace_back(path, std::move(std::get<ApkFile>(read)));
  }
  std::stable_sort(parts.files.begin(), parts.files.end(),
                   [](const auto& one, const auto& other) { return one.second.split < other.second.split; });
  if (parts.files.empty() || !parts.files[0].second.split.empty()) {
    parts.failure = "INSTALL_FAILED_INVALID_APK: Full install must include a base package";
    return parts;
  }
  for (const auto& [path, apk] : parts.files) {
    const ApkFile& base = parts.files[0].second;
    if (apk.package != base.package || apk.version_code != base.version_code) {
      parts.failure = "INSTALL_FAILED_INVALID_APK: " + path + " is not of the same package as the base";
    }
  }
  return parts;
}

bool CopyParts(const Parts& parts, const std::string& code_path, std::vector<std::string>* apk_paths) {
  std::error_code error;
  fs::create_directories(code_path, error);
  for (const auto& [path, apk] : parts.files) {
    std::string copy = code_path;
    copy += apk.split.empty() ? "/base.apk" : "/split_" + apk.split + ".apk";
    if (!CopyFile(path, copy)) return false;
    apk_paths->push_back(std::move(copy));
  }
  return true;
}

void MakeDataFolder(const Package& package) {
  std::error_code error;
  for (const char* folder : {"files", "cache", "databases", "shared_prefs"}) {
    fs::create_directories(package.data_folder() + "/" + folder, error);
  }
}

}  // namespace

std::string Install(const std::vector<std::string>& apks, const InstallOptions& options) {
  const Faults faults(kSetupFolder);
  if (const auto failure = faults.Value(fault::kInstallFailure)) return *failure;
  const Parts parts = ReadParts(apks);
  if (!parts.failure.empty()) return parts.failure;

  const StateLock lock(kStateFolder);
  const PackageStore store;
  const ApkFile& base = parts.files[0].second;
  const auto existing = store.Find(base.package);
  if (std::string refusal = RefusalOf(base, existing, options); !refusal.empty()) return refusal;

  Package package;
  package.name = base.package;
  package.code_path = NewCodePath(base.package);
  if (!CopyParts(parts, package.code_path, &package.apk_paths)) {
    RemoveCode(package.code_path);
    return kNoSpace;
  }
  package.version_code = base.version_code;
  package.version_name = base.version_name;
  package.min_sdk = base.min_sdk;
  package.target_sdk = base.target_sdk;
  package.activities = base.activities;
  package.main_activity = base.main_activity;
  package.last_update = std::time(nullptr);
  package.first_install = existing ? existing->first_install : package.last_update;
  package.user_id = existing ? existing->user_id : store.NextUserId();
  MakeDataFolder(package);
  if (!store.Save(package)) {
    RemoveCode(package.code_path);
    return kNoSpace;
  }
  if (existing) RemoveCode(existing->code_path);
  WriteLog('I', "PackageManager", "Package " + package.name + " codePath is " + package.code_path);
  return "";
}

std::string Uninstall(const std::string& name, bool keep_data) {
  const StateLock lock(kStateFolder);
  const PackageStore store;
  auto package = store.Find(name);
  if (!package || (!package->installed && keep_data)) return "DELETE_FAILED_INTERNAL_ERROR";
  if (package->system) return "DELETE_FAILED_INTERNAL_ERROR";
  RemoveCode(package->code_path);
  if (keep_data) {
    package->installed = false;
    package->apk_paths.clear();
    store.Save(*package);
  } else {
    std::error_code error;
    fs::remove_all(package->data_folder(), error);
    store.Forget(name);
  }
  WriteLog('I', "PackageManager", "Package " + name + " removed");
  return "";
}

bool ClearData(const std::string& name) {
  const auto package = PackageStore().Find(name);
  if (!package) return false;
  std::error_code error;
  fs::remove_all(package->data_folder(), error);
  MakeDataFolder(*package);
  return true;
}

}  // namespace darokleim::phone
