// What is at the targets of a transfer already, and what that means for it.
#ifndef DAROKLEIM_CLIENT_TRANSFER_TARGET_CHECK_H
#define DAROKLEIM_CLIENT_TRANSFER_TARGET_CHECK_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client/sync.h"

namespace darokleim::client {

struct Existing {
  bool exists = false;
  bool is_folder = false;
  std::uint64_t size = 0;
  std::int64_t modified = 0;
};

enum class Decision { kTransfer, kSkip, kExists, kIsFolder };

// What becomes of a file of this size and time whose target is like that. A file never replaces a folder.
Decision Decide(dk_existing policy, const Existing& target, std::uint64_t size, std::int64_t modified);

// Looks at many files of the phone in one time of waiting.
class TargetCheck {
 public:
  TargetCheck(Features* features, const Limits& limits) : features_(features), limits_(limits) {}

  // In the order of the paths. In folders that are missing nothing is looked for. What cannot be looked at counts as not there: writing it will say why.
  Result<std::vector<Existing>> Look(const std::vector<std::string>& paths);

  // Its connection, if there is one, for another use; the next Look() opens another where it asks the phone.
  std::optional<Sync> TakeConnection() { return std::exchange(sync_, std::nullopt); }

 private:
  Result<std::vector<adb::FileStatus>> StatusOf(const std::vector<std::string>& paths);
  // Learns whether the folders of the paths are there.
  Status LookAtFolders(const std::vector<std::string>& paths);

  Features* const features_;
  const Limits& limits_;
  std::optional<Sync> sync_;
  std::map<std::string, bool> folders_;  // those looked at last, and whether they are there
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_TARGET_CHECK_H
