#include "channel/output/stream_filter.h"

#include "channel/channel_log.h"
#include "channel/output/adb_messages.h"
#include "channel/output/line_ends.h"

namespace darokleim::channel {
namespace {

// No notice is longer: the filter does not wait for the end of a longer first line.
constexpr size_t kLongestNotice = 4096;

void ConvertLineEnds(LineEnds line_ends, std::string* text) {
  text->resize(CollapseLineEnds(text->data(), text->size()));
  if (line_ends == LineEnds::kLf) return;
  const size_t length = text->size();
  const size_t line_feeds = CountLineFeeds(text->data(), length);
  text->resize(length + line_feeds);
  ExpandLineEnds(text->data(), length, line_feeds);
}

}  // namespace

std::string_view StreamFilter::Pass(std::string_view piece) {
  if (!at_start_ && line_ends_ == LineEnds::kAsPrinted) return piece;
  kept_ += piece;
  if (at_start_) {
    if (!MayContinueNotices(kept_)) {
      DropNotices();
    } else if (kept_.size() <= kLongestNotice) {
      return {};
    }
    at_start_ = false;
  }
  passed_ = std::move(kept_);
  kept_.clear();
  if (line_ends_ == LineEnds::kAsPrinted) return passed_;

  // A carriage return at the end may belong to a line break that the next piece completes.
  const size_t last = passed_.find_last_not_of('\r');
  kept_ = passed_.substr(last + 1);
  passed_.resize(last + 1);
  ConvertLineEnds(line_ends_, &passed_);
  return passed_;
}

void StreamFilter::DropNotices() {
  const size_t length = LengthOfLeadingNotices(kept_);
  LogNotices(std::string_view(kept_).substr(0, length));
  kept_.erase(0, length);
}

std::string_view StreamFilter::Finish() {
  if (at_start_) DropNotices();
  passed_ = std::move(kept_);
  kept_.clear();
  if (line_ends_ != LineEnds::kAsPrinted) ConvertLineEnds(line_ends_, &passed_);
  return passed_;
}

}  // namespace darokleim::channel
