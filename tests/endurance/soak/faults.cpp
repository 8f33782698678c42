#include "tests/endurance/soak/faults.h"

namespace darokleim::soak {
namespace {

using std::chrono::milliseconds;

// More than can happen during a call.
constexpr std::size_t kMostSpans = 64;

constexpr FaultRule kRules[] = {
    {Fault::kUnplugged, "unplugged", milliseconds(300), {DK_NO_DEVICE, DK_CONNECTION_LOST}, {DK_NO_DEVICE}},
    {Fault::kLocked,
     "locked",
     milliseconds(300),
     {DK_DEVICE_UNAUTHORIZED, DK_CONNECTION_LOST},
     {DK_DEVICE_UNAUTHORIZED}},
    {Fault::kOffline,
     "offline",
     milliseconds(300),
     {DK_DEVICE_OFFLINE, DK_CONNECTION_LOST},
     {DK_DEVICE_OFFLINE}},
    {Fault::kFull, "full", milliseconds(300), {DK_NO_SPACE, DK_INSTALL_FAILED}, {}},
    {Fault::kSlow, "slow", milliseconds(300), {}, {}},
    {Fault::kHung, "hung", milliseconds(300), {DK_TIMED_OUT}, {DK_TIMED_OUT}},
    {Fault::kBreaks, "connections break", milliseconds(300), {DK_CONNECTION_LOST}, {}},
    {Fault::kRefusesApps, "refuses applications", milliseconds(300), {DK_INSTALL_FAILED}, {}},
    {Fault::kReboots,
     "reboots",
     milliseconds(500),
     {DK_NO_DEVICE, DK_DEVICE_OFFLINE, DK_CONNECTION_LOST},
     {}},
    // The phones are attached again a moment after the server is back.
    {Fault::kServerStopped,
     "server stopped",
     milliseconds(500),
     {DK_NO_SERVER, DK_NO_DEVICE, DK_CONNECTION_LOST},
     {}},
    {Fault::kServerKilled,
     "server killed",
     milliseconds(500),
     {DK_NO_SERVER, DK_NO_DEVICE, DK_CONNECTION_LOST},
     {}},
};

}  // namespace

const FaultRule& RuleOf(Fault fault) {
  for (const FaultRule& rule : kRules) {
    if (rule.fault == fault) return rule;
  }
  return kRules[0];
}

void FaultHistory::Begin(Fault fault) {
  const std::lock_guard lock(mutex_);
  spans_.push_back({fault, Clock::now()});
  if (spans_.size() > kMostSpans) spans_.pop_front();
}

void FaultHistory::TakeEffect() {
  const std::lock_guard lock(mutex_);
  spans_.back().in_effect = Clock::now();
}

void FaultHistory::Mend() {
  const std::lock_guard lock(mutex_);
  spans_.back().mending = Clock::now();
}

void FaultHistory::End() {
  const std::lock_guard lock(mutex_);
  spans_.back().ended = Clock::now();
}

bool FaultHistory::IsNow(Fault fault) const {
  const std::lock_guard lock(mutex_);
  return !spans_.empty() && spans_.back().fault == fault && spans_.back().ended == Clock::time_point::max();
}

std::vector<FaultSpan> FaultHistory::During(Clock::time_point begin, Clock::time_point end) const {
  const std::lock_guard lock(mutex_);
  std::vector<FaultSpan> found;
  for (const FaultSpan& span : spans_) {
    const bool is_over =
        span.ended != Clock::time_point::max() && span.ended + RuleOf(span.fault).lingers <= begin;
    if (span.begun < end && !is_over) found.push_back(span);
  }
  return found;
}

}  // namespace darokleim::soak
