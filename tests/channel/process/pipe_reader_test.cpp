#include "channel/process/pipe_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace darokleim::channel {
namespace {

class Sink final : public OutputSink {
 public:
  std::span<char> Room() override { return room_; }
  void Commit(size_t count) override { text_.append(room_, count); }

  const std::string& text() const { return text_; }

 private:
  char room_[16];
  std::string text_;
};

class PipeReaderTest : public testing::Test {
 protected:
  PipeReaderTest() {
    int ends[2];
    if (pipe(ends) != 0) ADD_FAILURE() << "no pipe";
    read_end_.Reset(ends[0]);
    write_end_.Reset(ends[1]);
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
  }

  void Print(const std::string& text) const {
    EXPECT_EQ(write(write_end_.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  base::UniqueFd read_end_, write_end_;
  Sink sink_;
};

TEST_F(PipeReaderTest, ReadsWhatIsThere) {
  PipeReader reader(read_end_.get(), &sink_);
  EXPECT_EQ(reader.Read(), ReadResult::kNothingYet);
  Print("text");
  EXPECT_EQ(reader.Read(), ReadResult::kSome);
  EXPECT_EQ(reader.Read(), ReadResult::kNothingYet);
  EXPECT_EQ(sink_.text(), "text");
  write_end_.Reset();
  EXPECT_EQ(reader.Read(), ReadResult::kEnd);
}

TEST_F(PipeReaderTest, DrainsMoreThanFitsAtOnceAndWaitsForNoEnd) {
  PipeReader reader(read_end_.get(), &sink_);
  EXPECT_EQ(reader.Drain(), ReadResult::kEnd);
  const std::string text(40, 'x');
  Print(text);
  EXPECT_EQ(reader.Drain(), ReadResult::kEnd);
  EXPECT_EQ(sink_.text(), text);
}

TEST_F(PipeReaderTest, WhatCannotBeReadHasEnded) {
  PipeReader reader(write_end_.get(), &sink_);
  EXPECT_EQ(reader.Read(), ReadResult::kEnd);
  PipeReader of_no_pipe(-1, &sink_);
  EXPECT_EQ(of_no_pipe.Drain(), ReadResult::kEnd);
}

}  // namespace
}  // namespace darokleim::channel
