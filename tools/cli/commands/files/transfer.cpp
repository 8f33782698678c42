#include "tools/cli/commands/files/transfer.h"

#include <json/value.h>

#include "tools/cli/output/human_text.h"
#include "tools/cli/output/output.h"

namespace darokleim::cli {

void ReportTransfer(Tool& tool, const Transfer& transfer) {
  const Output& output = tool.output();
  std::string line = output.Shown(transfer.source) + " -> " + output.Shown(transfer.target) + "  ";
  if (transfer.skipped) {
    line += output.Painted(Colour::kFaint, "up to date");
  } else {
    line += CountText(transfer.files, "file") + ", " + SizeText(transfer.bytes);
    if (transfer.seconds > 0) {
      line += ", " +
              SizeText(static_cast<std::uint64_t>(static_cast<double>(transfer.bytes) / transfer.seconds)) +
              "/s";
    }
  }
  tool.ReportAsIs(line);
}

Json::Value TransfersJson(const std::vector<Transfer>& transfers) {
  Json::Value list(Json::arrayValue);
  for (const auto& transfer : transfers) {
    Json::Value& entry = list.append(Json::objectValue);
    entry["source"] = transfer.source;
    entry["target"] = transfer.target;
    entry["files"] = Json::UInt64(transfer.files);
    entry["bytes"] = Json::UInt64(transfer.bytes);
    entry["seconds"] = transfer.seconds;
    entry["skipped"] = transfer.skipped;
  }
  return list;
}

}  // namespace darokleim::cli
