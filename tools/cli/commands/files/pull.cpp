// darokleim pull
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/transfer.h"
#include "tools/cli/phone_path.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim pull /sdcard/DCIM                    into the current folder
  darokleim pull /sdcard/a.txt "/sdcard/b c" .   several files and folders
  darokleim pull --update /sdcard/DCIM/. photos  what is in DCIM and is not the same here
  darokleim pull /sdcard/notes.tar - | tar x

A file gets its name here when it is whole, so a failure harms no older file. Of several files, an error of one is
reported, the rest goes on, and the exit status is 1. After a broken connection, the same command with --update goes on
where it ended.)";

struct Options {
  TransferPolicy policy;
  std::vector<PhonePath> sources;
  HostPath target;
};

void Describe(Command& command, Options& options) {
  command.Positional("SOURCE", options.sources, "Files and folders on the device").Required();
  command.Positional("TARGET", options.target,
                     "Path on this computer, or a folder to put them in; - is standard output. Otherwise the "
                     "current folder");
  DescribePolicy(command, options.policy);
}

void PullToOutput(Tool& tool, const Options& options) {
  if (tool.is_json()) throw UsageError("--json and - both write to standard output.");
  tool.ForEach(options.sources, [&](const PhonePath& source) {
    const auto write = [&tool](std::string_view data) {
      tool.output().Append(data);
      return true;
    };
    tool.phone().read(source.text, 0, 0, write, tool.limits()).value();
  });
}

bool IsFolder(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_directory(path, error);
}

void Run(Tool& tool, const Options& options) {
  if (options.target.text == "-") return PullToOutput(tool, options);
  const std::string target = options.target.text.empty() ? "." : options.target.text;
  const bool into_folder = target.ends_with('/') || IsFolder(target);
  if (!into_folder && options.sources.size() > 1) {
    throw ToolError("cannot pull several files to " + target +
                    ": no such folder on this computer. With a slash at its end it is made.");
  }
  std::vector<dk::Item> items;
  for (const auto& source : options.sources) {
    const SourceName name{source.Name(), source.names_its_content};
    if (source.IsRoot() && !name.is_content)
      throw UsageError("the root of the device has no name; pull /. instead.");
    items.push_back({source.text, into_folder ? TargetIn(target, name) : target});
  }
  Transfer(tool, Direction::kPull, items, options.policy);
}

}  // namespace

void AddPullCommand(Command& root) {
  AddCommand<Options>(root, {"pull", "Copy files and folders from the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
