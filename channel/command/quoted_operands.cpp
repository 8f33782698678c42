#include "channel/command/quoted_operands.h"

#include <string>

#include "channel/command/word_splitter.h"

namespace darokleim::channel {
namespace {

constexpr size_t kNone = std::string_view::npos;

// Where the last closing quotes before whitespace or the end begin; kNone when there are none after the opening ones.
size_t FindLastClosing(std::string_view text, const QuotePair& quotes) {
  size_t at = text.rfind(quotes.closing);
  while (at != kNone && at >= quotes.opening.size()) {
    if (EndsWordAt(text, at + quotes.closing.size())) return at;
    at = text.rfind(quotes.closing, at - 1);
  }
  return kNone;
}

// The position of part in text; kNone unless it occurs exactly once.
size_t FindOnly(std::string_view text, std::string_view part) {
  const size_t at = text.find(part);
  return at == text.rfind(part) ? at : kNone;
}

std::vector<std::string_view> SplitInTwo(std::string_view text, const std::string& separator) {
  size_t at = FindOnly(text, separator);
  if (at == kNone) at = FindOnly(text, separator + '/');
  if (at == kNone) return {};
  return {text.substr(0, at), text.substr(at + separator.size())};
}

std::vector<std::string_view> SplitAtEach(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> pieces;
  for (size_t at; (at = text.find(separator)) != kNone; text.remove_prefix(at + separator.size())) {
    pieces.push_back(text.substr(0, at));
  }
  pieces.push_back(text);
  return pieces;
}

std::vector<std::string_view> Split(std::string_view text, const OperandForm& form) {
  const std::string separator = std::string(form.quotes.closing).append(" ").append(form.quotes.opening);
  switch (form.count) {
    case OperandCount::kOne:
      return {text};
    case OperandCount::kTwo:
      return SplitInTwo(text, separator);
    case OperandCount::kMany:
      return SplitAtEach(text, separator);
    case OperandCount::kNone:
      break;
  }
  return {};
}

}  // namespace

QuotedOperands ReadQuotedOperands(std::string_view text, const OperandForm& form) {
  const auto& [opening, closing] = form.quotes;
  if (text.substr(0, opening.size()) != opening) return {};
  const size_t end = FindLastClosing(text, form.quotes);
  if (end == kNone) return {};
  QuotedOperands found;
  found.operands = Split(text.substr(opening.size(), end - opening.size()), form);
  if (!found.operands.empty()) found.length = end + closing.size();
  return found;
}

}  // namespace darokleim::channel
