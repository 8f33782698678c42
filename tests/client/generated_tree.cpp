#include "tests/client/generated_tree.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/file_content.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestPath = 900;  // below the tree; the protocol has room for 1,024 bytes
constexpr unsigned kMostLevels = 5;

std::string RandomBytes(Dice* dice, std::size_t count) {
  std::string bytes;
  while (bytes.size() < count) {
    const auto byte = static_cast<char>(dice->Roll(255) + 1);
    // A line break after a carriage return looks the same as one alone once it went through an old phone's terminal.
    if (byte == '/' || byte == '\r') continue;
    bytes += byte;
  }
  return bytes;
}

void SetTime(const std::string& path, std::int64_t seconds) {
  timespec time = {};
  time.tv_sec = static_cast<time_t>(seconds);
  const timespec times[] = {time, time};
  utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

bool HasOnlyFiles(const std::string& folder) {
  std::error_code unreadable;
  return std::all_of(fs::directory_iterator(folder, unreadable), fs::directory_iterator(),
                     [](const fs::directory_entry& entry) {
                       return entry.symlink_status().type() == fs::file_type::regular;
                     });
}

class Grower {
 public:
  Grower(Dice* dice, std::string outside, Readable readable)
      : dice_(*dice), outside_(std::move(outside)), readable_(readable) {}

  void Grow(const std::string& folder, unsigned level, std::size_t below) {
    fs::create_directory(folder);
    std::vector<std::string> files, leaves;
    for (std::uint64_t left = dice_.Roll(level == 0 ? 9 : 6) + (level == 0); left > 0; --left) {
      const std::string name = AwkwardName(&dice_);
      const std::string path = folder + "/" + name;
      const std::size_t length = below + name.size() + 1;
      struct stat status;
      if (length > kLongestPath || lstat(path.c_str(), &status) == 0) continue;
      if (dice_.OneIn(4) && level < kMostLevels) {
        Grow(path, level + 1, length);
        if (HasOnlyFiles(path)) leaves.push_back(name);
      } else if (dice_.OneIn(5)) {
        MakeLink(path, files, leaves);
      } else {
        MakeFile(path);
        files.push_back(name);
      }
    }
    const bool closed = readable_ == Readable::kNearlyAll && level > 0 && dice_.OneIn(25);
    chmod(folder.c_str(), closed ? 0 : dice_.Pick<mode_t>({0755, 0775, 0777, 0700}));
    SetTime(folder, RandomTime());
  }

 private:
  std::int64_t RandomTime() {
    static const std::vector<std::int64_t> kEdges = {0, 1, 0x7fffffff, 0x80000000, 0xffffffff};
    return dice_.OneIn(4) ? dice_.Pick(kEdges) : static_cast<std::int64_t>(dice_.Roll(0xffffffff));
  }

  void MakeFile(const std::string& path) {
    static const std::vector<std::uint64_t> kSizes = {0, 0, 1, 7, 4096, 65535, 65536, 65537, 200'000};
    const std::uint64_t size = dice_.OneIn(2) ? dice_.Roll(3000) : dice_.Pick(kSizes);
    std::string content(size, '\0');
    const std::uint64_t first = dice_.Roll(256);
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(first + i * 31 + i / 256);
    WriteFile(path, content);
    const bool closed = readable_ == Readable::kNearlyAll && dice_.OneIn(40);
    chmod(path.c_str(), closed ? 0 : dice_.Pick<mode_t>({0644, 0644, 0600, 0755, 0444, 0640, 0777}));
    SetTime(path, RandomTime());
  }

  void MakeLink(const std::string& path, const std::vector<std::string>& files,
                const std::vector<std::string>& leaves) {
    std::string target = AwkwardName(&dice_) + ".nowhere";
    switch (dice_.Roll(6)) {
      case 0:
        target = outside_ + "/file";
        break;
      case 1:
        target = outside_ + "/folder";
        break;
      case 2:
        if (!leaves.empty()) target = "./" + dice_.Pick(leaves);
        break;
      case 3:
      case 4:
        if (!files.empty()) target = "./" + dice_.Pick(files);
        break;
      default:
        break;
    }
    fs::create_symlink(target, path);
  }

  Dice& dice_;
  const std::string outside_;
  const Readable readable_;
};

}  // namespace

// SplitMix64.
std::uint64_t Dice::Next() {
  state_ += 0x9e3779b97f4a7c15;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111eb;
  return mixed ^ (mixed >> 31);
}

std::string AwkwardName(Dice* dice) {
  static const std::vector<std::string> kNames = {"my photo.jpg",
                                                  " in front",
                                                  "behind ",
                                                  "it's",
                                                  "\"quoted\"",
                                                  "a'b\"c",
                                                  "new\nline",
                                                  "two\n\nbreaks\n",
                                                  "tab\t",
                                                  "-rf",
                                                  "--help",
                                                  "-",
                                                  "...",
                                                  "..x",
                                                  ".hidden",
                                                  "%s%n%d",
                                                  "100%",
                                                  "back\\slash",
                                                  "\\n\\0",
                                                  "$HOME",
                                                  "`id`",
                                                  "$(id)",
                                                  "a&b;c|d",
                                                  "*",
                                                  "?",
                                                  "[a-z]",
                                                  "{a,b}",
                                                  "~",
                                                  "#",
                                                  "!",
                                                  "<in>out",
                                                  "device not found",
                                                  "error: closed",
                                                  "total 0",
                                                  "\xc3\xa4\xe6\xbc\xa2\xf0\x9f\x98\x80",
                                                  "\xff\xfe",
                                                  "a\xcc\x81",
                                                  "\x1b[31m",
                                                  "\x01\x7f",
                                                  "file,33188",
                                                  "a:b",
                                                  "=",
                                                  "@"};
  std::string name = dice->OneIn(3) ? RandomBytes(dice, 1 + dice->Roll(12)) : dice->Pick(kNames);
  if (dice->OneIn(8)) name += dice->Pick(kNames);
  if (dice->OneIn(12)) name += std::string(255 - name.size(), 'n');
  if (dice->OneIn(3)) name += std::to_string(dice->Roll(100));
  name.resize(std::min<std::size_t>(name.size(), 255));
  return name == "." || name == ".." ? "dots" : name;
}

void MakeTree(Dice* dice, const std::string& path, const std::string& outside, Readable readable) {
  Grower(dice, outside, readable).Grow(path, 0, 0);
}

std::vector<std::string> PathsBelow(const std::string& folder) {
  std::vector<std::string> paths;
  for (const auto& entry :
       fs::recursive_directory_iterator(folder, fs::directory_options::skip_permission_denied))
    paths.push_back(entry.path().native().substr(folder.size()));
  std::sort(paths.begin(), paths.end());
  return paths;
}

void RemoveTree(const std::string& path) {
  std::error_code ignored;
  for (const auto& entry :
       fs::recursive_directory_iterator(path, fs::directory_options::skip_permission_denied, ignored)) {
    if (entry.symlink_status(ignored).type() == fs::file_type::directory) chmod(entry.path().c_str(), 0700);
  }
  fs::remove_all(path, ignored);
}

}  // namespace darokleim::test
