#include "tests/endurance/soak/round.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include "tests/endurance/soak/users.h"
#include "tests/support/eventually.h"

namespace darokleim::soak {
namespace {

namespace fs = std::filesystem;

class Round {
 public:
  Round(const dk::Client& client, Phones* phones, const RoundOptions& options)
      : client_(client),
        phones_(phones),
        options_(options),
        histories_(phones->count()),
        tally_(&histories_, options.seed),
        caller_(around_, std::nullopt) {}

  std::uint64_t Run() {
    dk::Watch watch = StartWatch();
    for (std::size_t i = 0; i < phones_->count(); ++i) phones_->AwaitReady(i);
    MakeUsers();
    ForEachUser([](User* user) { user->Begin(); });
    LiveWithTroubles();
    ForEachUser([](User* user) { user->Finish(); });
    CompareWatch();
    watch.stop();
    picture_.Close();
    LookForTemporaryFiles();
    users_.clear();
    if (options_.is_shown) tally_.PrintTable();
    return tally_.wrong();
  }

 private:
  dk::Watch StartWatch() {
    return client_
        .watch([this](dk_change change, const dk::DeviceInfo* info) {
          const std::string wrong = picture_.Take(change, info);
          if (!wrong.empty()) tally_.Wrong(wrong);
        })
        .value();
  }

  void MakeUsers() {
    for (std::size_t phone = 0; phone < phones_->count(); ++phone) {
      for (std::size_t number = 0; number < options_.users; ++number) {
        const std::string host = options_.host + "/" + std::to_string(phone) + "-" + std::to_string(number);
        fs::remove_all(host);
        users_.push_back(
            std::make_unique<User>(around_, client_, *phones_, phone, number, host, options_.seed));
      }
    }
  }

  // At the same time, each on a thread of its own.
  template <typename Do>
  void ForEachUser(Do what) {
    std::vector<std::thread> threads;
    for (const auto& user : users_) threads.emplace_back([&user, what] { what(user.get()); });
    for (std::thread& thread : threads) thread.join();
  }

  void LiveWithTroubles() {
    std::atomic<bool> ending{false};
    Troubles troubles(
        phones_, &histories_, [this] { StopServer(); }, options_.pace, options_.seed);
    std::thread living([&] { ForEachUser([&](User* user) { user->Run(ending, options_.pace); }); });
    const auto began = Clock::now();
    auto shown = began;
    while (Clock::now() < began + options_.length) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      EndWhereACallHangs();
      if (options_.is_shown && Clock::now() >= shown + std::chrono::minutes(1)) {
        shown += std::chrono::minutes(1);
        tally_.PrintProgress(std::chrono::duration<double>(shown - began).count());
      }
    }
    troubles.End();
    ending = true;
    living.join();
    // So that no fault is in the time of what follows.
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
  }

  void StopServer() {
    static_cast<void>(caller_.Make(Act::kStopServer,
                                   [&](const dk::Limits& limits) { return client_.stop_server(limits); }));
  }

  // A thread that hangs cannot be joined.
  void EndWhereACallHangs() {
    const auto entry = under_way_.Overdue();
    if (!entry) return;
    tally_.Wrong(std::string(NameOf(entry->act)) + " on phone " +
                 (entry->phone ? std::to_string(*entry->phone) : "-") + " does not return");
    tally_.PrintTable();
    phones_->End();
    std::_Exit(1);
  }

  void CompareWatch() {
    const auto is_the_same = [this] {
      const auto list = client_.devices();
      return list && DevicePicture::Of(list.value()) == picture_.devices();
    };
    if (!test::Eventually(is_the_same)) tally_.Wrong("the watch shows other devices than the list");
  }

  void LookForTemporaryFiles() {
    for (std::size_t phone = 0; phone < phones_->count(); ++phone)
      LookForTemporaryFilesIn(phones_->files(phone));
    LookForTemporaryFilesIn(options_.host);
  }
  void LookForTemporaryFilesIn(const std::string& folder) {
    std::error_code unreadable;
    const auto options = fs::directory_options::skip_permission_denied;
    for (fs::recursive_directory_iterator at(folder, options, unreadable), end; at != end;
         at.increment(unreadable)) {
      const std::string name = at->path().filename().native();
      if (name.rfind(".darokleim-", 0) == 0) tally_.Wrong("a temporary file is left: " + at->path().native());
    }
  }

  const dk::Client& client_;
  Phones* const phones_;
  const RoundOptions& options_;
  FaultHistories histories_;
  Tally tally_;
  Canceller canceller_;
  CallsUnderWay under_way_;
  const Surroundings around_{&histories_, &tally_, &canceller_, &under_way_};
  Caller caller_;
  DevicePicture picture_;
  std::vector<std::unique_ptr<User>> users_;
};

}  // namespace

std::uint64_t RunRound(const dk::Client& client, Phones* phones, const RoundOptions& options) {
  return Round(client, phones, options).Run();
}

}  // namespace darokleim::soak
