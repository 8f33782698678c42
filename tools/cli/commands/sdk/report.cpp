#include "tools/cli/commands/sdk/report.h"

#include <algorithm>
#include <cstdio>

#include "tools/cli/output/json_text.h"
#include "tools/cli/output/result_text.h"

namespace darokleim::cli {
namespace {

// Some functions return another code than 0 when they worked.
ResultText ResultOf(const SdkFunction& function, int code) {
  auto text = TextOfResult(code);
  if (code == 0 || code != function.other_success) return text;
  return {text.name, "it worked; this function returns this code after a normal run, too."};
}

// Nothing when they are not known.
std::optional<std::vector<ChannelCommand>> CommandsOf(const CallReport& report) {
  if (!report.function.needs_library) return std::vector<ChannelCommand>();
  return report.log.Commands();
}

std::string ReturnedText(const SdkFunction& function, const Returned& returned) {
  if (const auto* answer = std::get_if<bool>(&returned)) return *answer ? "true" : "false";
  const auto* code = std::get_if<int>(&returned);
  if (code == nullptr) return "nothing";
  const auto text = ResultOf(function, *code);
  return std::to_string(*code) + ", " + text.name + ": " + text.meaning;
}

std::string ValueText(const Output& output, const Json::Value& value) {
  if (value.isNull()) return " = null\n";
  if (value.isBool()) return value.asBool() ? " = true\n" : " = false\n";
  const std::string text = value.asString();
  if (text.find('\n') == std::string::npos) return " = " + output.Shown(text) + "\n";
  std::string lines = ":\n";
  for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1) {
    end = std::min(text.find('\n', begin), text.size());
    lines += "  " + output.Shown(text.substr(begin, end - begin)) + "\n";
  }
  return lines;
}

std::string Milliseconds(double milliseconds) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f", milliseconds);
  return text;
}

std::string CommandText(const Output& output, const ChannelCommand& command) {
  return "  " + command.route + " " + output.Shown(command.arguments) + "  (status " +
         std::to_string(command.status) + ", " + std::to_string(command.bytes) + " bytes, " +
         std::to_string(command.milliseconds) + " ms)\n";
}

// Of many commands, the first.
std::string CommandsText(const Output& output, const CallReport& report) {
  constexpr std::size_t kMost = 100;
  const auto commands = CommandsOf(report);
  if (!commands) return "commands: unknown, the command channel wrote no log\n";
  if (commands->empty()) return "commands: none\n";
  std::string text = "commands:\n";
  const auto shown = std::min(commands->size(), kMost);
  for (std::size_t i = 0; i < shown; ++i) text += CommandText(output, (*commands)[i]);
  if (shown < commands->size()) {
    text += "  and " + std::to_string(commands->size() - shown) + " more; --json shows all\n";
  }
  return text;
}

std::string CommandJson(const ChannelCommand& command) {
  JsonObject json;
  json.Text("route", command.route).Text("arguments", command.arguments).Integer("status", command.status);
  return json.Integer("bytes", command.bytes).Integer("milliseconds", command.milliseconds).text();
}

std::string ValueJson(const Json::Value& value) {
  if (value.isString()) return JsonString(value.asString());
  return value.isNull() ? "null" : value.asString();
}

void AddCommands(const CallReport& report, Document& document) {
  const auto commands = CommandsOf(report);
  if (!commands) return document.Member("commands", "null");
  document.BeginList("commands");
  for (const auto& command : *commands) document.Add(CommandJson(command));
}

}  // namespace

std::string ReportAsText(const CallReport& report, const Output& output) {
  const auto& [function, result, log, with_log] = report;
  std::string text =
      std::string(function.name) + " returned " + ReturnedText(function, result.returned) + "\n";
  for (const auto& [name, value] : result.outputs) text += name + ValueText(output, value);
  if (result.stream_status) {
    text += "the stream ended with " + DescribeResult(*result.stream_status) + "\n";
  }
  text += Milliseconds(result.milliseconds) + " ms\n" + CommandsText(output, report);
  if (with_log) text += "log:\n";
  for (const auto& line : with_log ? log.Lines() : std::vector<std::string>()) {
    text += "  " + output.Shown(line) + "\n";
  }
  return text;
}

void FillDocument(const CallReport& report, Document& document) {
  const auto& [function, result, log, with_log] = report;
  document.Member("function", JsonString(function.name));
  if (const auto* code = std::get_if<int>(&result.returned)) {
    const auto text = ResultOf(function, *code);
    document.Member("code", std::to_string(*code));
    document.Member("name", JsonString(text.name));
    document.Member("meaning", JsonString(text.meaning));
  } else if (const auto* answer = std::get_if<bool>(&result.returned)) {
    document.Member("returned", *answer ? "true" : "false");
  }
  document.BeginList("outputs");
  for (const auto& [name, value] : result.outputs) {
    document.Add(JsonObject().Text("name", name).Json("value", ValueJson(value)).text());
  }
  if (result.stream_status) document.Member("stream_status", std::to_string(*result.stream_status));
  document.Member("milliseconds", Milliseconds(result.milliseconds));
  AddCommands(report, document);
  if (with_log) document.Member("log", JsonStrings(log.Lines()));
}

}  // namespace darokleim::cli
