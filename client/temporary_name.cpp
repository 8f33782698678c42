#include "client/temporary_name.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
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

// The names of this process that are in use, by their numbers, which are counted from 1; 0: a free place. There is no lock, because a
// fork of the host could leave it locked.
constexpr std::size_t kPlaces = 1024;
std::array<std::atomic<std::uint64_t>, kPlaces> in_use;
// Names for which there was no place. While there are any, no name of this process is taken for left over.
std::atomic<std::uint64_t> without_place{0};

void BeginUse(std::uint64_t number) {
  for (std::atomic<std::uint64_t>& place : in_use) {
    std::uint64_t free = 0;
    if (place.compare_exchange_strong(free, number)) return;
  }
  ++without_place;
}

void EndUse(std::uint64_t number) {
  for (std::atomic<std::uint64_t>& place : in_use) {
    std::uint64_t own = number;
    if (place.compare_exchange_strong(own, 0)) return;
  }
  --without_place;
}

bool IsInUse(std::uint64_t number) {
  return without_place > 0 ||
         std::any_of(in_use.begin(), in_use.end(), [number](const auto& place) { return place == number; });
}

std::uint64_t NextNumber() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

bool IsAlive(long process) {
  return kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH;
}

}  // namespace

TemporaryName::TemporaryName()
    : number_(NextNumber()),
      text_(std::string(kTemporaryPrefix) + HostMark() + "-" + std::to_string(getpid()) + "-" +
            std::to_string(number_)) {
  BeginUse(number_);
}

TemporaryName::~TemporaryName() {
  EndUse(number_);
}

bool IsLeftOver(std::string_view name) {
  const std::string begin = std::string(kTemporaryPrefix) + HostMark() + "-";
  if (name.substr(0, begin.size()) != begin) return false;
  name.remove_prefix(begin.size());
  long process = 0;
  const char* const end_of_name = name.data() + name.size();
  const auto [end, error] = std::from_chars(name.data(), end_of_name, process);
  const bool has_form = error == std::errc() && end != end_of_name && *end == '-';
  if (!has_form || process <= 0) return false;
  if (process != getpid()) return !IsAlive(process);
  std::uint64_t number = 0;
  return std::from_chars(end + 1, end_of_name, number).ec == std::errc() && !IsInUse(number);
}

}  // namespace darokleim::client
