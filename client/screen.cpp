// dk_screenshot, dk_type_text, dk_press_key, dk_tap, dk_swipe: what the phone's user sees and does.
#include <string>

#include "base/ascii.h"
#include "base/shell_quoting.h"
#include "client/shell.h"

namespace darokleim::client {
namespace {

constexpr std::string_view kPngBegin = "\x89PNG\r\n\x1a\n";

Status Screenshot(dk_device* device, dk_bytes* png, const Limits& limits) {
  constexpr std::string_view kWhat = "take a screenshot";
  auto collected = CollectScript(device, "screencap -p", kWhat, limits);
  if (!collected.ok()) return collected.TakeError();
  const std::string& picture = collected->out;
  if (picture.substr(0, kPngBegin.size()) != kPngBegin) return CommandFailed(kWhat, *collected);
  *png = NewBytes(picture);
  return {};
}

// The text is not part of any message: it may be a password.
Status Input(dk_device* device, const std::string& script, std::string_view what, const Limits& limits) {
  auto collected = CollectScript(device, script, what, limits);
  if (!collected.ok()) return collected.TakeError();
  if (collected->exit_status == 0) return {};
  return CommandFailed(what, *collected);
}

bool IsPrintableAscii(char c) {
  return c >= ' ' && c <= '~';
}

// Android's `input text` takes %s for a space. A text that holds it is typed in two pieces, parted inside it.
std::string TypeScript(std::string_view text) {
  std::string script;
  while (!text.empty()) {
    const std::size_t at = text.find("%s");
    const std::string_view piece = text.substr(0, at == std::string_view::npos ? at : at + 1);
    if (!script.empty()) script += " && ";
    script += "input text " + base::QuoteForShell(piece);
    text.remove_prefix(piece.size());
  }
  return script;
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Answer;
using client::Limits;
using client::Status;

dk_code dk_screenshot(dk_device* device, dk_bytes* png, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (png == nullptr) return client::InvalidArgument("no place for the picture");
    *png = {};
    if (device == nullptr) return client::InvalidArgument("no device");
    return client::Screenshot(device, png, limits);
  });
}

dk_code dk_type_text(dk_device* device, const char* text, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || text == nullptr) return client::InvalidArgument("a null pointer");
    const std::string_view typed = text;
    for (const char c : typed) {
      if (!client::IsPrintableAscii(c))
        return client::InvalidArgument("phones take typed text in ASCII alone");
    }
    if (typed.empty()) return {};
    return client::Input(device, client::TypeScript(typed), "type a text", limits);
  });
}

dk_code dk_press_key(dk_device* device, const char* key, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr || key == nullptr || *key == '\0') return client::InvalidArgument("no key");
    for (const char* c = key; *c != '\0'; ++c) {
      if (!base::IsAsciiLetterOrDigit(*c) && *c != '_')
        return client::InvalidArgument("not the name of a key");
    }
    return client::Input(device, std::string("input keyevent ") + key, std::string("press the key ") + key,
                         limits);
  });
}

dk_code dk_tap(dk_device* device, int x, int y, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    return client::Input(device, "input tap " + std::to_string(x) + " " + std::to_string(y), "tap the screen",
                         limits);
  });
}

dk_code dk_swipe(dk_device* device, int x1, int y1, int x2, int y2, int duration_ms, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    std::string script = "input swipe";
    for (const int number : {x1, y1, x2, y2, duration_ms}) script += " " + std::to_string(number);
    return client::Input(device, script, "swipe over the screen", limits);
  });
}
