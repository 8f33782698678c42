#include "tests/phone/path_trials.h"

#include <darokleim.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/phone/phone_under_test.h"
#include "tests/support/json.h"

namespace darokleim::test {

namespace {

namespace fs = std::filesystem;

constexpr char kContent[] = "seven bytes more than others";
constexpr char kPackage[] = "com.example.notes";
constexpr time_t kTime = 1577934245;

bool HasContent(const fs::path& file) {
  return ReadFile(file.string()) == kContent;
}

bool BeginsWith(const fs::path& file, const std::string& text) {
  return ReadFile(file.string()).substr(0, text.size()) == text;
}

void SetTime(const fs::path& file) {
  const timespec times[2] = {{kTime, 0}, {kTime, 0}};
  utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

// The document that the library handed out, given back.
Json::Value TakenText(char* text, int length) {
  const Json::Value value = text != nullptr ? ParseJson({text, static_cast<size_t>(length)}) : Json::Value();
  AdbFreeResource(&text);
  return value;
}

TrialResult Push(const TrialPlace& place) {
  place.PutOnHost(place.name(), kContent);
  const int code = AdbPushFile(place.serial(), place.OnHost(place.name()).c_str(),
                               place.OnPhone(place.name()).c_str(), nullptr);
  return {code, HasContent(place.Seen(place.name()))};
}

TrialResult Pull(const TrialPlace& place) {
  place.PutOnPhone(place.name(), kContent);
  const int code = AdbPullFile(place.serial(), place.OnPhone(place.name()).c_str(),
                               place.OnHost(place.name()).c_str(), nullptr);
  return {code, HasContent(place.OnHost(place.name()))};
}

TrialResult Copy(const TrialPlace& place) {
  const std::string copy = "to/" + place.name();
  place.PutOnPhone(place.name(), kContent);
  place.PutOnPhone("to/there", "");
  const int code =
      AdbCopyFile(place.serial(), place.OnPhone(place.name()).c_str(), place.OnPhone(copy).c_str(), nullptr);
  return {code, HasContent(place.Seen(copy)) && HasContent(place.Seen(place.name()))};
}

TrialResult Rename(const TrialPlace& place) {
  const std::string moved = "to/" + place.name();
  place.PutOnPhone(place.name(), kContent);
  place.PutOnPhone("to/there", "");
  const int code = AdbRenameFile(place.serial(), place.OnPhone(place.name()).c_str(),
                                 place.OnPhone(moved).c_str(), nullptr);
  return {code, HasContent(place.Seen(moved)) && !fs::exists(place.Seen(place.name()))};
}

TrialResult Remove(const TrialPlace& place) {
  place.PutOnPhone(place.name(), kContent);
  const int code = AdbRemoveFile(place.serial(), place.OnPhone(place.name()).c_str(), nullptr);
  return {code, !fs::exists(place.Seen(place.name()))};
}

TrialResult CreateDir(const TrialPlace& place) {
  const std::string folder = place.name() + "/" + place.name();
  const int code = AdbCreateDir(place.serial(), place.OnPhone(folder).c_str(), nullptr);
  return {code, fs::is_directory(place.Seen(folder))};
}

TrialResult Chmod(const TrialPlace& place) {
  place.PutOnPhone(place.name(), kContent);
  const int code = AdbChmodFile(place.serial(), place.OnPhone(place.name()).c_str(), "640", nullptr);
  return {code, fs::status(place.Seen(place.name())).permissions() == static_cast<fs::perms>(0640)};
}

TrialResult ScreencapToDevice(const TrialPlace& place) {
  const int code = AdbScreencapToDevice(place.serial(), place.OnPhone(place.name()).c_str(), nullptr);
  return {code, BeginsWith(place.Seen(place.name()), "\x89PNG")};
}

TrialResult ScreencapToHost(const TrialPlace& place) {
  const int code = AdbScreencapToPC(place.serial(), place.OnHost(place.name()).c_str(), nullptr);
  return {code, BeginsWith(place.OnHost(place.name()), "\x89PNG")};
}

// Both answers must be right: of a file that is there, and of one that is not.
TrialResult CheckExisted(const TrialPlace& place,
                         int (*check)(const char*, const char*, bool*, const bool*)) {
  place.PutOnPhone(place.name(), kContent);
  const std::string path = place.OnPhone(place.name());
  bool there = false;
  const int code = check(place.serial(), path.c_str(), &there, nullptr);
  fs::remove(place.Seen(place.name()));
  bool still_there = false;
  const int code_without = check(place.serial(), path.c_str(), &still_there, nullptr);
  return {code != 0 ? code : code_without, there && !still_there};
}

TrialResult GetNumber(const TrialPlace& place, unsigned long long expected,
                      int (*get)(const char*, const char*, unsigned long long*, const bool*)) {
  place.PutOnPhone(place.name(), kContent);
  SetTime(place.Seen(place.name()));
  unsigned long long number = 0;
  const int code = get(place.serial(), place.OnPhone(place.name()).c_str(), &number, nullptr);
  return {code, number == expected};
}

using Lister = int (*)(const char*, const char*, char**, int*, int, int, const bool*);

Json::Value List(const TrialPlace& place, Lister lister, const std::string& folder, int* code) {
  char* json = nullptr;
  int length = 0;
  *code = lister(place.serial(), place.OnPhone(folder).c_str(), &json, &length, 1, 1, nullptr);
  return TakenText(json, length);
}

bool IsOnlyFile(const Json::Value& files, const char* key, const std::string& path) {
  return files.size() == 1 && files[0][key].asString() == path;
}

bool ListsOnly(const Json::Value& list, const std::string& path) {
  return list.isObject() && IsOnlyFile(list["files"], "file", path);
}

TrialResult ListFlat(const TrialPlace& place, Lister lister, const std::string& folder,
                     const std::string& file) {
  place.PutOnPhone(folder + "/" + file, kContent);
  int code = 0;
  const Json::Value list = List(place, lister, folder, &code);
  return {code, ListsOnly(list, place.OnPhone(folder + "/" + file))};
}

TrialResult ListTree(const TrialPlace& place, const std::string& folder, const std::string& file) {
  place.PutOnPhone(folder + "/" + file, kContent);
  int code = 0;
  const Json::Value tree = List(place, AdbGetDirFilesAndDirs, folder, &code);
  return {code, tree.isObject() && tree["Name"].asString() == place.OnPhone(folder) &&
                    IsOnlyFile(tree["File"], "Name", place.OnPhone(folder + "/" + file))};
}

TrialResult FindBySuffix(const TrialPlace& place, const std::string& folder, const std::string& file) {
  place.PutOnPhone(folder + "/" + file, kContent);
  char* json = nullptr;
  int length = 0;
  const int code =
      AdbGetFilesBySuffix(place.serial(), place.OnPhone(folder).c_str(), "jpg", &json, &length, nullptr);
  return {code, ListsOnly(TakenText(json, length), place.OnPhone(folder + "/" + file))};
}

TrialResult DirSize(const TrialPlace& place) {
  place.PutOnPhone(place.name() + "/inside", kContent);
  long long size = 0;
  const int code = AdbGetDirSize(place.serial(), place.OnPhone(place.name()).c_str(), &size, nullptr);
  return {code, size > 0};
}

TrialResult FreeSpace(const TrialPlace& place) {
  place.PutOnPhone(place.name() + "/inside", kContent);
  unsigned long long bytes = 0;
  const int code =
      AdbGetStorageFreeSpace(place.serial(), place.OnPhone(place.name()).c_str(), &bytes, nullptr);
  return {code, bytes > 0};
}

// Off again afterwards, so that the next one can be noticed.
TrialResult AsInstalled(const TrialPlace& place, int code) {
  char version[64] = {};
  AdbGetAppVersion(place.serial(), kPackage, version, sizeof version, nullptr);
  const bool done = std::string(version) == "2.0";
  AdbUninstallApp(place.serial(), kPackage, 0, nullptr);
  return {code, done};
}

TrialResult InstallFromHost(const TrialPlace& place) {
  place.PutOnHost(place.name(), ReadFile(DataFile("notes-2.apk")));
  return AsInstalled(place,
                     AdbInstallAppFromPCPath(place.serial(), place.OnHost(place.name()).c_str(), nullptr));
}

TrialResult InstallFromDevice(const TrialPlace& place) {
  place.PutOnPhone(place.name(), ReadFile(DataFile("notes-2.apk")));
  return AsInstalled(
      place, AdbInstallAppFromDevicePath(place.serial(), place.OnPhone(place.name()).c_str(), nullptr));
}

// adb knows an APK file by its suffix, so the folder has the name.
TrialResult InstallMultiple(const TrialPlace& place) {
  Json::Value paths;
  const std::string apk = place.name() + "/base.apk";
  place.PutOnHost(apk, ReadFile(DataFile("notes-2.apk")));
  paths["files"].append(place.OnHost(apk));
  const std::string json = JsonText(paths);
  return AsInstalled(place, AdbInstallMultipleAppFromPCPath(place.serial(), json.c_str(), nullptr));
}

void InstallNotes(const TrialPlace& place) {
  bool installed = false;
  AdbCheckAppInstalled(place.serial(), kPackage, &installed, nullptr);
  if (installed) return;
  AdbInstallAppFromPCPath(place.serial(), DataFile("notes-1.apk").c_str(), nullptr);
}

TrialResult Backup(const TrialPlace& place) {
  InstallNotes(place);
  const int code = AdbBackupApp(place.serial(), kPackage, place.OnHost(place.name()).c_str(), nullptr);
  return {code, BeginsWith(place.OnHost(place.name()), "ANDROID BACKUP\n")};
}

TrialResult Restore(const TrialPlace& place) {
  InstallNotes(place);
  const fs::path note = place.SeenPath(std::string("/data/data/") + kPackage + "/files/note");
  WriteFile(note.string(), kContent);
  AdbBackupApp(place.serial(), kPackage, place.OnHost("backup").c_str(), nullptr);
  fs::rename(place.OnHost("backup"), place.OnHost(place.name()));
  fs::remove(note);
  const int code = AdbRestoreApp(place.serial(), place.OnHost(place.name()).c_str(), nullptr);
  return {code, HasContent(note)};
}

}  // namespace

std::vector<PathTrial> PathTrials() {
  const auto of_size = [](const TrialPlace& p) { return GetNumber(p, sizeof kContent - 1, AdbGetFileSize); };
  const auto of_time = [](const TrialPlace& p) { return GetNumber(p, kTime, AdbGetFileCreateTime); };
  return {
      {"AdbPushFile", Push},
      {"AdbPullFile", Pull},
      {"AdbCopyFile", Copy},
      {"AdbRenameFile", Rename},
      {"AdbRemoveFile", Remove},
      {"AdbCreateDir", CreateDir},
      {"AdbChmodFile", Chmod},
      {"AdbCheckFileExisted", [](const TrialPlace& p) { return CheckExisted(p, AdbCheckFileExisted); }},
      {"AdbCheckFileExistedUsingFolderContent",
       [](const TrialPlace& p) { return CheckExisted(p, AdbCheckFileExistedUsingFolderContent); }},
      {"AdbGetFileSize", of_size},
      {"AdbGetFileCreateTime", of_time},
      {"AdbGetFileCreateTimeFromLs",
       [](const TrialPlace& p) { return GetNumber(p, kTime, AdbGetFileCreateTimeFromLs); }},
      {"AdbScreencapToDevice", ScreencapToDevice},
      {"AdbScreencapToPC", ScreencapToHost, true},
      {"AdbGetDirFiles", [](const TrialPlace& p) { return ListFlat(p, AdbGetDirFiles, p.name(), "file"); }},
      {"AdbGetDirFiles, a file in it",
       [](const TrialPlace& p) { return ListFlat(p, AdbGetDirFiles, "folder", p.name()); }},
      {"AdbGetDirFilesEx",
       [](const TrialPlace& p) { return ListFlat(p, AdbGetDirFilesEx, p.name(), "file"); }},
      {"AdbGetDirFilesEx, a file in it",
       [](const TrialPlace& p) { return ListFlat(p, AdbGetDirFilesEx, "folder", p.name()); }},
      {"AdbGetDirFilesAndDirs", [](const TrialPlace& p) { return ListTree(p, p.name(), "file"); }},
      {"AdbGetDirFilesAndDirs, a file in it",
       [](const TrialPlace& p) { return ListTree(p, "folder", p.name()); }},
      {"AdbGetFilesBySuffix", [](const TrialPlace& p) { return FindBySuffix(p, p.name(), "file.jpg"); }},
      {"AdbGetFilesBySuffix, a file in it",
       [](const TrialPlace& p) { return FindBySuffix(p, "folder", p.name() + ".jpg"); }},
      {"AdbGetDirSize", DirSize, true},
      {"AdbGetStorageFreeSpace", FreeSpace},
      {"AdbInstallAppFromPCPath", InstallFromHost, true},
      {"AdbInstallAppFromDevicePath", InstallFromDevice, true},
      {"AdbInstallMultipleAppFromPCPath", InstallMultiple, true},
      {"AdbBackupApp", Backup, true},
      {"AdbRestoreApp", Restore, true},
  };
}

}  // namespace darokleim::test
