// darokleim type, key, tap, swipe
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kTypeFooter[] =
    R"(Types into the field that has the focus. Words are joined by a space. Phones can only be made to type ASCII
characters.

Examples:
  darokleim type hello world
  darokleim type -- "-5 & more"    a text that begins with a hyphen)";

constexpr char kKeyFooter[] = R"(A key is a number or a name of Android's KeyEvent, with or without KEYCODE_.

Examples:
  darokleim key HOME
  darokleim key TAB TAB ENTER
  darokleim key 26               the power key)";

constexpr char kTapFooter[] = R"(In pixels from the upper left of the screen; see `darokleim info screen`.

Examples:
  darokleim tap 540 1200)";

constexpr char kSwipeFooter[] = R"(In pixels from the upper left of the screen; see `darokleim info screen`.

Examples:
  darokleim swipe 540 1800 540 600                  scrolls down
  darokleim swipe 100 1200 900 1200 --duration 1000)";

struct TypeOptions {
  std::vector<std::string> words;
};

void DescribeType(Command& command, TypeOptions& options) {
  command.Positional("TEXT", options.words, "What to type").Required();
}

void RunType(Tool& tool, const TypeOptions& options) {
  std::string text;
  for (const auto& word : options.words) text += (&word == &options.words.front() ? "" : " ") + word;
  if (text.empty()) throw ToolError("cannot type an empty text.");
  tool.phone().type_text(text, tool.limits()).value();
}

struct KeyName {
  static constexpr ValueKind kKind = ValueKind::kText;
  static KeyName Parse(const std::string& word) {
    CheckWord(word, "_", "name or number of a key, for example HOME");
    return {word};
  }
  std::string text;
};

struct KeyOptions {
  std::vector<KeyName> keys;
};

void DescribeKey(Command& command, KeyOptions& options) {
  command.Positional("KEY", options.keys, "Keys to press, one after the other").Required();
}

void RunKey(Tool& tool, const KeyOptions& options) {
  for (const auto& key : options.keys) tool.phone().press_key(key.text, tool.limits()).value();
}

struct Points {
  int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  int duration = 300;  // milliseconds
};

void DescribeTap(Command& command, Points& points) {
  command.Positional("X", points.x1, "Pixels from the left").Required();
  command.Positional("Y", points.y1, "Pixels from the top").Required();
}

void RunTap(Tool& tool, const Points& points) {
  tool.phone().tap(points.x1, points.y1, tool.limits()).value();
}

void DescribeSwipe(Command& command, Points& points) {
  constexpr int kLongest = 60'000;
  command.Positional("X1", points.x1, "Where it begins, from the left").Required();
  command.Positional("Y1", points.y1, "And from the top").Required();
  command.Positional("X2", points.x2, "Where it ends").Required();
  command.Positional("Y2", points.y2, "And from the top").Required();
  command.Option("--duration", points.duration, "How long it takes")
      .Called("MILLISECONDS")
      .Between(1, kLongest)
      .Default(std::to_string(points.duration));
}

void RunSwipe(Tool& tool, const Points& points) {
  const std::chrono::milliseconds duration(points.duration);
  tool.phone().swipe(points.x1, points.y1, points.x2, points.y2, duration, tool.limits()).value();
}

}  // namespace

void AddTypeCommand(Command& root) {
  AddCommand<TypeOptions>(root, {"type", "Type a text on the device", kTypeFooter}, DescribeType, RunType);
}

void AddKeyCommand(Command& root) {
  AddCommand<KeyOptions>(root, {"key", "Press keys of the device", kKeyFooter}, DescribeKey, RunKey);
}

void AddTapCommand(Command& root) {
  AddCommand<Points>(root, {"tap", "Tap the screen of the device", kTapFooter}, DescribeTap, RunTap);
}

void AddSwipeCommand(Command& root) {
  AddCommand<Points>(root, {"swipe", "Swipe over the screen of the device", kSwipeFooter}, DescribeSwipe,
                     RunSwipe);
}

}  // namespace darokleim::cli
