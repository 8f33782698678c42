// What the SDK did, in order: log lines, commands run, buffers given back.
#ifndef DAROKLEIM_TESTS_UNIT_SUPPORT_JOURNAL_H
#define DAROKLEIM_TESTS_UNIT_SUPPORT_JOURNAL_H

#include <ostream>
#include <string>
#include <vector>

namespace darokleim::test {

struct Event {
  enum class Kind { kLogged, kRan, kGaveBack, kStarted, kOpenedLog, kInitChannel };
  Kind kind;
  int level;  // of a log line, else 0
  std::string text;

  bool operator==(const Event& other) const {
    return kind == other.kind && level == other.level && text == other.text;
  }
};

using Journal = std::vector<Event>;

// One log line of each level.
inline Event Trace(std::string text) {
  return {Event::Kind::kLogged, 0, std::move(text)};
}
inline Event Info(std::string text) {
  return {Event::Kind::kLogged, 1, std::move(text)};
}
inline Event CommandEcho(std::string text) {
  return {Event::Kind::kLogged, 2, std::move(text)};
}
inline Event Error(std::string text) {
  return {Event::Kind::kLogged, 3, std::move(text)};
}

// A command that the channel ran, with its argument text; one that it started and left running.
inline Event Ran(std::string args) {
  return {Event::Kind::kRan, 0, std::move(args)};
}
inline Event Started(std::string args) {
  return {Event::Kind::kStarted, 0, std::move(args)};
}
// A buffer of the channel that went back to it.
inline Event GaveBack() {
  return {Event::Kind::kGaveBack, 0, ""};
}

inline Event OpenedLog(std::string path) {
  return {Event::Kind::kOpenedLog, 0, std::move(path)};
}
inline Event InitChannel(const std::string& adb_path, const std::string& log_dir) {
  return {Event::Kind::kInitChannel, 0, adb_path + " " + log_dir};
}

inline std::ostream& operator<<(std::ostream& out, const Event& event) {
  switch (event.kind) {
    case Event::Kind::kLogged:
      return out << "\n  log " << event.level << ": " << event.text;
    case Event::Kind::kRan:
      return out << "\n  ran:" << event.text;
    case Event::Kind::kGaveBack:
      return out << "\n  gave a buffer back";
    case Event::Kind::kStarted:
      return out << "\n  started:" << event.text;
    case Event::Kind::kOpenedLog:
      return out << "\n  opened log " << event.text;
    case Event::Kind::kInitChannel:
      return out << "\n  initialised the channel: " << event.text;
  }
  return out;
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_UNIT_SUPPORT_JOURNAL_H
