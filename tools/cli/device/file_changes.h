// Changes to files of the device, each verified: older phones do not report that a command failed.
#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_FILE_CHANGES_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_FILE_CHANGES_H

#include <string>
#include <utility>

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

// A file that is not finished yet, under a name of this run's own in the folder of the final path. What killed runs of
// this computer have left there is deleted first. Unless it was put in its place, it is deleted with this object, also after a
// cancel; where that fails, a message says that it may be left.
class UnfinishedFile {
 public:
  UnfinishedFile(const Device& device, const DevicePath& final_path);
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

// A file on the device that the library makes on the way and leaves behind when it is cancelled. Deleted at the end of
// this object, unless the library has deleted it.
class StagedFile {
 public:
  StagedFile(const Device& device, std::string path) : device_(device), path_(std::move(path)) {}
  ~StagedFile();
  StagedFile(const StagedFile&) = delete;
  StagedFile& operator=(const StagedFile&) = delete;

  void SetGone() { is_gone_ = true; }

 private:
  const Device& device_;
  std::string path_;
  bool is_gone_ = false;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_FILE_CHANGES_H
