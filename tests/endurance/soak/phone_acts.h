// What the application of the soak does with a phone besides its files: commands, streams, screenshots, facts, applications.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_PHONE_ACTS_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_PHONE_ACTS_H

#include <darokleim/client.hpp>
#include <deque>
#include <memory>
#include <string>

#include "tests/endurance/soak/caller.h"
#include "tests/endurance/soak/known_files.h"

namespace darokleim::soak {

void AskState(Caller* caller, const dk::Device& phone);
void RunCommands(Caller* caller, const dk::Device& phone, Random* random);
void TakeScreenshot(Caller* caller, const dk::Device& phone);
void AskFacts(Caller* caller, const dk::Device& phone);
void AskProperties(Caller* caller, const dk::Device& phone, bool is_old);
// An address of this computer leads to the phone for a moment.
void UseForward(Caller* caller, const dk::Device& phone);

// Logs and shell sessions. What was stopped is kept for a while, so that a callback after the stop is seen.
class Streams {
 public:
  void FollowLog(Caller* caller, const dk::Device& phone, Random* random, bool is_old);
  void UseShell(Caller* caller, const dk::Device& phone, Random* random, bool is_old);

 private:
  std::deque<dk::Log> stopped_logs_;
  std::deque<dk::Shell> stopped_shells_;
};

// One application that comes and goes in two versions. One thread per phone has it.
class Application {
 public:
  void InstallOrRemove(Caller* caller, const dk::Device& phone, Random* random);
  void Look(Caller* caller, const dk::Device& phone);
  void List(Caller* caller, const dk::Device& phone) const;
  void Install(Caller* caller, const dk::Device& phone, Version version);
  void Remove(Caller* caller, const dk::Device& phone);

 private:
  KnownFile installed_;  // the version's code
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_PHONE_ACTS_H
