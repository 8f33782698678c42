// Splitting, replacing and trimming, compared with loops over find, erase and insert.
#include <fuzzer/FuzzedDataProvider.h>

#include <string>
#include <vector>

#include "src/core/string_helper.h"
#include "tests/fuzz/fuzz.h"

namespace {

using darokleim::sdk::Require;

std::vector<std::string> PlainSplit(const std::string& text, const std::string& separator) {
  std::vector<std::string> pieces;
  if (separator.empty()) return pieces;
  std::string piece;
  for (std::size_t at = 0; at < text.size();) {
    const bool ends = text.compare(at, separator.size(), separator) == 0;
    if (!ends) piece.push_back(text[at]);
    if (ends && !piece.empty()) pieces.push_back(piece);
    if (ends) piece.clear();
    at += ends ? separator.size() : 1;
  }
  if (!piece.empty()) pieces.push_back(piece);
  return pieces;
}

// The next search starts `skip` bytes after the place of each replacement.
std::string PlainReplace(std::string text, const std::string& from, const std::string& to, std::size_t skip) {
  if (from.empty()) return text;
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += skip)
    text.replace(at, from.size(), to);
  return text;
}

std::string PlainTrim(std::string text, char c, bool left) {
  while (!text.empty() && (left ? text.front() : text.back()) == c) text.erase(left ? 0 : text.size() - 1, 1);
  return text;
}

void RequireTrimmed(const std::string& text, char c) {
  std::string left = text, right = text;
  Require(StringHelper::StringTrimLeft(left, c) == static_cast<long>(left.size()));
  Require(StringHelper::StringTrimRight(right, c) == static_cast<long>(right.size()));
  Require(left == PlainTrim(text, c, true) && right == PlainTrim(text, c, false));
}

void RequireReplaced(const std::string& text, const std::string& from, const std::string& to) {
  std::string all = text;
  replace(all, from, to);
  Require(all == PlainReplace(text, from, to, to.size()));
  // A replacement that is not shorter than the replaced text can contain it and never end.
  if (to.size() >= from.size()) return;
  std::string again = text;
  Require(StringHelper::StringReplace(again, from, to) == static_cast<long>(again.size()));
  Require(again == PlainReplace(text, from, to, 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  const std::string from = data.ConsumeRandomLengthString(6);
  const std::string to = data.ConsumeRandomLengthString(6);
  const std::string text = data.ConsumeRemainingBytesAsString();

  std::vector<std::string> pieces = {"kept"};
  const std::vector<std::string> plain = PlainSplit(text, from);
  Require(StringHelper::StringSplit(pieces, text, from) == static_cast<long>(plain.size()));
  Require(pieces[0] == "kept" && std::vector<std::string>(pieces.begin() + 1, pieces.end()) == plain);

  RequireReplaced(text, from, to);
  RequireTrimmed(text, from.empty() ? ' ' : from[0]);
  return 0;
}
