// UTF-8 to wide characters and back: any bytes give one character for each sequence, and the shortest form of these
// characters comes back.
#include <bitset>
#include <string>

#include "src/core/string_converter.h"
#include "tests/fuzz/fuzz.h"

namespace {

// The length of a sequence with this first byte; 0 when there is none.
std::size_t PlainLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0 || lead > 0xFD) return 0;
  std::size_t length = 2;
  for (unsigned bit = 0x20; lead & bit; bit >>= 1) ++length;
  return length;
}

// The character of a complete sequence, from its bits; a byte that does not begin one is itself, above all characters.
std::wstring PlainWide(const std::string& text) {
  constexpr unsigned long kStray = 0x80000000;
  std::wstring wide;
  for (std::size_t at = 0; at < text.size();) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t length = PlainLength(lead);
    std::string bits = std::bitset<8>(lead).to_string().substr(length < 2 ? length : length + 1);
    bool whole = length > 0 && at + length <= text.size();
    for (std::size_t i = 1; whole && i < length; ++i) {
      const std::string byte = std::bitset<8>(static_cast<unsigned char>(text[at + i])).to_string();
      whole = byte.compare(0, 2, "10") == 0;
      bits += byte.substr(2);
    }
    wide.push_back(static_cast<wchar_t>(whole ? std::bitset<32>(bits).to_ulong() : kStray | lead));
    at += whole ? length : 1;
  }
  return wide;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  const std::string text = Text(data, size);
  const std::wstring wide = StringConverter::UTF8ToWide(text);
  Require(wide == PlainWide(text));

  const std::string back = StringConverter::WideToUTF8(wide);
  Require(back.size() <= text.size());
  // A text without overlong sequences comes back unchanged.
  if (back.size() == text.size()) Require(back == text);

  StringConverter::UTF8ToAnsi(text);
  StringConverter::AnsiToUTF8(text);
  return 0;
}
