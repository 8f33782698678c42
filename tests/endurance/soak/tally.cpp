#include "tests/endurance/soak/tally.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace darokleim::soak {
namespace {

using std::chrono::milliseconds;

// What a call may take beyond its limit, or after a cancel: the machine may be busy. The removal of temporary files has a limit of its
// own.
constexpr milliseconds kGrace{3000};
constexpr milliseconds kGraceToCleanUp{10'000};
// A fault is in effect a moment after its order was taken.
constexpr milliseconds kSettles{100};
constexpr std::uint64_t kShownWrong = 100;

constexpr const char* kNames[] = {
    "devices",   "state",       "watch",       "stop server", "stat",       "list",   "walk",
    "read",      "write",       "push one",    "push many",   "push tree",  "update", "pull one",
    "pull many", "pull tree",   "make folder", "copy",        "move",       "remove", "run",
    "shell",     "shell's end", "log",         "log's end",   "screenshot", "facts",  "properties",
    "forward",   "install",     "uninstall",   "app",         "apps",
};
static_assert(std::size(kNames) == kActs);

double Seconds(Clock::duration time) {
  return std::chrono::duration<double>(time).count();
}

// Whether the phone had the fault, and nothing else changed, all the time of the call.
bool IsWithin(const Call& call, const FaultSpan& span) {
  return span.in_effect != Clock::time_point::max() && span.in_effect + kSettles <= call.begin &&
         call.end <= span.mending;
}

Codes Allowed(const Call& call, const std::vector<FaultSpan>& spans) {
  Codes allowed = call.also | Codes{DK_OK};
  for (const FaultSpan& span : spans) allowed |= RuleOf(span.fault).may_be | call.if_faulty;
  if (spans.size() == 1 && call.phone && IsWithin(call, spans[0])) {
    const Codes must_be = RuleOf(spans[0].fault).must_be;
    if (!must_be.empty()) allowed = must_be | call.also | call.if_faulty;
  }
  if (call.cancelled && *call.cancelled <= call.end) allowed |= Codes{DK_CANCELLED};
  return allowed;
}

milliseconds GraceOf(Act act) {
  switch (act) {
    case Act::kWrite:
    case Act::kPushOne:
    case Act::kPushMany:
    case Act::kPushTree:
    case Act::kUpdate:
    case Act::kInstall:
      return kGraceToCleanUp;
    default:
      return kGrace;
  }
}

// Why the time that the call took is wrong; empty where it is right.
std::string LatenessOf(const Call& call) {
  const auto took = call.end - call.begin;
  if (call.timeout.count() > 0 && took > call.timeout + GraceOf(call.act))
    return "took longer than its limit";
  if (call.cancelled && call.end > *call.cancelled + GraceOf(call.act))
    return "went on after it was cancelled";
  if (call.code == DK_TIMED_OUT && took + milliseconds(5) < call.timeout) return "ended before its limit";
  return "";
}

}  // namespace

const char* NameOf(Act act) {
  return kNames[static_cast<std::size_t>(act)];
}

void Tally::Count(const Call& call) {
  const auto act = static_cast<std::size_t>(call.act);
  ++counts_[act][static_cast<std::size_t>(call.code) % kCodes];
  const auto took = std::chrono::duration_cast<milliseconds>(call.end - call.begin).count();
  std::int64_t longest = longest_ms_[act];
  while (took > longest && !longest_ms_[act].compare_exchange_weak(longest, took)) {
  }
  const std::string complaint = Complaint(call);
  if (!complaint.empty()) Wrong(complaint);
}

std::string Tally::Complaint(const Call& call) const {
  std::vector<FaultSpan> spans = histories_->of_server.During(call.begin, call.end);
  if (call.phone) {
    const auto own = histories_->of_phone[*call.phone].During(call.begin, call.end);
    spans.insert(spans.end(), own.begin(), own.end());
  }
  std::string why = LatenessOf(call);
  if (why.empty() && !Allowed(call, spans).Has(call.code)) why = "is not what it may come to";
  if (why.empty()) return "";
  char text[256];
  std::snprintf(text, sizeof text, "%s on phone %d gave %s in %.2f s, which %s.", NameOf(call.act),
                call.phone ? static_cast<int>(*call.phone) : -1, dk_code_name(call.code),
                Seconds(call.end - call.begin), why.c_str());
  std::string complaint = std::string(text) + "\n    " + call.message;
  for (const FaultSpan& span : spans) {
    std::snprintf(text, sizeof text, "\n    %s: from %.2f s", RuleOf(span.fault).name,
                  Seconds(span.begun - call.begin));
    complaint += text;
    if (span.ended == Clock::time_point::max()) continue;
    std::snprintf(text, sizeof text, " to %.2f s after its begin", Seconds(span.ended - call.begin));
    complaint += text;
  }
  return complaint;
}

void Tally::Wrong(const std::string& what) {
  if (++wrong_ > kShownWrong) return;
  const std::lock_guard lock(printing_);
  std::printf("WRONG: %s\n", what.c_str());
  std::fflush(stdout);
}

void Tally::PrintProgress(double seconds) const {
  std::array<std::uint64_t, kCodes> sums = {};
  std::uint64_t all = 0;
  for (const auto& codes : counts_) {
    for (std::size_t code = 0; code < kCodes; ++code) {
      sums[code] += codes[code];
      all += codes[code];
    }
  }
  std::printf("%5.1f min: %llu calls, %llu wrong;", seconds / 60, static_cast<unsigned long long>(all),
              static_cast<unsigned long long>(wrong_));
  for (std::size_t code = 0; code < kCodes; ++code) {
    if (sums[code] > 0) {
      std::printf(" %s %llu", dk_code_name(static_cast<dk_code>(code)),
                  static_cast<unsigned long long>(sums[code]));
    }
  }
  std::printf("\n");
  std::fflush(stdout);
}

void Tally::PrintTable() const {
  std::printf("%-12s %8s %9s  %s\n", "call", "calls", "longest", "outcomes");
  for (std::size_t act = 0; act < kActs; ++act) {
    std::uint64_t all = 0;
    std::string outcomes;
    for (std::size_t code = 0; code < kCodes; ++code) {
      const std::uint64_t count = counts_[act][code];
      if (count == 0) continue;
      all += count;
      outcomes += std::string("  ") + dk_code_name(static_cast<dk_code>(code)) + " " + std::to_string(count);
    }
    if (all == 0) continue;
    std::printf("%-12s %8llu %7.2f s%s\n", kNames[act], static_cast<unsigned long long>(all),
                static_cast<double>(longest_ms_[act]) / 1000, outcomes.c_str());
  }
  std::printf("seed %llu, %llu wrong\n", static_cast<unsigned long long>(seed_),
              static_cast<unsigned long long>(wrong_));
}

}  // namespace darokleim::soak
