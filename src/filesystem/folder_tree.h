// A list of files, sorted into the folders that they are in.
#ifndef DAROKLEIM_SRC_FILESYSTEM_FOLDER_TREE_H
#define DAROKLEIM_SRC_FILESYSTEM_FOLDER_TREE_H

#include <cstddef>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "src/filesystem/file_info.h"

namespace darokleim::sdk {

// Folders and files refer to each other by number: a tree of any depth is built, walked and freed without
// recursion. The list and the root must outlive the tree, which holds views of them.
class FolderTree {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  static constexpr std::size_t kTop = 0;

  struct Folder {
    std::string_view path;  // below the root; empty for the top, which is the root itself
    std::size_t parent = kNone;
    std::size_t next = kNone;  // in the same parent, in the order of their first file in the list
    std::size_t first_folder = kNone;
    std::size_t last_folder = kNone;
    std::size_t first_file = kNone;
    std::size_t last_file = kNone;
  };
  struct File {
    const FileInfo* info;
    std::size_t next = kNone;  // in the same folder, in the order of the list
  };

  FolderTree(const std::list<FileInfo>& files, const std::string& root);

  const Folder& folder(std::size_t number) const { return folders_[number]; }
  const File& file(std::size_t number) const { return files_[number]; }

 private:
  // A folder is identified by its parent and its last name: looking up a path takes time proportional to its
  // length, however deep it is.
  struct Step {
    std::size_t parent;
    std::string_view name;

    bool operator==(const Step& other) const { return parent == other.parent && name == other.name; }
  };
  struct StepHash {
    std::size_t operator()(const Step& step) const {
      constexpr std::size_t kOddFraction = static_cast<std::size_t>(0x9E3779B97F4A7C15);
      return std::hash<std::string_view>{}(step.name) ^ (step.parent * kOddFraction);
    }
  };

  std::size_t FolderOf(std::string_view path);
  std::size_t SubfolderOf(std::size_t parent, std::string_view name, std::string_view path);
  void Add(const FileInfo& info, std::size_t folder_number);

  std::vector<Folder> folders_;
  std::vector<File> files_;
  std::unordered_map<Step, std::size_t, StepHash> index_;
};

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_FOLDER_TREE_H
