// JSON as text, from bytes of any kind.
#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_JSON_TEXT_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_JSON_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::cli {

// The bytes as a JSON string, in ASCII. A byte that is not part of a UTF-8 character is written as \udc80 to \udcff,
// 0xdc00 and its value, which stands for no character; so every name can be recovered. Python's os.fsencode() does that.
std::string JsonString(std::string_view bytes);

// [1, 2], of values that are JSON already.
std::string JsonArray(const std::vector<std::string>& values);
// ["a", "b"]
std::string JsonStrings(const std::vector<std::string>& texts);

// {"name": "a", "size": 2}, on one line. Members in the order in which they are added.
class JsonObject {
 public:
  JsonObject& Text(std::string_view name, std::string_view bytes) { return Json(name, JsonString(bytes)); }
  JsonObject& Integer(std::string_view name, std::int64_t value) { return Json(name, std::to_string(value)); }
  JsonObject& Unsigned(std::string_view name, std::uint64_t value) {
    return Json(name, std::to_string(value));
  }
  JsonObject& Real(std::string_view name, double value);
  JsonObject& Bool(std::string_view name, bool value) { return Json(name, value ? "true" : "false"); }
  JsonObject& Null(std::string_view name) { return Json(name, "null"); }
  // A value that is JSON already.
  JsonObject& Json(std::string_view name, std::string_view json);

  std::string text() const { return "{" + members_ + "}"; }

 private:
  std::string members_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_JSON_TEXT_H
