// Where files from the phone go on this computer: folders that no link leads out of, and files that get their names when
// they are whole.
#ifndef DAROKLEIM_CLIENT_TRANSFER_HOST_TARGET_H
#define DAROKLEIM_CLIENT_TRANSFER_HOST_TARGET_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/unique_fd.h"
#include "client/error.h"
#include "client/temporary_name.h"
#include "client/transfer/target_check.h"

namespace darokleim::client {

// An open folder of this computer.
class HostFolder {
 public:
  // The folder that the caller named; it and its parents are made where they are missing. Links in it are the caller's choice.
  static Result<std::shared_ptr<HostFolder>> Open(const std::string& path);
  // A folder in this one, made where it is missing. DK_UNSAFE_NAME for a link there, or for a name that this computer's file
  // system takes for another one's.
  Result<std::shared_ptr<HostFolder>> Enter(const std::string& name) const;

  // What is there under this name; a link is itself and not what it leads to.
  Existing Look(const std::string& name) const;
  // DK_UNSAFE_NAME for a name that no file here can have, or that this computer's file system takes for another one's.
  Status CheckName(const std::string& name) const;

  int descriptor() const { return descriptor_.get(); }
  const std::string& path() const { return path_; }

 private:
  HostFolder(base::UniqueFd descriptor, std::string path)
      : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

  base::UniqueFd descriptor_;
  std::string path_;  // for messages
};

Error UnsafeName(std::string_view what, const std::string& path);

// A file that is being written under a temporary name, which goes when it is not committed.
class ReceivedFile {
 public:
  static Result<std::unique_ptr<ReceivedFile>> Create(std::shared_ptr<HostFolder> folder, std::string name);
  ~ReceivedFile();
  ReceivedFile(const ReceivedFile&) = delete;
  ReceivedFile& operator=(const ReceivedFile&) = delete;

  Status Write(std::string_view data);
  // Gives it its time (nothing: now), its permissions (0: the usual ones) and its name. may_replace: whether a file that has the
  // name by now is replaced; the new one is written to the disk before. Otherwise DK_EXISTS.
  Status Commit(std::optional<std::int64_t> modified, std::uint32_t permissions, bool may_replace);

 private:
  ReceivedFile(std::shared_ptr<HostFolder> folder, std::string name)
      : folder_(std::move(folder)), name_(std::move(name)) {}
  Error FromErrno(int error) const;
  int Rename(bool may_replace) const;

  std::shared_ptr<HostFolder> folder_;
  std::string name_;
  TemporaryName temporary_;
  base::UniqueFd descriptor_;
  bool is_temporary_ = false;  // there is a file under the temporary name
};

// Removes temporary files in the folder that nobody uses any more.
void RemoveLeftOvers(const HostFolder& folder);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_HOST_TARGET_H
