#include "tools/cli/output/json.h"

#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <memory>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

std::string Written(const Json::Value& document, const char* indentation, bool keep_bytes) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = indentation;
  builder["emitUTF8"] = keep_bytes;
  return Json::writeString(builder, document);
}

}  // namespace

std::string JsonText(const Json::Value& document) {
  return Written(document, "  ", false) + "\n";
}

std::string JsonLine(const Json::Value& document) {
  return Written(document, "", false);
}

std::string JsonArgument(const Json::Value& document) {
  return Written(document, "", true);
}

Json::Value ParseJson(std::string_view text, const std::string& what) {
  Json::CharReaderBuilder builder;
  builder["stackLimit"] = 10000;  // a path of 4096 bytes is 2048 folders deep, each two levels of JSON
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value document;
  std::string errors;
  if (!reader->parse(text.data(), text.data() + text.size(), &document, &errors)) {
    throw ToolError("the library returned " + what + " that is not valid JSON: " + errors);
  }
  return document;
}

}  // namespace darokleim::cli
