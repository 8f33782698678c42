// The files of a split package, compared with the document read plainly and walked by its member names.
#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "src/apps/package_files.h"
#include "tests/fuzz/fuzz.h"

namespace {

using Files = std::optional<std::vector<std::string>>;

Files ReadPlainly(const std::string& json) {
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  Json::Value document;
  Files files(std::in_place);
  try {
    if (!reader->parse(json.data(), json.data() + json.size(), &document, nullptr)) return std::nullopt;
    for (const std::string& name : document.getMemberNames()) {
      const Json::Value& member = document[name];
      if (member.type() != Json::arrayValue) continue;
      for (Json::ArrayIndex i = 0; i < member.size(); ++i) files->push_back(member[i].asString());
    }
  } catch (const Json::Exception&) {
    return std::nullopt;
  }
  return files;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  constexpr std::ptrdiff_t kCertainlyNotTooDeep = 400;
  const std::string json = Text(data, size);
  const Files files = ReadPackageFiles(json);
  const auto opened = std::count_if(json.begin(), json.end(), [](char c) { return c == '[' || c == '{'; });
  if (opened < kCertainlyNotTooDeep) Require(files == ReadPlainly(json));
  return 0;
}
