// One round of the soak: users and troubles for a while, then peace, and what must be true then.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_ROUND_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_ROUND_H

#include <darokleim/client.hpp>
#include <string>

#include "tests/endurance/soak/phones.h"
#include "tests/endurance/soak/tally.h"
#include "tests/endurance/soak/troubles.h"

namespace darokleim::soak {

struct RoundOptions {
  std::chrono::milliseconds length;
  Pace pace;
  std::uint64_t seed;
  std::string host;       // a folder of this computer
  std::size_t users = 3;  // of each phone
  bool is_shown = true;   // progress, and the table at the end
};

// Returns how many things were wrong.
std::uint64_t RunRound(const dk::Client& client, Phones* phones, const RoundOptions& options);

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_ROUND_H
