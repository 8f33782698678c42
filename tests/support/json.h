// JSON texts, read and written with JsonCpp's own settings.
#ifndef DAROKLEIM_TESTS_SUPPORT_JSON_H
#define DAROKLEIM_TESTS_SUPPORT_JSON_H

#include <json/reader.h>
#include <json/writer.h>

#include <memory>
#include <string>
#include <string_view>

namespace darokleim::test {

// A null value for a text that is not a document.
inline Json::Value ParseJson(std::string_view text) {
  Json::Value value;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  const bool read = reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
  return read ? value : Json::Value();
}

inline std::string JsonText(const Json::Value& value) {
  return Json::writeString(Json::StreamWriterBuilder(), value);
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_JSON_H
