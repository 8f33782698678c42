#include "output.h"

#include <errno.h>
#include <unistd.h>

#include "cancel_on_signal.h"
#include "errors.h"
#include "json.h"
#include "system_error.h"

namespace darokleim {

void Output::Write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor_, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<size_t>(written));
    } else if (errno == EPIPE) {
      throw OutputClosed();
    } else if (errno != EINTR) {
      throw ToolError("cannot write to standard output: " + SystemErrorText(errno));
    } else if (IsCancelled()) {
      throw Cancelled();
    }
  }
}

void Output::WriteJson(const Json::Value& document) {
  Write(JsonText(document));
}

}  // namespace darokleim
