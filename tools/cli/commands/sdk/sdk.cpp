// darokleim sdk
#include <stdlib.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/sdk/adb_killing.h"
#include "tools/cli/commands/sdk/call.h"
#include "tools/cli/commands/sdk/call_log.h"
#include "tools/cli/commands/sdk/library.h"
#include "tools/cli/commands/sdk/report.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_directories.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/output/standard_streams.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Calls one function of darokleim.h as an application does, with its arguments in the order of the header, and shows the
code that it returns and what it means, its outputs, the milliseconds that it took, and the commands that it ran with the
status, the bytes and the milliseconds of each. Without a function it lists them.

The serial number is that of -s, of ANDROID_SERIAL, or of the only device that is ready. Texts reach the function as
they are. --timeout and Ctrl-C set the function's cancel flag; where it does not take one, they end its adb.

Exit status 0 when the code says that it worked, 1 otherwise, 130 after Ctrl-C.

Examples:
  darokleim sdk
  darokleim sdk AdbGetFileSize --help
  darokleim sdk AdbGetFileSize /sdcard/photo.jpg
  darokleim sdk --channel direct AdbGetDirFilesEx /sdcard 0 0 --json)";

// Shared by all functions.
struct Options {
  bool log = false;
  bool force = false;
  int buffer_size = kUncheckedBufferSize;
  std::string channel;
};

void Describe(Command& command, Options& options) {
  constexpr int kLargestBuffer = 1 << 28;
  command
      .Option(
          "--channel", options.channel,
          "How the command channel runs commands; otherwise as DAROKLEIM_CHANNEL says, or with assistance")
      .Called("MODE")
      .OneOf({"plain", "assist", "direct"});
  command.Option("--buffer-size", options.buffer_size, "The size that the function is given for a buffer")
      .Called("BYTES")
      .Between(1, kLargestBuffer)
      .Default(std::to_string(options.buffer_size));
  command.Flag("--log", options.log, "Also show what the library logged");
  command.Flag("--force", options.force, "Confirm a function that kills every adb process");
}

// "device_path": "DEVICE_PATH"
std::string CapitalName(const Parameter& parameter) {
  std::string name = parameter.name;
  for (char& c : name) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return name;
}

// The list of functions.

std::string WordsOf(const SdkFunction& function) {
  std::string words;
  for (const auto& parameter : function.parameters) {
    if (!IsWord(parameter.kind)) continue;
    const std::string name = CapitalName(parameter);
    words += (words.empty() ? "" : " ") + (IsRequired(parameter.kind) ? name : "[" + name + "]");
  }
  return words;
}

const char* SourceOf(ParameterKind kind) {
  if (IsOutput(kind) && !IsWord(kind)) return "output";
  if (IsWord(kind)) return IsRequired(kind) ? "argument" : "optional argument";
  switch (kind) {
    case ParameterKind::kSerial:
      return "--serial";
    case ParameterKind::kBufferSize:
      return "--buffer-size";
    case ParameterKind::kCancel:
      return "Ctrl-C and --timeout";
    default:
      return "the tool";
  }
}

std::string ListedJson(const SdkFunction& function) {
  std::vector<std::string> parameters;
  for (const auto& parameter : function.parameters) {
    JsonObject json;
    parameters.push_back(json.Text("name", parameter.name).Text("from", SourceOf(parameter.kind)).text());
  }
  JsonObject json;
  json.Text("function", function.name).Text("summary", function.summary);
  return json.Json("parameters", JsonArray(parameters)).text();
}

void List(Tool& tool) {
  if (tool.is_json()) {
    tool.document().BeginList("functions");
    for (const auto& function : SdkFunctions()) tool.document().Add(ListedJson(function));
    return;
  }
  Table table;
  for (const auto& function : SdkFunctions()) {
    const auto words = WordsOf(function);
    table.AddRow({function.name + (words.empty() ? "" : " " + words), function.summary});
  }
  tool.output().Write(table.Text());
}

// A call.

bool NeedsSerial(const SdkFunction& function) {
  const auto& all = function.parameters;
  return !all.empty() && all.front().kind == ParameterKind::kSerial;
}

void CheckForce(const SdkFunction& function, const std::vector<Value>& values, bool force) {
  if (function.kills_adb == nullptr || !function.kills_adb(values)) return;
  if (!force) {
    throw ToolError(
        "this kills every process of this computer with the word adb in its line of `ps -ax`, not only the "
        "adb server. To do so, add --force.");
  }
  CheckSurvivesKilling();
}

