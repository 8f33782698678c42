// Calls the library over and over from many threads and reports what of the host was lost on the way.
//
//   endurance_host RESOURCES SERIAL CALLS THREADS DEVICE_FOLDER [unsteady]
//
// RESOURCES: a folder with adb and busybox; logs and host files go there, too. DEVICE_FOLDER is made on the phone.
#include <darokleim.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/endurance/calls.h"
#include "tests/endurance/host_resources.h"

namespace darokleim::endurance {
namespace {

// What a heap may have grown by: buffers of the standard library that live as long as the process.
constexpr std::size_t kHeapSlack = 16 * 1024;

constexpr long kShownWrong = 20;

struct Tally {
  std::atomic<long> left;
  std::atomic<long> wrong = 0;
};

void CallUntilDone(const Place& place, Tally* tally) {
  std::minstd_rand random(static_cast<unsigned>(place.thread) + 1);
  while (tally->left.fetch_sub(1) > 0) {
    const Call& call = kCalls[random() % kCallCount];
    const int code = call.run(place);
    if (code == call.expected) continue;
    if (++tally->wrong > kShownWrong) continue;
    std::fprintf(stderr, "%s: %d instead of %d\n", call.name, code, call.expected);
  }
}

// Returns how many calls gave another code than they should.
long RunCalls(Place place, long calls, int threads) {
  Tally tally{calls};
  std::vector<std::thread> running;
  for (int i = 0; i < threads; ++i) {
    place.thread = i;
    running.emplace_back([place, &tally] { CallUntilDone(place, &tally); });
  }
  for (std::thread& thread : running) thread.join();
  return tally.wrong;
}

// A connection that is kept is closed within two seconds. A stream's thread ends shortly after its last callback; what is left of it goes when another one starts.
HostResources CountWhenStreamsHaveEnded(const Place& place, std::size_t threads) {
  FollowLog(place);
  HostResources now = CountHostResources();
  for (int i = 0; i < 400 && now.threads > threads; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    now = CountHostResources();
  }
  return now;
}

void Show(const char* when, const HostResources& resources) {
  std::printf("%-7s %4zu descriptors, %3zu threads, %3zu children, %9zu bytes of heap\n", when,
              resources.descriptors, resources.threads, resources.children, resources.heap_bytes);
}

int Run(const std::string& resources, const Place& place, long calls, int threads, bool codes_count) {
  if (AdbSdkInit(resources.c_str(), "endurance", resources.c_str()) != ADB_RESULT_OK) return 1;
  std::ofstream(place.host_file) << "1234567";
  AdbCreateDir(place.serial.c_str(), place.device_folder.c_str(), nullptr);
  AdbPushFile(place.serial.c_str(), place.host_file.c_str(), place.device_file.c_str(), nullptr);
  // The first calls fill what is kept for the life of the process: the log's buffers, the channel's large block.
  RunCalls(place, 4 * threads, threads);

  const HostResources before = CountWhenStreamsHaveEnded(place, 1);
  const auto began = std::chrono::steady_clock::now();
  const long wrong = RunCalls(place, calls, threads);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - began;
  const HostResources after = CountWhenStreamsHaveEnded(place, before.threads);

  Show("before", before);
  Show("after", after);
  std::printf("%ld calls on %d threads in %.1f s, %ld with another code than they should\n", calls, threads,
              seconds.count(), wrong);
  const bool lost = after.descriptors != before.descriptors || after.threads != before.threads ||
                    after.children != before.children || after.heap_bytes > before.heap_bytes + kHeapSlack;
  if (lost) std::puts("something was lost");
  if (!codes_count) return wrong == calls || lost ? 1 : 0;
  return wrong != 0 || lost ? 1 : 0;
}

}  // namespace
}  // namespace darokleim::endurance

int main(int argc, char** argv) {
  const bool unsteady = argc == 7 && std::string(argv[6]) == "unsteady";
  if (argc != 6 && !unsteady) {
    std::fprintf(stderr, "usage: endurance_host RESOURCES SERIAL CALLS THREADS DEVICE_FOLDER [unsteady]\n");
    return 2;
  }
  const std::string resources = argv[1], folder = argv[5];
  return darokleim::endurance::Run(resources,
                                   {argv[2], folder + "/my photo.jpg", folder, resources + "/photo", 0},
                                   std::atol(argv[3]), std::atoi(argv[4]), !unsteady);
}
