#include "src/filesystem/folder_tree.h"

#include <algorithm>

namespace darokleim::sdk {
namespace {

// What follows the root and one separator. Does not check that the path begins with them: every listed path does.
// Empty for a path that is too short to hold them.
std::string_view BelowRoot(std::string_view path, const std::string& root) {
  return path.substr(std::min(path.size(), root.size() + 1));
}

// Appends item number `item` to a chain that begins at first and ends at last.
template <typename Items>
void Link(Items& items, std::size_t& first, std::size_t& last, std::size_t item) {
  (last == FolderTree::kNone ? first : items[last].next) = item;
  last = item;
}

}  // namespace

FolderTree::FolderTree(const std::list<FileInfo>& files, const std::string& root) : folders_(1) {
  files_.reserve(files.size());
  // The files of one folder follow one another in a listing.
  std::string_view last_path;
  std::size_t last_folder = kTop;
  for (const FileInfo& info : files) {
    const std::string_view below = BelowRoot(info.file, root);
    const std::size_t slash = below.rfind('/');
    if (slash == std::string_view::npos) {
      Add(info, kTop);
      continue;
    }
    const std::string_view path = below.substr(0, slash);
    if (last_folder == kTop || path != last_path) last_folder = FolderOf(path);
    last_path = path;
    Add(info, last_folder);
  }
}

// Every slash counts: "a//b" is the folder "a", in it a folder without a name, in that the folder "b". The path of
// a folder joined with the name of a file in it is therefore always the listed path of the file.
std::size_t FolderTree::FolderOf(std::string_view path) {
  std::size_t folder_number = kTop;
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    folder_number = SubfolderOf(folder_number, path.substr(begin, end - begin), path.substr(0, end));
    begin = end + 1;
  }
  return folder_number;
}

std::size_t FolderTree::SubfolderOf(std::size_t parent, std::string_view name, std::string_view path) {
  const auto [entry, is_new] = index_.try_emplace(Step{parent, name}, folders_.size());
  if (is_new) {
    Folder& folder = folders_.emplace_back();
    folder.path = path;
    folder.parent = parent;
    Link(folders_, folders_[parent].first_folder, folders_[parent].last_folder, entry->second);
  }
  return entry->second;
}

void FolderTree::Add(const FileInfo& info, std::size_t folder_number) {
  files_.push_back({&info});
  Folder& folder = folders_[folder_number];
  Link(files_, folder.first_file, folder.last_file, files_.size() - 1);
}

}  // namespace darokleim::sdk
