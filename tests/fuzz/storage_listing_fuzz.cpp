// The volumes of a listing, compared with the rules spelt out over its lines.
#include "src/core/string_helper.h"
#include "src/filesystem/storage_output.h"
#include "tests/fuzz/fuzz.h"

namespace {

bool Has(const std::string& line, const char* part) {
  return line.find(part) != std::string::npos;
}

std::string LastWord(const std::string& line) {
  return "/storage/" + line.substr(line.rfind(' ') + 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  const std::string listing = Text(data, size);
  std::vector<std::string> lines;
  StringHelper::StringSplit(lines, listing, "\n");

  std::vector<std::string> volumes;
  for (const std::string& line : lines) {
    if (!Has(line, "sdcard_rw") && !Has(line, "everybody") && !Has(line, "media_rw")) continue;
    if (Has(line, "emulated")) {
      volumes.push_back("/storage/emulated/0");
    } else if (Has(line, " ")) {
      volumes.push_back(LastWord(line));
    }
  }
  if (volumes.empty()) {
    for (const std::string& line : lines) {
      if (Has(line, "sdcard0")) {
        volumes.push_back("/storage/sdcard0");
      } else if (Has(line, "sdcard_r") && Has(line, " ")) {
        volumes.push_back(LastWord(line));
      }
    }
  }
  Require(VolumePaths(listing) == volumes);

  std::string card;
  for (const std::string& line : lines) {
    if (!Has(line, "sdcard_r") || Has(line, "emulated") || !Has(line, " ")) continue;
    card = LastWord(line);
    break;
  }
  Require(CardPath(listing) == card);
  return 0;
}
