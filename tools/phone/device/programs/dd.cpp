#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "tools/phone/common/io.h"
#include "tools/phone/common/numbers.h"
#include "tools/phone/device/programs/programs.h"

namespace darokleim::phone {

namespace {

struct DdOptions {
  std::string from, to;
  size_t block = 512;
  size_t skip = 0;  // blocks of the input
  size_t count = std::numeric_limits<size_t>::max();
};

// False for an operand that is not known or not a number.
bool ParseOperand(const std::string& word, DdOptions* options) {
  const size_t equals = word.find('=');
  if (equals == std::string::npos) return false;
  const std::string name = word.substr(0, equals);
  const std::string value = word.substr(equals + 1);
  if (name == "if") {
    options->from = value;
    return true;
  }
  if (name == "of") {
    options->to = value;
    return true;
  }
  const auto number = ParseNumber<size_t>(value);
  if (!number) return false;
  size_t* const target = name == "bs"      ? &options->block
                         : name == "skip"  ? &options->skip
                         : name == "count" ? &options->count
                                           : nullptr;
  if (target == nullptr) return false;
  *target = *number;
  return options->block > 0;
}

int Fail(const std::string& what) {
  std::fprintf(stderr, "dd: %s: %s\n", what.c_str(), std::strerror(errno));
  return 1;
}

int Copy(const DdOptions& options, int from, int to) {
  if (options.skip > 0) lseek(from, static_cast<off_t>(options.skip * options.block), SEEK_SET);
  std::vector<char> block(options.block);
  size_t whole = 0;
  size_t parts = 0;
  while (whole + parts < options.count) {
    const ssize_t count = ReadSome(from, block.data(), block.size());
    if (count < 0) return Fail(options.from);
    if (count == 0) break;
    if (!WriteAll(to, block.data(), static_cast<size_t>(count))) return Fail(options.to);
    ++(static_cast<size_t>(count) == block.size() ? whole : parts);
  }
  std::fprintf(stderr, "%zu+%zu records in\n%zu+%zu records out\n", whole, parts, whole, parts);
  return 0;
}

}  // namespace

// The operands if, of, bs, skip and count. Debian's toybox has no dd, Android's has.
int RunDd(const Words& words) {
  DdOptions options;
  for (const std::string& word : words) {
    if (!ParseOperand(word, &options)) {
      std::fprintf(stderr, "dd: bad operand '%s'\n", word.c_str());
      return 1;
    }
  }
  base::UniqueFd from, to;
  if (!options.from.empty()) {
    from.Reset(open(options.from.c_str(), O_RDONLY | O_CLOEXEC));
    if (!from.valid()) return Fail(options.from);
  }
  if (!options.to.empty()) {
    to.Reset(open(options.to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!to.valid()) return Fail(options.to);
  }
  return Copy(options, from.valid() ? from.get() : STDIN_FILENO, to.valid() ? to.get() : STDOUT_FILENO);
}

}  // namespace darokleim::phone
