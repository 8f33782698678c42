#include "tools/cli/commands/device/typed_text.h"

#include <gmock/gmock.h>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

using testing::ElementsAre;

TEST(PiecesToType, WritesBlanksAsInputReadsThem) {
  EXPECT_THAT(PiecesToType("a b  c"), ElementsAre("a%sb%s%sc"));
}

TEST(PiecesToType, PartsWhatInputWouldReadAsABlank) {
  EXPECT_THAT(PiecesToType("100%sure"), ElementsAre("100%", "sure"));
  EXPECT_THAT(PiecesToType("%s%s"), ElementsAre("%", "s%", "s"));
  EXPECT_THAT(PiecesToType("% s"), ElementsAre("%%ss"));
}

TEST(PiecesToType, PartsATextInQuotesOfItsOwn) {
  EXPECT_THAT(PiecesToType("\"hi\""), ElementsAre("\"", "hi\""));
  EXPECT_THAT(PiecesToType("'hi'"), ElementsAre("'", "hi'"));
  EXPECT_THAT(PiecesToType("\"hi'"), ElementsAre("\"hi'"));
  EXPECT_THAT(PiecesToType("'"), ElementsAre("'"));
  EXPECT_THAT(PiecesToType("'%'s"), ElementsAre("'%'s"));
  EXPECT_THAT(PiecesToType("''%s"), ElementsAre("''%", "s"));
}

TEST(PiecesToType, RefusesWhatInputCannotType) {
  EXPECT_THROW(PiecesToType(""), ToolError);
  EXPECT_THROW(PiecesToType("a\tb"), ToolError);
  EXPECT_THROW(PiecesToType("\x7f"), ToolError);
  EXPECT_THROW(PiecesToType("\xc3\xa4"), ToolError);
}

}  // namespace
}  // namespace darokleim::cli
