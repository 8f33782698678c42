#include "client/transfer/target_check.h"

#include "client/phone_path.h"

namespace darokleim::client {
namespace {

constexpr char kLookingAtTargets[] = "look at the targets";

// Not all the folders of a large tree are remembered.
constexpr std::size_t kMostFolders = 1024;

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

Result<std::vector<adb::FileStatus>> TargetCheck::StatusOf(const std::vector<std::string>& paths) {
  if (paths.empty()) return std::vector<adb::FileStatus>();
  if (!sync_) {
    auto sync = OpenSync(features_, kLookingAtTargets, limits_);
    if (!sync.ok()) return sync.TakeError();
    sync_.emplace(*std::move(sync));
  }
  return StatMany(features_->device(), &*sync_, paths, kLookingAtTargets, limits_);
}

Status TargetCheck::LookAtFolders(const std::vector<std::string>& paths) {
  if (folders_.size() > kMostFolders) folders_.clear();
  std::vector<std::string> asked;
  for (const std::string& path : paths) {
    std::string folder = ParentOf(path);
    if (folders_.emplace(folder, true).second) asked.push_back(std::move(folder));
  }
  auto statuses = StatusOf(asked);
  if (!statuses.ok()) return statuses.TakeError();
  for (std::size_t i = 0; i < asked.size(); ++i) folders_[asked[i]] = (*statuses)[i].exists();
  return {};
}

Result<std::vector<Existing>> TargetCheck::Look(const std::vector<std::string>& paths) {
  if (Status looked = LookAtFolders(paths); !looked.ok()) return looked.TakeError();
  std::vector<std::string> asked;
  std::vector<std::size_t> indices;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (!folders_[ParentOf(paths[i])]) continue;
    asked.push_back(paths[i]);
    indices.push_back(i);
  }
  auto statuses = StatusOf(asked);
  if (!statuses.ok()) return statuses.TakeError();
  std::vector<Existing> found(paths.size());
  for (std::size_t i = 0; i < asked.size(); ++i) {
    const adb::FileStatus& status = (*statuses)[i];
    if (!status.exists()) continue;
    found[indices[i]] = {true, TypeOf(status.mode) == DK_DIRECTORY, status.size, status.modified};
  }
  return found;
}

}  // namespace darokleim::client
