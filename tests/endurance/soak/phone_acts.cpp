#include "tests/endurance/soak/phone_acts.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>

namespace darokleim::soak {
namespace {

using std::chrono::milliseconds;

// A text with what a shell would take for its own.
std::string RandomText(Random* random, std::size_t size) {
  static constexpr std::string_view kLetters = "abc XYZ$`\"'\\;&|*?<>(){}#~!0189_-";
  std::string text;
  for (std::size_t i = 0; i < size; ++i) text += kLetters[random->Below(kLetters.size())];
  return text;
}

// How a stream ended, and whether it called back after its stop.
class StreamEnd {
 public:
  void Report(dk_code code, const dk::Error* error) {
    const std::lock_guard lock(mutex_);
    ++reports_;
    code_ = code;
    if (error != nullptr) message_ = error->message();
    time_ = Clock::now();
    changed_.notify_all();
  }
  // A callback of any kind came.
  void Called(const Caller& caller, const char* what) const {
    if (stopped_) caller.Wrong(std::string("a callback after the stop of ") + what);
  }
  bool Await(milliseconds patience) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, patience, [this] { return reports_ > 0; });
  }
  // After the stop.
  void Judge(const Caller& caller, Act act, Clock::time_point begin, Codes if_faulty) {
    stopped_ = true;
    const std::lock_guard lock(mutex_);
    if (reports_ != 1)
      return caller.Wrong(std::string(NameOf(act)) + " was reported " + std::to_string(reports_) + " times");
    Call call{act, caller.phone(), begin, time_, milliseconds(0), {}};
    call.code = code_;
    call.message = message_;
    call.if_faulty = if_faulty;
    caller.Count(call);
  }
  dk_code code() const { return code_; }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::atomic<bool> stopped_{false};
  int reports_ = 0;
  dk_code code_ = DK_OK;
  std::string message_;
  Clock::time_point time_;
};

template <typename Stream>
void Keep(std::deque<Stream>* kept, Stream stream) {
  constexpr std::size_t kMost = 3;
  kept->push_back(std::move(stream));
  if (kept->size() > kMost) kept->pop_front();
}

bool IsPng(std::string_view data) {
  constexpr std::string_view kBegin = "\x89PNG\r\n\x1a\n", kEnd = "IEND\xae\x42\x60\x82";
  return data.substr(0, kBegin.size()) == kBegin && data.size() > kBegin.size() + kEnd.size() &&
         data.substr(data.size() - kEnd.size()) == kEnd;
}

}  // namespace

// The server says it without the phone.
void AskState(Caller* caller, const dk::Device& phone) {
  const auto begin = Clock::now();
  const auto state =
      caller->Make(Act::kState, [&](const dk::Limits& limits) { return phone.state(limits); }, {DK_OK});
  if (state && state.value() != DK_STATE_READY && caller->WasHealthySince(begin))
    caller->Wrong("a phone is ready, and its state is " + std::to_string(state.value()));
}

void RunCommands(Caller* caller, const dk::Device& phone, Random* random) {
  const std::string text = RandomText(random, 1 + random->Below(200));
  const auto printed = caller->Make(Act::kRun, [&](const dk::Limits& limits) {
    return phone.run({"printf", "%s", text}, limits);
  });
  if (printed && (printed.value().out != text || printed.value().exit_status != 0))
    caller->Wrong("printf printed '" + printed.value().out + "' instead of '" + text + "'");
  const int status = static_cast<int>(random->Below(126));
  const auto ended = caller->Make(Act::kRun, [&](const dk::Limits& limits) {
    return phone.run_script("exit " + std::to_string(status), limits);
  });
  if (ended && ended.value().exit_status != status)
    caller->Wrong("the exit status " + std::to_string(status) + " came as " +
                  std::to_string(ended.value().exit_status));
}

void TakeScreenshot(Caller* caller, const dk::Device& phone) {
  const auto picture =
      caller->Make(Act::kScreenshot, [&](const dk::Limits& limits) { return phone.screenshot(limits); });
  if (picture && !IsPng(picture.value())) caller->Wrong("a screenshot is not a whole PNG");
}

