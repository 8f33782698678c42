#include "tools/cli/side_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <system_error>

namespace darokleim::cli {

namespace fs = std::filesystem;

SideFileCatcher::SideFileCatcher() {
  std::error_code error;
  std::string name = (fs::temp_directory_path(error) / "darokleim-listing-XXXXXX").native();
  if (error || mkdtemp(name.data()) == nullptr) return;
  directory_ = name;
  // A directory without permission to read can be searched and returned to all the same, but not by a descriptor
  // of this kind; then the current directory stays.
  previous_ = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (previous_ >= 0 && chdir(name.c_str()) != 0) {
    close(previous_);
    previous_ = -1;
  }
}

SideFileCatcher::~SideFileCatcher() {
  if (previous_ >= 0) {
    // It cannot fail while the descriptor is open, short of an unmounted disk; there is nothing to do about it.
    [[maybe_unused]] const int ignored = fchdir(previous_);
    close(previous_);
  }
  std::error_code error;
  if (!directory_.empty()) fs::remove_all(directory_, error);
}

}  // namespace darokleim::cli
