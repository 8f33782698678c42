// Files of the host.
#ifndef DAROKLEIM_TOOLS_CLI_HOST_HOST_FILE_H
#define DAROKLEIM_TOOLS_CLI_HOST_HOST_FILE_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/unique_fd.h"

namespace darokleim::cli {

// The bytes of a file, or of all files below a folder; what cannot be read is not counted.
std::uint64_t SizeOnHost(const std::filesystem::path& path);

struct HostFile {
  std::string path;  // below the folder, without a slash before it
  std::uint64_t size;
};

// The regular files below a folder. Throws ToolError when a folder cannot be read.
std::vector<HostFile> FilesBelow(const std::filesystem::path& folder);

// The path, absolute, without ".", ".." and a slash at its end, symbolic links kept.
std::filesystem::path AbsolutePath(const std::string& path);

// A place for a file or folder that is not finished: a new folder next to the final path, removed with this object. It
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

  // A file replaces the file at the final path, and is on the disk before it does. A folder is merged into one that is there, file by file.
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
