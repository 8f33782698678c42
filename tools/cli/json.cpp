#include "json.h"

#include <json/writer.h>

namespace darokleim {

std::string JsonText(const Json::Value& document) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "  ";
  return Json::writeString(builder, document) + "\n";
}

}  // namespace darokleim
