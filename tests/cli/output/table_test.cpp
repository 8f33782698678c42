#include "tools/cli/output/table.h"

#include <gtest/gtest.h>

namespace darokleim::cli {
namespace {

TEST(Table, AlignsColumnsByTheWidestCell) {
  Table table;
  table.AddRow({"SERIAL", "STATE"});
  table.AddRow({"0123456789ABCDEF", "device"});
  table.AddRow({"F", "offline", "Plug it in."});
  EXPECT_EQ(table.Text(),
            "SERIAL            STATE\n"
            "0123456789ABCDEF  device\n"
            "F                 offline  Plug it in.\n");
}

TEST(Table, LeavesNoBlanksAtTheEndOfALine) {
  Table table;
  table.AddRow({"wide cell", "", "x"});
  table.AddRow({"a", "", ""});
  EXPECT_EQ(table.Text(), "wide cell    x\na\n");
}

TEST(Table, CountsCharactersNotBytes) {
  Table table;
  table.AddRow({"f\xc3\xbcr", "1"});
  table.AddRow({"abcd", "2"});
  EXPECT_EQ(table.Text(), "f\xc3\xbcr   1\nabcd  2\n");
}

TEST(Table, CountsNoPlacesForColours) {
  Table table;
  table.AddRow({"\x1b[1;34mab\x1b[0m", "1"});
  table.AddRow({"abcd", "2"});
  EXPECT_EQ(table.Text(), "\x1b[1;34mab\x1b[0m    1\nabcd  2\n");
}

TEST(Table, OfNothingIsEmpty) {
  EXPECT_EQ(Table().Text(), "");
}

}  // namespace
}  // namespace darokleim::cli
