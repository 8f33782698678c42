#include "tools/cli/host/standard_input.h"

#include <errno.h>
#include <unistd.h>

#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {

std::size_t ReadStandardInput(char* buffer, std::size_t capacity) {
  for (;;) {
    CheckCancelled();
    const ssize_t count = read(STDIN_FILENO, buffer, capacity);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno == EBADF) return 0;  // closed
    if (errno != EINTR) throw ToolError("cannot read standard input: " + SystemErrorText(errno) + ".");
  }
}

std::string ReadStandardInput(std::size_t most) {
  std::string input(most, '\0');
  input.resize(ReadStandardInput(input.data(), most));
  return input;
}

}  // namespace darokleim::cli
