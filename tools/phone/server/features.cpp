#include "tools/phone/server/features.h"

#include <algorithm>
#include <vector>

#include "tools/phone/common/wire.h"

namespace darokleim::phone {

namespace {

constexpr char kOfAdb29[] =
    "push_sync,remount_shell,abb_exec,abb,apex,fixed_push_mkdir,ls_v2,stat_v2,fixed_push_symlink_timestamp,"
    "cmd,"
    "shell_v2";
constexpr char kSinceAdb29[] = ",sendrecv_v2";

// Android 6 was the last without any. Those of Android 13 that are not simulated, such as compressed transfers, are
// left out.
constexpr char kOfAndroid13[] =
    "shell_v2,cmd,stat_v2,ls_v2,fixed_push_mkdir,fixed_push_symlink_timestamp,abb,abb_exec,remount_shell,"
    "sendrecv_v2";

}  // namespace

std::string FeaturesOf(ServerRelease server) {
  return std::string(kOfAdb29) + (server == ServerRelease::kAdb34 ? kSinceAdb29 : "");
}

std::string FeaturesThrough(ServerRelease server, Generation phone) {
  if (phone == Generation::kLegacy) return "";
  const std::vector<std::string> known = Split(FeaturesOf(server), ',');
  std::string common;
  for (const std::string& feature : Split(kOfAndroid13, ',')) {
    if (std::find(known.begin(), known.end(), feature) == known.end()) continue;
    common += (common.empty() ? "" : ",") + feature;
  }
  return common;
}

}  // namespace darokleim::phone
