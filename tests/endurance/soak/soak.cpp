// A host that does for long what an application does, on phones that come, go, hang, fill up and are locked at random. Each answer
// is compared with what it may be.
//
//   client_soak_host [--minutes N | --seconds N] [--phones N] [--seed N]
#include <getopt.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "tests/endurance/host_resources.h"
#include "tests/endurance/soak/round.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::soak {
namespace {

using endurance::CountHostResources;
using endurance::HostResources;

// What a heap may have grown by: buffers of the standard library that live as long as the process.
constexpr std::size_t kHeapSlack = 32 * 1024;

struct Options {
  std::chrono::seconds length{30 * 60};
  std::size_t phones = 8;
  std::uint64_t seed = std::random_device{}();
};

// A short run has as many faults, in less time.
Pace PaceOf(std::chrono::seconds length) {
  using std::chrono::milliseconds;
  Pace pace;
  if (length >= std::chrono::seconds(60)) return pace;
  pace.shortest_peace = milliseconds(200);
  pace.longest_peace = milliseconds(600);
  pace.shortest_fault = milliseconds(100);
  pace.longest_fault = milliseconds(500);
  pace.shortest_server = milliseconds(500);
  pace.longest_server = milliseconds(1000);
  pace.shortest_pause = milliseconds(5);
  pace.longest_pause = milliseconds(50);
  return pace;
}

void Show(const char* when, const HostResources& resources) {
  std::printf("%-7s %4zu descriptors, %3zu threads, %3zu children, %9zu bytes of heap\n", when,
              resources.descriptors, resources.threads, resources.children, resources.heap_bytes);
}

bool IsAsMuch(const HostResources& before, const HostResources& after) {
  return after.descriptors == before.descriptors && after.threads == before.threads &&
         after.children == before.children && after.heap_bytes <= before.heap_bytes + kHeapSlack;
}

int Run(const Options& options) {
  std::printf("%zu phones, %lld s, seed %llu\n", options.phones,
              static_cast<long long>(options.length.count()), static_cast<unsigned long long>(options.seed));
  const test::TemporaryDirectory folder;
  Phones phones(folder.File("phones"), options.phones);
  const dk::Client client(dk::ClientOptions{phones.server(), "", {}});
  RoundOptions round{std::chrono::milliseconds(options.length) / 8, PaceOf(options.length), options.seed + 1,
                     folder.File("host")};
  round.is_shown = false;
  if (options.length < std::chrono::seconds(60)) round.users = 2;
  std::uint64_t wrong = RunRound(client, &phones, round);  // what is kept for the life of the process

  const HostResources before = CountHostResources();
  round.length = options.length;
  round.seed = options.seed;
  round.is_shown = true;
  wrong += RunRound(client, &phones, round);
  const HostResources after = CountHostResources();
  Show("before", before);
  Show("after", after);
  const bool lost = !IsAsMuch(before, after);
  if (lost) std::puts("something was lost");
  return wrong == 0 && !lost ? 0 : 1;
}

}  // namespace
}  // namespace darokleim::soak

int main(int argc, char** argv) {
  using darokleim::soak::Options;
  Options options;
  constexpr option kLong[] = {{"minutes", required_argument, nullptr, 'm'},
                              {"seconds", required_argument, nullptr, 's'},
                              {"phones", required_argument, nullptr, 'p'},
                              {"seed", required_argument, nullptr, 'r'},
                              {nullptr, 0, nullptr, 0}};
  for (int name; (name = getopt_long(argc, argv, "", kLong, nullptr)) != -1;) {
    const long long number = name == '?' ? 0 : std::strtoll(optarg, nullptr, 10);
    if (number <= 0) {
      std::fprintf(stderr, "usage: client_soak_host [--minutes N | --seconds N] [--phones N] [--seed N]\n");
      return 2;
    }
    if (name == 'm') options.length = std::chrono::minutes(number);
    if (name == 's') options.length = std::chrono::seconds(number);
    if (name == 'p') options.phones = static_cast<std::size_t>(number);
    if (name == 'r') options.seed = static_cast<std::uint64_t>(number);
  }
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  try {
    return darokleim::soak::Run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
