#include "tools/phone/device/daemon.h"

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tools/phone/common/device_link.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/reverse_forwards.h"
#include "tools/phone/device/services.h"

namespace darokleim::phone {

namespace {

class Daemon {
 public:
  Daemon(int link, bool legacy) : link_(link), legacy_(legacy) {}

  // False when the phone cannot boot.
  bool Boot();
  void Run();

 private:
  void HandlePacket(LinkPacket packet);
  void HandleSignals();
  void ReapChildren();

  base::UniqueFd link_;
  const bool legacy_;
  base::UniqueFd signals_;
  ReverseForwards reverse_;
  // The stream of each running service. Kept only to cut it off when the cable is pulled.
  std::map<pid_t, base::UniqueFd> services_;
};

// Where the phone's programs may write, they may have left links and other surprises. They only lead to other places of
// the phone, because this runs inside it.
void MakeWritableFolders() {
  const std::string setup = std::string(kSetupFolder) + "/";
  std::error_code error;
  for (const std::string& folder : Split(ReadFile(setup + kFoldersToMake).value_or(""), '\n')) {
    if (!folder.empty()) std::filesystem::create_directories(folder, error);
  }
  for (const std::string& line : Split(ReadFile(setup + kLinksToMake).value_or(""), '\n')) {
    const size_t space = line.find(' ');
    if (space == std::string::npos) continue;
    const std::filesystem::path link = line.substr(0, space);
    std::filesystem::create_directories(link.parent_path(), error);
    std::filesystem::create_symlink(line.substr(space + 1), link, error);
  }
}

bool Daemon::Boot() {
  SetCloseOnExec(link_.get());
  RemovePropertiesOfLastBoot();
  MakeWritableFolders();
  signal(SIGPIPE, SIG_IGN);
  sigset_t heard;
  sigemptyset(&heard);
  for (const int number : {SIGCHLD, SIGUSR1}) sigaddset(&heard, number);
  sigprocmask(SIG_BLOCK, &heard, nullptr);
  // The first process of a namespace only gets the signals that it asks for, blocked or not.
  for (const int number : {SIGCHLD, SIGUSR1}) signal(number, [](int) {});
  signals_.Reset(signalfd(-1, &heard, SFD_CLOEXEC | SFD_NONBLOCK));
  return signals_.valid() && SendPacket(link_.get(), LinkMessage::kReady, "");
}

void Daemon::Run() {
  for (;;) {
    std::vector<pollfd> waits = {{link_.get(), POLLIN, 0}, {signals_.get(), POLLIN, 0}};
    reverse_.AddTo(&waits);
    if (poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR) return;
    if (waits[1].revents != 0) HandleSignals();
    for (size_t i = 2; i < waits.size(); ++i) reverse_.Accept(waits[i], link_.get());
    if (waits[0].revents == 0) continue;
    auto packet = ReceivePacket(link_.get());
    if (!packet) return;
    HandlePacket(std::move(*packet));
  }
}

void Daemon::HandlePacket(LinkPacket packet) {
  if (packet.message == LinkMessage::kDropAll) {
    for (const auto& service : services_) shutdown(service.second.get(), SHUT_RDWR);
    reverse_.RemoveAll();
    return;
  }
  if (packet.message == LinkMessage::kPowerButton) {
    SendPacket(link_.get(), LinkMessage::kReboot, "");
    return;
  }
  Request request{packet.text, legacy_, link_.get(), ""};
  std::string_view service = packet.text;
  if (TakePrefix(&service, "reverse:")) request.answer = reverse_.Answer(service);
  const pid_t pid = fork();
  if (pid < 0) return;  // the client sees its connection closed
  if (pid > 0) {
    services_[pid] = std::move(packet.descriptor);
    return;
  }
  for (const int number : {SIGCHLD, SIGUSR1}) signal(number, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  services_.clear();
  reverse_.Abandon();
  if (packet.message == LinkMessage::kConnect) {
    ConnectToPhoneAddress(request, std::move(packet.descriptor));
  } else {
    RunService(request, std::move(packet.descriptor));
  }
  _exit(0);
}

void Daemon::HandleSignals() {
  signalfd_siginfo heard;
  while (read(signals_.get(), &heard, sizeof(heard)) == static_cast<ssize_t>(sizeof(heard))) {
    if (heard.ssi_signo == SIGUSR1) SendPacket(link_.get(), LinkMessage::kReboot, "");
  }
  ReapChildren();
}

void Daemon::ReapChildren() {
  for (;;) {
    const pid_t pid = waitpid(-1, nullptr, WNOHANG);
    if (pid <= 0) return;
    services_.erase(pid);
  }
}

}  // namespace

int RunDaemon(bool legacy) {
  Daemon daemon(kLinkDescriptor, legacy);
  if (!daemon.Boot()) return 1;
  daemon.Run();
  return 0;
}

}  // namespace darokleim::phone
