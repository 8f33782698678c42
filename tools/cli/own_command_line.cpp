#include "tools/cli/own_command_line.h"

#if defined(__APPLE__)
#include <crt_externs.h>
#else
#include <fstream>
#endif

namespace darokleim::cli {

std::vector<std::string> OwnCommandLine() {
#if defined(__APPLE__)
  char** const words = *_NSGetArgv();
  return {words, words + *_NSGetArgc()};
#else
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  std::vector<std::string> words;
  for (std::string word; std::getline(file, word, '\0');) words.push_back(word);
  return words;
#endif
}

}  // namespace darokleim::cli
