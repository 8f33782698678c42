#include "server/server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "common/io.h"
#include "server/client_session.h"
#include "server/connections.h"
#include "server/listener.h"
#include "server/phone_list.h"

namespace darokleim::phone {

namespace {

// Turns the signals that end the server into a byte in a pipe. They stay blocked in every other thread.
class EndSignals {
 public:
  EndSignals() {
    sigemptyset(&signals_);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, kWakeSignal}) sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
    auto ends = MakePipe();
    if (!ends) throw std::runtime_error("no descriptors left");
    pipe_ = std::move(*ends);
    waiter_ = std::thread([this] {
      int signal = 0;
      sigwait(&signals_, &signal);
      Raise();
    });
  }
  ~EndSignals() {
    pthread_kill(waiter_.native_handle(), kWakeSignal);
    waiter_.join();
  }

  int descriptor() const { return pipe_.first.get(); }
  void Raise() { [[maybe_unused]] const ssize_t count = write(pipe_.second.get(), "e", 1); }

 private:
  static constexpr int kWakeSignal = SIGUSR1;

  sigset_t signals_;
  FdPair pipe_;
  std::thread waiter_;
};

// The client that asked for the end hears of it last, when the port is free and every phone is off.
class LastRequest {
 public:
  void Keep(UniqueFd client) {
    std::lock_guard lock(mutex_);
    if (!client_.valid()) client_ = std::move(client);
  }
  void Answer() {
    std::lock_guard lock(mutex_);
    if (client_.valid()) SendOkayTo(client_.get());
  }

 private:
  static void SendOkayTo(int fd) { WriteAll(fd, "OKAY", 4); }

  std::mutex mutex_;
  UniqueFd client_;
};

void AcceptUntil(int end, const Listener& listener, const std::function<void(UniqueFd)>& serve) {
  for (;;) {
    std::array<pollfd, 2> ends = {{{listener.descriptor(), POLLIN, 0}, {end, POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) return;
    if (ends[1].revents != 0) return;
    if (ends[0].revents != 0) {
      UniqueFd client = listener.Accept();
      if (client.valid()) serve(std::move(client));
    }
  }
}

}  // namespace

int RunServer(const ServerOptions& options) {
  signal(SIGPIPE, SIG_IGN);
  EndSignals end;
  LastRequest last_request;
  const SandboxParts parts = FindSandboxParts();
  Connections connections;
  PhoneList phones;
  {
    Listener listener(options.port);
    for (const PhoneOptions& phone : options.phones)
      phones.Add(phone, &parts, [](const std::string&, UniqueFd) {});
    if (!phones.SwitchAllOn()) return 1;
    std::printf("darokleim-phone: ready on port %u\n", static_cast<unsigned>(listener.port()));
    std::fflush(stdout);
    AcceptUntil(end.descriptor(), listener, [&](UniqueFd client) {
      connections.Serve(std::move(client), [&](UniqueFd* connection) {
        const auto kill_server = [&] {
          last_request.Keep(std::move(*connection));
          end.Raise();
        };
        ClientSession(&phones, kill_server, connection).Run();
      });
    });
  }
  connections.StopAll();
  phones.SwitchAllOff();
  last_request.Answer();
  return 0;
}

}  // namespace darokleim::phone
