// Calls the client over and over from many threads with one context and says whether anything of the host was lost on the way.
//
//   client_endurance_host SERVER SERIAL CALLS THREADS FOLDER [unsteady]
//
// FOLDER: of this computer, for files that are sent and fetched. unsteady: the server ends now and then, so that calls may fail
// for it.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <darokleim/client.hpp>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/endurance/host_resources.h"

namespace darokleim::endurance {
namespace {

// What a heap may have grown by: buffers of the standard library that live as long as the process.
constexpr std::size_t kHeapSlack = 16 * 1024;
constexpr long kShownWrong = 20;

struct Place {
  const dk::Client* client;
  const dk::Device* phone;
  std::string host;   // a folder of the thread's own
  std::string there;  // one of the phone
};

dk_transfer_options Replacing() {
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.existing = DK_REPLACE;
  return options;
}

dk_code FollowLog(const Place& place) {
  dk_log_options options = DK_LOG_OPTIONS_INIT;
  auto log = place.phone->log(options, [](const dk_log_record&) {});
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  return log.code();
}

dk_code Watch(const Place& place) {
  auto watch = place.client->watch([](dk_change, const dk::DeviceInfo*) {});
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  return watch.code();
}

dk_code Cancelled(const Place& place) {
  const dk::Cancel cancel;
  cancel.set();
  return place.phone->run({"true"}, {cancel, {}}).code();
}

dk_code TimedOut(const Place& place) {
  return place.phone->run({"sleep", "60"}, {{}, std::chrono::milliseconds(30)}).code();
}

struct Call {
  const char* name;
  dk_code expected;
  dk_code (*run)(const Place& place);
};

const Call kCalls[] = {
    {"devices", DK_OK, [](const Place& place) { return place.client->devices().code(); }},
    {"stat", DK_OK, [](const Place& place) { return place.phone->stat("/sdcard").code(); }},
    {"list", DK_OK, [](const Place& place) { return place.phone->list("/sdcard").code(); }},
    {"list nothing", DK_NOT_FOUND,
     [](const Place& place) { return place.phone->list("/sdcard/none").code(); }},
    {"push", DK_OK,
     [](const Place& place) {
       return place.phone->push({{place.host + "/send", place.there + "/sent"}}, Replacing()).code();
     }},
    {"pull", DK_OK,
     [](const Place& place) {
       return place.phone->pull({{"/sdcard/endurance", place.host + "/fetched"}}, Replacing()).code();
     }},
    {"write", DK_OK,
     [](const Place& place) { return place.phone->write(place.there + "/file", "text", 0644, true).code(); }},
    {"read", DK_OK, [](const Place& place) { return place.phone->read("/sdcard/endurance/file").code(); }},
    {"run", DK_OK,
     [](const Place& place) {
       return place.phone->run({"echo", "hello"}).code();
     }},
    {"properties", DK_OK, [](const Place& place) { return place.phone->properties().code(); }},
    {"no device", DK_NO_DEVICE,
     [](const Place& place) { return place.client->open("NOBODY").value().run({"true"}).code(); }},
    {"cancelled", DK_CANCELLED, Cancelled},
    {"timed out", DK_TIMED_OUT, TimedOut},
    {"watch", DK_OK, Watch},
    {"log", DK_OK, FollowLog},
};

// What a call may fail with where its server ends.
bool IsOfTheServer(dk_code code) {
  return code == DK_NO_SERVER || code == DK_CONNECTION_LOST || code == DK_NO_DEVICE ||
         code == DK_DEVICE_OFFLINE;
}

struct Tally {
  std::atomic<long> left;
  bool unsteady;
  std::atomic<long> wrong = 0, of_server = 0;
};

void CallUntilDone(const Place& place, unsigned seed, Tally* tally) {
  std::minstd_rand random(seed);
  while (tally->left.fetch_sub(1) > 0) {
    const Call& call = kCalls[random() % std::size(kCalls)];
    const dk_code code = call.run(place);
    if (code == call.expected) continue;
    if (tally->unsteady && IsOfTheServer(code)) {
      ++tally->of_server;
      continue;
    }
    if (++tally->wrong > kShownWrong) continue;
    std::fprintf(stderr, "%s: %s instead of %s\n", call.name, dk_code_name(code),
                 dk_code_name(call.expected));
  }
}

// Returns whether every call gave the code that it should, and some did so although the server is unsteady.
bool RunCalls(const Place& place, long calls, int threads, bool unsteady) {
  Tally tally{calls, unsteady};
  std::vector<std::thread> running;
  for (int i = 0; i < threads; ++i) {
    Place own = place;
    own.host += "/" + std::to_string(i);
    own.there += "/" + std::to_string(i);
    std::filesystem::create_directories(own.host + "/send/folder");
    for (const char* file : {"/send/a", "/send/b", "/send/folder/c"})
      std::ofstream(own.host + file) << "1234567";
    running.emplace_back([own, i, &tally] { CallUntilDone(own, static_cast<unsigned>(i) + 1, &tally); });
  }
  for (std::thread& thread : running) thread.join();
  if (unsteady) std::printf("%ld calls failed for the server\n", tally.of_server.load());
  return tally.wrong == 0 && tally.of_server < calls;
}

void Show(const char* when, const HostResources& resources) {
  std::printf("%-7s %4zu descriptors, %3zu threads, %3zu children, %9zu bytes of heap\n", when,
              resources.descriptors, resources.threads, resources.children, resources.heap_bytes);
}

int Run(const std::string& server, const char* serial, long calls, int threads, const std::string& folder,
        bool unsteady) {
  dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
  options.server = server.c_str();
  const dk::Client client(options);
  const dk::Device phone = client.open(serial).value();
  const Place place = {&client, &phone, folder, "/sdcard/threads"};
  // Before the server begins to end.
  phone.write("/sdcard/endurance/file", "1234567", 0644, true).value();
  RunCalls(place, 4 * threads, threads, true);  // what is kept for the life of the process

  const HostResources before = CountHostResources();
  const auto began = std::chrono::steady_clock::now();
  const bool right = RunCalls(place, calls, threads, unsteady);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - began;
  const HostResources after = CountHostResources();
  Show("before", before);
  Show("after", after);
  std::printf("%ld calls on %d threads in %.1f s\n", calls, threads, seconds.count());
  const bool lost = after.descriptors != before.descriptors || after.threads != before.threads ||
                    after.children != before.children || after.heap_bytes > before.heap_bytes + kHeapSlack;
  if (lost) std::puts("something was lost");
  return right && !lost ? 0 : 1;
}

}  // namespace
}  // namespace darokleim::endurance

int main(int argc, char** argv) {
  const bool unsteady = argc == 7 && std::string(argv[6]) == "unsteady";
  if (argc != 6 && !unsteady) {
    std::fprintf(stderr, "usage: client_endurance_host SERVER SERIAL CALLS THREADS FOLDER [unsteady]\n");
    return 2;
  }
  try {
    return darokleim::endurance::Run(argv[1], argv[2], std::atol(argv[3]), std::atoi(argv[4]), argv[5],
                                     unsteady);
  } catch (const dk::Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
