// How the application of the soak makes a call: with a limit in time, now and then cancelled, measured and judged.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_CALLER_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_CALLER_H

#include <condition_variable>
#include <darokleim/client.hpp>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "tests/endurance/soak/random.h"
#include "tests/endurance/soak/tally.h"

namespace darokleim::soak {

// Sets tokens when their time has come.
class Canceller {
 public:
  Canceller();
  ~Canceller();

  class Appointment {
   public:
    const dk::Cancel& token() const { return token_; }
    // When it was set.
    std::optional<Clock::time_point> kept() const;

   private:
    friend class Canceller;
    dk::Cancel token_;
    mutable std::mutex mutex_;
    std::optional<Clock::time_point> kept_;
  };
  std::shared_ptr<Appointment> Appoint(std::chrono::milliseconds from_now);

 private:
  void Run();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::multimap<Clock::time_point, std::shared_ptr<Appointment>> appointments_;
  bool ending_ = false;
  std::thread thread_;
};

// The calls that have not returned.
class CallsUnderWay {
 public:
  struct Entry {
    Act act;
    std::optional<std::size_t> phone;
    Clock::time_point begin;
    std::chrono::milliseconds timeout;
  };
  // From its making to its end.
  class Stay {
   public:
    Stay(CallsUnderWay* calls, const Entry& entry);
    ~Stay();
    Stay(const Stay&) = delete;
    Stay& operator=(const Stay&) = delete;

   private:
    CallsUnderWay* const calls_;
    std::list<Entry>::iterator at_;
  };
  // One that should have returned long ago.
  std::optional<Entry> Overdue() const;

 private:
  mutable std::mutex mutex_;
  std::list<Entry> entries_;
};

// What all threads of the application share.
struct Surroundings {
  const FaultHistories* histories;
  Tally* tally;
  Canceller* canceller;
  CallsUnderWay* under_way;
};

// The calls of one thread, about one phone or about none.
class Caller {
 public:
  Caller(const Surroundings& around, std::optional<std::size_t> phone) : around_(around), phone_(phone) {}

  // From now on some calls are cancelled, by choice of `random`.
  void CancelAtRandom(Random* random) { random_ = random; }

  // Calls `ask` with limits; it returns a dk::Result.
  template <typename Ask>
  auto Make(Act act, const Ask& ask, Codes also = {}, Codes if_faulty = {}) {
    Call call{act, phone_, Clock::now(), {}, Timeout(), {}};
    std::shared_ptr<Canceller::Appointment> appointment;
    dk::Limits limits;
    limits.timeout = call.timeout;
    if (random_ != nullptr && random_->OneIn(12)) {
      constexpr std::chrono::milliseconds kLatest{300};
      appointment = around_.canceller->Appoint(random_->Between(std::chrono::milliseconds(0), kLatest));
      limits.cancel = appointment->token();
    }
    call.begin = Clock::now();
    const auto stay = Enter(act, call.timeout);
    auto result = ask(limits);
    call.end = Clock::now();
    call.code = result.code();
    if (!result) call.message = result.error().message();
    if (appointment != nullptr) call.cancelled = appointment->kept();
    call.also = also;
    call.if_faulty = if_faulty;
    around_.tally->Count(call);
    return result;
  }

  // While the object lives, something without a limit of its own is under way.
  CallsUnderWay::Stay Enter(Act act, std::chrono::milliseconds timeout = kTimeout) const {
    return CallsUnderWay::Stay(around_.under_way, {act, phone_, Clock::now(), timeout});
  }
  // Counts what was reported otherwise than by a call that returned.
  void Count(const Call& call) const { around_.tally->Count(call); }
  void Wrong(const std::string& what) const;
  // Whether nothing was the matter with the phone and its server since then.
  bool WasHealthySince(Clock::time_point begin) const;
  bool HadSince(Clock::time_point begin, Fault fault) const;
  std::optional<std::size_t> phone() const { return phone_; }
  // For what waits without a call: as long as a call would.
  std::chrono::milliseconds Timeout() const;

 private:
  static constexpr std::chrono::milliseconds kTimeout{20'000};

  const Surroundings around_;
  const std::optional<std::size_t> phone_;
  Random* random_ = nullptr;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_CALLER_H
