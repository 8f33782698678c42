#include "tools/cli/json.h"

#include <json/writer.h>

namespace darokleim::cli {

std::string JsonText(const Json::Value& document) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "  ";
  return Json::writeString(builder, document) + "\n";
}

}  // namespace darokleim::cli
