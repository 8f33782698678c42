#include "src/filesystem/adb_ls_listing.h"

#include <algorithm>
#include <string_view>

#include "src/core/text.h"
#include "src/filesystem/adb_ls_line.h"
#include "src/filesystem/listing_text.h"
#include "src/filesystem/local_time_text.h"

namespace {

// An upper limit, close to the number of records: the vector is allocated once.
std::size_t LineCount(std::string_view text) {
  std::size_t lines = 1;
  for (std::size_t end = 0; (end = text.find('\n', end)) != std::string_view::npos; ++end) ++lines;
  return std::min(lines, text.size() / darokleim::sdk::kShortestAdbLsLine);
}

}  // namespace

std::vector<FileInfo> DecodeADBLSOut(const std::string& dir, const char* out, int len) {
  const std::string_view text = darokleim::sdk::ListingText(out, len);
  const std::size_t most = LineCount(text);
  std::vector<FileInfo> files;
  files.reserve(most);
  darokleim::sdk::LocalTimeText local_time(most);
  darokleim::sdk::ForEachPiece(text, "\n", [&](std::string_view line) {
    if (darokleim::sdk::IsSkippedAdbLsLine(line)) return true;
    const darokleim::sdk::AdbLsLine columns = darokleim::sdk::ReadAdbLsLine(line);
    FileInfo& info = files.emplace_back();
    info.mode = columns.mode;
    info.size = columns.size;
    info.utc_timestamp = columns.time;
    info.time = local_time.Of(columns.time);
    info.file = darokleim::sdk::JoinListed(dir, columns.name);
    return true;
  });
  return files;
}
