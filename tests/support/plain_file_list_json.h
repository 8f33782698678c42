// The file lists built as JsonCpp values and written by JsonCpp: the plain form that the SDK's writer must equal
// byte for byte. As fast as that form can be (values are moved, keys are static), because benchmarks take it as
// their floor.
#ifndef DAROKLEIM_TESTS_SUPPORT_PLAIN_FILE_LIST_JSON_H
#define DAROKLEIM_TESTS_SUPPORT_PLAIN_FILE_LIST_JSON_H

#include <json/value.h>

#include <algorithm>
#include <list>
#include <string>
#include <unordered_map>
#include <utility>

#include "src/filesystem/file_info.h"
#include "src/filesystem/json_text.h"

namespace darokleim::test {

inline std::string PlainFlatList(const std::list<FileInfo>& files, bool with_size) {
  static const Json::StaticString file("file"), size("size"), time("time"), utc_timestamp("utc_timestamp");
  Json::Value list;
  for (const FileInfo& info : files) {
    Json::Value object;
    object[file] = info.file;
    if (with_size) object[size] = Json::UInt64{info.size};
    if (!info.time.empty()) object[time] = info.time;
    if (info.utc_timestamp != 0) object[utc_timestamp] = Json::UInt64{info.utc_timestamp};
    list.append(std::move(object));
  }
  Json::Value root;
  root["files"] = std::move(list);
  root["file_count"] = static_cast<int>(files.size());
  return JsonToString(root);
}

inline std::string PlainTree(const std::list<FileInfo>& files, const std::string& root, bool with_size) {
  static const Json::StaticString dir("Dir"), file("File"), name("Name"), size("Size"), time("Time");
  const auto new_folder = [](const std::string& path) {
    Json::Value folder;
    folder[name] = path;
    return folder;
  };
  Json::Value top = new_folder(root);
  std::unordered_map<std::string, Json::Value*> folders{{root, &top}};
  for (const FileInfo& info : files) {
    Json::Value object;
    object[name] = info.file;
    if (with_size) object[size] = Json::UInt64{info.size};
    if (!info.time.empty()) object[time] = info.time;
    const std::string below = info.file.substr(std::min(info.file.size(), root.size() + 1));
    Json::Value* folder = &top;
    for (std::size_t slash = below.find('/'); slash != std::string::npos;
         slash = below.find('/', slash + 1)) {
      const std::string path = root + "/" + below.substr(0, slash);
      Json::Value*& known = folders[path];
      if (!known) known = &(*folders.at(path.substr(0, path.rfind('/'))))[dir].append(new_folder(path));
      folder = known;
    }
    (*folder)[file].append(std::move(object));
  }
  return JsonToString(top);
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_PLAIN_FILE_LIST_JSON_H
