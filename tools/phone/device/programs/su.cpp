#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tools/phone/common/io.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/programs/programs.h"

namespace darokleim::phone {

namespace {

// Becomes user 0 in a user namespace of its own, where it may read what only its owner forbids.
bool BecomeRoot() {
#if defined(__linux__)
  const std::string map = "0 " + std::to_string(geteuid()) + " 1";
  if (unshare(CLONE_NEWUSER) != 0) return false;
  for (const auto& [file, content] : std::vector<std::pair<std::string, std::string>>{
           {"/proc/self/setgroups", "deny"}, {"/proc/self/uid_map", map}, {"/proc/self/gid_map", map}}) {
    std::FILE* out = std::fopen(file.c_str(), "w");
    if (out == nullptr) return false;
    const bool written = std::fputs(content.c_str(), out) >= 0;
    if (std::fclose(out) != 0 || !written) return false;
  }
  return true;
#else
  return false;
#endif
}

// su [-c COMMAND] | su [USER [COMMAND…]]: the two common kinds of su.
Words ShellWords(const Words& words) {
  Words shell = {kShell};
  size_t next = 0;
  if (next < words.size() && (words[next] == "0" || words[next] == "root" || words[next] == "-")) ++next;
  if (next < words.size() && words[next] == "-c") {
    std::string command;
    for (++next; next < words.size(); ++next) command += (command.empty() ? "" : " ") + words[next];
    shell.insert(shell.end(), {"-c", command});
  } else if (next < words.size()) {
    shell.insert(shell.end(), {"-c", "exec \"$@\"", "su"});
    shell.insert(shell.end(), words.begin() + static_cast<Words::difference_type>(next), words.end());
  }
  return shell;
}

}  // namespace

int RunSu(const Words& words) {
  if (!BecomeRoot()) {
    std::perror("su");
    return 1;
  }
  Words shell = ShellWords(words);
  std::vector<char*> arguments;
  for (std::string& word : shell) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  execv(kShell, arguments.data());
  std::perror("su");
  return 1;
}

}  // namespace darokleim::phone
