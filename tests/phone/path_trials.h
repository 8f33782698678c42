#ifndef DAROKLEIM_TESTS_PHONE_PATH_TRIALS_H
#define DAROKLEIM_TESTS_PHONE_PATH_TRIALS_H

#include <functional>
#include <string>
#include <vector>

#include "tests/phone/trial_place.h"

namespace darokleim::test {

struct TrialResult {
  int code;   // what the function returned
  bool done;  // whether it did, or answered, what it was asked for
};

// One function of the library, given a path that ends in an awkward name; where it takes two paths, both do.
struct PathTrial {
  std::string title;
  std::function<TrialResult(const TrialPlace&)> run;
  // Whether it uses more of the phone than its place, so that two must not run at the same time.
  bool alone = false;
};

// Every function that takes a path, in the order in which they must run.
std::vector<PathTrial> PathTrials();

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_PATH_TRIALS_H
