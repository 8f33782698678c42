// Counts calls by kind and outcome, judges each by the faults of its time, and sees calls that do not come back.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_TALLY_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_TALLY_H

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "tests/endurance/soak/codes.h"
#include "tests/endurance/soak/faults.h"

namespace darokleim::soak {

enum class Act {
  kDevices,
  kState,
  kWatch,
  kStopServer,
  kStat,
  kList,
  kWalk,
  kRead,
  kWrite,
  kPushOne,
  kPushMany,
  kPushTree,
  kUpdate,
  kPullOne,
  kPullMany,
  kPullTree,
  kMakeFolder,
  kCopy,
  kMove,
  kRemove,
  kRun,
  kShell,
  kShellEnd,
  kLog,
  kLogEnd,
  kScreenshot,
  kFacts,
  kProperties,
  kForward,
  kInstall,
  kUninstall,
  kApp,
  kApps,
  kCount,
};
constexpr std::size_t kActs = static_cast<std::size_t>(Act::kCount);

// A call that has returned, or a stream that has reported its end.
struct Call {
  Act act;
  std::optional<std::size_t> phone;  // none: of the server alone
  Clock::time_point begin, end;
  std::chrono::milliseconds timeout{0};  // 0: none
  std::optional<Clock::time_point> cancelled;
  dk_code code = DK_OK;
  std::string message = {};
  Codes also = {};       // what it may come to on any phone, besides DK_OK
  Codes if_faulty = {};  // … on a phone that has a fault
};

class Tally {
 public:
  Tally(const FaultHistories* histories, std::uint64_t seed) : histories_(histories), seed_(seed) {}

  // Counts the call; one that gave what it may not is reported as wrong.
  void Count(const Call& call);
  // Anything that is not as it should be. It is printed.
  void Wrong(const std::string& what);
  std::uint64_t wrong() const { return wrong_; }

  void PrintProgress(double seconds) const;
  void PrintTable() const;

 private:
  static constexpr std::size_t kCodes = 64;

  std::string Complaint(const Call& call) const;

  const FaultHistories* const histories_;
  const std::uint64_t seed_;
  std::array<std::array<std::atomic<std::uint64_t>, kCodes>, kActs> counts_ = {};
  std::array<std::atomic<std::int64_t>, kActs> longest_ms_ = {};
  std::atomic<std::uint64_t> wrong_{0};
  std::mutex printing_;
};

const char* NameOf(Act act);

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_TALLY_H
