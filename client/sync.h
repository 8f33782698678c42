// The phone's files through adb's sync service.
#ifndef DAROKLEIM_CLIENT_SYNC_H
#define DAROKLEIM_CLIENT_SYNC_H

#include <string>
#include <string_view>
#include <vector>

#include "adb/sync_connection.h"
#include "client/features.h"

namespace darokleim::client {

struct Sync {
  adb::SyncConnection connection;
  adb::FeatureSet features;
};
Result<Sync> OpenSync(dk_device* device, std::string_view what, const Limits& limits);
Result<Sync> OpenSync(Features* features, std::string_view what, const Limits& limits);

// An error of the sync service about `path`: the daemon's refusal ends in the words of an errno.
Error SyncError(const dk_device* device, const adb::Error& error, std::string_view what,
                std::string_view path);

// Looks at many files in one time of waiting, at links themselves. What cannot be asked about or is not there has a status
// that does not exist.
Result<std::vector<adb::FileStatus>> StatMany(dk_device* device, Sync* sync,
                                              const std::vector<std::string>& paths, std::string_view what,
                                              const Limits& limits);

dk_type TypeOf(std::uint32_t mode);
// A status as an entry; path and name are the caller's and have to outlive it.
dk_entry EntryOf(const adb::FileStatus& status, const std::string& path, const char* name);

// Why a file that the first form of the protocol says nothing about is not there, or may not be looked at: asked of the
// phone's shell. OK where the shell sees it.
Status WhyNot(dk_device* device, const std::string& path, std::string_view what, const Limits& limits);

// Names of files of 4 GiB and more, whose sizes the first form of the protocol cuts.
class LargeFiles {
 public:
  // Of one folder, or of all below it; asked of the phone's shell.
  static Result<LargeFiles> Query(dk_device* device, const std::string& folder, bool recursive,
                                  std::string_view what, const Limits& limits);
  LargeFiles() = default;

  // Whether the file may be one; never wrongly false.
  bool Has(std::string_view name) const;

 private:
  std::string lines_;  // of `ls -l` that hold a number of ten digits or more
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_SYNC_H
