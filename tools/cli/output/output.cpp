#include "tools/cli/output/output.h"

#include <errno.h>
#include <json/value.h>
#include <stdlib.h>
#include <unistd.h>

#include <utility>

#include "base/terminal_text.h"
#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

bool ColoursAreWanted() {
  const char* no_color = getenv("NO_COLOR");
  const char* terminal = getenv("TERM");
  return (no_color == nullptr || *no_color == '\0') && terminal != nullptr &&
         std::string_view(terminal) != "dumb";
}

const char* SequenceFor(Colour colour) {
  switch (colour) {
    case Colour::kFolder:
      return "\x1b[1;34m";
    case Colour::kFaint:
      return "\x1b[2m";
    case Colour::kGood:
      return "\x1b[32m";
    case Colour::kBad:
      return "\x1b[31m";
  }
  return "";
}

constexpr char kEndOfColour[] = "\x1b[0m";

}  // namespace

Output::Output(int descriptor)
    : descriptor_(descriptor),
      is_terminal_(isatty(descriptor) == 1),
      has_colours_(is_terminal_ && ColoursAreWanted()) {}

std::string Output::Shown(std::string_view text) const {
  return is_terminal_ ? base::EscapeControls(text) : std::string(text);
}

std::string Output::Painted(Colour colour, std::string_view text) const {
  if (!has_colours_) return std::string(text);
  return SequenceFor(colour) + std::string(text) + kEndOfColour;
}

void Output::Write(std::string_view text) {
  Append(text);
  Flush();
}

void Output::Append(std::string_view text) {
  constexpr std::size_t kMany = 64 * 1024;
  collected_.append(text);
  if (is_terminal_ || collected_.size() >= kMany) Flush();
}

void Output::Flush() {
  // What cannot be written is not tried again.
  HandOver(std::exchange(collected_, {}));
}

void Output::HandOver(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor_, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<size_t>(written));
    } else if (errno == EPIPE) {
      throw OutputClosed();
    } else if (errno != EINTR) {
      throw ToolError("cannot write to standard output: " + SystemErrorText(errno));
    } else if (HasTimedOut()) {
      throw ToolError("cannot write to standard output within the limit of --timeout.");
    } else if (IsCancelled()) {
      throw Cancelled();
    }
  }
}

}  // namespace darokleim::cli
