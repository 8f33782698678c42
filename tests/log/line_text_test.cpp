#include "log/line_text.h"

#include <gtest/gtest.h>

#include <string>

namespace darokleim::log {
namespace {

std::string Format(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = FormatText(format, arguments);
  va_end(arguments);
  return text;
}

const char* NullText() {
  return nullptr;
}

TEST(FormatText, TakesPrintfDirectives) {
  EXPECT_EQ(Format("%s Leave, return %d.", "AdbReboot", 24), "AdbReboot Leave, return 24.");
  EXPECT_EQ(Format("%5.1f|%-4d|%04x|%%|%c|%lld", 2.25, 7, 255, 'z', 1LL << 40),
            "  2.2|7   |00ff|%|z|1099511627776");
  EXPECT_EQ(Format("%.*s", 3, "abcdef"), "abc");
}

TEST(FormatText, WritesANullTextAsNull) {
  EXPECT_EQ(Format("%s", NullText()), "(null)");
  EXPECT_EQ(Format("%s, serial %s.", "AdbReboot", NullText()), "AdbReboot, serial (null).");
}

TEST(FormatText, KeepsEveryLength) {
  for (const size_t length : {0u, 1u, 510u, 511u, 512u, 513u, 4096u, 1u << 20}) {
    const std::string text(length, 'x');
    EXPECT_EQ(Format("%s", text.c_str()), text) << length;
    EXPECT_EQ(Format("%s!", text.c_str()), text + "!") << length;
  }
}

TEST(FormatText, GivesTheFormatWhenAnArgumentCannotBeConverted) {
  // The "C" locale has no multibyte text for this character.
  EXPECT_EQ(Format("wide %ls", L"\x4f60"), "wide %ls");
}

TEST(OnOneLine, ShowsLineBreaksAndControlBytes) {
  EXPECT_EQ(OnOneLine("List of devices\nABC\tdevice\r\n"), "List of devices\\nABC\tdevice\\r\\n");
  EXPECT_EQ(OnOneLine(std::string("a\0b\x1b[31m\x7f", 9)), "a\\x00b\\x1b[31m\\x7f");
}

TEST(OnOneLine, KeepsEveryOtherByte) {
  std::string text;
  for (int byte = 0x20; byte < 0x100; ++byte) {
    if (byte != 0x7f) text += static_cast<char>(byte);
  }
  EXPECT_EQ(OnOneLine(text), text);
  EXPECT_EQ(OnOneLine(""), "");
}

}  // namespace
}  // namespace darokleim::log
