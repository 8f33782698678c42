#include "tests/endurance/soak/caller.h"

#include <algorithm>

namespace darokleim::soak {
namespace {

// Of a call to a phone that hangs: it is not to hold its thread up for long, and is over long before the phone goes on.
constexpr std::chrono::milliseconds kTimeoutOfHungPhone{500};
// Beyond what a call may take at most; then it hangs.
constexpr std::chrono::seconds kLong{30};

}  // namespace

Canceller::Canceller() : thread_([this] { Run(); }) {}

Canceller::~Canceller() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

std::optional<Clock::time_point> Canceller::Appointment::kept() const {
  const std::lock_guard lock(mutex_);
  return kept_;
}

std::shared_ptr<Canceller::Appointment> Canceller::Appoint(std::chrono::milliseconds from_now) {
  auto appointment = std::make_shared<Appointment>();
  {
    const std::lock_guard lock(mutex_);
    appointments_.emplace(Clock::now() + from_now, appointment);
  }
  changed_.notify_all();
  return appointment;
}

void Canceller::Run() {
  std::unique_lock lock(mutex_);
  while (!ending_) {
    if (appointments_.empty()) {
      changed_.wait(lock);
      continue;
    }
    const auto [time, appointment] = *appointments_.begin();
    if (Clock::now() < time) {
      changed_.wait_until(lock, time);
      continue;
    }
    appointments_.erase(appointments_.begin());
    {
      const std::lock_guard keeping(appointment->mutex_);
      appointment->kept_ = Clock::now();
    }
    appointment->token_.set();
  }
}

CallsUnderWay::Stay::Stay(CallsUnderWay* calls, const Entry& entry) : calls_(calls) {
  const std::lock_guard lock(calls->mutex_);
  at_ = calls->entries_.insert(calls->entries_.end(), entry);
}

CallsUnderWay::Stay::~Stay() {
  const std::lock_guard lock(calls_->mutex_);
  calls_->entries_.erase(at_);
}

std::optional<CallsUnderWay::Entry> CallsUnderWay::Overdue() const {
  const std::lock_guard lock(mutex_);
  const auto now = Clock::now();
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return now > entry.begin + entry.timeout + kLong;
  });
  return found == entries_.end() ? std::optional<Entry>() : *found;
}

void Caller::Wrong(const std::string& what) const {
  around_.tally->Wrong((phone_ ? "phone " + std::to_string(*phone_) + ": " : std::string()) + what);
}

bool Caller::WasHealthySince(Clock::time_point begin) const {
  const auto now = Clock::now();
  return around_.histories->of_server.During(begin, now).empty() &&
         (!phone_ || around_.histories->of_phone[*phone_].During(begin, now).empty());
}

bool Caller::HadSince(Clock::time_point begin, Fault fault) const {
  if (!phone_) return false;
  const auto spans = around_.histories->of_phone[*phone_].During(begin, Clock::now());
  return std::any_of(spans.begin(), spans.end(), [&](const FaultSpan& span) { return span.fault == fault; });
}

std::chrono::milliseconds Caller::Timeout() const {
  const bool is_hung = phone_ && around_.histories->of_phone[*phone_].IsNow(Fault::kHung);
  return is_hung ? kTimeoutOfHungPhone : kTimeout;
}

}  // namespace darokleim::soak
