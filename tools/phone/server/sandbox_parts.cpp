#include "tools/phone/server/sandbox_parts.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "tools/phone/common/wire.h"
#include "tools/phone/device/layout.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

std::string FindInPath(const std::string& name) {
  const char* path = std::getenv("PATH");
  for (const std::string& folder : Split(path != nullptr ? path : "/usr/bin:/bin", ':')) {
    const std::string candidate = folder + "/" + name;
    if (access(candidate.c_str(), X_OK) == 0) return fs::canonical(candidate).string();
  }
  throw std::runtime_error("'" + name +
                           "' is not in PATH; the simulated phone needs bubblewrap (bwrap), mksh and toybox");
}

std::string ThisProgram() {
#if defined(__linux__)
  return fs::read_symlink("/proc/self/exe").string();
#else
  throw std::runtime_error("the simulated phone runs on Linux only: its phones live in Linux namespaces");
#endif
}

// Beside the program, as it is built and as it is installed.
std::string FindView(const std::string& program) {
  const fs::path folder = fs::path(program).parent_path();
  for (const char* place : {"../lib", DAROKLEIM_PHONE_LIBRARY_FOLDER}) {
    const fs::path candidate = folder / place / DAROKLEIM_PHONE_VIEW;
    std::error_code error;
    if (fs::exists(candidate, error)) return fs::canonical(candidate).string();
  }
  throw std::runtime_error(std::string(DAROKLEIM_PHONE_VIEW) + " is not beside " + program);
}

// The absolute paths among the words of what the loader prints of a program that it is to trace, as ldd has it do:
// "name => /path (address)", and the loader's own line.
void AddLibrariesOf(const std::string& program, std::set<std::string>* libraries) {
  FILE* listing = popen(("LD_TRACE_LOADED_OBJECTS=1 exec '" + program + "' 2>/dev/null").c_str(), "r");
  if (listing == nullptr) return;
  char line[4096];
  while (std::fgets(line, sizeof(line), listing) != nullptr) {
    for (const std::string& word : Split(line, ' ')) {
      const size_t start = word.find_first_not_of('\t');
      if (start != std::string::npos && word[start] == '/') libraries->insert(word.substr(start));
    }
  }
  pclose(listing);
}

}  // namespace

SandboxParts FindSandboxParts() {
  SandboxParts parts;
  parts.program = ThisProgram();
  parts.view = FindView(parts.program);
  parts.bubblewrap = FindInPath("bwrap");
  parts.shell = FindInPath("mksh");
  parts.toybox = FindInPath("toybox");
  std::set<std::string> libraries;
  for (const std::string& program : {parts.shell, parts.toybox, parts.program})
    AddLibrariesOf(program, &libraries);
  if (access(kCharacters, R_OK) == 0) libraries.insert(kCharacters);
  parts.libraries.assign(libraries.begin(), libraries.end());
  return parts;
}

}  // namespace darokleim::phone
