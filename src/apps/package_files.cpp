#include "src/apps/package_files.h"

#include <json/reader.h>
#include <json/value.h>

#include <memory>

namespace darokleim::sdk {
namespace {

// JsonCpp's parser is recursive: its default of 1000 levels takes more than the 512 KiB of stack that macOS gives to
// every thread except the first.
constexpr int kDeepestLevel = 500;

std::unique_ptr<Json::CharReader> NewReader() {
  Json::CharReaderBuilder builder;
  builder["stackLimit"] = kDeepestLevel;
  return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

std::vector<std::string> FilesIn(const Json::Value& document) {
  std::vector<std::string> files;
  for (const Json::Value& member : document) {
    if (!member.isArray()) continue;
    for (const Json::Value& file : member) files.push_back(file.asString());
  }
  return files;
}

}  // namespace

std::optional<std::vector<std::string>> ReadPackageFiles(std::string_view json) {
  const auto reader = NewReader();
  Json::Value document;
  std::string errors;
  try {
    if (!reader->parse(json.data(), json.data() + json.size(), &document, &errors)) return std::nullopt;
    if (!document.isObject() && !document.isNull()) return std::nullopt;
    return FilesIn(document);
  } catch (const Json::Exception&) {
    // Nested too deep, or an element that cannot be converted to text.
    return std::nullopt;
  }
}

}  // namespace darokleim::sdk
