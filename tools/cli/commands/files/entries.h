// Files and folders of the phone, as several commands show them.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_ENTRIES_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_ENTRIES_H

#include <string>
#include <vector>

#include "tools/cli/phone_path.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {

using Entries = std::vector<dk::Entry>;

inline bool IsFolder(const dk::Entry& entry) {
  return entry.type == DK_DIRECTORY;
}
inline bool IsHidden(const dk::Entry& entry) {
  return entry.name.substr(0, 1) == ".";
}
// Whether a name below the folder, on the way to the entry, begins with a dot.
bool IsBelowHidden(const dk::Entry& entry, const PhonePath& folder);

// "file", "folder", "link", "special", "unknown".
const char* TypeName(dk_type type);
// "-rw-r-----", "drwxrwx--x".
std::string ModeText(const dk::Entry& entry);
// A size for people; "?" where the phone does not say it.
std::string EntrySizeText(const dk::Entry& entry);

// {name, path, type, size, modified, mode, target}
std::string EntryJson(const dk::Entry& entry);

// What a listing leaves out and costs a question: sizes of large files on old phones, and what links lead to.
void CompleteSizes(Tool& tool, Entries* entries);
void CompleteLinks(Tool& tool, Entries* entries);

// Everything below the folder. A folder that cannot be read is reported as a failure, and the rest goes on. Throws when that is
// the folder itself.
Entries Below(Tool& tool, const PhonePath& folder, dk::WalkOptions options = {});

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_FILES_ENTRIES_H
