#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_PROGRESS_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_PROGRESS_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace darokleim::cli {

enum class ProgressMode {
  kNever,
  kOnTerminal,
  kAlways,  // elsewhere, too: a line of its own every second
};

// A line on standard error that shows progress while this object lives, for work that takes a moment. A thread of its own
// writes the line, so the work is not delayed.
class Progress {
 public:
  // Makes the line, given the seconds since the start. It runs on that thread, at intervals that grow with its own
  // duration, and returns early once `*stop` is true.
  using Line = std::function<std::string(double seconds, const bool* stop)>;

  Progress(ProgressMode mode, Line line);
  Progress(bool wanted, Line line)
      : Progress(wanted ? ProgressMode::kOnTerminal : ProgressMode::kNever, std::move(line)) {}
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

 private:
  void ShowOnTerminal();
  void ShowInLines();
  // Waits for that long unless this object ends; false when it does.
  bool Wait(std::chrono::duration<double> time);

  Line line_;
  bool stop_ = false;  // read by the line through the pointer, too
  std::mutex mutex_;
  std::condition_variable stopped_;
  std::thread thread_;
};

// "label  12 s" and a sign that turns.
Progress::Line WaitingLine(std::string label);

// Bytes of a transfer, given by the thread that transfers and shown by that of a Progress.
class TransferMeter {
 public:
  // All of the transfer's: files 0 when there is only one thing to count.
  struct Done {
    std::string name;  // of what is at work
    std::uint64_t bytes = 0, bytes_total = 0;
    std::uint64_t files = 0, files_total = 0;
  };
  void Set(Done done);
  // "name  3/12 files  30%  12 MiB of 40 MiB  5.1 MiB/s  6 s left", so many seconds after the start.
  std::string Line(double seconds);

 private:
  std::mutex mutex_;
  Done done_;
  double last_seconds_ = 0, rate_ = 0;  // bytes a second, of the last seconds
  std::uint64_t last_bytes_ = 0;
};

// For a meter that outlives the progress.
Progress::Line MeterLine(TransferMeter& meter);

// "45 s", "3 min 20 s", "2 h 5 min".
std::string DurationText(double seconds);

// As many characters of the text as fit into so many places.
std::string CutToPlaces(const std::string& text, std::size_t places);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_PROGRESS_H
