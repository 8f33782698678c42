#include "tools/phone/server/features.h"

namespace darokleim::phone {

// Android 6 was the last without any.
std::string FeaturesOf(Generation generation) {
  return generation == Generation::kLegacy ? ""
                                           : "shell_v2,cmd,stat_v2,ls_v2,fixed_push_mkdir,fixed_push_symlink_"
                                             "timestamp,abb,abb_exec,remount_shell";
}

std::string HostFeatures() {
  return "shell_v2,cmd,stat_v2,ls_v2,fixed_push_mkdir,fixed_push_symlink_timestamp,abb,abb_exec,remount_"
         "shell,push_sync";
}

}  // namespace darokleim::phone
