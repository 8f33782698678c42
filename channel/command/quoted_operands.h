// The operands of a command that were each put between the same quotes without escaping. Where the quotes and the
// number of operands are known, the end of each follows: a path may contain quotes, spaces and backslashes of its
// own.
#ifndef DAROKLEIM_CHANNEL_COMMAND_QUOTED_OPERANDS_H
#define DAROKLEIM_CHANNEL_COMMAND_QUOTED_OPERANDS_H

#include <cstddef>
#include <string_view>
#include <vector>

namespace darokleim::channel {

struct QuotePair {
  std::string_view opening, closing;
};

// `"…"`, `""…""`, `"'…'"` and `'"…"'`.
constexpr QuotePair kDoubleQuotes = {"\"", "\""};
constexpr QuotePair kDoubledDoubleQuotes = {"\"\"", "\"\""};
constexpr QuotePair kSingleInDoubleQuotes = {"\"'", "'\""};
constexpr QuotePair kDoubleInSingleQuotes = {"'\"", "\"'"};

enum class OperandCount { kNone, kOne, kTwo, kMany };

struct OperandForm {
  OperandCount count = OperandCount::kNone;
  QuotePair quotes;
};

struct QuotedOperands {
  std::vector<std::string_view> operands;  // without their quotes
  std::size_t length = 0;                  // of the text that they occupy, from its first quote to its last
};

// The operands that text begins with. They reach up to its last closing quotes before whitespace or the end. Empty when
// the text does not have the form, and when the first of two operands could end at several places, unless exactly one
// of them is followed by an absolute path.
QuotedOperands ReadQuotedOperands(std::string_view text, const OperandForm& form);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_COMMAND_QUOTED_OPERANDS_H
