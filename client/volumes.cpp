// dk_volumes: the phone's storage.
#include "client/volumes.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "client/facts.h"
#include "client/phone_path.h"
#include "client/shell.h"

namespace darokleim::client {
namespace {

// For each volume a line with its path, then what `stat -f` says of it, or, on phones without it, what `df` does.
constexpr char kScript[] =
    "for v in /storage/emulated/0 /storage/*; do "
    "case $v in /storage/emulated|/storage/self|*'*') continue;; esac; [ -d \"$v\" ] || continue; echo \"V "
    "$v\"; "
    "stat -f -c 'S %S %b %f %a' \"$v\" 2>/dev/null || df \"$v\" 2>/dev/null; done";

std::vector<std::string> Words(std::string_view line) {
  std::vector<std::string> words;
  while (!line.empty()) {
    const std::size_t begin = line.find_first_not_of(' ');
    if (begin == std::string_view::npos) break;
    line.remove_prefix(begin);
    const std::string_view word = line.substr(0, line.find(' '));
    words.emplace_back(word);
    line.remove_prefix(word.size());
  }
  return words;
}

// "S 4096 1000 400 300": the size of a block, and how many there are, are free, are free for the user.
void ReadStat(const std::vector<std::string>& words, Volume* volume) {
  std::uint64_t numbers[4] = {};
  for (std::size_t i = 0; i < 4; ++i) {
    const auto number = ReadRoundedSize(words[i + 1]);
    if (!number) return;
    numbers[i] = *number;
  }
  const auto [block, all, unused, available] = numbers;
  const std::uint64_t most = block == 0 ? 0 : std::numeric_limits<std::uint64_t>::max() / block;
  if (all > most || available > most) return;
  *volume = {volume->path, block * all, block * (all - std::min(all, unused)), block * available, true};
}

// "/storage/emulated/0 11.7G 2.1G 9.6G 4096", rounded by the phone.
void ReadDf(const std::vector<std::string>& words, Volume* volume) {
  const auto total = ReadRoundedSize(words[1]), used = ReadRoundedSize(words[2]),
             free = ReadRoundedSize(words[3]);
  if (total && used && free) *volume = {volume->path, *total, *used, *free, true};
}

}  // namespace

std::vector<Volume> ReadVolumes(std::string_view text) {
  std::vector<Volume> volumes;
  ForEachLine(text, [&](std::string_view line) {
    if (line.substr(0, 2) == "V ") {
      Volume volume;
      volume.path = line.substr(2);
      volumes.push_back(std::move(volume));
      return true;
    }
    const auto words = Words(line);
    if (volumes.empty()) return true;
    constexpr std::size_t kStatWords = 5, kDfWords = 4;
    if (words.size() == kStatWords && words[0] == "S") {
      ReadStat(words, &volumes.back());
    } else if (words.size() >= kDfWords) {
      ReadDf(words, &volumes.back());
    }
    return true;
  });
  return volumes;
}

namespace {

bool IsInternal(const std::string& path) {
  return path == "/storage/emulated/0" || path == "/storage/sdcard0";
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;

dk_code dk_volumes(dk_device* device, dk_on_volume on_volume, void* user, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (device == nullptr || on_volume == nullptr) return client::InvalidArgument("a null pointer");
    constexpr std::string_view kWhat = "ask for the storage volumes";
    auto printed = client::CollectScript(device, client::kScript, kWhat, limits);
    if (!printed.ok()) return printed.TakeError();
    for (const client::Volume& volume : client::ReadVolumes(printed->out)) {
      if (!volume.known) continue;
      const dk_volume shown = {volume.path.c_str(), client::IsInternal(volume.path), volume.total,
                               volume.used, volume.free};
      if (!on_volume(user, &shown)) return client::Stopped(kWhat);
    }
    return {};
  });
}
