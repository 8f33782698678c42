// Files of the host.
#ifndef DAROKLEIM_TOOLS_CLI_HOST_HOST_FILE_H
#define DAROKLEIM_TOOLS_CLI_HOST_HOST_FILE_H

#include <filesystem>
#include <string>

#include "base/unique_fd.h"

namespace darokleim::cli {

// The path, absolute, without ".", ".." and a slash at its end, symbolic links kept.
std::filesystem::path AbsolutePath(const std::string& path);

// A place for a file that is not finished: a new folder next to the final path, removed with this object. It
// is locked while this process lives, so that the next run removes what a killed one has left.
// Throws ToolError when it cannot be made.
class UnfinishedOnHost {
 public:
  explicit UnfinishedOnHost(std::filesystem::path final_path);
  ~UnfinishedOnHost();
  UnfinishedOnHost(const UnfinishedOnHost&) = delete;
  UnfinishedOnHost& operator=(const UnfinishedOnHost&) = delete;

  // Where to put it; nothing is there yet.
  const std::filesystem::path& path() const { return path_; }

  // Replaces the file at the final path, and is on the disk before it does.
  void PutInPlace();

 private:
  void MakeFolder();

  std::filesystem::path final_path_;
  std::filesystem::path folder_;
  base::UniqueFd lock_;
  std::filesystem::path path_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_HOST_FILE_H
