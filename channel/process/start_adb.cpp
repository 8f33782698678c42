#include "channel/process/start_adb.h"

#include <cerrno>

#include "channel/channel_log.h"

namespace darokleim::channel {
namespace {

bool IsShortage(int error) {
  return error == EAGAIN || error == ENOMEM || error == EMFILE || error == ENFILE;
}

}  // namespace

Status StartAdb(const std::string& adb_path, const std::vector<std::string>& words, base::Spawned* spawned) {
  const int error = base::Spawn(adb_path, words, spawned);
  if (error == 0) return kDelivered;
  LogNotStarted(adb_path, error);
  return IsShortage(error) ? kSystemRefused : kCannotStart;
}

}  // namespace darokleim::channel
