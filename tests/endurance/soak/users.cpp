#include "tests/endurance/soak/users.h"

#include <iterator>
#include <memory>

namespace darokleim::soak {
namespace {

std::string FolderOf(std::size_t number) {
  return "/sdcard/soak/user " + std::to_string(number);
}

}  // namespace

// How often, of all that users do.
struct User::Habit {
  std::size_t weight;
  void (*act)(User* user);
};

const User::Habit User::kHabits[] = {
    {2, [](User* user) { user->ListDevices(); }},
    {2, [](User* user) { user->Watch(); }},
    {2, [](User* user) { AskState(&user->caller_, user->phone_); }},
    {4, [](User* user) { user->Any().Stat(&user->caller_, user->phone_, &user->random_); }},
    {4, [](User* user) { user->AnyFlat().List(&user->caller_, user->phone_); }},
    {2, [](User* user) { user->Any().Walk(&user->caller_, user->phone_); }},
    {6, [](User* user) { user->Any().Read(&user->caller_, user->phone_, &user->random_); }},
    {4, [](User* user) { user->note_.Write(&user->caller_, user->phone_); }},
    {3, [](User* user) { user->note_.Read(&user->caller_, user->phone_, &user->random_); }},
    {7, [](User* user) { user->Any().Push(&user->caller_, user->phone_, &user->random_); }},
    {2, [](User* user) { user->Any().Update(&user->caller_, user->phone_); }},
    {7, [](User* user) { user->Any().Pull(&user->caller_, user->phone_); }},
    {2, [](User* user) { user->sets_[kOne].Rearrange(&user->caller_, user->phone_); }},
    {3, [](User* user) { RunCommands(&user->caller_, user->phone_, &user->random_); }},
    {3,
     [](User* user) {
       user->streams_.FollowLog(&user->caller_, user->phone_, &user->random_, user->is_old_);
     }},
    {3,
     [](User* user) {
       user->streams_.UseShell(&user->caller_, user->phone_, &user->random_, user->is_old_);
     }},
    {2, [](User* user) { TakeScreenshot(&user->caller_, user->phone_); }},
    {1, [](User* user) { UseForward(&user->caller_, user->phone_); }},
    {1, [](User* user) { AskFacts(&user->caller_, user->phone_); }},
    {1, [](User* user) { AskProperties(&user->caller_, user->phone_, user->is_old_); }},
    {6,
     [](User* user) {
       if (user->owns_application_)
         user->application_.InstallOrRemove(&user->caller_, user->phone_, &user->random_);
     }},
    {4,
     [](User* user) {
       if (user->owns_application_) user->application_.Look(&user->caller_, user->phone_);
     }},
    {2,
     [](User* user) {
       if (user->owns_application_) user->application_.List(&user->caller_, user->phone_);
     }},
};

User::User(const Surroundings& around, const dk::Client& client, const Phones& phones, std::size_t phone,
           std::size_t number, const std::string& host, std::uint64_t seed)
    : client_(client),
      phone_(client.open(phones.serial(phone)).value()),
      is_old_(phones.is_old(phone)),
      owns_application_(number == 0),
      random_(seed, 200 + phone * 10 + number),
      caller_(around, phone),
      caller_of_server_(around, std::nullopt),
      sets_{{OneFile(), Act::kPushOne, Act::kPullOne, host, FolderOf(number)},
            {ManyFiles(), Act::kPushMany, Act::kPullMany, host, FolderOf(number)},
            {Tree(), Act::kPushTree, Act::kPullTree, host, FolderOf(number)}},
      note_(Note(), Act::kWrite, Act::kRead, host, FolderOf(number)) {}

void User::Begin() {
  // What users of an earlier round have left is of versions that nobody knows any more.
  static_cast<void>(caller_.Make(
      Act::kRemove, [&](const dk::Limits& limits) { return phone_.remove(sets_[0].parent(), true, limits); },
      {DK_NOT_FOUND}));
  for (SharedSet& set : sets_) set.Push(&caller_, phone_);
  if (owns_application_) application_.Install(&caller_, phone_, 1);
}

void User::Run(const std::atomic<bool>& ending, const Pace& pace) {
  caller_.CancelAtRandom(&random_);
  while (!ending) {
    DoSomething();
    std::this_thread::sleep_for(random_.Between(pace.shortest_pause, pace.longest_pause));
  }
  caller_.CancelAtRandom(nullptr);
}

void User::DoSomething() {
  std::size_t all = 0;
  for (const Habit& habit : kHabits) all += habit.weight;
  std::size_t choice = random_.Below(all);
  for (const Habit& habit : kHabits) {
    if (choice < habit.weight) return habit.act(this);
    choice -= habit.weight;
  }
}

void User::Finish() {
  for (SharedSet& set : sets_) {
    set.Push(&caller_, phone_);
    set.Pull(&caller_, phone_);
  }
  note_.Write(&caller_, phone_);
  note_.Read(&caller_, phone_, &random_);
  if (!owns_application_) return;
  application_.Install(&caller_, phone_, 1);
  application_.Look(&caller_, phone_);
  application_.Remove(&caller_, phone_);
}

void User::ListDevices() {
  const auto begin = Clock::now();
  const auto list = caller_of_server_.Make(Act::kDevices,
                                           [&](const dk::Limits& limits) { return client_.devices(limits); });
  if (!list || !caller_.WasHealthySince(begin)) return;
  const auto devices = DevicePicture::Of(list.value());
  const auto found = devices.find(phone_.serial());
  if (found == devices.end() || found->second.first != "device")
    caller_.Wrong("the list of devices lacks a phone that is ready");
}

// For a moment, beside the watch of the whole soak.
void User::Watch() {
  const auto picture = std::make_shared<DevicePicture>();
  auto watch = caller_of_server_.Make(Act::kWatch, [&](const dk::Limits& limits) {
    return client_.watch(
        [picture, caller = caller_of_server_](dk_change change, const dk::DeviceInfo* info) {
          const std::string wrong = picture->Take(change, info);
          if (!wrong.empty()) caller.Wrong(wrong);
        },
        limits);
  });
  if (!watch) return;
  std::this_thread::sleep_for(random_.Between(std::chrono::milliseconds(0), std::chrono::milliseconds(200)));
  {
    const auto stay = caller_of_server_.Enter(Act::kWatch);
    watch.value().stop();
  }
  picture->Close();
  stopped_watches_.push_back(std::move(watch).value());
  if (stopped_watches_.size() > 3) stopped_watches_.pop_front();
}

}  // namespace darokleim::soak
