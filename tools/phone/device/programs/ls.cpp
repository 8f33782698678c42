#include <dirent.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "tools/phone/device/programs/programs.h"

namespace darokleim::phone {

namespace {

// What is printed before a name, and what is listed at all.
struct LsOptions {
  bool all = false;
  bool long_form = false;
  bool recursive = false;
  bool folders_themselves = false;
  bool numbers = false;  // of the owners, in place of their names
  bool inodes = false;
  bool marks = false;
};

bool SetOption(char letter, LsOptions* options) {
  const std::array<std::pair<char, bool*>, 7> known = {{{'a', &options->all},
                                                        {'l', &options->long_form},
                                                        {'R', &options->recursive},
                                                        {'d', &options->folders_themselves},
                                                        {'n', &options->numbers},
                                                        {'i', &options->inodes},
                                                        {'F', &options->marks}}};
  for (const auto& [name, option] : known) {
    if (name != letter) continue;
    *option = true;
    options->long_form = options->long_form || letter == 'n';
    return true;
  }
  return letter == '1';  // there is never more than one name in a line
}

char TypeOf(mode_t mode) {
  if (S_ISDIR(mode)) return 'd';
  if (S_ISLNK(mode)) return 'l';
  if (S_ISCHR(mode)) return 'c';
  if (S_ISBLK(mode)) return 'b';
  if (S_ISFIFO(mode)) return 'p';
  return S_ISSOCK(mode) ? 's' : '-';
}

std::string Permissions(mode_t mode) {
  std::string text(1, TypeOf(mode));
  for (int shift = 6; shift >= 0; shift -= 3) {
    const mode_t bits = mode >> shift;
    text += (bits & 4) != 0 ? 'r' : '-';
    text += (bits & 2) != 0 ? 'w' : '-';
    text += (bits & 1) != 0 ? 'x' : '-';
  }
  constexpr std::array<std::pair<mode_t, size_t>, 3> kSpecial = {{{S_ISUID, 3}, {S_ISGID, 6}, {S_ISVTX, 9}}};
  for (const auto& [bit, place] : kSpecial) {
    if ((mode & bit) == 0) continue;
    const char set = place == 9 ? 't' : 's';
    text[place] = text[place] == 'x' ? set : static_cast<char>(set - 'a' + 'A');
  }
  return text;
}

std::string UserName(uid_t id, bool number) {
  const passwd* user = number ? nullptr : getpwuid(id);
  return user != nullptr ? user->pw_name : std::to_string(id);
}

std::string GroupName(gid_t id, bool number) {
  const group* owner = number ? nullptr : getgrgid(id);
  return owner != nullptr ? owner->gr_name : std::to_string(id);
}

// Only files have a size, only devices a number.
std::string SizeColumn(const struct stat& status) {
  std::array<char, 32> text;
  if (S_ISREG(status.st_mode)) {
    std::snprintf(text.data(), text.size(), "%8lld", static_cast<long long>(status.st_size));
  } else if (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode)) {
    std::snprintf(text.data(), text.size(), "%3u, %3u", major(status.st_rdev), minor(status.st_rdev));
  } else {
    std::snprintf(text.data(), text.size(), "%8s", "");
  }
  return text.data();
}

std::string MinuteOf(time_t seconds) {
  tm local = {};
  localtime_r(&seconds, &local);
  std::array<char, 32> text;
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local);
  return text.data();
}

std::string TargetOf(const std::string& link) {
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlink(link.c_str(), target.data(), target.size());
  return length < 0 ? "" : std::string(target.data(), static_cast<size_t>(length));
}

std::string MarkOf(mode_t mode) {
  if (S_ISDIR(mode)) return "/";
  if (S_ISLNK(mode)) return "@";
  if (S_ISFIFO(mode)) return "|";
  if (S_ISSOCK(mode)) return "=";
  return S_ISREG(mode) && (mode & 0111) != 0 ? "*" : "";
}

// A path that ends in a slash means what a link leads to.
bool StatusOf(const std::string& path, struct stat* status) {
  const bool follow = !path.empty() && path.back() == '/';
  if ((follow ? stat(path.c_str(), status) : lstat(path.c_str(), status)) == 0) return true;
  std::fprintf(stderr, "%s: %s\n", path.c_str(), std::strerror(errno));
  return false;
}

int PrintEntry(const std::string& path, const std::string& name, const LsOptions& options) {
  struct stat status = {};
  if ((options.long_form || options.inodes || options.marks) && !StatusOf(path, &status)) return 1;
  if (options.inodes) std::printf("%8llu ", static_cast<unsigned long long>(status.st_ino));
  if (!options.long_form) {
    std::printf("%s%s\n", name.c_str(), options.marks ? MarkOf(status.st_mode).c_str() : "");
    return 0;
  }
  // After the last slash: nothing at all for a path that ends in one.
  const std::string shown = name.substr(name.rfind('/') + 1);
  std::printf("%s %-8s %-8s %s %s %s", Permissions(status.st_mode).c_str(),
              UserName(status.st_uid, options.numbers).c_str(),
              GroupName(status.st_gid, options.numbers).c_str(), SizeColumn(status).c_str(),
              MinuteOf(status.st_mtime).c_str(), shown.c_str());
  if (S_ISLNK(status.st_mode)) std::printf(" -> %s", TargetOf(path).c_str());
  std::printf("\n");
  return 0;
}

std::string Within(const std::string& folder, const std::string& name) {
  return folder.back() == '/' ? folder + name : folder + "/" + name;
}

int ListFolder(const std::string& folder, const LsOptions& options) {
  DIR* opened = opendir(folder.c_str());
  if (opened == nullptr) {
    std::fprintf(stderr, "opendir failed, %s\n", std::strerror(errno));
    return 1;
  }
  std::vector<std::string> names;
  while (const dirent* entry = readdir(opened)) {
    if (entry->d_name[0] != '.' || options.all) names.emplace_back(entry->d_name);
  }
  closedir(opened);
  std::sort(names.begin(), names.end());
  int result = 0;
  for (const std::string& name : names) result |= PrintEntry(Within(folder, name), name, options);
  if (!options.recursive) return result;
  for (const std::string& name : names) {
    struct stat status;
    const std::string path = Within(folder, name);
    if (name == "." || name == ".." || lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
      continue;
    std::printf("\n%s:\n", path.c_str());
    result |= ListFolder(path, options);
  }
  return result;
}

int ListPath(const std::string& path, const LsOptions& options) {
  struct stat status;
  if (!StatusOf(path, &status)) return 1;
  if (!S_ISDIR(status.st_mode) || options.folders_themselves) return PrintEntry(path, path, options);
  if (options.recursive) std::printf("\n%s:\n", path.c_str());
  return ListFolder(path, options);
}

}  // namespace

// The ls of a phone with toolbox: no count of links, no size of folders, nothing escaped, a word in place of the
// path when a folder cannot be opened. Later phones have toybox's.
int RunLs(const Words& words) {
  LsOptions options;
  Words paths;
  for (const std::string& word : words) {
    if (word.size() < 2 || word[0] != '-') {
      if (!word.empty()) paths.push_back(word);
      continue;
    }
    for (const char letter : word.substr(1)) {
      if (SetOption(letter, &options)) continue;
      std::fprintf(stderr, "ls: Unknown option '-%c'. Aborting.\n", letter);
      return 1;
    }
  }
  if (paths.empty()) paths = {"."};
  int result = 0;
  for (const std::string& path : paths) result |= ListPath(path, options);
  return result;
}

}  // namespace darokleim::phone
