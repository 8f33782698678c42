#include "src/core/adb_run.h"

#include "src/core/classifier.h"
#include "src/platform/command_channel.h"

namespace darokleim::sdk {

ChannelBuffer::~ChannelBuffer() {
  if (buffer_) ReleaseAdbOutBuffer(buffer_);
}

AdbRun::AdbRun(const std::string& args, const bool* cancel)
    : status_(ExecuteAdbCommandSynchronization(args.c_str(), cancel, buffer_.out(), buffer_.out_len())) {}

int AdbRun::Classify() const {
  return has_output() ? darokleim::sdk::Classify(output(), status_) : status_;
}

}  // namespace darokleim::sdk
