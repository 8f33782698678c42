// The threads that unplug, lock, fill and hang the phones at random, and end their server.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_TROUBLES_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_TROUBLES_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "tests/endurance/soak/faults.h"
#include "tests/endurance/soak/phones.h"
#include "tests/endurance/soak/random.h"

namespace darokleim::soak {

struct Pace {
  using Time = std::chrono::milliseconds;
  Time shortest_peace{1000}, longest_peace{5000};  // of a phone, between two faults
  Time shortest_fault{300}, longest_fault{5000};
  Time shortest_server{15'000}, longest_server{45'000};  // the life of a server
  std::size_t stops_per_kill = 5;
  Time shortest_pause{50}, longest_pause{500};  // of a user: phones that are busy all the time are slow
};

class Troubles {
 public:
  // stop_server: as an application does it.
  Troubles(Phones* phones, FaultHistories* histories, std::function<void()> stop_server, const Pace& pace,
           std::uint64_t seed);
  // Mends everything.
  ~Troubles();

  void End();

 private:
  struct Trouble;
  static const Trouble kTroubles[];
  static const std::size_t kTroubleCount;

  // Whether there is no end yet.
  bool Sleep(std::chrono::milliseconds time);
  void TroublePhone(std::size_t phone, Random random);
  void Cause(std::size_t phone, const Trouble& trouble, std::chrono::milliseconds length);
  void TroubleServer(Random random);
  void StopServer();
  void KillServer();

  Phones* const phones_;
  FaultHistories* const histories_;
  const std::function<void()> stop_server_;
  const Pace pace_;

  std::mutex mutex_;
  std::condition_variable changed_;
  bool ending_ = false;
  std::size_t troubled_phones_ = 0;
  bool wants_all_at_peace_ = false;
  std::vector<bool> may_be_away_;
  std::vector<std::thread> threads_;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_TROUBLES_H
