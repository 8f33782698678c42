#include "tools/cli/commands/files/relocation.h"

#include "base/terminal_text.h"
#include "tools/cli/output/json_text.h"

namespace darokleim::cli {
namespace {

using base::EscapeControls;

bool IsFolder(Tool& tool, const PhonePath& path) {
  const auto found = tool.phone().stat(path.text, DK_FOLLOW, tool.limits());
  if (found) return dk::Result<dk::Entry>(found).value().type == DK_DIRECTORY;
  if (found.code() == DK_NOT_FOUND && !path.names_a_folder) return false;
  throw dk::Error(found.error());
}

void CheckNotIntoItself(const std::string& verb, const std::string& source, const std::string& target) {
  const std::string what = "cannot " + verb + " " + EscapeControls(source);
  if (source == target) throw ToolError(what + ": that is the file itself.");
  const std::string inside = source.ends_with('/') ? source : source + "/";
  if (target.compare(0, inside.size(), inside) == 0) {
    throw ToolError(what + " to " + EscapeControls(target) + ": that is inside of it.");
  }
}

}  // namespace

void DescribeRelocation(Command& command, Relocation& relocation) {
  command.Positional("SOURCE", relocation.sources, "Files and folders on the device").Required();
  command.Positional("TARGET", relocation.target, "Their new path, or a folder to put them in").Required();
}

void Relocate(Tool& tool, const Relocation& relocation, const std::string& verb,
              const std::function<void(const PhonePath& source, const std::string& target)>& work) {
  if (tool.is_json()) tool.document().BeginList("done");
  const bool into_folder = IsFolder(tool, relocation.target);
  if (!into_folder && relocation.sources.size() > 1) {
    throw ToolError("cannot " + verb + " several files to " + EscapeControls(relocation.target.text) +
                    ": it is not a folder.");
  }
  tool.ForEach(relocation.sources, [&](const PhonePath& source) {
    const std::string target = into_folder ? relocation.target.Child(source.Name()) : relocation.target.text;
    CheckNotIntoItself(verb, source.text, target);
    work(source, target);
    if (tool.is_json())
      tool.document().Add(JsonObject().Text("source", source.text).Text("target", target).text());
  });
}

}  // namespace darokleim::cli
