#include "src/core/argument_text.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace darokleim::sdk {
namespace {

TEST(ArgumentTextTest, MeasuredHasNoLimit) {
  const std::string path(1'000'000, 'p');
  EXPECT_EQ(Measured(" -s %s shell rm \"%s\"", "S1", path.c_str()), " -s S1 shell rm \"" + path + "\"");
}

TEST(ArgumentTextTest, MeasuredFormatsNothingButTheFormat) {
  EXPECT_EQ(Measured(" devices"), " devices");
  EXPECT_EQ(Measured("%s", ""), "");
}

TEST(ArgumentTextTest, WhatCannotBeFormattedIsRefused) {
  // A text of more than two gibibytes cannot be measured either; an invalid character is refused sooner.
  const wchar_t no_character[] = {static_cast<wchar_t>(0x7FFFFFFF), 0};
  EXPECT_THROW(Measured("%ls", no_character), std::length_error);
  EXPECT_THROW(Cut(8, "%ls", no_character), std::length_error);
}

TEST(ArgumentTextTest, CutKeepsOneByteForTheTerminatingZero) {
  EXPECT_EQ(Cut(8, "%s", "1234567"), "1234567");
  EXPECT_EQ(Cut(8, "%s", "12345678"), "1234567");
  EXPECT_EQ(Cut(8, "%s", "1234567890"), "1234567");
  EXPECT_EQ(Cut(8, "%s", "123"), "123");
}

TEST(ArgumentTextTest, BytesPassUnchanged) {
  EXPECT_EQ(Measured("%s", "\xff\xfe\x80 \"'\\"), "\xff\xfe\x80 \"'\\");
  EXPECT_EQ(Cut(4, "%s", "\xe6\xb7\xbb\xe7\x9b\x8a"), "\xe6\xb7\xbb");
}

}  // namespace
}  // namespace darokleim::sdk
