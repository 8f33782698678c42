// darokleim tree
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/entries.h"
#include "tools/cli/output/human_text.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim tree /sdcard/DCIM
  darokleim tree -a -L 2 /sdcard

A folder that cannot be read is reported, the rest is shown, and the exit status is 1.)";

constexpr int kDeepest = 4096;  // more than the parts of any path

struct Options {
  bool hidden = false;
  int depth = 0;
  std::vector<PhonePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Folders on the device; otherwise /sdcard");
  command.Flag("-a,--all", options.hidden, "Show names that begin with a dot");
  command.Option("-L,--level", options.depth, "Show only so many levels of folders").Between(1, kDeepest);
}

using Folders = std::map<std::string, Entries>;  // what is in each

struct Totals {
  std::uint64_t folders = 0, files = 0, bytes = 0;
};

// Its depth is that of a path on the device, some two thousand folders at most.
void Draw(const Output& output, const Folders& folders, const std::string& folder,
          const std::string& indentation, std::string* text) {
  const auto found = folders.find(folder);
  if (found == folders.end()) return;
  std::size_t left = found->second.size();
  for (const auto& entry : found->second) {
    const bool is_last = --left == 0;
    *text += indentation + (is_last ? "\u2514\u2500\u2500 " : "\u251c\u2500\u2500 ");
    const std::string name = output.Shown(entry.name);
    *text += IsFolder(entry) ? output.Painted(Colour::kFolder, name) + "/" : name;
    if (entry.link_target) *text += " -> " + output.Shown(*entry.link_target);
    *text += "\n";
    if (IsFolder(entry))
      Draw(output, folders, entry.path, indentation + (is_last ? "    " : "\u2502   "), text);
  }
}

void Show(Tool& tool, const PhonePath& root, const Options& options) {
  const Progress progress(tool.progress_mode(), WaitingLine("listing " + root.text));
  dk::WalkOptions walk;
  walk.max_depth = static_cast<std::uint32_t>(options.depth);
  Entries entries = Below(tool, root, walk);
  const auto is_hidden = [&root](const dk::Entry& entry) { return IsBelowHidden(entry, root); };
  if (!options.hidden)
    entries.erase(std::remove_if(entries.begin(), entries.end(), is_hidden), entries.end());
  CompleteLinks(tool, &entries);
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.path < b.path; });
  if (tool.is_json()) {
    CompleteSizes(tool, &entries);
    for (const auto& entry : entries) tool.document().Add(EntryJson(entry));
    return;
  }
  Totals totals;
  Folders folders;
  for (auto& entry : entries) {
    ++(IsFolder(entry) ? totals.folders : totals.files);
    if (entry.type == DK_FILE) totals.bytes += entry.size.value_or(0);
    const std::string parent = entry.path.substr(0, entry.path.rfind('/'));
    folders[parent.empty() ? "/" : parent].push_back(std::move(entry));
  }
  std::string text = tool.output().Shown(root.text) + "\n";
  Draw(tool.output(), folders, root.text, "", &text);
  tool.output().Append(text + "\n" + CountText(totals.folders, "folder") + ", " +
                       CountText(totals.files, "file") + ", " + SizeText(totals.bytes) + "\n");
}

void Run(Tool& tool, const Options& options) {
  const std::vector<PhonePath> usual = {PhonePath::Parse("/sdcard")};
  if (tool.is_json()) tool.document().BeginList("entries");
  tool.ForEach(options.paths.empty() ? usual : options.paths,
               [&](const PhonePath& path) { Show(tool, path, options); });
}

}  // namespace

void AddTreeCommand(Command& root) {
  AddCommand<Options>(root, {"tree", "Show what is below a folder on the device as a tree", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli
