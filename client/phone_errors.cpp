#include "client/phone_errors.h"

#include <algorithm>
#include <iterator>

namespace darokleim::client {
namespace {

struct Words {
  int number;
  std::string_view text;
};

// As Android's C library words them.
constexpr Words kWords[] = {
    {1, "Operation not permitted"},
    {2, "No such file or directory"},
    {5, "I/O error"},
    {13, "Permission denied"},
    {16, "Device or resource busy"},
    {17, "File exists"},
    {18, "Cross-device link"},
    {18, "Invalid cross-device link"},
    {20, "Not a directory"},
    {21, "Is a directory"},
    {22, "Invalid argument"},
    {24, "Too many open files"},
    {27, "File too large"},
    {28, "No space left on device"},
    {30, "Read-only file system"},
    {36, "File name too long"},
    {39, "Directory not empty"},
    {40, "Too many symbolic links encountered"},
    {40, "Too many levels of symbolic links"},
    {122, "Quota exceeded"},
    {122, "Disk quota exceeded"},
};

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

int ErrnoAtEnd(std::string_view text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
  const auto found = std::find_if(std::begin(kWords), std::end(kWords),
                                  [&](const Words& words) { return EndsWith(text, words.text); });
  return found == std::end(kWords) ? 0 : found->number;
}

Error FromProgram(const Collected& collected, std::string_view what, std::string_view path) {
  const std::string& said = collected.err.empty() ? collected.out : collected.err;
  const int number = ErrnoAtEnd(said);
  Error error = CommandFailed(what, collected);
  error.path = std::string(path);
  if (number == 0) return error;
  Error typed = FromPhoneErrno(number, what, path);
  typed.words = std::move(error.words);
  typed.exit_status = collected.exit_status;
  return typed;
}

}  // namespace darokleim::client
