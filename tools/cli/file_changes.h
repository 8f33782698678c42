// Changes to files of the device, each made sure of: older phones do not tell that a command failed.
#ifndef DAROKLEIM_TOOLS_CLI_FILE_CHANGES_H
#define DAROKLEIM_TOOLS_CLI_FILE_CHANGES_H

#include <string>

#include "tools/cli/device.h"
#include "tools/cli/device_path.h"

namespace darokleim::cli {

// All throw ToolError when the device did not do it.

// With the folders above it. One that exists is fine.
void MakeFolder(const Device& device, const DevicePath& path);

// A file.
void RemoveFile(const Device& device, const DevicePath& path);

// Replaces a file that stands at `to`. What `to` names must not be a folder.
void Rename(const Device& device, const DevicePath& from, const DevicePath& to);

// A path beside this one for a file that is not finished: a name of this process's own that begins with a dot.
DevicePath UnfinishedBeside(const DevicePath& path);

// A file that is not finished yet. Unless it was put in its place, it is deleted at the end of this object, also
// after a cancel; where that fails, a message says that it stays.
class UnfinishedFile {
 public:
  UnfinishedFile(const Device& device, const DevicePath& final_path)
      : device_(device), final_path_(final_path), path_(UnfinishedBeside(final_path)) {}
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  const DevicePath& path() const { return path_; }
  void PutInPlace();

 private:
  const Device& device_;
  DevicePath final_path_;
  DevicePath path_;
  bool in_place_ = false;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_FILE_CHANGES_H
