#include "client/temporary_name.h"

#include <signal.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>

namespace darokleim::client {
namespace {

// Eight hexadecimal digits of this computer's name.
std::string HostMark() {
  std::array<char, 256> name = {};
  gethostname(name.data(), name.size() - 1);
  std::uint32_t hash = 2166136261U;  // FNV-1a
  for (const char* c = name.data(); *c != '\0'; ++c)
    hash = (hash ^ static_cast<unsigned char>(*c)) * 16777619U;
  std::array<char, 9> digits = {};
  std::snprintf(digits.data(), digits.size(), "%08x", static_cast<unsigned>(hash));
  return digits.data();
}

bool IsAlive(long process) {
  return kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH;
}

}  // namespace

std::string NewTemporaryName() {
  static std::atomic<unsigned> count{0};
  return std::string(kTemporaryPrefix) + HostMark() + "-" + std::to_string(getpid()) + "-" +
         std::to_string(count++);
}

bool IsLeftOver(std::string_view name) {
  const std::string begin = std::string(kTemporaryPrefix) + HostMark() + "-";
  if (name.substr(0, begin.size()) != begin) return false;
  name.remove_prefix(begin.size());
  long process = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
  const bool has_form = error == std::errc() && end != name.data() + name.size() && *end == '-';
  return has_form && process > 0 && !IsAlive(process);
}

}  // namespace darokleim::client
