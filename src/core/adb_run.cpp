#include "core/adb_run.h"

#include <stdexcept>

#include "core/classifier.h"
#include "platform/command_channel.h"

namespace darokleim {

AdbRun::AdbRun(const std::string& args, const bool* cancel)
    : status_(ExecuteAdbCommandSynchronization(args.c_str(), cancel, &buffer_, &length_)) {
  if (buffer_ && length_ < 0) {
    ReleaseAdbOutBuffer(buffer_);
    throw std::length_error("channel output");
  }
}

AdbRun::~AdbRun() {
  if (buffer_) ReleaseAdbOutBuffer(buffer_);
}

std::string_view AdbRun::output() const {
  return buffer_ ? std::string_view(buffer_, static_cast<std::size_t>(length_)) : std::string_view();
}

std::string_view AdbRun::output_as_c_text() const {
  const std::string_view text = output();
  return text.substr(0, text.find('\0'));
}

int AdbRun::Classify() const {
  return has_output() ? darokleim::Classify(output(), status_) : status_;
}

}  // namespace darokleim
