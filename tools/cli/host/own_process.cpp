#include "tools/cli/host/own_process.h"

#if defined(__APPLE__)
#include <crt_externs.h>
#include <mach-o/dyld.h>
#include <stdint.h>
#else
#include <fstream>
#endif

#include <filesystem>
#include <system_error>

namespace darokleim::cli {

namespace fs = std::filesystem;

#if defined(__APPLE__)

std::vector<std::string> OwnCommandLine() {
  char** const words = *_NSGetArgv();
  return {words, words + *_NSGetArgc()};
}

std::string ExecutableDirectory() {
  uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);
  std::string path(size, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) return "";
  std::error_code error;
  return fs::canonical(path.c_str(), error).parent_path();
}

#else

std::vector<std::string> OwnCommandLine() {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  std::vector<std::string> words;
  for (std::string word; std::getline(file, word, '\0');) words.push_back(word);
  return words;
}

std::string ExecutableDirectory() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).parent_path();
}

#endif

}  // namespace darokleim::cli
