// The files of a folder of the device.
#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_FILE_LISTING_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_FILE_LISTING_H

#include <json/forwards.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/device/device.h"
#include "tools/cli/device/device_path.h"

namespace darokleim::cli {

struct ListedFile {
  std::string path;
  std::uint64_t size = 0;
  std::string time;           // empty where the listing has none
  std::uint64_t seconds = 0;  // since 1970-01-01 00:00 UTC; 0 where the listing has none
};

struct ListingOptions {
  bool recursive = false;
  bool hidden = false;  // names that begin with a dot
};

// As the device's `ls -l` shows them: times to the minute, in the device's time zone. Throws as Device::Check.
std::vector<ListedFile> ListFiles(const Device& device, const DevicePath& folder, ListingOptions options);

// As adb's own service lists them, everything below the folder: times to the second.
std::vector<ListedFile> ListFilesByService(const Device& device, const DevicePath& folder);

// The names of the files that are directly in the folder, hidden ones included; empty when it cannot be listed. An older
// device that lists a single file is one that lists none.
std::vector<std::string> NamesOfFiles(const Device& device, const DevicePath& folder);

// The file, when the path names a regular file, from the listing of its folder.
std::optional<ListedFile> ListFile(const Device& device, const DevicePath& path);

// The document of a call of the library that lists files; `list` returns it as AdbGetDirFilesEx does. The call is
// made in a temporary folder, because it leaves a file in the current one.
Json::Value ReadListing(const Device& device, const std::string& action,
                        const std::function<int(char** json, int* length)>& list);

// The records of a flat listing.
std::vector<ListedFile> FilesOf(const Json::Value& listing);

// Of a listing of everything below the folder, the files that a listing with these options has.
std::vector<ListedFile> SelectFiles(const std::vector<ListedFile>& files, const DevicePath& folder,
                                    ListingOptions options);

// Whether the name holds the replacement of bytes that are not UTF-8, which a listing cannot carry.
bool HasLostBytes(std::string_view name);

// Warns on standard error that so many names differ from those on the device; nothing for none.
void WarnOfLostNames(std::size_t count);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_FILE_LISTING_H