// Before the library starts, which reads the environment.
void SetEnvironment(const Options& options) {
  if (!options.channel.empty()) setenv("DAROKLEIM_CHANNEL", options.channel.c_str(), 1);
  setenv("DAROKLEIM_CHANNEL_ASSIST", "1", 0);
  // The lines of commands are written at level 1 and below.
  const char* level = getenv("DAROKLEIM_LOG_LEVEL");
  if (level == nullptr || std::string_view(level) != "0") setenv("DAROKLEIM_LOG_LEVEL", "1", 1);
}

void KeepLog(const CallLog& log, const std::string& named) {
  const auto folder = named.empty() ? StateDirectory() : AbsolutePath(named);
  try {
    log.CopyTo(folder);
  } catch (const ToolError& error) {
    PrintError("no log is written: cannot write in " + folder.native() + ": " + error.what() +
               ". Name another directory with --log-dir.");
  }
}

void RunFunction(Tool& tool, const SdkFunction& function, const std::vector<Value>& values,
                 const Options& options) {
  CheckForce(function, values, options.force);
  CallSettings settings;
  if (NeedsSerial(function)) settings.serial = tool.phone().serial();
  settings.buffer_size = options.buffer_size;
  if (!tool.is_json()) settings.on_piece = [&tool](std::string_view piece) { tool.output().Write(piece); };
  SetEnvironment(options);
  const CallLog log;
  if (function.needs_library) StartLibrary(tool.global_options(), log.folder());
  const auto result = CallFunction(function, values, settings);
  const CallReport report{function, result, log, options.log};
  if (tool.is_json()) {
    FillDocument(report, tool.document());
  } else {
    tool.output().Write(ReportAsText(report, tool.output()));
  }
  if (function.needs_library) KeepLog(log, tool.global_options().log_directory.text);
  if (IsCancelled() && !HasTimedOut()) throw Cancelled();
  if (result.succeeded) return;
  tool.Finish();
  throw AnswerIsNo();
}

// The command line of a function.

ValueKind CompletedAs(ParameterKind kind) {
  switch (kind) {
    case ParameterKind::kHostPath:
      return ValueKind::kHostPath;
    case ParameterKind::kHostDirectory:
      return ValueKind::kHostDirectory;
    case ParameterKind::kDevicePath:
      return ValueKind::kDevicePath;
    case ParameterKind::kPackage:
      return ValueKind::kPackage;
    default:
      return ValueKind::kText;
  }
}

void TakeWord(void* to, const std::string& word) {
  Value& value = *static_cast<Value*>(to);
  value.text = word;
  value.is_null = false;
  value.answer = word == "1";
  value.number = value.answer ? 1 : 0;
}

void DescribeWords(Command& command, const SdkFunction& function, std::vector<Value>& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto& parameter = function.parameters[i];
    if (!IsWord(parameter.kind)) continue;
    values[i].is_null = parameter.kind == ParameterKind::kOptionalText;
    auto& argument = command.PositionalOf({&values[i], TakeWord, CompletedAs(parameter.kind), false},
                                          CapitalName(parameter).c_str(), parameter.help);
    if (IsRequired(parameter.kind)) argument.Required();
    if (parameter.kind == ParameterKind::kSwitch) argument.OneOf({"0", "1"});
  }
}

std::string FooterOf(const SdkFunction& function) {
  std::string outputs;
  for (const auto& parameter : function.parameters) {
    if (IsOutput(parameter.kind))
      outputs += (outputs.empty() ? "Outputs: " : ", ") + std::string(parameter.name);
  }
  std::string footer = function.notes.empty() ? "" : function.notes + "\n\n";
  if (!outputs.empty()) footer += outputs + "\n\n";
  const std::string example = function.example;
  return footer + "Examples:\n  darokleim sdk " + function.name + (example.empty() ? "" : " " + example);
}

void AddFunction(Command& group, const SdkFunction& function, const std::shared_ptr<Options>& options) {
  const std::string footer = FooterOf(function);
  Command& command = group.Subcommand({function.name, function.summary, footer.c_str()});
  const auto values = std::make_shared<std::vector<Value>>(function.parameters.size());
  DescribeWords(command, function, *values);
  command.OnRun([&function, values, options](Tool& tool) { RunFunction(tool, function, *values, *options); });
}

}  // namespace

void AddSdkCommand(Command& root) {
  Command& group = root.Subcommand({"sdk", "Call a function of the library by hand", kFooter});
  const auto options = std::make_shared<Options>();
  Describe(group, *options);
  group.OnRun([](Tool& tool) { List(tool); });
  for (const auto& function : SdkFunctions()) AddFunction(group, function, options);
}

}  // namespace darokleim::cli
