// The users of the soak's application: several for each phone, each with files of its own.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_USERS_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_USERS_H

#include <atomic>
#include <darokleim/client.hpp>
#include <functional>
#include <string>
#include <vector>

#include "tests/endurance/soak/device_picture.h"
#include "tests/endurance/soak/file_acts.h"
#include "tests/endurance/soak/phone_acts.h"
#include "tests/endurance/soak/phones.h"
#include "tests/endurance/soak/troubles.h"

namespace darokleim::soak {

// What one user does, on a thread of its own, one thing after the other.
class User {
 public:
  // `number` counts the users of this phone. `host`: a folder of this computer for them alone.
  User(const Surroundings& around, const dk::Client& client, const Phones& phones, std::size_t phone,
       std::size_t number, const std::string& host, std::uint64_t seed);

  // Each set is transferred once: the phone must be healthy.
  void Begin();
  // One thing after the other, with pauses, until `ending` is set.
  void Run(const std::atomic<bool>& ending, const Pace& pace);
  // Each set is transferred both ways once more: the phone must be healthy.
  void Finish();

 private:
  struct Habit;
  static const Habit kHabits[];

  void DoSomething();
  void Watch();
  void ListDevices();
  SharedSet& Any() { return sets_[random_.Below(sets_.size())]; }
  // One of those that are a folder without folders.
  SharedSet& AnyFlat() { return random_.OneIn(2) ? sets_[kOne] : sets_[kMany]; }

  enum : std::size_t { kOne, kMany, kTree };

  const dk::Client client_;
  const dk::Device phone_;
  const bool is_old_, owns_application_;
  Random random_;
  Caller caller_, caller_of_server_;
  std::vector<SharedSet> sets_;
  SharedSet note_;
  Streams streams_;
  Application application_;
  std::deque<dk::Watch> stopped_watches_;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_USERS_H
