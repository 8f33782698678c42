#include "tools/cli/commands/files/transfer.h"

#include <chrono>
#include <cstdio>
#include <map>

#include "base/terminal_text.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json_text.h"

namespace darokleim::cli {
namespace {

dk_existing ExistingFor(const TransferPolicy& policy) {
  if (policy.update) return DK_SKIP_SAME;
  return policy.no_clobber ? DK_SKIP_EXISTING : DK_REPLACE;
}

void CheckTargetsDiffer(const std::vector<dk::Item>& items) {
  std::map<std::string, std::string> sources;
  for (const auto& item : items) {
    const auto [first, is_new] = sources.emplace(item.target, item.source);
    if (is_new || item.target.empty() || item.source.ends_with("/.")) continue;
    throw ToolError("cannot transfer both " + base::EscapeControls(first->second) + " and " +
                    base::EscapeControls(item.source) + ": both would become " +
                    base::EscapeControls(item.target) + ".");
  }
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::string CountsText(const char* done, const dk_summary& summary, double seconds) {
  std::string text = CountText(summary.files_sent, "file") + " " + done;
  if (summary.files_skipped > 0) text += ", " + std::to_string(summary.files_skipped) + " skipped";
  if (summary.files_failed > 0) text += ", " + std::to_string(summary.files_failed) + " failed";
  text += ", " + SizeText(summary.bytes_sent);
  if (seconds > 0 && summary.bytes_sent > 0) {
    const auto rate = static_cast<double>(summary.bytes_sent) / seconds;
    text += ", " + SizeText(static_cast<std::uint64_t>(rate)) + "/s";
  }
  return text;
}

}  // namespace

void DescribePolicy(Command& command, TransferPolicy& policy) {
  auto& update = command.Flag("-u,--update", policy.update,
                              "Skip files whose size and time are those of the file at the target");
  command.Flag("-n,--no-clobber", policy.no_clobber, "Skip files that are at the target already")
      .Excludes(update);
}

std::string TargetIn(const std::string& folder, const SourceName& source) {
  if (source.is_content) return folder;
  return folder + (folder.ends_with('/') ? "" : "/") + source.name;
}

void ReportCounts(Tool& tool, Direction direction, const dk_summary& summary, double seconds,
                  bool is_broken) {
  const char* const done = direction == Direction::kPush ? "pushed" : "pulled";
  if (tool.is_json()) {
    tool.document().Member(done, std::to_string(summary.files_sent));
    tool.document().Member("skipped", std::to_string(summary.files_skipped));
    tool.document().Member("failed", std::to_string(summary.files_failed));
    tool.document().Member("bytes", std::to_string(summary.bytes_sent));
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds);
    tool.document().Member("seconds", text);
    return;
  }
  tool.Report(CountsText(done, summary, seconds) +
              (is_broken ? "; the same command with --update goes on from here" : ""));
}

void Transfer(Tool& tool, Direction direction, const std::vector<dk::Item>& items,
              const TransferPolicy& policy) {
  using Clock = std::chrono::steady_clock;
  CheckTargetsDiffer(items);
  TransferMeter meter;
  dk_summary summary = {};
  dk::TransferOptions options;
  options.existing = ExistingFor(policy);
  options.keep_going = true;
  options.summary = &summary;
  options.on_progress = [&meter](const dk_progress& progress) {
    meter.Set({NameOf(progress.path == nullptr ? "" : progress.path), progress.bytes_done,
               progress.bytes_total, progress.files_done, progress.files_total});
    return true;
  };
  options.on_error = [&tool](const dk::Error& error) {
    tool.ReportFailure(error);
    return true;
  };
  const bool is_push = direction == Direction::kPush;
  const auto start = Clock::now();
  const auto done = [&] {
    const Progress progress(tool.progress_mode(), MeterLine(meter));
    return is_push ? tool.phone().push(items, options, tool.limits())
                   : tool.phone().pull(items, options, tool.limits());
  }();
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  const bool is_broken = !done && done.code() != DK_PARTLY_DONE;
  ReportCounts(tool, direction, summary, seconds, is_broken);
  if (is_broken) throw dk::Error(done.error());
}

}  // namespace darokleim::cli
