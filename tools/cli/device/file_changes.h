// Changes to files of the device, each verified: older phones do not report that a command failed.
#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_FILE_CHANGES_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_FILE_CHANGES_H

#include <string>

#include "tools/cli/device/device.h"
#include "tools/cli/device/device_path.h"

namespace darokleim::cli {

// All throw ToolError when the device did not do it.

// With its missing parent folders. A folder that exists is not an error.
void MakeFolder(const Device& device, const DevicePath& path);

// A file.
void RemoveFile(const Device& device, const DevicePath& path);

// Replaces a file at `to`, which must not be a folder.
void Rename(const Device& device, const DevicePath& from, const DevicePath& to);

// A path in the same folder for a file that is not finished: a name of this process's own that begins with a dot.
DevicePath UnfinishedBeside(const DevicePath& path);

// A file that is not finished yet. Unless it was put in its place, it is deleted with this object, also after a
// cancel; where that fails, a message says that it may be left.
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

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_FILE_CHANGES_H
