#include "tools/cli/device/file_listing.h"

#include <darokleim.h>
#include <fcntl.h>
#include <json/value.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "base/unique_fd.h"
#include "tools/cli/device/library_block.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json.h"
#include "tools/cli/output/result_text.h"
#include "tools/cli/output/standard_streams.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

// What JSON has in place of bytes that are not UTF-8: U+FFFD.
constexpr std::string_view kReplacement = "\xef\xbf\xbd";

// The library's listings leave a copy of themselves in the current directory. While this object lives, that is a
// directory of the tool's own, which is removed with it. Where none can be made, the current one stays. Not for two
// threads at once.
class SideFileCatcher {
 public:
  SideFileCatcher() {
    std::error_code error;
    std::string name = (fs::temp_directory_path(error) / "darokleim-listing-XXXXXX").native();
    if (error || mkdtemp(name.data()) == nullptr) return;
    directory_ = name;
    // A current directory that may not be read cannot be opened, and so not returned to: then it stays.
    previous_ = base::UniqueFd(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (previous_.valid() && chdir(name.c_str()) != 0) previous_.Reset();
  }
  ~SideFileCatcher() {
    // It cannot fail while the descriptor is open, short of an unmounted disk; nothing can be done about that.
    if (previous_.valid()) [[maybe_unused]]
      const int ignored = fchdir(previous_.get());
    std::error_code error;
    if (!directory_.empty()) fs::remove_all(directory_, error);
  }
  SideFileCatcher(const SideFileCatcher&) = delete;
  SideFileCatcher& operator=(const SideFileCatcher&) = delete;

 private:
  fs::path directory_;
  base::UniqueFd previous_;  // the current directory before
};

// ls -l of a symbolic link shows the link; with a slash, what it leads to.
std::string WithSlash(const DevicePath& folder) {
  return folder.IsRoot() ? folder.text() : folder.text() + "/";
}

}  // namespace

Json::Value ReadListing(const Device& device, const std::string& action,
                        const std::function<int(char** json, int* length)>& list) {
  LibraryBlock json;
  int code = ADB_RESULT_OK;
  {
    const SideFileCatcher catcher;
    code = list(json.text(), json.length());
  }
  device.Check(code, action);
  return json.Bytes().empty() ? Json::Value() : ParseJson(json.Bytes(), "a listing");
}

std::vector<ListedFile> FilesOf(const Json::Value& listing) {
  std::vector<ListedFile> files;
  for (const Json::Value& record : listing["files"]) {
    files.push_back({WithSingleSlashes(record["file"].asString()), record["size"].asUInt64(),
                     record["time"].asString(), record["utc_timestamp"].asUInt64()});
  }
  return files;
}

std::vector<ListedFile> ListFiles(const Device& device, const DevicePath& folder, ListingOptions options) {
  const std::string path = WithSlash(folder);
  bool misread = false;
  auto files = FilesOf(ReadListing(device, "list " + folder.text(), [&](char** json, int* length) {
    const int code = AdbGetDirFiles(device.serial(), path.c_str(), json, length, options.recursive,
                                    options.hidden, device.cancel());
    misread = MayComeFromAName(code);
    return misread ? ADB_RESULT_OK : code;
  }));
  if (misread) return SelectFiles(ListFilesByService(device, folder), folder, options);
  if (!options.recursive) {
    // An older ls prints only a line for each name, and the library finds nothing in a single line.
    if (files.empty()) return SelectFiles(ListFiles(device, folder, {true, options.hidden}), folder, options);
    // Without -R the device does not say which folder the names are in.
    for (auto& file : files) file.path = (folder.IsRoot() ? "" : folder.text()) + file.path;
  }
  return files;
}

std::vector<ListedFile> ListFilesByService(const Device& device, const DevicePath& folder) {
  return FilesOf(ReadListing(device, "list " + folder.text(), [&](char** json, int* length) {
    return AdbGetDirFilesEx(device.serial(), folder.c_str(), json, length, 1, 1, device.cancel());
  }));
}

std::vector<std::string> NamesOfFiles(const Device& device, const DevicePath& folder) {
  const std::string path = WithSlash(folder);
  std::vector<std::string> names;
  const auto listing = ReadListing(device, "list " + folder.text(), [&](char** json, int* length) {
    const int code = AdbGetDirFiles(device.serial(), path.c_str(), json, length, 0, 1, device.cancel());
    return code == ADB_CHANNEL_CANCELLED ? code : ADB_RESULT_OK;
  });
  for (const auto& file : FilesOf(listing)) names.push_back(file.path.substr(file.path.rfind('/') + 1));
  return names;
}

std::optional<ListedFile> ListFile(const Device& device, const DevicePath& path) {
  for (const auto& file : ListFiles(device, path.Parent(), {false, true})) {
    if (file.path == path.text()) return file;
  }
  return std::nullopt;
}

std::vector<ListedFile> SelectFiles(const std::vector<ListedFile>& files, const DevicePath& folder,
                                    ListingOptions options) {
  std::vector<ListedFile> selected;
  const std::size_t prefix = folder.IsRoot() ? 0 : folder.text().size();
  for (const auto& file : files) {
    const std::string_view below = std::string_view(file.path).substr(prefix);
    if (!options.recursive && below.rfind('/') != 0) continue;
    if (!options.hidden && below.find("/.") != std::string_view::npos) continue;
    selected.push_back(file);
  }
  return selected;
}

bool HasLostBytes(std::string_view name) {
  return name.find(kReplacement) != std::string_view::npos;
}

void WarnOfLostNames(std::size_t count) {
  if (count == 0) return;
  PrintError("warning: " + CountText(count, "name") +
             " with bytes that are not UTF-8: a listing has U+FFFD in place of such bytes.");
}

}  // namespace darokleim::cli
