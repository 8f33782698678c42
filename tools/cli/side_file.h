#ifndef DAROKLEIM_TOOLS_CLI_SIDE_FILE_H
#define DAROKLEIM_TOOLS_CLI_SIDE_FILE_H

#include <filesystem>

namespace darokleim::cli {

// The library's listings leave a copy of themselves in the current directory. While this object lives, that is a
// directory of the tool's own, and the copy goes with it: nobody asked for a file. Where there is no place for such
// a directory, the current one stays. Not for two threads at once.
class SideFileCatcher {
 public:
  SideFileCatcher();
  ~SideFileCatcher();
  SideFileCatcher(const SideFileCatcher&) = delete;
  SideFileCatcher& operator=(const SideFileCatcher&) = delete;

 private:
  std::filesystem::path directory_;
  int previous_ = -1;  // the current directory before
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_SIDE_FILE_H
