#include "src/filesystem/file_list_json.h"

#include <cstddef>
#include <limits>
#include <string_view>
#include <utility>

#include "src/core/caller_output.h"
#include "src/filesystem/folder_tree.h"
#include "src/filesystem/json_text.h"
#include "src/filesystem/side_file.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

// An upper limit for the text around the values of one file in a flat list, its numbers included.
constexpr std::size_t kMostAroundValues = 180;

std::size_t MostBytesOf(const std::list<FileInfo>& files) {
  std::size_t bytes = kMostAroundValues;
  for (const FileInfo& info : files) bytes += kMostAroundValues + info.file.size() + info.time.size();
  return bytes;
}

// The names of a file's members, in their order. An empty name: the member is never written.
struct FileMembers {
  std::string_view file;
  std::string_view size;
  std::string_view time;
  std::string_view utc_timestamp;
};
constexpr FileMembers kFlatMembers{"file", "size", "time", "utc_timestamp"};
constexpr FileMembers kTreeMembers{"Name", "Size", "Time", ""};

void WriteFile(JsonDocument& json, const FileInfo& info, const FileMembers& members, bool with_size) {
  json.BeginObject();
  json.Name(members.file);
  json.Text(info.file);
  if (with_size) {
    json.Name(members.size);
    json.Number(info.size);
  }
  if (!info.time.empty()) {
    json.Name(members.time);
    json.Text(info.time);
  }
  if (info.utc_timestamp != 0 && !members.utc_timestamp.empty()) {
    json.Name(members.utc_timestamp);
    json.Number(info.utc_timestamp);
  }
  json.EndObject();
}

std::string FlatDocument(const std::list<FileInfo>& files, bool with_size) {
  JsonDocument json;
  json.Reserve(MostBytesOf(files));
  json.BeginObject();
  json.Name("file_count");
  json.Integer(static_cast<int>(files.size()));
  json.Name("files");
  if (files.empty()) {
    json.Null();
  } else {
    json.BeginArray();
    for (const FileInfo& info : files) {
      json.Element();
      WriteFile(json, info, kFlatMembers, with_size);
    }
    json.EndArray();
  }
  json.EndObject();
  return std::move(json).Take();
}

class TreeDocument {
 public:
  TreeDocument(const FolderTree& tree, const std::string& root, bool with_size)
      : tree_(tree), root_(root), with_size_(with_size) {}

  // Goes down to the first folder without folders, then to the next one, and back up at the end of a "Dir".
  std::string Written() && {
    json_.BeginObject();
    std::size_t number = BeginFirstFolders(FolderTree::kTop);
    EndFolder(number);
    while (number != FolderTree::kTop) {
      const FolderTree::Folder& folder = tree_.folder(number);
      if (folder.next != FolderTree::kNone) {
        json_.Element();
        json_.BeginObject();
        number = BeginFirstFolders(folder.next);
      } else {
        json_.EndArray();
        number = folder.parent;
      }
      EndFolder(number);
    }
    return std::move(json_).Take();
  }

 private:
  // Begins the first folder of the one given, the first of that, and so on; returns the last.
  std::size_t BeginFirstFolders(std::size_t number) {
    while (tree_.folder(number).first_folder != FolderTree::kNone) {
      json_.Name("Dir");
      json_.BeginArray();
      json_.Element();
      json_.BeginObject();
      number = tree_.folder(number).first_folder;
    }
    return number;
  }

  void EndFolder(std::size_t number) {
    const FolderTree::Folder& folder = tree_.folder(number);
    if (folder.first_file != FolderTree::kNone) WriteFilesFrom(folder.first_file);
    json_.Name("Name");
    json_.Text(number == FolderTree::kTop ? root_ : root_ + "/" + std::string(folder.path));
    json_.EndObject();
  }

  void WriteFilesFrom(std::size_t number) {
    json_.Name("File");
    json_.BeginArray();
    for (; number != FolderTree::kNone; number = tree_.file(number).next) {
      json_.Element();
      WriteFile(json_, *tree_.file(number).info, kTreeMembers, with_size_);
    }
    json_.EndArray();
  }

  const FolderTree& tree_;
  const std::string& root_;
  const bool with_size_;
  JsonDocument json_;
};

// No side file for a document whose length does not fit an int.
std::string WithSideFile(std::string document) {
  if (document.size() <= std::numeric_limits<int>::max()) {
    SaveBuf("file_list.json", document.data(), static_cast<int>(document.size()));
  }
  return document;
}

}  // namespace

void HandOutOnce(const std::string& document, std::list<FileInfo>* files, char** json, int* json_len) {
  files->clear();
  HandOut(document, json, json_len);
}

}  // namespace darokleim::sdk

std::string serialization_file_list(const std::list<FileInfo>* files, bool with_size) {
  return WithSideFile(FlatDocument(*files, with_size));
}

std::string serialization_file_list_keep_folder_structer(const std::list<FileInfo>* files,
                                                         const std::string& root, bool with_size) {
  const FolderTree tree(*files, root);
  return WithSideFile(TreeDocument(tree, root, with_size).Written());
}