void AskFacts(Caller* caller, const dk::Device& phone) {
  const auto battery =
      caller->Make(Act::kFacts, [&](const dk::Limits& limits) { return phone.battery(limits); });
  if (battery && (battery.value().level < 0 || battery.value().level > 100))
    caller->Wrong("a battery of " + std::to_string(battery.value().level) + " %");
  const auto screen =
      caller->Make(Act::kFacts, [&](const dk::Limits& limits) { return phone.screen(limits); });
  if (screen && (screen.value().width <= 0 || screen.value().height <= 0))
    caller->Wrong("a screen without a size");
  const auto memory =
      caller->Make(Act::kFacts, [&](const dk::Limits& limits) { return phone.memory(limits); });
  if (memory && (memory.value().total == 0 || memory.value().available > memory.value().total))
    caller->Wrong("more memory is available than there is");
  const auto volumes =
      caller->Make(Act::kFacts, [&](const dk::Limits& limits) { return phone.volumes(limits); });
  if (volumes && (volumes.value().empty() || !volumes.value()[0].internal))
    caller->Wrong("a phone without internal storage");
}

void AskProperties(Caller* caller, const dk::Device& phone, bool is_old) {
  const auto properties =
      caller->Make(Act::kProperties, [&](const dk::Limits& limits) { return phone.properties(limits); });
  if (!properties) return;
  const std::pair<std::string, std::string> release = {"ro.build.version.release", is_old ? "6.0.1" : "13"};
  const auto& all = properties.value();
  if (std::find(all.begin(), all.end(), release) == all.end())
    caller->Wrong("the properties lack Android's release, " + release.second);
}

// The server does it without the phone.
void UseForward(Caller* caller, const dk::Device& phone) {
  const auto begin = Clock::now();
  const auto make = [&](const auto& ask, Codes also) {
    return caller->Make(Act::kForward, ask, also | Codes{DK_OK}, {DK_SERVER_REFUSED});
  };
  const auto port =
      make([&](const dk::Limits& limits) { return phone.forward("tcp:0", "tcp:8080", false, limits); }, {});
  if (!port) return;
  const std::string from = "tcp:" + std::to_string(port.value());
  const auto list = make([&](const dk::Limits& limits) { return phone.forwards(limits); }, {});
  if (list && caller->WasHealthySince(begin)) {
    const auto& all = list.value();
    const bool is_there =
        std::any_of(all.begin(), all.end(), [&](const dk::Mapping& mapping) { return mapping.from == from; });
    if (!is_there) caller->Wrong("a port that leads to a phone is not in the list");
  }
  // It ends with the phone's connection.
  const Codes gone = caller->WasHealthySince(begin) ? Codes{} : Codes{DK_SERVER_REFUSED};
  static_cast<void>(make([&](const dk::Limits& limits) { return phone.remove_forward(from, limits); }, gone));
}

void Streams::FollowLog(Caller* caller, const dk::Device& phone, Random* random, bool is_old) {
  const auto end = std::make_shared<StreamEnd>();
  const auto begin = Clock::now();
  const Caller own = *caller;
  dk::LogOptions options;
  options.most_old = 30;
  auto log = caller->Make(Act::kLog, [&](const dk::Limits& limits) {
    return phone.log(
        options,
        [end, own](const dk_log_record& record) {
          end->Called(own, "a log");
          if (std::string_view("VDIWEF").find(record.level) == std::string_view::npos)
            own.Wrong("a record of a log has no level");
        },
        [end, own](dk_code code, const dk::Error* error) {
          end->Called(own, "a log");
          end->Report(code, error);
        },
        limits);
  });
  if (!log) return;
  std::this_thread::sleep_for(random->Between(milliseconds(0), milliseconds(500)));
  {
    const auto stay = caller->Enter(Act::kLogEnd);
    log.value().stop();
  }
  // An old phone's shell does not say that the connection broke.
  end->Judge(*caller, Act::kLogEnd, begin, is_old ? Codes{DK_COMMAND_FAILED, DK_CONNECTION_LOST} : Codes{});
  Keep(&stopped_logs_, std::move(log).value());
}

