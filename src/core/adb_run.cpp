#include "core/adb_run.h"

#include "core/classifier.h"
#include "platform/command_channel.h"

namespace darokleim {

AdbRun::AdbRun(const std::string& args, const bool* cancel)
    : status_(ExecuteAdbCommandSynchronization(args.c_str(), cancel, buffer_.out(), buffer_.out_len())) {}

int AdbRun::Classify() const {
  return has_output() ? darokleim::Classify(output(), status_) : status_;
}

}  // namespace darokleim
