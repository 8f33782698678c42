#include "tests/unit/support/scripted_channel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace darokleim::test {

Answer& ScriptedChannel::Expect(std::string args) {
  return answers_.emplace_back(std::move(args));
}

Answer& ScriptedChannel::Otherwise() {
  return otherwise_.emplace("");
}

Answer ScriptedChannel::NextAnswer(const std::string& args) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!answers_.empty() && answers_.front().args_ == args) {
    Answer answer = std::move(answers_.front());
    answers_.pop_front();
    return answer;
  }
  if (answers_.empty() && otherwise_) return *otherwise_;
  ADD_FAILURE() << "the SDK ran      " << args << "\nthe script wants "
                << (answers_.empty() ? "no further command" : answers_.front().args_);
  return Answer(args);
}

char* ScriptedChannel::HandOut(const Answer& answer) {
  if (!answer.output_) return nullptr;
  const std::string& output = *answer.output_;
  // Exactly the promised bytes, so that the address sanitizer notices a read past them.
  const std::size_t size = output.size() + (answer.terminated_ ? 1 : 0);
  char* buffer = std::make_unique<char[]>(std::max<std::size_t>(size, 1)).release();
  std::copy(output.begin(), output.end(), buffer);
  const std::lock_guard<std::mutex> lock(mutex_);
  handed_out_.insert(buffer);
  return buffer;
}

int ScriptedChannel::Run(const char* args, const bool* cancel, const bool* cancel_of_the_test, char** out,
                         int* out_len) {
  EXPECT_TRUE(!out || !*out) << args;
  EXPECT_TRUE(!out_len || *out_len == 0) << args;
  const Answer answer = NextAnswer(args);
  switch (answer.cancel_) {
    case Answer::Cancel::kOfTheTest:
      EXPECT_EQ(cancel, cancel_of_the_test) << "another cancel flag than the caller's:" << args;
      break;
    case Answer::Cancel::kOwnFalse:
      EXPECT_NE(cancel, cancel_of_the_test) << "the caller's cancel flag:" << args;
      EXPECT_TRUE(cancel && !*cancel) << "no flag that is false:" << args;
      break;
    case Answer::Cancel::kNull:
      EXPECT_EQ(cancel, nullptr) << args;
      break;
  }
  if (answer.action_) answer.action_();
  if (!out || !out_len) return answer.status_;
  *out = HandOut(answer);
  const int length = answer.output_ ? static_cast<int>(answer.output_->size()) : 0;
  *out_len = answer.claimed_length_.value_or(length);
  return answer.status_;
}

int ScriptedChannel::Start(const StartedStream& stream) {
  const std::lock_guard<std::mutex> lock(mutex_);
  streams_.push_back(stream);
  return stream_status_;
}

void ScriptedChannel::TakeBack(char* buffer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const bool was_out = handed_out_.erase(buffer) == 1;
  EXPECT_TRUE(was_out) << "a buffer given back that is not out";
  if (was_out) delete[] buffer;
}

void ScriptedChannel::CheckNothingIsLeft() {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (const Answer& answer : answers_) ADD_FAILURE() << "never run:" << answer.args_;
  EXPECT_EQ(handed_out_.size(), 0U) << "buffers of the channel that never went back";
  for (char* buffer : handed_out_) delete[] buffer;
  handed_out_.clear();
}

}  // namespace darokleim::test
