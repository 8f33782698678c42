#include "channel/command/device_commands.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace darokleim::channel {
namespace {

using Words = std::vector<Word>;
using WordIterator = Words::const_iterator;

struct KnownCommand {
  std::string_view name;
  DeviceCommand properties;
};

constexpr OperandForm kOnePath = {OperandCount::kOne, kDoubleQuotes};
constexpr OperandForm kOneJoinedPath = {OperandCount::kOne, kDoubledDoubleQuotes};

// Every other command is treated as one that is silent when it succeeds.
constexpr KnownCommand kKnownCommands[] = {
    {"am", {Answer::kText, LineEnds::kLf}},
    {"date", {Answer::kText, LineEnds::kLf}},
    {"df", {Answer::kText, LineEnds::kLf}},
    {"du", {Answer::kText, LineEnds::kLf, kOneJoinedPath}},
    {"dumpsys", {Answer::kText, LineEnds::kLf}},
    {"find", {Answer::kText, LineEnds::kLf}},
    {"getprop", {Answer::kText, LineEnds::kCrLf}},
    {"ip", {Answer::kText, LineEnds::kLf}},
    {"ls", {Answer::kText, LineEnds::kLf, kOneJoinedPath}},  // see LineEndsOfListing
    // see InstallsOrUninstalls
    {"pm", {Answer::kText, LineEnds::kLf, {OperandCount::kOne, kDoubleInSingleQuotes}}},
    {"stat", {Answer::kText, LineEnds::kCrLf, kOneJoinedPath}},

    {"chmod", {Answer::kExitStatus, LineEnds::kLf}},
    {"cp", {Answer::kExitStatus, LineEnds::kLf, {OperandCount::kTwo, kDoubleQuotes}}},
    {"input", {Answer::kExitStatus, LineEnds::kLf, kOnePath}},
    {"mkdir", {Answer::kExitStatus, LineEnds::kLf, kOneJoinedPath}},
    {"mv", {Answer::kExitStatus, LineEnds::kLf, {OperandCount::kTwo, kSingleInDoubleQuotes}}},
    {"rm", {Answer::kExitStatus, LineEnds::kLf, kOnePath}},
    {"screencap", {Answer::kExitStatus, LineEnds::kLf, kOnePath}},
};

bool IsOption(const Word& word) {
  return word.text.size() > 1 && word.text.front() == '-';
}

// Options of adb's shell itself: terminal or not, escape character, no standard input.
WordIterator SkipShellOptions(WordIterator word, WordIterator end) {
  while (word != end && !word->quoted && IsOption(*word)) {
    const bool takes_value = word->text == "-e";
    ++word;
    if (takes_value && word != end) ++word;
  }
  return word;
}

bool EndsCommand(const Word& word) {
  return !word.quoted && !word.text.empty() &&
         std::string_view("|&;<>").find(word.text[0]) != std::string_view::npos;
}

// The volume searches read the long listing of /storage, which they never quote. Every other long listing, also of a
// quoted /storage, is read by the parser that accepts only CR LF.
LineEnds LineEndsOfListing(WordIterator word, WordIterator end) {
  end = std::find_if(word, end, EndsCommand);
  const auto is_long = [](const Word& w) { return IsOption(w) && w.text.find('l') != std::string::npos; };
  const auto is_volume_list = [](const Word& w) { return !w.quoted && w.text == "/storage"; };
  if (std::none_of(word, end, is_long)) return LineEnds::kLf;
  return std::any_of(word, end, is_volume_list) ? LineEnds::kLf : LineEnds::kCrLf;
}

// The package manager may crash or be killed. Of its other commands (`pm path`, `pm list`) an exit status of 1 says that
// there is nothing to print.
bool InstallsOrUninstalls(WordIterator word, WordIterator end) {
  return word != end && (word->text == "install" || word->text == "uninstall");
}

}  // namespace

DeviceCommand FindDeviceCommand(const Words& words) {
  const WordIterator name = SkipShellOptions(words.begin(), words.end());
  if (name == words.end()) return {};
  for (const KnownCommand& known : kKnownCommands) {
    if (known.name != name->text) continue;
    DeviceCommand command = known.properties;
    if (known.name == "ls") command.line_ends = LineEndsOfListing(name + 1, words.end());
    if (known.name == "pm" && InstallsOrUninstalls(name + 1, words.end()))
      command.answer = Answer::kStatedFailure;
    return command;
  }
  return {};
}

}  // namespace darokleim::channel
