#include "tools/cli/commands/device/log_lines.h"

#include <json/value.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "tools/cli/output/json.h"

namespace darokleim::cli {
namespace {

constexpr std::string_view kPriorities = "VDIWEFS";
constexpr std::size_t kLongestLine = 1 << 20;  // bytes; devices cut lines at 4 KiB
constexpr std::size_t kLongestNumber = 9;      // digits of a process id, so that it fits an int

// Takes the next word off the front; empty at the end.
std::string_view TakeWord(std::string_view* text) {
  text->remove_prefix(std::min(text->find_first_not_of(' '), text->size()));
  const auto word = text->substr(0, text->find(' '));
  text->remove_prefix(word.size());
  return word;
}

std::optional<int> Number(std::string_view word) {
  const bool fits = !word.empty() && word.size() <= kLongestNumber &&
                    word.find_first_not_of("0123456789") == std::string_view::npos;
  if (!fits) return std::nullopt;
  return std::stoi(std::string(word));
}

std::string_view Trimmed(std::string_view text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

struct LogLine {
  std::string_view date;
  std::string_view time;
  int process = 0;
  int thread = 0;
  char priority = 'V';
  std::string_view tag;
  std::string_view message;
};

std::optional<LogLine> Parse(std::string_view text) {
  LogLine line;
  line.date = TakeWord(&text);
  line.time = TakeWord(&text);
  const auto process = Number(TakeWord(&text));
  const auto thread = Number(TakeWord(&text));
  const auto priority = TakeWord(&text);
  const auto colon = text.find(": ");
  const bool is_whole = process && thread && priority.size() == 1 &&
                        kPriorities.find(priority.front()) != std::string_view::npos &&
                        (colon != std::string_view::npos || (!text.empty() && text.back() == ':'));
  if (!is_whole) return std::nullopt;
  line.process = *process;
  line.thread = *thread;
  line.priority = priority.front();
  text.remove_prefix(1);
  line.tag = Trimmed(text.substr(0, colon == std::string_view::npos ? text.size() - 1 : colon - 1));
  if (colon != std::string_view::npos) line.message = text.substr(colon + 1);
  return line;
}

// Information and warnings are not coloured.
std::string Painted(const Output& output, char priority, const std::string& line) {
  if (priority == 'E' || priority == 'F') return output.Painted(Colour::kBad, line);
  if (priority == 'V' || priority == 'D') return output.Painted(Colour::kFaint, line);
  return line;
}

}  // namespace

Json::Value ParseLogLine(std::string_view text) {
  Json::Value document(Json::objectValue);
  const auto line = Parse(text);
  if (!line) {
    document["line"] = std::string(text);
    return document;
  }
  document["time"] = std::string(line->date) + " " + std::string(line->time);
  document["pid"] = line->process;
  document["tid"] = line->thread;
  document["priority"] = std::string(1, line->priority);
  document["tag"] = std::string(line->tag);
  document["message"] = std::string(line->message);
  return document;
}

std::string LogLines::Printed(std::string_view line) const {
  if (as_json_) return JsonLine(ParseLogLine(line));
  const auto parsed = Parse(line);
  return Painted(output_, parsed ? parsed->priority : 'V', output_.Shown(line));
}

void LogLines::Add(std::string_view piece) {
  rest_ += piece;
  std::string text;
  std::size_t start = 0;
  for (std::size_t end; (end = rest_.find('\n', start)) != std::string::npos; start = end + 1) {
    std::string_view line(rest_.data() + start, end - start);
    line = line.substr(0, line.find_last_not_of('\r') + 1);
    text += Printed(line) + "\n";
  }
  rest_.erase(0, start);
  if (rest_.size() > kLongestLine) {
    text += Printed(rest_) + "\n";
    rest_.clear();
  }
  output_.Write(text);
}

void LogLines::Finish() {
  if (!rest_.empty()) Add("\n");
}

}  // namespace darokleim::cli
