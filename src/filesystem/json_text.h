#ifndef DAROKLEIM_SRC_FILESYSTEM_JSON_TEXT_H
#define DAROKLEIM_SRC_FILESYSTEM_JSON_TEXT_H

// JSON as the SDK writes it: three spaces of indentation, no comments, pure ASCII.

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

// As JsonCpp writes by default otherwise; null for a value that was never set.
std::string JsonToString(const Json::Value& value);

namespace darokleim::sdk {

// Writes a JSON text from front to back, without a tree of values in memory: byte for byte the text that
// JsonToString gives, in a fraction of its time and memory and at any depth. JsonCpp itself quotes texts with special
// characters and formats the numbers; this class does the layout, for documents without empty objects and with arrays
// of objects only, none of them empty.
//
// The caller writes the members in the order of their names, as JsonCpp does.
class JsonDocument {
 public:
  // Allocates this many bytes at once; the text can grow beyond them.
  void Reserve(std::size_t bytes) { text_.reserve(bytes); }

  void BeginObject();
  void EndObject();
  // For each element of an array: Element(), then BeginObject() to EndObject().
  void BeginArray();
  void Element();
  void EndArray();

  // Begins a member; the name must not need escapes. Its value must follow.
  void Name(std::string_view name);
  void Text(const std::string& text);
  void Number(std::uint64_t number);
  void Integer(int number);
  void Null() { text_ += "null"; }

  std::string Take() && { return std::move(text_); }

 private:
  void NextItem();
  void NewLine();

  std::string text_;
  std::size_t indentation_ = 0;
  bool at_first_item_ = true;
};

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_JSON_TEXT_H
