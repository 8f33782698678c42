#include "tools/phone/device/programs/programs.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <map>

namespace darokleim::phone {

namespace {

const std::map<std::string, Program>& Programs() {
  static const std::map<std::string, Program> programs = {
      {"am", RunAm},           {"bu", RunBu},
      {"cmd", RunCmd},         {"dd", RunDd},
      {"df", RunDf},           {"dumpsys", RunDumpsys},
      {"getprop", RunGetprop}, {"input", RunInput},
      {"ip", RunIp},           {"log", RunLog},
      {"logcat", RunLogcat},   {"ls", RunLs},
      {"monkey", RunMonkey},   {"pm", RunPm},
      {"reboot", RunReboot},   {"screencap", RunScreencap},
      {"setprop", RunSetprop}, {"settings", RunSettings},
      {"su", RunSu},           {"wm", RunWm},
  };
  return programs;
}

}  // namespace

Program FindProgram(const std::string& name) {
  const auto found = Programs().find(name);
  return found == Programs().end() ? nullptr : found->second;
}

std::vector<std::string> ProgramNames() {
  std::vector<std::string> names;
  for (const auto& program : Programs()) names.push_back(program.first);
  return names;
}

bool IsToolboxProgram(const std::string& name) {
  return name == "df" || name == "ls";
}

const std::vector<std::string>& ToyboxCommands() {
  static const std::vector<std::string> commands = {
      "base64",    "basename", "cal",       "cat",       "chgrp",     "chmod",      "chown",   "cksum",
      "clear",     "cmp",      "comm",      "cp",        "cpio",      "cut",        "date",    "df",
      "dirname",   "dmesg",    "dos2unix",  "du",        "echo",      "egrep",      "env",     "expand",
      "fallocate", "false",    "fgrep",     "file",      "find",      "flock",      "free",    "getconf",
      "grep",      "groups",   "gunzip",    "gzip",      "head",      "hostname",   "iconv",   "id",
      "ifconfig",  "install",  "kill",      "killall",   "link",      "ln",         "logname", "ls",
      "md5sum",    "mkdir",    "mkfifo",    "mktemp",    "mount",     "mountpoint", "mv",      "nc",
      "netcat",    "netstat",  "nice",      "nl",        "nohup",     "nproc",      "od",      "paste",
      "patch",     "pgrep",    "pidof",     "pkill",     "printenv",  "printf",     "ps",      "pwd",
      "readlink",  "realpath", "renice",    "rev",       "rm",        "rmdir",      "sed",     "seq",
      "setsid",    "sha1sum",  "sha224sum", "sha256sum", "sha384sum", "sha512sum",  "sleep",   "sort",
      "split",     "stat",     "strings",   "stty",      "sync",      "tac",        "tail",    "tar",
      "taskset",   "tee",      "test",      "time",      "timeout",   "top",        "touch",   "tr",
      "true",      "truncate", "tty",       "uname",     "uniq",      "unix2dos",   "unlink",  "uptime",
      "usleep",    "uudecode", "uuencode",  "vmstat",    "wc",        "which",      "whoami",  "xargs",
      "xxd",       "yes",      "zcat"};
  return commands;
}

// cmd SERVICE …: the newer way to what pm, am and settings do.
int RunCmd(const Words& words) {
  const std::string service = words.empty() ? "" : words[0];
  const Words rest(words.empty() ? words.end() : words.begin() + 1, words.end());
  if (service == "package") return RunPm(rest);
  if (service == "activity") return RunAm(rest);
  if (service == "settings") return RunSettings(rest);
  if (service == "window") return RunWm(rest);
  if (service == "-l") {
    std::printf("Currently running services:\n  activity\n  package\n  settings\n  window\n");
    return 0;
  }
  std::fprintf(stderr, "cmd: Can't find service: %s\n", service.c_str());
  return 20;
}

// The phone's first process passes the request on to the server, which switches the phone off and on; this program
// ends with the phone.
int RunReboot(const Words&) {
  constexpr pid_t kFirstProcess = 1;
  if (kill(kFirstProcess, SIGUSR1) != 0) {
    std::perror("reboot");
    return 1;
  }
  for (;;) pause();
}

}  // namespace darokleim::phone
