#include "tests/support/adb_version.h"

#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "tests/support/process.h"

namespace darokleim::test {

namespace {

int ReadRelease() {
  const std::string mark = "\nVersion ";
  const Outcome outcome = RunProgram({"adb", "version"});
  const size_t at = outcome.output.find(mark);
  const int release = at == std::string::npos ? 0 : std::atoi(outcome.output.c_str() + at + mark.size());
  if (release <= 0)
    throw std::runtime_error("adb does not name its version: " + outcome.output + outcome.errors);
  return release;
}

void Replace(std::string* text, std::string_view old, std::string_view with) {
  const size_t at = text->find(old);
  if (at != std::string::npos) text->replace(at, old.size(), with);
}

}  // namespace

int AdbRelease() {
  static const int release = ReadRelease();
  return release;
}

std::string RefusalByAdb(const std::string& reason) {
  return (AdbIsOfRelease34() ? "adb: " : "error: ") + reason + "\n";
}

std::string InTheWordsOfAdb29(const std::string& text) {
  if (!AdbIsOfRelease34()) return text;
  std::string words = text;
  if (words.rfind("adb: device ", 0) == 0) Replace(&words, "adb: ", "error: ");
  Replace(&words, "failed to send ID_SEND_V1 message", "failed to send ID_SEND message");
  const std::string failed = "adb: error: failed to copy ";
  const std::string counted = ": 1 file pushed, ";
  const size_t reason = words.find(failed);
  if (reason == std::string::npos || words.find(counted) == std::string::npos) return words;
  Replace(&words, counted, ": 0 files pushed, ");
  // The count comes first where 34 had sent everything before it read the phone's answer.
  const size_t line = words.find('\n' + failed) + 1;
  return words.substr(line) + words.substr(0, line);
}

}  // namespace darokleim::test
