#include "channel/output/output_buffer.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <fstream>
#include <string>

#include "channel/output/output_block.h"
#include "tests/support/own_process.h"
#include "tests/support/sanitizers.h"

namespace darokleim::channel {
namespace {

void Fill(OutputBuffer* buffer, std::string_view text) {
  while (!text.empty()) {
    const std::span<char> room = buffer->Room();
    if (room.empty()) return;
    const size_t count = text.copy(room.data(), room.size());
    buffer->Commit(count);
    text.remove_prefix(count);
  }
}

std::string Converted(std::string_view text, LineEnds line_ends) {
  OutputBuffer buffer;
  Fill(&buffer, text);
  buffer.ConvertLineEnds(line_ends);
  return std::string(buffer.text());
}

TEST(LineEnds, BecomeLf) {
  EXPECT_EQ(Converted("", LineEnds::kLf), "");
  EXPECT_EQ(Converted("a\r\nb\n\r\nc", LineEnds::kLf), "a\nb\n\nc");
  EXPECT_EQ(Converted("a\r\r\nb\r\r\r\n", LineEnds::kLf), "a\nb\n");
  EXPECT_EQ(Converted("a\rb\r", LineEnds::kLf), "a\rb\r");
}

TEST(LineEnds, BecomeCrLf) {
  EXPECT_EQ(Converted("", LineEnds::kCrLf), "");
  EXPECT_EQ(Converted("a\nb\r\n\r\r\nc", LineEnds::kCrLf), "a\r\nb\r\n\r\nc");
  EXPECT_EQ(Converted("\n\n", LineEnds::kCrLf), "\r\n\r\n");
  EXPECT_EQ(Converted("a\rb\r", LineEnds::kCrLf), "a\rb\r");
}

TEST(LineEnds, OfALongTextNeedMoreRoom) {
  const std::string text(100'000, '\n');
  EXPECT_EQ(Converted(text, LineEnds::kCrLf).size(), 200'000u);
}

TEST(LineEnds, MayNotFitAnInt) {
  OutputBuffer buffer(10);
  Fill(&buffer, "a\nb\nc\nd\n");
  buffer.ConvertLineEnds(LineEnds::kCrLf);
  EXPECT_EQ(buffer.status(), kTooMuchOutput);
  EXPECT_EQ(buffer.Release(), nullptr);
}

TEST(OutputBuffer, HandsOutWhatItHoldsAndAZeroByte) {
  for (const size_t length : {0u, 1u, 65535u, 65536u, 65537u, 5'000'000u}) {
    OutputBuffer buffer;
    const std::string text(length, 'x');
    Fill(&buffer, text);
    ASSERT_EQ(buffer.text(), text);
    char* const block = buffer.Release();
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::string_view(block, length), text);
    EXPECT_EQ(block[length], '\0');
    FreeBlock(block);
  }
}

TEST(OutputBuffer, ReusesLargeBlocksWithoutMixingThem) {
  for (const char c : {'a', 'b', 'c'}) {
    OutputBuffer one, other;
    const std::string text(9'000'000, c), more(6'000'000, 'x');
    Fill(&one, text);
    Fill(&other, more);
    EXPECT_EQ(one.text(), text);
    EXPECT_EQ(other.text(), more);
    char* const block = one.Release();
    EXPECT_EQ(std::string_view(block), text);
    FreeBlock(block);
  }
}

#if defined(__linux__)
// Of this process, in KiB.
long MemoryThatTheSystemMayTake() {
  std::ifstream rollup("/proc/self/smaps_rollup");
  for (std::string word; rollup >> word;) {
    long size = 0;
    if (word == "LazyFree:" && rollup >> size) return size;
  }
  return -1;
}

TEST(OutputBuffer, LeavesTheSystemTheMemoryOfALargeOneThatWasGivenBack) {
  OutputBuffer buffer;
  Fill(&buffer, std::string(20'000'000, 'x'));
  char* const block = buffer.Release();
  const long before = MemoryThatTheSystemMayTake();
  if (before < 0) GTEST_SKIP() << "this kernel does not report it";
  FreeBlock(block);
  EXPECT_GT(MemoryThatTheSystemMayTake() - before, 10'000);
}
#endif

#if defined(__linux__) && !defined(DAROKLEIM_THREAD_SANITIZED)  // elsewhere the unit of ru_maxrss differs
// In MiB, of this process at any time.
long LargestMemory() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024;
}

TEST(OutputBuffer, ConvertsLineBreaksInPlace) {
  test::InProcessOfItsOwn([] {
    constexpr size_t kMiB = 1024 * 1024;
    const std::string piece(kMiB, '\n');
    const long before = LargestMemory();
    OutputBuffer buffer;
    for (int i = 0; i < 64; ++i) Fill(&buffer, piece);
    buffer.ConvertLineEnds(LineEnds::kCrLf);
    EXPECT_EQ(buffer.text().size(), 128 * kMiB);
    EXPECT_LT(LargestMemory() - before, 128 + 16);
  });
}
#endif

TEST(OutputBuffer, TakesANewBlockWhereTheLastOneIsTooSmall) {
  const std::string text(5'000'000, 'x');
  for (const size_t most : {8'000'000u, 80'000'000u, 8'000'000u}) {
    OutputBuffer buffer(most);
    Fill(&buffer, text);
    EXPECT_EQ(buffer.text(), text);
    FreeBlock(buffer.Release());
  }
}

TEST(OutputBuffer, HoldsAsMuchAsItMayAndNotAByteMore) {
  OutputBuffer full(1000);
  Fill(&full, std::string(1000, 'x'));
  EXPECT_EQ(full.text().size(), 1000u);
  EXPECT_FALSE(full.Room().empty());  // a byte more has to show
  char* const block = full.Release();
  ASSERT_NE(block, nullptr);
  FreeBlock(block);

  OutputBuffer overfull(1000);
  Fill(&overfull, std::string(1001, 'x'));
  EXPECT_TRUE(overfull.Room().empty());
  EXPECT_EQ(overfull.status(), kTooMuchOutput);
  EXPECT_EQ(overfull.Release(), nullptr);
}

}  // namespace
}  // namespace darokleim::channel
