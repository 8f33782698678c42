#include "tools/cli/commands/files/entries.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "base/shell_quoting.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json_text.h"

namespace darokleim::cli {
namespace {

constexpr std::size_t kLinksTogether = 200;
// Ends what is printed of each link. Only a link to a name with a line break could hold it.
constexpr std::string_view kEndOfLink = "\n/\n";

// What each of the links leads to, in their order; fewer where the phone's answer is not understood.
std::vector<std::string> ReadLinks(Tool& tool, const std::vector<dk::Entry*>& links) {
  std::string script;
  for (const auto* link : links) {
    script += "readlink " + base::QuoteForShell(link->path) + " 2>/dev/null || echo; echo /\n";
  }
  const auto printed = tool.phone().run_script(script, tool.limits()).value();
  std::vector<std::string> targets;
  std::string_view rest = printed.out;
  for (std::size_t end; (end = rest.find(kEndOfLink)) != std::string_view::npos;) {
    targets.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end + kEndOfLink.size());
  }
  return targets;
}

}  // namespace

bool IsBelowHidden(const dk::Entry& entry, const PhonePath& folder) {
  return entry.path.find("/.", folder.IsRoot() ? 0 : folder.text.size()) != std::string::npos;
}

const char* TypeName(dk_type type) {
  switch (type) {
    case DK_FILE:
      return "file";
    case DK_DIRECTORY:
      return "folder";
    case DK_LINK:
      return "link";
    case DK_SPECIAL:
      return "special";
    case DK_UNKNOWN_TYPE:
      break;
  }
  return "unknown";
}

std::string ModeText(const dk::Entry& entry) {
  // By the numbers of Linux, which the phone has.
  constexpr std::string_view kTypes = "?pc?d?b?-?l?s???";
  std::string text(1, kTypes[entry.mode >> 12 & 0xf]);
  constexpr std::string_view kLetters = "rwxrwxrwx";
  for (std::size_t i = 0; i < kLetters.size(); ++i)
    text += (entry.mode >> (8 - i) & 1) != 0 ? kLetters[i] : '-';
  const auto mark = [&](std::uint32_t bit, std::size_t place, char with_x, char without) {
    if ((entry.mode & bit) != 0) text[place] = text[place] == 'x' ? with_x : without;
  };
  mark(04000, 3, 's', 'S');
  mark(02000, 6, 's', 'S');
  mark(01000, 9, 't', 'T');
  return text;
}

std::string EntrySizeText(const dk::Entry& entry) {
  return entry.size ? SizeText(*entry.size) : "?";
}

std::string EntryJson(const dk::Entry& entry) {
  char mode[8];
  std::snprintf(mode, sizeof mode, "%04o", static_cast<unsigned>(entry.mode & 07777));
  JsonObject json;
  json.Text("name", entry.name).Text("path", entry.path).Text("type", TypeName(entry.type));
  entry.size ? json.Unsigned("size", *entry.size) : json.Null("size");
  json.Integer("modified", entry.mtime).Text("mode", mode);
  if (entry.link_target) json.Text("target", *entry.link_target);
  return json.text();
}

void CompleteSizes(Tool& tool, Entries* entries) {
  for (auto& entry : *entries) {
    if (entry.size) continue;
    const auto looked = tool.phone().stat(entry.path, DK_NO_FOLLOW, tool.limits());
    if (looked.ok()) entry.size = dk::Result<dk::Entry>(looked).value().size;
  }
}

void CompleteLinks(Tool& tool, Entries* entries) {
  std::vector<dk::Entry*> links;
  for (auto& entry : *entries) {
    if (entry.type == DK_LINK && !entry.link_target) links.push_back(&entry);
  }
  for (std::size_t first = 0; first < links.size(); first += kLinksTogether) {
    const auto last = std::min(first + kLinksTogether, links.size());
    const std::vector<dk::Entry*> some(links.begin() + static_cast<std::ptrdiff_t>(first),
                                       links.begin() + static_cast<std::ptrdiff_t>(last));
    const auto targets = ReadLinks(tool, some);
    if (targets.size() != some.size()) continue;
    for (std::size_t i = 0; i < some.size(); ++i) {
      if (!targets[i].empty()) some[i]->link_target = targets[i];
    }
  }
}

Entries Below(Tool& tool, const PhonePath& folder, dk::WalkOptions options) {
  Entries entries;
  options.on_error = [&tool](const dk::Error& error) {
    tool.ReportFailure(error);
    return true;
  };
  const auto on_entry = [&entries](const dk_entry& entry) {
    entries.emplace_back(entry);
    return true;
  };
  const auto walked = tool.phone().walk(folder.text, options, on_entry, tool.limits());
  if (!walked && walked.code() != DK_PARTLY_DONE) throw dk::Error(walked.error());
  return entries;
}

}  // namespace darokleim::cli
