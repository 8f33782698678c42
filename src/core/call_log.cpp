#include "src/core/call_log.h"

#include "darokleim.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {

CallLog::CallLog(const char* function, const LogWording& wording) : function_(function), wording_(wording) {
  if (wording_.enter) LogEx(kLogModule, wording_.level, wording_.enter, function_);
}

CallLog::~CallLog() {
  if (leaves_ && wording_.leave) LogEx(kLogModule, wording_.level, wording_.leave, function_, code_);
}

int CallLog::InvalidParam() const {
  LogEx(kLogModule, wording_.invalid_level, wording_.invalid, function_);
  return ADB_RESULT_INVALID_PARAM;
}

int CallLog::Leave(int code) {
  code_ = code;
  leaves_ = true;
  return code;
}

}  // namespace darokleim::sdk
