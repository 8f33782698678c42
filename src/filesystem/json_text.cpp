#include "filesystem/json_text.h"

#include <json/writer.h>

#include <memory>
#include <sstream>

std::string JsonToString(const Json::Value& value) {
  Json::StreamWriterBuilder settings;
  settings["commentStyle"] = "None";
  settings["indentation"] = "   ";
  const std::unique_ptr<Json::StreamWriter> writer(settings.newStreamWriter());
  std::ostringstream text;
  // Without this a stream that runs out of memory ends there, and says nothing.
  text.exceptions(std::ios_base::badbit);
  writer->write(value, &text);
  return text.str();
}
