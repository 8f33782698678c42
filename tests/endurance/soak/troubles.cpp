#include "tests/endurance/soak/troubles.h"

#include <iterator>

namespace darokleim::soak {

struct Troubles::Trouble {
  Fault fault;
  test::Words begin, end;  // for the phones' control; empty: done otherwise
  int stretch = 1;         // how much longer it lasts than others
};

const Troubles::Trouble Troubles::kTroubles[] = {
    {Fault::kUnplugged, {"unplug"}, {"plug"}},
    {Fault::kUnplugged, {"unplug"}, {"plug"}},
    {Fault::kLocked, {"state", "unauthorized"}, {"state", "device"}},
    {Fault::kOffline, {"state", "offline"}, {"state", "device"}},
    {Fault::kFull, {"fault", "full-storage"}, {"clear", "full-storage"}},
    {Fault::kFull, {"fault", "full-storage"}, {"clear", "full-storage"}},
    {Fault::kSlow, {"fault", "slow=0.3"}, {"clear", "slow"}},
    {Fault::kBreaks, {"fault", "drop-after=300"}, {"clear", "drop-after"}},
    {Fault::kBreaks, {"fault", "drop-after=40000"}, {"clear", "drop-after"}},
    {Fault::kRefusesApps,
     {"fault", "install-failure=INSTALL_FAILED_USER_RESTRICTED"},
     {"clear", "install-failure"}},
    {Fault::kHung, {}, {}},
    {Fault::kHung, {}, {}, 2},
    {Fault::kHung, {}, {}, 3},
    {Fault::kReboots, {"reboot"}, {}},
};
const std::size_t Troubles::kTroubleCount = std::size(kTroubles);

Troubles::Troubles(Phones* phones, FaultHistories* histories, std::function<void()> stop_server,
                   const Pace& pace, std::uint64_t seed)
    : phones_(phones),
      histories_(histories),
      stop_server_(std::move(stop_server)),
      pace_(pace),
      may_be_away_(phones->count()) {
  for (std::size_t phone = 0; phone < phones->count(); ++phone) {
    threads_.emplace_back([this, phone, seed] { TroublePhone(phone, Random(seed, 100 + phone)); });
  }
  threads_.emplace_back([this, seed] { TroubleServer(Random(seed, 99)); });
}

Troubles::~Troubles() {
  End();
}

void Troubles::End() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) {
    if (thread.joinable()) thread.join();
  }
}

bool Troubles::Sleep(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  return !changed_.wait_for(lock, time, [this] { return ending_; });
}

void Troubles::TroublePhone(std::size_t phone, Random random) {
  while (Sleep(random.Between(pace_.shortest_peace, pace_.longest_peace))) {
    const Trouble& trouble = kTroubles[random.Below(kTroubleCount)];
    const auto length = random.Between(pace_.shortest_fault, pace_.longest_fault);
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return !wants_all_at_peace_ || ending_; });
      if (ending_) return;
      ++troubled_phones_;
      may_be_away_[phone] = trouble.fault == Fault::kUnplugged || trouble.fault == Fault::kReboots;
    }
    Cause(phone, trouble, length);
    {
      const std::lock_guard lock(mutex_);
      --troubled_phones_;
      may_be_away_[phone] = false;
    }
    changed_.notify_all();
  }
}

void Troubles::Cause(std::size_t phone, const Trouble& trouble, std::chrono::milliseconds length) {
  FaultHistory& history = histories_->of_phone[phone];
  history.Begin(trouble.fault);
  if (trouble.fault == Fault::kHung) {
    phones_->Freeze(phone);
  } else {
    phones_->Control(phone, trouble.begin);
  }
  history.TakeEffect();
  Sleep(length * trouble.stretch);
  history.Mend();
  if (trouble.fault == Fault::kHung) phones_->Thaw(phone);
  if (!trouble.end.empty()) phones_->Control(phone, trouble.end);
  phones_->AwaitReady(phone);
  history.End();
}

void Troubles::TroubleServer(Random random) {
  while (Sleep(random.Between(pace_.shortest_server, pace_.longest_server))) {
    if (random.OneIn(pace_.stops_per_kill)) {
      KillServer();
    } else {
      StopServer();
    }
  }
}

void Troubles::StopServer() {
  histories_->of_server.Begin(Fault::kServerStopped);
  stop_server_();
  histories_->of_server.Mend();
  const auto away = [this] {
    const std::lock_guard lock(mutex_);
    return may_be_away_;
  };
  phones_->AwaitAttached(away());
  histories_->of_server.End();
}

// A phone that starts again has none of its faults.
void Troubles::KillServer() {
  {
    std::unique_lock lock(mutex_);
    wants_all_at_peace_ = true;
    changed_.wait(lock, [this] { return troubled_phones_ == 0; });
  }
  histories_->of_server.Begin(Fault::kServerKilled);
  phones_->KillServer();
  histories_->of_server.End();
  {
    const std::lock_guard lock(mutex_);
    wants_all_at_peace_ = false;
  }
  changed_.notify_all();
}

}  // namespace darokleim::soak
