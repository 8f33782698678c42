#include "src/core/string_converter.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

static_assert(sizeof(wchar_t) == 4, "one wide character holds any UTF-8 sequence");

constexpr std::uint32_t kStrayByte = 0x80000000U;

// The forms of a UTF-8 sequence by length: the leading bits of its first byte, and the smallest value that needs it.
struct Form {
  unsigned char lead;
  unsigned char lead_mask;
  std::uint32_t least;
};
constexpr Form kForms[] = {{0x00, 0x80, 0x0},     {0xC0, 0xE0, 0x80},     {0xE0, 0xF0, 0x800},
                           {0xF0, 0xF8, 0x10000}, {0xF8, 0xFC, 0x200000}, {0xFC, 0xFE, 0x4000000}};
constexpr std::size_t kLongest = std::size(kForms);
constexpr unsigned kBitsPerByte = 6;

// The length and value of the sequence that text begins with; length 0 when it does not begin with one.
struct Sequence {
  std::size_t length;
  std::uint32_t value;
};

Sequence FirstSequence(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  std::size_t length = 1;
  while (length <= kLongest && (first & kForms[length - 1].lead_mask) != kForms[length - 1].lead) ++length;
  if (length > kLongest || length > text.size()) return {0, 0};
  std::uint32_t value = first & static_cast<unsigned char>(~kForms[length - 1].lead_mask);
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0U) != 0x80U) return {0, 0};
    value = (value << kBitsPerByte) | (byte & 0x3FU);
  }
  return {length, value};
}

void AppendSequence(std::string& text, std::uint32_t value) {
  if (value >= kStrayByte) {
    text.push_back(static_cast<char>(value & 0xFFU));
    return;
  }
  std::size_t length = 1;
  while (length < kLongest && value >= kForms[length].least) ++length;
  for (std::size_t i = 0; i < length; ++i) {
    const std::uint32_t bits = value >> (kBitsPerByte * (length - 1 - i));
    text.push_back(static_cast<char>(i == 0 ? kForms[length - 1].lead | bits : 0x80U | (bits & 0x3FU)));
  }
}

}  // namespace

std::wstring StringConverter::AnsiToWide(const std::string& text) {
  const std::size_t length = std::mbstowcs(nullptr, text.c_str(), 0);
  if (length == static_cast<std::size_t>(-1)) return {};
  std::wstring wide(length, L'\0');
  std::mbstowcs(wide.data(), text.c_str(), length);
  return wide;
}

std::string StringConverter::WideToAnsi(const std::wstring& text) {
  const std::size_t length = std::wcstombs(nullptr, text.c_str(), 0);
  if (length == static_cast<std::size_t>(-1)) return {};
  std::string narrow(length, '\0');
  std::wcstombs(narrow.data(), text.c_str(), length);
  return narrow;
}

std::wstring StringConverter::UTF8ToWide(const std::string& text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (std::string_view rest = text; !rest.empty();) {
    const Sequence sequence = FirstSequence(rest);
    const std::uint32_t stray = kStrayByte | static_cast<unsigned char>(rest[0]);
    wide.push_back(static_cast<wchar_t>(sequence.length > 0 ? sequence.value : stray));
    rest.remove_prefix(sequence.length > 0 ? sequence.length : 1);
  }
  return wide;
}

std::string StringConverter::WideToUTF8(const std::wstring& text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (const wchar_t c : text) AppendSequence(narrow, static_cast<std::uint32_t>(c));
  return narrow;
}

std::string StringConverter::UTF8ToAnsi(const std::string& text) {
  return WideToAnsi(UTF8ToWide(text));
}

std::string StringConverter::AnsiToUTF8(const std::string& text) {
  return WideToUTF8(AnsiToWide(text));
}
