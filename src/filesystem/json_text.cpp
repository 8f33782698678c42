#include "src/filesystem/json_text.h"

#include <json/writer.h>

#include <algorithm>
#include <memory>
#include <new>
#include <sstream>
#include <utility>

std::string JsonToString(const Json::Value& value) {
  Json::StreamWriterBuilder settings;
  settings["commentStyle"] = "None";
  settings["indentation"] = "   ";
  const std::unique_ptr<Json::StreamWriter> writer(settings.newStreamWriter());
  std::ostringstream text;
  writer->write(value, &text);
  // A stream that runs out of memory swallows the exception.
  if (text.bad()) throw std::bad_alloc();
  return std::move(text).str();
}

namespace darokleim::sdk {
namespace {

constexpr std::size_t kIndentation = 3;

// Needs no escape between quotes. JsonCpp quotes every text with other characters.
constexpr bool IsPlain(char c) {
  return c >= ' ' && c <= '~' && c != '"' && c != '\\';
}

std::string QuotedByJsonCpp(const std::string& text) {
  // valueToQuotedString ends at a zero byte; values do not.
  if (text.find('\0') != std::string::npos) return JsonToString(Json::Value(text));
  return Json::valueToQuotedString(text.c_str());
}

}  // namespace

void JsonDocument::BeginObject() {
  text_ += '{';
  indentation_ += kIndentation;
  at_first_item_ = true;
}

void JsonDocument::EndObject() {
  indentation_ -= kIndentation;
  NewLine();
  text_ += '}';
  at_first_item_ = false;
}

// An array that is a member begins on a line of its own.
void JsonDocument::BeginArray() {
  NewLine();
  text_ += '[';
  indentation_ += kIndentation;
  at_first_item_ = true;
}

void JsonDocument::Element() {
  NextItem();
}

void JsonDocument::EndArray() {
  indentation_ -= kIndentation;
  NewLine();
  text_ += ']';
  at_first_item_ = false;
}

void JsonDocument::Name(std::string_view name) {
  NextItem();
  text_ += '"';
  text_ += name;
  text_ += "\" : ";
}

void JsonDocument::Text(const std::string& text) {
  if (!std::all_of(text.begin(), text.end(), IsPlain)) {
    text_ += QuotedByJsonCpp(text);
    return;
  }
  text_ += '"';
  text_ += text;
  text_ += '"';
}

void JsonDocument::Number(std::uint64_t number) {
  text_ += Json::valueToString(Json::LargestUInt{number});
}

void JsonDocument::Integer(int number) {
  text_ += Json::valueToString(Json::LargestInt{number});
}

void JsonDocument::NextItem() {
  if (!at_first_item_) text_ += ',';
  at_first_item_ = false;
  NewLine();
}

void JsonDocument::NewLine() {
  text_ += '\n';
  text_.append(indentation_, ' ');
}

}  // namespace darokleim::sdk