void Streams::UseShell(Caller* caller, const dk::Device& phone, Random* random, bool is_old) {
  const auto end = std::make_shared<StreamEnd>();
  const auto output = std::make_shared<std::string>();
  const auto begin = Clock::now();
  const Caller own = *caller;
  dk::ShellOptions options;
  if (!is_old) options.command = "cat";
  options.terminal = is_old;
  auto shell = caller->Make(Act::kShell, [&](const dk::Limits& limits) {
    return phone.shell(
        options,
        [end, own, output](dk_stream, std::string_view data) {
          end->Called(own, "a session");
          output->append(data);
        },
        [end, own](dk_code code, int, const dk::Error* error) {
          end->Called(own, "a session");
          end->Report(code, error);
        },
        limits);
  });
  if (!shell) return;
  const std::string text = RandomText(random, random->Below(20'000));
  const std::string input = is_old ? "echo so$((40 + 2))ak; exit\n" : text;
  const bool is_left = random->OneIn(4);  // without waiting for its end
  const auto written =
      caller->Make(Act::kShell, [&](const dk::Limits& limits) { return shell.value().write(input, limits); },
                   {DK_OK}, {DK_STOPPED});
  if (written) static_cast<void>(shell.value().close_input());
  const auto patience = caller->Timeout();
  const bool has_ended = !is_left && written && end->Await(patience);
  const bool was_healthy = caller->WasHealthySince(begin);
  if (!is_left && written && !has_ended && was_healthy) caller->Wrong("a session does not end");
  {
    const auto stay = caller->Enter(Act::kShellEnd);
    shell.value().stop();
  }
  end->Judge(*caller, Act::kShellEnd, begin, {});
  const bool is_whole = is_old ? output->find("so42ak") != std::string::npos : *output == text;
  const bool is_due = has_ended && end->code() == DK_OK && (was_healthy || !is_old);
  if (is_due && !is_whole) caller->Wrong("a session lost some of its output");
  if (!is_old && text.compare(0, output->size(), *output) != 0) caller->Wrong("a session changed its output");
  Keep(&stopped_shells_, std::move(shell).value());
}

namespace {

constexpr char kPackage[] = "com.example.notes";

std::string ApkOf(Version version) {
  return std::string(DAROKLEIM_PHONE_TEST_DATA) + "/notes-" + std::to_string(version) + ".apk";
}

}  // namespace

void Application::InstallOrRemove(Caller* caller, const dk::Device& phone, Random* random) {
  if (random->OneIn(3)) return Remove(caller, phone);
  Install(caller, phone, 1 + random->Below(2));
}

void Application::Install(Caller* caller, const dk::Device& phone, Version version) {
  dk::InstallOptions options;
  options.downgrade = true;
  const auto installed = caller->Make(Act::kInstall, [&](const dk::Limits& limits) {
    return phone.install({ApkOf(version)}, options, limits);
  });
  if (installed) {
    installed_.Is(version);
  } else {
    installed_.MayBe(version);
  }
}

void Application::Remove(Caller* caller, const dk::Device& phone) {
  const auto removed = caller->Make(
      Act::kUninstall, [&](const dk::Limits& limits) { return phone.uninstall(kPackage, false, limits); },
      installed_.Has(kAbsent) ? Codes{DK_NO_PACKAGE} : Codes{});
  if (removed || removed.code() == DK_NO_PACKAGE) {
    installed_.Is(kAbsent);
  } else {
    installed_.MayBe(kAbsent);
  }
}

void Application::Look(Caller* caller, const dk::Device& phone) {
  const auto app = caller->Make(
      Act::kApp, [&](const dk::Limits& limits) { return phone.app(kPackage, limits); },
      installed_.Has(kAbsent) ? Codes{DK_NO_PACKAGE} : Codes{});
  if (app && !installed_.Has(static_cast<Version>(app.value().version_code)))
    caller->Wrong("version " + std::to_string(app.value().version_code) + " of an application is installed");
}

void Application::List(Caller* caller, const dk::Device& phone) const {
  const auto apps = caller->Make(
      Act::kApps, [&](const dk::Limits& limits) { return phone.apps(DK_USER_APPS, false, limits); });
  if (!apps) return;
  const auto& all = apps.value();
  const auto found =
      std::find_if(all.begin(), all.end(), [](const dk::App& app) { return app.package == kPackage; });
  const Version version = found == all.end() ? kAbsent : static_cast<Version>(found->version_code);
  if (!installed_.Has(version))
    caller->Wrong("the list of applications shows version " + std::to_string(version) + " of one");
}

}  // namespace darokleim::soak
