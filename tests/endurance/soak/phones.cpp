#include "tests/endurance/soak/phones.h"

#include <signal.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "tests/support/file_content.h"

namespace darokleim::soak {
namespace {

using std::chrono::milliseconds;

constexpr std::chrono::seconds kPatience{20};

// Asks again until the answer is true. Throws when it never is.
template <typename Condition>
void Await(const char* what, const Condition& condition) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline)
      throw std::runtime_error(std::string("waiting in vain: ") + what);
    std::this_thread::sleep_for(milliseconds(20));
  }
}

std::vector<pid_t> ChildrenOf(pid_t process) {
  std::vector<pid_t> children;
  std::error_code gone;
  for (const auto& thread :
       std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task", gone)) {
    std::ifstream list(thread.path() / "children");
    for (pid_t child; list >> child;) children.push_back(child);
  }
  return children;
}

// Parents first: what is stopped starts nothing more.
void StopWithChildren(pid_t process, std::vector<pid_t>* stopped) {
  if (kill(process, SIGSTOP) != 0) return;
  stopped->push_back(process);
  for (const pid_t child : ChildrenOf(process)) StopWithChildren(child, stopped);
}

// The process whose command line has this word.
pid_t ChildWithWord(pid_t parent, const std::string& word) {
  for (const pid_t child : ChildrenOf(parent)) {
    const std::string line = test::ReadFile("/proc/" + std::to_string(child) + "/cmdline");
    if (line.find('\0' + word + '\0') != std::string::npos) return child;
  }
  return -1;
}

}  // namespace

Phones::Phones(const std::string& folder, std::size_t count) : folder_(folder) {
  for (std::size_t i = 0; i < count; ++i) phones_.push_back({"SOAK" + std::to_string(i), i % 2 == 1, "", {}});
  Start("0");
  const std::string list = List();
  for (Phone& phone : phones_) {
    constexpr std::string_view kMark = "\tfiles=";
    const std::size_t at = list.find(kMark, list.find(phone.serial + "\t"));
    if (at == std::string::npos) throw std::runtime_error("no phone " + phone.serial);
    const std::size_t begin = at + kMark.size();
    phone.files = list.substr(begin, list.find_first_of("\t\n", begin) - begin);
  }
}

void Phones::End() {
  if (server_ == nullptr) return;
  for (std::size_t i = 0; i < phones_.size(); ++i) Thaw(i);
  server_->Signal(SIGTERM);
  server_->Finish();
  server_.reset();
}

void Phones::Start(const std::string& port) {
  test::Words command = {DAROKLEIM_PHONE_PROGRAM, "--port", port, "--restart-on-kill"};
  for (const Phone& phone : phones_) {
    command.insert(command.end(), {"--phone", phone.serial + ",root=" + folder_ + "/" + phone.serial +
                                                  (phone.is_old ? ",android=legacy" : "")});
  }
  server_ = std::make_unique<test::HostProcess>(command);
  const std::string mark = "ready on port ";
  const std::string line = server_->ReadLine();
  const std::size_t at = line.find(mark);
  if (at == std::string::npos)
    throw std::runtime_error("the phones do not start: " + server_->Finish().errors);
  port_ = line.substr(at + mark.size());
}

void Phones::Control(std::size_t phone, const test::Words& words) const {
  test::Words command = {DAROKLEIM_PHONE_PROGRAM, "ctl", "--port", port_, phones_[phone].serial};
  command.insert(command.end(), words.begin(), words.end());
  Await("a change of a phone", [&] { return test::RunProgram(command).status == 0; });
}

std::string Phones::List() const {
  return test::RunProgram({DAROKLEIM_PHONE_PROGRAM, "ctl", "--port", port_, "list"}).output;
}

std::string Phones::StateOf(const std::string& list, std::size_t phone) const {
  const std::string mark = phones_[phone].serial + "\t";
  const std::size_t at = list.find(mark);
  if (at == std::string::npos) return "";
  const std::size_t begin = at + mark.size();
  return list.substr(begin, list.find('\t', begin) - begin);
}

void Phones::AwaitReady(std::size_t phone) const {
  Await("a phone that is ready", [&] { return StateOf(List(), phone) == "device"; });
}

void Phones::AwaitAttached(const std::vector<bool>& may_be_away) const {
  Await("the phones after the server is back", [&] {
    const std::string list = List();
    for (std::size_t i = 0; i < phones_.size(); ++i) {
      const std::string state = StateOf(list, i);
      if (state.empty() || (state == "unplugged" && !may_be_away[i])) return false;
    }
    return true;
  });
}

void Phones::Freeze(std::size_t phone) {
  const pid_t sandbox = ChildWithWord(server_->pid(), phones_[phone].files);
  if (sandbox < 0) throw std::runtime_error("no sandbox of " + phones_[phone].serial);
  for (const pid_t child : ChildrenOf(sandbox)) StopWithChildren(child, &phones_[phone].frozen);
}

void Phones::Thaw(std::size_t phone) {
  for (const pid_t process : phones_[phone].frozen) kill(process, SIGCONT);
  phones_[phone].frozen.clear();
}

void Phones::KillServer() {
  server_->Signal(SIGKILL);
  server_->Finish();
  Start(port_);
}

}  // namespace darokleim::soak
