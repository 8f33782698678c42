// darokleim ls
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/entries.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/table.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim ls /sdcard                   the names in a folder
  darokleim ls -l "/sdcard/my photos"    with permissions, sizes and times
  darokleim ls -R -a /sdcard/DCIM        everything below, hidden files included
  darokleim ls -lt /sdcard/Download      the latest first
  darokleim ls -0 /sdcard/DCIM | xargs -0 -n 1 darokleim stat

Names are printed byte for byte, on a terminal without control characters and with a slash after folders. With -0 whole
paths are printed. A folder that cannot be read is reported, the rest is listed, and the exit status is 1.)";

struct Options {
  bool details = false;
  bool hidden = false;
  bool recursive = false;
  bool themselves = false;
  bool by_time = false;
  bool by_size = false;
  bool reverse = false;
  bool zeros = false;
  bool utc = false;
  std::vector<PhonePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Positional("PATH", options.paths, "Folders or files on the device; otherwise /sdcard");
  command.Flag("-l,--long", options.details, "Show permissions, sizes, times and what links lead to");
  command.Flag("-a,--all", options.hidden, "Show names that begin with a dot");
  auto& recursive = command.Flag("-R,--recursive", options.recursive, "List everything below");
  command.Flag("-d,--directory", options.themselves, "Show folders themselves, not what is in them")
      .Excludes(recursive);
  auto& by_time = command.Flag("-t", options.by_time, "Sort by time, the latest first");
  command.Flag("-S", options.by_size, "Sort by size, the largest first").Excludes(by_time);
  command.Flag("-r,--reverse", options.reverse, "Sort the other way round");
  command.Flag("-0,--null", options.zeros, "Print whole paths, each ended by a zero byte");
  command.UtcFlag(options.utc);
}

// The entries of one folder; the first has those that were named themselves, and no folder.
struct Group {
  std::string folder;
  Entries entries;
};

void Sort(const Options& options, Entries* entries) {
  const auto less = [&options](const dk::Entry& a, const dk::Entry& b) {
    if (options.by_time && a.mtime != b.mtime) return a.mtime > b.mtime;
    if (options.by_size && a.size != b.size) return a.size > b.size;
    return a.path < b.path;
  };
  std::sort(entries->begin(), entries->end(), less);
  if (options.reverse) std::reverse(entries->begin(), entries->end());
}

class Listing {
 public:
  Listing(Tool& tool, const Options& options) : tool_(tool), options_(options), groups_(1) {}

  void Read(const PhonePath& path) {
    const Progress progress(tool_.progress_mode(), WaitingLine("listing " + path.text));
    if (options_.themselves) {
      groups_.front().entries.push_back(tool_.phone().stat(path.text, DK_NO_FOLLOW, tool_.limits()).value());
    } else if (options_.recursive) {
      ReadBelow(path);
    } else {
      ReadFolder(path);
    }
  }

  std::vector<Group> TakeGroups() {
    Sort(options_, &groups_.front().entries);
    return std::move(groups_);
  }

 private:
  void ReadFolder(const PhonePath& path) {
    auto listed = tool_.phone().list(path.text, tool_.limits());
    if (listed.code() == DK_NOT_A_DIRECTORY && !path.names_a_folder) return ReadFile(path);
    Entries entries = std::move(listed).value();
    RemoveHidden([](const dk::Entry& entry) { return IsHidden(entry); }, &entries);
    AddGroup(path.text, std::move(entries));
  }

  void ReadFile(const PhonePath& path) {
    auto entry = tool_.phone().stat(path.text, DK_NO_FOLLOW, tool_.limits()).value();
    entry.name = path.text;  // as it was named
    groups_.front().entries.push_back(std::move(entry));
  }

  void ReadBelow(const PhonePath& path) {
    Entries all;
    try {
      all = Below(tool_, path);
    } catch (const dk::Error& error) {
      if (error.code() != DK_NOT_A_DIRECTORY || path.names_a_folder) throw;
      return ReadFile(path);
    }
    RemoveHidden([&path](const dk::Entry& entry) { return IsBelowHidden(entry, path); }, &all);
    std::map<std::string, Entries> by_folder;
    by_folder[path.text];
    for (auto& entry : all) {
      if (IsFolder(entry)) by_folder[entry.path];
      by_folder[FolderOf(entry, path)].push_back(std::move(entry));
    }
    AddInOrder(path.text, &by_folder);
  }

