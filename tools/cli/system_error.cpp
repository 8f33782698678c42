#include "tools/cli/system_error.h"

#include <system_error>

namespace darokleim::cli {

std::string SystemErrorText(int error_number) {
  return std::generic_category().message(error_number);
}

}  // namespace darokleim::cli
