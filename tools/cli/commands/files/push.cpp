// darokleim push
#include <chrono>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/transfer.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/host/standard_input.h"
#include "tools/cli/phone_path.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim push photo.jpg /sdcard/DCIM          into the folder DCIM, if there is one
  darokleim push a.txt "my folder" /sdcard       several files and folders
  darokleim push --update Music/. /sdcard/Music  what is in Music and is not the same there
  tar c notes | darokleim push - /sdcard/notes.tar

A file gets its name on the device when it is whole, so a failure harms no older file. Of several files, an error of one is
reported, the rest goes on, and the exit status is 1. After a broken connection, the same command with --update goes on
where it ended.)";

struct Options {
  TransferPolicy policy;
  std::vector<HostPath> sources;
  PhonePath target;
};

void Describe(Command& command, Options& options) {
  command.Positional("SOURCE", options.sources, "Files and folders of this computer; - is standard input")
      .Required();
  command.Positional("TARGET", options.target, "Path on the device, or a folder to put them in").Required();
  DescribePolicy(command, options.policy);
}

SourceName NameOf(const std::string& source) {
  const bool is_content = source == "." || source.ends_with("/.");
  return {AbsolutePath(source).filename().native(), is_content};
}

bool IsFolder(Tool& tool, const PhonePath& path) {
  const auto found = tool.phone().stat(path.text, DK_FOLLOW, tool.limits());
  if (found) return dk::Result<dk::Entry>(found).value().type == DK_DIRECTORY;
  if (found.code() == DK_NOT_FOUND) return false;
  throw dk::Error(found.error());
}

void PushInput(Tool& tool, const Options& options) {
  if (options.sources.size() > 1) throw UsageError("- is the only source where it is one.");
  if (options.target.names_a_folder) throw UsageError("TARGET must be a file for standard input.");
  dk_summary summary = {};
  const auto start = std::chrono::steady_clock::now();
  const auto read_input = [&summary](char* buffer, std::size_t capacity) -> std::int64_t {
    const std::size_t count = ReadStandardInput(buffer, capacity);
    summary.bytes_sent += count;
    return static_cast<std::int64_t>(count);
  };
  constexpr std::uint32_t kMode = 0644;
  const bool replace = !options.policy.no_clobber;
  tool.phone().write_from(options.target.text, read_input, kMode, replace, 0, tool.limits()).value();
  summary.files_sent = 1;
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  ReportCounts(tool, Direction::kPush, summary, seconds, false);
}

void Run(Tool& tool, const Options& options) {
  for (const auto& source : options.sources) {
    if (source.text == "-") return PushInput(tool, options);
    if (source.text.empty()) throw UsageError("SOURCE is empty.");
  }
  const bool into_folder = options.target.names_a_folder || IsFolder(tool, options.target);
  if (!into_folder && options.sources.size() > 1) {
    throw ToolError("cannot push several files to " + options.target.text +
                    ": no such folder on the device. With a slash at its end it is made.");
  }
  std::vector<dk::Item> items;
  for (const auto& source : options.sources) {
    items.push_back({source.text,
                     into_folder ? TargetIn(options.target.text, NameOf(source.text)) : options.target.text});
  }
  Transfer(tool, Direction::kPush, items, options.policy);
}

}  // namespace

void AddPushCommand(Command& root) {
  AddCommand<Options>(root, {"push", "Copy files and folders to the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
