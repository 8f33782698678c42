#include "client/transfer/target_check.h"

namespace darokleim::client {
namespace {

constexpr char kWhat[] = "look at the targets";

}  // namespace

Decision Decide(dk_existing policy, const Existing& target, std::uint64_t size, std::int64_t modified) {
  if (!target.exists) return Decision::kTransfer;
  if (target.is_folder) return Decision::kIsFolder;
  switch (policy) {
    case DK_REPLACE:
      return Decision::kTransfer;
    case DK_SKIP_SAME:
      return target.size == size && target.modified == modified ? Decision::kSkip : Decision::kTransfer;
    case DK_SKIP_EXISTING:
      return Decision::kSkip;
    case DK_FAIL_IF_EXISTS:
      break;
  }
  return Decision::kExists;
}

Result<std::vector<Existing>> TargetCheck::Look(const std::vector<std::string>& paths) {
  std::vector<Existing> found(paths.size());
  if (paths.empty()) return found;
  if (!sync_) {
    auto sync = OpenSync(device_, kWhat, limits_);
    if (!sync.ok()) return sync.TakeError();
    sync_.emplace(*std::move(sync));
  }
  auto statuses = StatMany(device_, &*sync_, paths, kWhat, limits_);
  if (!statuses.ok()) return statuses.TakeError();
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const adb::FileStatus& status = (*statuses)[i];
    if (status.exists()) found[i] = {true, TypeOf(status.mode) == DK_DIRECTORY, status.size, status.modified};
  }
  return found;
}

}  // namespace darokleim::client
