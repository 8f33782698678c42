#include "tools/cli/file_listing.h"

#include <darokleim.h>
#include <json/reader.h>

#include <memory>

#include "tools/cli/errors.h"
#include "tools/cli/human_text.h"
#include "tools/cli/library_block.h"
#include "tools/cli/result_text.h"
#include "tools/cli/side_file.h"
#include "tools/cli/standard_streams.h"

namespace darokleim::cli {
namespace {

// What JSON has for bytes that are no UTF-8: U+FFFD.
constexpr std::string_view kReplacement = "\xef\xbf\xbd";

Json::Value Parse(std::string_view text) {
  Json::CharReaderBuilder builder;
  builder["stackLimit"] = 10000;  // a path of 4096 bytes is 2048 folders deep, each two levels of JSON
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value document;
  std::string errors;
  if (!reader->parse(text.data(), text.data() + text.size(), &document, &errors)) {
    throw ToolError("the library handed out a listing that is not valid JSON: " + errors);
  }
  return document;
}

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
  return json.Bytes().empty() ? Json::Value() : Parse(json.Bytes());
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
    // An older ls prints a line for each name and none besides, and the library sees nothing in a single line.
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
  PrintError("warning: bytes that are not UTF-8 in " + CountText(count, "name") +
             ": a listing cannot carry them and has U+FFFD in their place.");
}

}  // namespace darokleim::cli
