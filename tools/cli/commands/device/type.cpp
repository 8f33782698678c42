// darokleim type
#include <darokleim.h>

#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/device/typed_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] =
    R"(Types into the field that has the focus. Words are joined by a space. Phones can only be made to type
ASCII characters.

Examples:
  darokleim type hello world
  darokleim type -- "-5 & more"    a text that begins with a hyphen)";

struct Options {
  std::vector<std::string> words;
};

void Describe(Command& command, Options& options) {
  command.Positional("TEXT", options.words, "What to type").Required();
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words) text += (&word == &words.front() ? "" : " ") + word;
  return text;
}

void Run(Tool& tool, const Options& options) {
  const auto pieces = PiecesToType(Joined(options.words));
  const auto& device = tool.device();
  for (const auto& piece : pieces) {
    device.Check(AdbInputStringToDevice(device.serial(), piece.c_str(), device.cancel()), "type the text");
  }
}

}  // namespace

void AddTypeCommand(Command& root) {
  AddCommand<Options>(root, {"type", "Type a text on the device", kFooter}, Describe, Run);
}

}  // namespace darokleim::cli
