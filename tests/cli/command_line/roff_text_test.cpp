#include "tools/cli/command_line/roff_text.h"

#include <gtest/gtest.h>

namespace darokleim::cli {
namespace {

TEST(RoffLine, EscapesWhatFormattersObey) {
  EXPECT_EQ(RoffLine("a\\b"), "a\\eb");
  EXPECT_EQ(RoffLine(".PP"), "\\&.PP");
  EXPECT_EQ(RoffLine("'it"), "\\(aqit");
  EXPECT_EQ(RoffLine("--json ~ ^ `x`"), "\\-\\-json \\(ti \\(ha \\(gax\\(ga");
}

TEST(RoffLine, NamesCharactersBeyondAscii) {
  EXPECT_EQ(RoffLine("\xe2\x80\xa6"), "\\[u2026]");
  EXPECT_EQ(RoffLine("\xc3\xbc"), "\\[u00FC]");
  EXPECT_EQ(RoffLine("\xf0\x9f\x98\x80"), "\\[u1F600]");
}

TEST(RoffText, KeepsWhatIsLaidOut) {
  EXPECT_EQ(RoffText("Some text.\nMore.\n\nExamples:\n  a   b\n  c"),
            "Some text.\nMore.\n.PP\nExamples:\n.PP\n.EX\n  a   b\n  c\n.EE\n");
  EXPECT_EQ(RoffText("  a\n\nThen."), ".PP\n.EX\n  a\n.EE\n.PP\nThen.\n");
  EXPECT_EQ(RoffText(""), "");
}

}  // namespace
}  // namespace darokleim::cli
