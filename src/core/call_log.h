// The enter and leave lines of an exported function, and its answer to a null argument.
#ifndef DAROKLEIM_SRC_CORE_CALL_LOG_H
#define DAROKLEIM_SRC_CORE_CALL_LOG_H

namespace darokleim::sdk {

inline constexpr char kLogModule[] = "AdbSDK";

enum LogLevel : int { kLogTrace = 0, kLogInfo = 1, kLogCommand = 2, kLogError = 3 };

// The lines of a family of functions. Each format gets the function's name; leave also gets the result code, which
// most families print and some do not. A null enter or leave writes no line.
struct LogWording {
  LogLevel level;
  const char* enter;
  const char* leave;
  LogLevel invalid_level;
  const char* invalid;
};

inline constexpr LogWording kStandardWording{kLogInfo, "%s Enter.", "%s Leave, return %d.", kLogError,
                                             "%s, invalid param."};
// Applications poll the device list, so its lines are below the default level.
inline constexpr LogWording kDeviceListWording{kLogTrace, "%s Enter.", "%s Leave ...", kLogError,
                                               "%s, invalid param."};
inline constexpr LogWording kServerWording{kLogInfo, "%s Enter ...", "%s Leave, return %d.", kLogError,
                                           "%s, invalid param."};

// Lives for one call. The leave line is written when it goes out of scope, after everything that was declared after it,
// the channel's buffer above all, has been released. A call that returns without Leave() writes no leave line: a
// refused argument never has one, and a function that omits it for another reason says so there.
class CallLog {
 public:
  explicit CallLog(const char* function, const LogWording& wording = kStandardWording);
  ~CallLog();
  CallLog(const CallLog&) = delete;
  CallLog& operator=(const CallLog&) = delete;

  const char* function() const { return function_; }
  // Both return the result code of the call.
  int InvalidParam() const;
  int Leave(int code);

 private:
  const char* function_;
  const LogWording& wording_;
  int code_ = 0;
  bool leaves_ = false;
};

template <typename... Pointers>
constexpr bool AnyNull(const Pointers*... pointers) {
  return ((pointers == nullptr) || ...);
}

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_CALL_LOG_H
