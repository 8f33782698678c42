#include "src/filesystem/json_text.h"

#include <json/writer.h>

#include <memory>
#include <new>
#include <sstream>

std::string JsonToString(const Json::Value& value) {
  Json::StreamWriterBuilder settings;
  settings["commentStyle"] = "None";
  settings["indentation"] = "   ";
  const std::unique_ptr<Json::StreamWriter> writer(settings.newStreamWriter());
  std::ostringstream text;
  writer->write(value, &text);
  // A stream that runs out of memory ends there, and keeps the exception for itself.
  if (text.bad()) throw std::bad_alloc();
  return text.str();
}
