#include "tools/phone/server/server.h"

#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "tools/phone/common/address.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/numbers.h"
#include "tools/phone/server/client_session.h"
#include "tools/phone/server/connections.h"
#include "tools/phone/server/forwards.h"
#include "tools/phone/server/phone_list.h"
#include "tools/phone/server/temporary_folder.h"

namespace darokleim::phone {

namespace {

// Turns the signals that end the server, and a client's request for the end, into a byte in a pipe. The signals stay
// blocked in every other thread.
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
      Write(kFromSignal);
    });
  }
  ~EndSignals() {
    pthread_kill(waiter_.native_handle(), kWakeSignal);
    waiter_.join();
  }

  int descriptor() const { return pipe_.first.get(); }
  // A client asked for the end.
  void RequestFromClient() { Write(kFromClient); }
  // After the descriptor became readable: true when a client asked, false for a signal.
  bool TakeRequestFromClient() {
    char reason = kFromSignal;
    ReadSome(pipe_.first.get(), &reason, 1);
    return reason == kFromClient;
  }

 private:
  static constexpr int kWakeSignal = SIGUSR1;
  static constexpr char kFromClient = 'c';
  static constexpr char kFromSignal = 's';

  void Write(char reason) { [[maybe_unused]] const ssize_t count = write(pipe_.second.get(), &reason, 1); }

  sigset_t signals_;
  FdPair pipe_;
  std::thread waiter_;
};

// The client that asked for the end gets its answer last, when the port is free and every phone is off.
class LastRequest {
 public:
  void Keep(base::UniqueFd client) {
    std::lock_guard lock(mutex_);
    if (!client_.valid()) client_ = std::move(client);
  }
  void Answer() {
    std::lock_guard lock(mutex_);
    if (client_.valid()) WriteAll(client_.get(), "OKAY", 4);
    client_.Reset();
  }

 private:
  std::mutex mutex_;
  base::UniqueFd client_;
};

void AcceptUntil(int end, int listener, SmallPackets small_packets,
                 const std::function<void(base::UniqueFd)>& serve) {
  for (;;) {
    std::array<pollfd, 2> ends = {{{listener, POLLIN, 0}, {end, POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) return;
    if (ends[1].revents != 0) return;
    if (ends[0].revents == 0) continue;
    base::UniqueFd client = AcceptConnection(listener, small_packets);
    if (client.valid()) serve(std::move(client));
  }
}

class Server {
 public:
  explicit Server(const ServerOptions& options) : options_(options), parts_(FindSandboxParts()) {}

  int Run();

 private:
  void AddPhones();
  // Until the end is asked for; true when by a client.
  bool ServeClients(Listener listener);
  void Serve(base::UniqueFd client);
  void ConnectToHost(const std::string& address, base::UniqueFd connection);

  const ServerOptions& options_;
  EndSignals end_;
  LastRequest last_request_;
  const SandboxParts parts_;
  PhoneList phones_;
  Forwards forwards_{&phones_};
  Connections connections_;
};

int Server::Run() {
  Listener listener(SocketAddress::OfPort(options_.port));
  if (!listener.valid()) {
    std::fprintf(stderr, "darokleim-phone: cannot listen on port %u: %s\n",
                 static_cast<unsigned>(options_.port), std::strerror(errno));
    return 1;
  }
  const uint16_t port = listener.port();
  AddPhones();
  if (!phones_.SwitchAllOn()) return 1;
  std::printf("darokleim-phone: ready on port %u\n", static_cast<unsigned>(port));
  std::fflush(stdout);
  while (ServeClients(std::move(listener)) && options_.restart_on_kill) {
    // As with a new server, every phone is attached again.
    for (const auto& phone : phones_.phones()) phone->Reconnect();
    connections_.Reopen();
    listener = Listener(SocketAddress::OfPort(port));
    if (!listener.valid()) break;
    last_request_.Answer();
  }
  phones_.SwitchAllOff();
  last_request_.Answer();
  return 0;
}

bool Server::ServeClients(Listener listener) {
  AcceptUntil(end_.descriptor(), listener.get(), options_.small_packets,
              [this](base::UniqueFd client) { Serve(std::move(client)); });
  const bool asked = end_.TakeRequestFromClient();
  listener = Listener();
  connections_.StopAll();
  forwards_.RemoveAll();
  return asked;
}

void Server::AddPhones() {
  for (const PhoneOptions& phone : options_.phones) {
    phones_.Add(
        phone, &parts_,
        [this](const std::string& address, base::UniqueFd connection) {
          ConnectToHost(address, std::move(connection));
        },
        [this](const std::string& serial) { forwards_.RemoveOf(serial); });
  }
}

void Server::Serve(base::UniqueFd client) {
  connections_.Serve(std::move(client), [this](base::UniqueFd* connection) {
    const auto kill_server = [this, connection] {
      last_request_.Keep(connections_.Release(connection));
      end_.RequestFromClient();
    };
    ClientSession(options_.release, &phones_, &forwards_, kill_server, connection).Run();
  });
}

void Server::ConnectToHost(const std::string& address, base::UniqueFd connection) {
  const auto host = SocketAddress::Parse(address);
  if (!host) return;
  connections_.Serve(std::move(connection), [host = *host](base::UniqueFd* phone_end) {
    const base::UniqueFd host_end = host.Connect();
    if (host_end.valid()) Relay(phone_end->get(), host_end.get());
  });
}

// Descriptors that the starting program left open must not reach the phones.
void CloseOnExecAll() {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/dev/fd", error)) {
    const auto fd = ParseNumber<int>(entry.path().filename().native());
    if (fd && *fd > STDERR_FILENO) SetCloseOnExec(*fd);
  }
}

// Every client has a descriptor here and one in its phone; the usual limit is 1,024.
void AllowManyDescriptors() {
  rlimit limit = {};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace

int RunServer(const ServerOptions& options) {
  CloseOnExecAll();
  AllowManyDescriptors();
  RemoveAbandonedFolders();
  signal(SIGPIPE, SIG_IGN);
  return Server(options).Run();
}

}  // namespace darokleim::phone
