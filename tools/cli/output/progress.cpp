#include "tools/cli/output/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "base/terminal_text.h"
#include "base/utf8.h"
#include "tools/cli/host/quiet_thread.h"
#include "tools/cli/output/human_text.h"

namespace darokleim::cli {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr Seconds kBeforeTheFirst{0.4};
constexpr Seconds kBetween{0.2};
constexpr Seconds kBetweenLines{1};
constexpr double kPausePerWork = 20;  // a line that takes a second to make is made every twenty seconds
constexpr std::size_t kUsualWidth = 80;
constexpr char kClearLine[] = "\r\x1b[K";

std::size_t TerminalWidth() {
  winsize size{};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualWidth;
  return size.ws_col;
}

// A progress line that cannot be written is no error.
void WriteToTerminal(const std::string& text) {
  [[maybe_unused]] const ssize_t ignored = write(STDERR_FILENO, text.data(), text.size());
}

}  // namespace

Progress::Progress(ProgressMode mode, Line line) : line_(std::move(line)) {
  const bool on_terminal = isatty(STDERR_FILENO) == 1;
  if (mode == ProgressMode::kNever || (mode == ProgressMode::kOnTerminal && !on_terminal)) return;
  thread_ = StartWithoutSignals([this, on_terminal] { on_terminal ? ShowOnTerminal() : ShowInLines(); });
}

Progress::~Progress() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    __atomic_store_n(&stop_, true, __ATOMIC_RELAXED);
  }
  stopped_.notify_all();
  thread_.join();
}

bool Progress::Wait(Seconds time) {
  std::unique_lock lock(mutex_);
  return !stopped_.wait_for(lock, time, [this] { return stop_; });
}

void Progress::ShowOnTerminal() {
  const auto start = Clock::now();
  bool shown = false;
  Seconds pause = kBeforeTheFirst;
  while (Wait(pause)) {
    const auto begin = Clock::now();
    const auto text = base::EscapeControls(line_(Seconds(begin - start).count(), &stop_));
    pause = std::max(kBetween, Seconds(Clock::now() - begin) * kPausePerWork);
    const std::lock_guard lock(mutex_);
    if (stop_) break;
    WriteToTerminal(kClearLine + CutToPlaces(text, TerminalWidth() - 1));
    shown = true;
  }
  if (shown) WriteToTerminal(kClearLine);
}

void Progress::ShowInLines() {
  const auto start = Clock::now();
  while (Wait(kBetweenLines)) {
    WriteToTerminal(base::EscapeControls(line_(Seconds(Clock::now() - start).count(), &stop_)) + "\n");
  }
}

Progress::Line WaitingLine(std::string label) {
  return [label = std::move(label)](double seconds, const bool*) {
    constexpr char kSigns[] = {'|', '/', '-', '\\'};
    const auto turn = static_cast<std::size_t>(seconds * 4) % sizeof kSigns;
    return label + "  " + std::to_string(static_cast<long long>(seconds)) + " s  " + kSigns[turn];
  };
}

void TransferMeter::Set(Done done) {
  const std::lock_guard lock(mutex_);
  done_ = std::move(done);
}

std::string TransferMeter::Line(double seconds) {
  constexpr double kMemory = 3;  // seconds after which an older rate counts for a third
  const std::lock_guard lock(mutex_);
  if (const double passed = seconds - last_seconds_; passed > 0) {
    const std::uint64_t more = done_.bytes > last_bytes_ ? done_.bytes - last_bytes_ : 0;
    const double weight = last_seconds_ == 0 ? 1 : 1 - std::exp(-passed / kMemory);
    rate_ += weight * (static_cast<double>(more) / passed - rate_);
    last_seconds_ = seconds;
    last_bytes_ = done_.bytes;
  }
  std::string text = done_.name;
  if (done_.files_total > 1) {
    text += "  " + std::to_string(done_.files) + "/" + std::to_string(done_.files_total) + " files";
  }
  const auto all = static_cast<double>(done_.bytes_total);
  if (done_.bytes_total == 0) {
    text += "  " + SizeText(done_.bytes);
  } else {
    const double share = std::min(1.0, static_cast<double>(done_.bytes) / all);
    text += "  " + std::to_string(static_cast<int>(share * 100)) + "%  " + SizeText(done_.bytes) + " of " +
            SizeText(done_.bytes_total);
  }
  text += "  " + SizeText(static_cast<std::uint64_t>(rate_)) + "/s";
  const bool can_tell = done_.bytes_total > done_.bytes && rate_ >= 1;
  if (can_tell) text += "  " + DurationText((all - static_cast<double>(done_.bytes)) / rate_) + " left";
  return text;
}

Progress::Line MeterLine(TransferMeter& meter) {
  return [&meter](double seconds, const bool*) { return meter.Line(seconds); };
}

std::string DurationText(double seconds) {
  constexpr double kLongest = 1e6;
  const auto whole = static_cast<long>(std::min(std::ceil(seconds), kLongest));
  if (whole < 60) return std::to_string(whole) + " s";
  if (whole < 3600) return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
  return std::to_string(whole / 3600) + " h " + std::to_string(whole % 3600 / 60) + " min";
}

std::string CutToPlaces(const std::string& text, std::size_t places) {
  std::size_t end = 0;
  while (end < text.size() && places > 0) {
    end += std::max<std::size_t>(1, base::LengthOfUtf8Character(std::string_view(text).substr(end)));
    --places;
  }
  return text.substr(0, end);
}

}  // namespace darokleim::cli
