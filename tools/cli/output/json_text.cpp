#include "tools/cli/output/json_text.h"

#include <cmath>
#include <cstdio>

#include "base/utf8.h"

namespace darokleim::cli {
namespace {

constexpr std::uint32_t kFirstOfTwoUnits = 0x10000;
constexpr std::uint32_t kUnpairedByte = 0xdc00;

void AppendUnit(std::uint32_t unit, std::string* text) {
  char escape[16];
  std::snprintf(escape, sizeof escape, "\\u%04x", unit);
  text->append(escape);
}

// Of a whole UTF-8 character of several bytes.
std::uint32_t CodePoint(std::string_view character) {
  const auto byte = [character](std::size_t i) { return static_cast<unsigned char>(character[i]); };
  std::uint32_t code = byte(0) & (0xffu >> (character.size() + 1));
  for (std::size_t i = 1; i < character.size(); ++i) code = code << 6 | (byte(i) & 0x3fu);
  return code;
}

void AppendCodePoint(std::uint32_t code, std::string* text) {
  if (code < kFirstOfTwoUnits) return AppendUnit(code, text);
  code -= kFirstOfTwoUnits;
  AppendUnit(0xd800 + (code >> 10), text);
  AppendUnit(0xdc00 + (code & 0x3ff), text);
}

void AppendAscii(char c, std::string* text) {
  switch (c) {
    case '"':
      text->append("\\\"");
      return;
    case '\\':
      text->append("\\\\");
      return;
    case '\n':
      text->append("\\n");
      return;
    case '\r':
      text->append("\\r");
      return;
    case '\t':
      text->append("\\t");
      return;
    default:
      break;
  }
  const auto byte = static_cast<unsigned char>(c);
  if (byte < 0x20 || byte == 0x7f) {
    AppendUnit(byte, text);
  } else {
    text->push_back(c);
  }
}

}  // namespace

std::string JsonString(std::string_view bytes) {
  std::string text = "\"";
  while (!bytes.empty()) {
    const std::size_t length = base::LengthOfUtf8Character(bytes);
    if (length == 0) {
      AppendUnit(kUnpairedByte + static_cast<unsigned char>(bytes.front()), &text);
    } else if (length == 1) {
      AppendAscii(bytes.front(), &text);
    } else {
      AppendCodePoint(CodePoint(bytes.substr(0, length)), &text);
    }
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return text + "\"";
}

std::string JsonArray(const std::vector<std::string>& values) {
  std::string text;
  for (const auto& value : values) text += (text.empty() ? "" : ", ") + value;
  return "[" + text + "]";
}

std::string JsonStrings(const std::vector<std::string>& texts) {
  std::vector<std::string> values;
  values.reserve(texts.size());
  for (const auto& text : texts) values.push_back(JsonString(text));
  return JsonArray(values);
}

JsonObject& JsonObject::Real(std::string_view name, double value) {
  if (!std::isfinite(value)) return Null(name);
  char text[64];
  std::snprintf(text, sizeof text, "%.6g", value);
  return Json(name, text);
}

JsonObject& JsonObject::Json(std::string_view name, std::string_view json) {
  if (!members_.empty()) members_ += ", ";
  members_.append(JsonString(name)).append(": ").append(json);
  return *this;
}

}  // namespace darokleim::cli
