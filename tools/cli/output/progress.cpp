#include "tools/cli/output/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
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

Progress::Progress(bool wanted, Line line) : line_(std::move(line)) {
  if (wanted && isatty(STDERR_FILENO) == 1) thread_ = StartWithoutSignals([this] { Show(); });
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

void Progress::Show() {
  const auto start = Clock::now();
  bool shown = false;
  Seconds pause = kBeforeTheFirst;
  std::unique_lock lock(mutex_);
  while (!stopped_.wait_for(lock, pause, [this] { return stop_; })) {
    lock.unlock();
    const auto begin = Clock::now();
    const auto text = base::EscapeControls(line_(Seconds(begin - start).count(), &stop_));
    pause = std::max(kBetween, Seconds(Clock::now() - begin) * kPausePerWork);
    lock.lock();
    if (stop_) break;
    WriteToTerminal(kClearLine + CutToPlaces(text, TerminalWidth() - 1));
    shown = true;
  }
  if (shown) WriteToTerminal(kClearLine);
}

Progress::Line WaitingLine(std::string label) {
  return [label = std::move(label)](double seconds, const bool*) {
    constexpr char kSigns[] = {'|', '/', '-', '\\'};
    const auto turn = static_cast<std::size_t>(seconds * 4) % sizeof kSigns;
    return label + "  " + std::to_string(static_cast<long long>(seconds)) + " s  " + kSigns[turn];
  };
}

Progress::Line TransferLine(std::string label, std::uint64_t total,
                            std::function<std::uint64_t(const bool* stop)> bytes_done) {
  return
      [label = std::move(label), total, bytes_done = std::move(bytes_done)](
          double seconds, const bool* stop) { return TransferText(label, bytes_done(stop), total, seconds); };
}

std::string TransferText(const std::string& label, std::uint64_t done, std::uint64_t total, double seconds) {
  std::string text = label + "  " + SizeText(done);
  if (total > 0) {
    const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
    text += " of " + SizeText(total) + "  " + std::to_string(static_cast<int>(share * 100)) + "%";
  }
  if (seconds > 0) {
    text += "  " + SizeText(static_cast<std::uint64_t>(static_cast<double>(done) / seconds)) + "/s";
  }
  return text;
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
