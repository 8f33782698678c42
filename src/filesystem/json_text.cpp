#include "filesystem/json_text.h"

#include <json/writer.h>

std::string JsonToString(const Json::Value& value) {
  Json::StreamWriterBuilder settings;
  settings["commentStyle"] = "None";
  settings["indentation"] = "   ";
  return Json::writeString(settings, value);
}
