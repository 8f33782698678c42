#include "src/core/handed_out.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <stdexcept>

#include "darokleim.h"

namespace darokleim::sdk {
namespace {

TEST(HandedOutTest, ABlockEndsInAZeroByte) {
  char* block = NewTerminatedBlock("text");
  EXPECT_STREQ(block, "text");
  AdbFreeResource(&block);
}

TEST(HandedOutTest, ABlockKeepsZeroBytes) {
  char* block = NewTerminatedBlock(std::string_view("a\0b", 3));
  EXPECT_EQ(std::memcmp(block, "a\0b\0", 4), 0);
  AdbFreeResource(&block);
}

TEST(HandedOutTest, ABlockOfBytesAlone) {
  char* block = NewBlock(std::string_view("a\0b", 3));
  EXPECT_EQ(std::memcmp(block, "a\0b", 3), 0);
  AdbFreeResource(&block);
  block = NewBlock("");
  EXPECT_NE(block, nullptr);
  AdbFreeResource(&block);
}

TEST(HandedOutTest, TheLengthIsThatOfTheText) {
  char* block = nullptr;
  int length = -1;
  HandOut(std::string_view("a\0b", 3), &block, &length);
  EXPECT_EQ(length, 3);
  EXPECT_EQ(std::memcmp(block, "a\0b\0", 4), 0);
  AdbFreeResource(&block);
}

TEST(HandedOutTest, MoreThanAnIntCountsIsALengthError) {
  char* block = nullptr;
  int length = -1;
  const char text[] = "never read";
  const std::string_view too_long(text, std::size_t{std::numeric_limits<int>::max()} + 1);
  EXPECT_THROW(HandOut(too_long, &block, &length), std::length_error);
  EXPECT_EQ(block, nullptr);
  EXPECT_EQ(length, -1);
}

TEST(HandedOutTest, FreeingSetsTheCallersPointerToNull) {
  char* block = NewTerminatedBlock("");
  AdbFreeResource(&block);
  EXPECT_EQ(block, nullptr);
  AdbFreeResource(&block);
  EXPECT_EQ(block, nullptr);
}

}  // namespace
}  // namespace darokleim::sdk
