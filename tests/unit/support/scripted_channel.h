// A command channel with the answers that a test has prepared.
#ifndef DAROKLEIM_TESTS_UNIT_SUPPORT_SCRIPTED_CHANNEL_H
#define DAROKLEIM_TESTS_UNIT_SUPPORT_SCRIPTED_CHANNEL_H

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::test {

// What the channel does when the SDK runs one command. By default: no buffer, status 0, and the command must have the
// test's own cancel flag.
class Answer {
 public:
  explicit Answer(std::string args) : args_(std::move(args)) {}

  // Hands out a buffer with these bytes; an empty text is a buffer of length 0. A zero byte follows them.
  Answer& Prints(std::string_view output) { return output_ = std::string(output), *this; }
  // Leaves out the zero byte, for functions that must use the length alone.
  Answer& Unterminated() { return terminated_ = false, *this; }
  // Reports another length than that of the bytes, also without any bytes.
  Answer& Claims(int length) { return claimed_length_ = length, *this; }
  // The channel's status.
  Answer& Returns(int status) { return status_ = status, *this; }
  // The command comes with a flag of the SDK's own that is false.
  Answer& Uncancellable() { return cancel_ = Cancel::kOwnFalse, *this; }
  // The command comes with no flag at all.
  Answer& WithoutCancelFlag() { return cancel_ = Cancel::kNull, *this; }
  // Happens while the command runs.
  Answer& Meanwhile(std::function<void()> action) { return action_ = std::move(action), *this; }

 private:
  friend class ScriptedChannel;
  enum class Cancel { kOfTheTest, kOwnFalse, kNull };

  std::string args_;
  std::optional<std::string> output_;
  bool terminated_ = true;
  std::optional<int> claimed_length_;
  int status_ = 0;
  Cancel cancel_ = Cancel::kOfTheTest;
  std::function<void()> action_;
};

// A stream that the SDK started, with its parameters as the channel got them.
struct StartedStream {
  const char* args;
  const bool* cancel;
  void* context;
  void* on_output;
};

// Gives its answers in the order in which they were prepared. The test fails for a command that is not the next one, an
// answer that is left over, and a buffer that is never released or released twice.
class ScriptedChannel {
 public:
  // The next command is exactly this argument text.
  Answer& Expect(std::string args);
  // From here on, every command after the script gets this answer.
  Answer& Otherwise();

  const std::vector<StartedStream>& streams() const { return streams_; }
  void SetStreamStatus(int status) { stream_status_ = status; }

  // The channel's side; for the six symbols.
  int Run(const char* args, const bool* cancel, const bool* cancel_of_the_test, char** out, int* out_len);
  int Start(const StartedStream& stream);
  void TakeBack(char* buffer);
  void CheckNothingIsLeft();

 private:
  Answer NextAnswer(const std::string& args);
  char* HandOut(const Answer& answer);

  std::mutex mutex_;
  std::deque<Answer> answers_;
  std::optional<Answer> otherwise_;
  std::set<char*> handed_out_;
  std::vector<StartedStream> streams_;
  int stream_status_ = 0;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_UNIT_SUPPORT_SCRIPTED_CHANNEL_H
