#include "tools/phone/device/tools.h"

namespace darokleim::phone {

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

}  // namespace darokleim::phone
