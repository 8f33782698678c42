#include "tools/cli/commands/sdk/call.h"

#include <darokleim.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>

#include "src/platform/command_channel.h"
#include "tools/cli/cancel_on_signal.h"

namespace darokleim::cli {
namespace {

using Kind = ParameterKind;

// The library does not look at it, but it must not be null.
char log_context[] = "darokleim";

// The context and the cancel flag of a stream, from its start to its last call, which is made on another thread.
class StreamReceiver {
 public:
  explicit StreamReceiver(const std::function<void(std::string_view)>& on_piece) : on_piece_(on_piece) {}

  const bool* flag() const { return &stop_; }
  const std::string& text() const { return text_; }

  static void OnOutput(void* context, const char* data, int length) {
    auto* receiver = static_cast<StreamReceiver*>(context);
    if (data == nullptr) {
      receiver->End(length);
    } else {
      receiver->Take({data, static_cast<std::size_t>(length)});
    }
  }

  // Until the stream ends, if need be because the tool was cancelled. Returns its status.
  int Wait() {
    constexpr auto kLookForCancel = std::chrono::milliseconds(20);
    std::unique_lock lock(mutex_);
    while (!ended_.wait_for(lock, kLookForCancel, [this] { return status_.has_value(); })) {
      if (IsCancelled()) Stop();
    }
    if (failure_) std::rethrow_exception(failure_);
    return *status_;
  }

 private:
  void Take(std::string_view piece) {
    if (failure_) return;
    try {
      if (on_piece_) {
        on_piece_(piece);
      } else {
        text_.append(piece);
      }
    } catch (...) {
      failure_ = std::current_exception();
      Stop();
    }
  }

  void End(int status) {
    const std::lock_guard lock(mutex_);
    status_ = status;
    ended_.notify_all();
  }

  void Stop() { __atomic_store_n(&stop_, true, __ATOMIC_RELAXED); }

  const std::function<void(std::string_view)>& on_piece_;
  bool stop_ = false;
  std::string text_;
  std::exception_ptr failure_;  // of on_piece_; read after the last call
  std::mutex mutex_;
  std::condition_variable ended_;
  std::optional<int> status_;
};

bool Has(const SdkFunction& function, Kind kind) {
  const auto& all = function.parameters;
  return std::any_of(all.begin(), all.end(),
                     [kind](const Parameter& parameter) { return parameter.kind == kind; });
}

class Call {
 public:
  Call(const SdkFunction& function, std::vector<Value> values, const CallSettings& settings)
      : function_(function),
        values_(std::move(values)),
        receiver_(settings.on_piece),
        is_stream_(Has(function, Kind::kOnOutput)),
        shows_pieces_(settings.on_piece != nullptr) {
    for (std::size_t i = 0; i < values_.size(); ++i) {
      Prepare(function_.parameters[i].kind, settings, &values_[i]);
    }
  }

  ~Call() {
    for (std::size_t i = 0; i < values_.size(); ++i) {
      const Kind kind = function_.parameters[i].kind;
      if (kind == Kind::kChannelBlock) ReleaseAdbOutBuffer(values_[i].block);
      if (kind == Kind::kBlock) AdbFreeResource(&values_[i].block);
    }
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  CallResult Run() {
    using Milliseconds = std::chrono::duration<double, std::milli>;
    CallResult result;
    const auto start = std::chrono::steady_clock::now();
    result.returned = Has(function_, Kind::kCancel) ? function_.call(values_) : RunWithoutFlag();
    result.milliseconds = Milliseconds(std::chrono::steady_clock::now() - start).count();
    if (is_stream_ && result.returned == Returned(0)) result.stream_status = receiver_.Wait();
    result.succeeded = Succeeded(result.returned);
    for (std::size_t i = 0; i < values_.size(); ++i) {
      const Parameter& parameter = function_.parameters[i];
      const bool was_shown = parameter.kind == Kind::kOnOutput && shows_pieces_;
      if (IsOutput(parameter.kind) && !was_shown) result.outputs.emplace_back(parameter.name, OutputOf(i));
    }
    return result;
  }

 private:
  void Prepare(Kind kind, const CallSettings& settings, Value* value) {
    switch (kind) {
      case Kind::kSerial:
        value->text = settings.serial;
        return;
      case Kind::kBufferSize:
        value->number = settings.buffer_size;
        return;
      case Kind::kBuffer:
        value->buffer.assign(static_cast<std::size_t>(std::max(settings.buffer_size, kUncheckedBufferSize)),
                             '\0');
        return;
      case Kind::kNumber:
        value->number = -1;
        return;
      case Kind::kLogContext:
        value->pointer = log_context;
        return;
      case Kind::kCancel:
        value->flag = is_stream_ ? receiver_.flag() : CancelFlag();
        return;
      case Kind::kOnOutput:
        value->pointer = reinterpret_cast<void*>(&StreamReceiver::OnOutput);
        return;
      case Kind::kOnOutputContext:
        value->pointer = &receiver_;
        return;
      case Kind::kFreedBlock: {
        int length = 0;
        AdbGetDevicesEx(&value->block, &length, CancelFlag());
        return;
      }
      default:
        return;
    }
  }

  Returned RunWithoutFlag() {
    const EndAdbOnCancel guard;
    return function_.call(values_);
  }

  bool Succeeded(const Returned& returned) const {
    if (const auto* code = std::get_if<int>(&returned))
      return *code == ADB_RESULT_OK || *code == function_.other_success;
    const auto* answer = std::get_if<bool>(&returned);
    return answer == nullptr || *answer;
  }

  // Some functions count the zero byte at the end of a block, and some blocks do not have one.
  Json::Value TextOfBlock(std::size_t index) const {
    const Value& block = values_[index];
    if (block.block == nullptr) return {};
    const auto length = static_cast<std::size_t>(values_[index + 1].number);
    const std::string_view text(block.block, length);
    return std::string(text.substr(0, text.find_last_not_of('\0') + 1));
  }

  Json::Value OutputOf(std::size_t index) const {
    const Value& value = values_[index];
    switch (function_.parameters[index].kind) {
      case Kind::kBuffer:
        return std::string(value.buffer.data());
      case Kind::kBlock:
      case Kind::kChannelBlock:
        return TextOfBlock(index);
      case Kind::kFreedBlock:
        return value.block == nullptr ? Json::Value() : Json::Value("not null");
      case Kind::kLength:
      case Kind::kNumber:
        return value.number;
      case Kind::kLongNumber:
        return Json::Int64(value.long_number);
      case Kind::kLargeNumber:
        return Json::UInt64(value.large_number);
      case Kind::kAnswer:
        return value.answer;
      case Kind::kEditedText:
        return value.text;
      case Kind::kOnOutput:
        return receiver_.text();
      default:
        return {};
    }
  }

  const SdkFunction& function_;
  std::vector<Value> values_;
  StreamReceiver receiver_;
  const bool is_stream_;
  const bool shows_pieces_;
};

}  // namespace

CallResult CallFunction(const SdkFunction& function, std::vector<Value> values,
                        const CallSettings& settings) {
  return Call(function, std::move(values), settings).Run();
}

}  // namespace darokleim::cli
