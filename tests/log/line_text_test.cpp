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

TEST(FormatText, IsWholeUpTo64KiB) {
  for (const size_t length : {0u, 1u, 510u, 511u, 512u, 513u, 4096u, 64u * 1024 - 1}) {
    const std::string text(length, 'x');
    EXPECT_EQ(Format("%s", text.c_str()), text) << length;
    EXPECT_EQ(Format("%s!", text.c_str()), text + "!") << length;
  }
}

TEST(FormatText, SaysHowMuchOfALongerTextIsCut) {
  const std::string text(kLongestText, 'x');
  EXPECT_EQ(Format("%s!", text.c_str()), text + " [cut: the first 65536 of 65537 bytes]");
  EXPECT_EQ(Format("%s", std::string(3'000'000, 'x').c_str()),
            text + " [cut: the first 65536 of 3000000 bytes]");
}

TEST(FormatText, IsNotCutInsideACharacter) {
  const std::string before(kLongestText - 2, 'x');
  EXPECT_EQ(Format("%s", (before + "\xe4\xbd\xa0!").c_str()),
            before + " [cut: the first 65534 of 65538 bytes]");
  EXPECT_EQ(Format("%s", (before + "a\xe4\xbd\xa0").c_str()),
            before + "a [cut: the first 65535 of 65538 bytes]");
  EXPECT_EQ(Format("%s", (before + "\xff\xfe\xff").c_str()),
            before + "\xff\xfe [cut: the first 65536 of 65537 bytes]");
}

TEST(FormatText, GivesTheFormatWhenAnArgumentCannotBeConverted) {
  // The "C" locale has no multibyte text for this character.
  EXPECT_EQ(Format("wide %ls", L"\x4f60"), "wide %ls");
}

TEST(OnOneLine, ShowsLineBreaksAndControlBytes) {
  EXPECT_EQ(OnOneLine("List of devices\nABC\tdevice\r\n"), "List of devices\\nABC\tdevice\\r\\n");
  EXPECT_EQ(OnOneLine(std::string("a\0b\x1b[31m\x7f", 9)), "a\\x00b\\x1b[31m\\x7f");
}

TEST(OnOneLine, ShowsC1ControlsInUtf8) {
  EXPECT_EQ(OnOneLine("a\xc2\x80\xc2\x9b[31m\xc2\x9f"), R"(a\xc2\x80\xc2\x9b[31m\xc2\x9f)");
}

TEST(OnOneLine, ShowsBytesThatATerminalMayTakeForC1Controls) {
  EXPECT_EQ(OnOneLine("a\x9b[31m"), R"(a\x9b[31m)");
  EXPECT_EQ(OnOneLine("\xe4\xbd"), "\xe4\xbd") << "only bytes up to 0x9f";
  EXPECT_EQ(OnOneLine("\xe4\x9b"), "\xe4\\x9b") << "an incomplete character";
  EXPECT_EQ(OnOneLine("\xc1\x9b\xe0\x80\x9b\xed\xa0\x80\xf4\x90\x80\x80"),
            "\xc1\\x9b\xe0\\x80\\x9b\xed\xa0\\x80\xf4\\x90\\x80\\x80")
      << "longer than necessary, a surrogate, beyond the last character";
}

TEST(OnOneLine, KeepsCharactersWhoseBytesAreLikeC1Controls) {
  for (const char* text :
       {"\xc3\x9f", "\xe4\xbd\xa0\xe5\x9b\x9b", "\xf0\x9f\x98\x80", "\xc2\xa0", "\xed\x9f\xbf"})
    EXPECT_EQ(OnOneLine(text), text);
}

TEST(OnOneLine, KeepsEveryOtherByte) {
  std::string text;
  for (int byte = 0x20; byte < 0x100; ++byte) {
    if (byte < 0x7f || byte > 0x9f) text += static_cast<char>(byte);
  }
  EXPECT_EQ(OnOneLine(text), text);
  EXPECT_EQ(OnOneLine(""), "");
}

}  // namespace
}  // namespace darokleim::log
