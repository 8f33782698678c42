#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_PROGRESS_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_PROGRESS_H

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace darokleim::cli {

// A line on standard error that shows progress while this object lives. Only on a terminal, and only for work that
// takes a moment. A thread of its own writes the line, so the work is not delayed.
class Progress {
 public:
  // Makes the line, given the seconds since the start. It runs on that thread, at intervals that grow with its own
  // duration, and returns early once `*stop` is true.
  using Line = std::function<std::string(double seconds, const bool* stop)>;

  Progress(bool wanted, Line line);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

 private:
  void Show();

  Line line_;
  bool stop_ = false;  // read by the line through the pointer, too
  std::mutex mutex_;
  std::condition_variable stopped_;
  std::thread thread_;
};

// "label  12 s" and a sign that turns.
Progress::Line WaitingLine(std::string label);

// "label  12 MiB of 40 MiB  30%  5.1 MiB/s". A total of 0 is unknown.
Progress::Line TransferLine(std::string label, std::uint64_t total,
                            std::function<std::uint64_t(const bool* stop)> bytes_done);

// The line at `done` bytes of `total` after so many seconds.
std::string TransferText(const std::string& label, std::uint64_t done, std::uint64_t total, double seconds);

// As many characters of the text as fit into so many places.
std::string CutToPlaces(const std::string& text, std::size_t places);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_PROGRESS_H