  static std::string FolderOf(const dk::Entry& entry, const PhonePath& root) {
    const std::string folder = entry.path.substr(0, entry.path.rfind('/'));
    return folder.empty() ? root.text : folder;
  }

  // A folder before the folders in it, which follow in the order of the listing.
  void AddInOrder(const std::string& root, std::map<std::string, Entries>* by_folder) {
    std::vector<std::string> waiting = {root};
    while (!waiting.empty()) {
      const std::string folder = std::move(waiting.back());
      waiting.pop_back();
      AddGroup(folder, std::move((*by_folder)[folder]));
      const auto& entries = groups_.back().entries;
      std::for_each(entries.rbegin(), entries.rend(), [&waiting](const dk::Entry& entry) {
        if (IsFolder(entry)) waiting.push_back(entry.path);
      });
    }
  }

  template <typename Predicate>
  void RemoveHidden(const Predicate& is_hidden, Entries* entries) const {
    if (!options_.hidden)
      entries->erase(std::remove_if(entries->begin(), entries->end(), is_hidden), entries->end());
  }

  void AddGroup(const std::string& folder, Entries entries) {
    if (NeedsSizes()) CompleteSizes(tool_, &entries);
    if (options_.details || tool_.is_json()) CompleteLinks(tool_, &entries);
    Sort(options_, &entries);
    groups_.push_back({folder, std::move(entries)});
  }

  bool NeedsSizes() const { return options_.details || options_.by_size || tool_.is_json(); }

  Tool& tool_;
  const Options& options_;
  std::vector<Group> groups_;
};

std::string NameOf(const Output& output, const dk::Entry& entry) {
  std::string name = output.Shown(entry.name);
  if (!IsFolder(entry) || !output.is_terminal()) return name;
  return output.Painted(Colour::kFolder, name) + "/";
}

std::string TextOf(const Output& output, const Entries& entries, const Options& options) {
  if (!options.details) {
    std::string text;
    for (const auto& entry : entries) text += NameOf(output, entry) + "\n";
    return text;
  }
  Table table;
  for (const auto& entry : entries) {
    std::string name = NameOf(output, entry);
    if (entry.link_target) name += " -> " + output.Shown(*entry.link_target);
    table.AddRow({ModeText(entry), EntrySizeText(entry), TimeText(entry.mtime, options.utc), name});
  }
  return table.Text();
}

void Print(Tool& tool, const std::vector<Group>& groups, const Options& options) {
  Output& output = tool.output();
  const bool has_headings = options.recursive || options.paths.size() > 1;
  bool first = true;
  for (const auto& group : groups) {
    if (group.folder.empty() && group.entries.empty()) continue;
    if (options.zeros) {
      for (const auto& entry : group.entries) output.Append(entry.path + '\0');
      continue;
    }
    if (has_headings && !group.folder.empty()) {
      output.Append((first ? "" : "\n") + output.Shown(group.folder) + ":\n");
    }
    output.Append(TextOf(output, group.entries, options));
    first = false;
  }
}

void Run(Tool& tool, const Options& options) {
  const std::vector<PhonePath> usual = {PhonePath::Parse("/sdcard")};
  if (tool.is_json()) tool.document().BeginList("entries");
  Listing listing(tool, options);
  tool.ForEach(options.paths.empty() ? usual : options.paths,
               [&](const PhonePath& path) { listing.Read(path); });
  const auto groups = listing.TakeGroups();
  if (!tool.is_json()) return Print(tool, groups, options);
  for (const auto& group : groups) {
    for (const auto& entry : group.entries) tool.document().Add(EntryJson(entry));
  }
}

}  // namespace

void AddLsCommand(Command& root) {
  AddCommand<Options>(root, {"ls", "List files and folders on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
