#include "filesystem/adb_ls_listing.h"

#include <cstdlib>
#include <string_view>
#include <utility>

#include "core/text.h"
#include "filesystem/adb_ls_line.h"
#include "filesystem/listing_text.h"
#include "filesystem/local_time_text.h"

namespace {

// Calls visit with every line that gives a record.
template <typename Visit>
void ForEachEntry(std::string_view text, Visit visit) {
  darokleim::ForEachPiece(text, "\n", [&](std::string_view line) {
    if (!darokleim::IsSkippedAdbLsLine(line)) visit(line);
    return true;
  });
}

}  // namespace

std::vector<FileInfo> DecodeADBLSOut(const std::string& dir, const char* out, int len) {
  const std::string_view text = darokleim::ListingText(out, len);
  std::size_t count = 0;
  ForEachEntry(text, [&](std::string_view) { ++count; });
  std::vector<FileInfo> files;
  files.reserve(count);
  if (count == 0) return files;
  darokleim::LocalTimeText local_time(count);
  ForEachEntry(text, [&](std::string_view line) {
    const darokleim::AdbLsLine columns = darokleim::ReadAdbLsLine(line);
    FileInfo& info = files.emplace_back();
    info.mode = columns.mode;
    info.size = columns.size;
    info.utc_timestamp = columns.time;
    info.time = local_time.Of(columns.time);
    info.file = darokleim::JoinListed(dir, columns.name);
  });
  return files;
}
