// dk_app_install: one APK, or the several of one application.
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>
#include <vector>

#include "base/read_some.h"
#include "base/shell_quoting.h"
#include "base/standard_streams.h"
#include "base/unique_fd.h"
#include "client/apps/package_dump.h"
#include "client/phone_path.h"
#include "client/shell.h"
#include "client/sync.h"
#include "client/temporary_name.h"
#include "client/transfer/staging.h"

namespace darokleim::client {
namespace {

constexpr char kStagingFolder[] = "/data/local/tmp";

struct Apk {
  std::string path;
  std::uint64_t size = 0;
};

// Reads an APK in blocks and reports what was read of all of them.
class ApkReader {
 public:
  ApkReader(const dk_install_options& options, std::uint64_t total)
      : options_(options), total_(total), block_(kBlock) {}

  Status Open(const Apk& apk) {
    path_ = apk.path;
    left_ = apk.size;
    file_ = base::OpenClearOfStandardStreams([this] { return open(path_.c_str(), O_RDONLY | O_CLOEXEC); });
    return file_.valid() ? Status() : Status(FromErrno(errno));
  }

  // The next block; empty at the end, and where something is wrong: see error().
  std::string_view Next() {
    if (left_ == 0 || !Ask()) return {};
    const ssize_t count =
        base::ReadSome(file_.get(), block_.data(), std::min<std::uint64_t>(block_.size(), left_));
    if (count <= 0) {
      error_ = count < 0
                   ? FromErrno(errno)
                   : Failed(DK_CHANGED, "install " + Shown(path_), "the file changed while it was read");
      return {};
    }
    left_ -= static_cast<std::uint64_t>(count);
    done_ += static_cast<std::uint64_t>(count);
    return {block_.data(), static_cast<std::size_t>(count)};
  }

  const std::optional<Error>& error() const { return error_; }

 private:
  bool Ask() {
    if (options_.on_progress == nullptr || options_.on_progress(options_.user, done_, total_)) return true;
    error_ = Stopped("install " + Shown(path_));
    return false;
  }
  Error FromErrno(int error) const { return FromHostErrno(error, "install " + Shown(path_), path_); }

  const dk_install_options& options_;
  const std::uint64_t total_;
  std::uint64_t done_ = 0;
  std::uint64_t left_ = 0;
  std::string path_;
  base::UniqueFd file_;
  std::vector<char> block_;
  std::optional<Error> error_;
};

std::string OptionsOf(const dk_install_options& options) {
  std::string words;
  if (options.replace) words += " -r";
  if (options.downgrade) words += " -d";
  if (options.grant) words += " -g";
  if (options.test) words += " -t";
  return words;
}

Status FromAnswer(const Collected& collected, std::string_view what) {
  const PackageAnswer answer = ReadPackageAnswer(collected.out + "\n" + collected.err);
  if (answer.success) return {};
  Error error = CommandFailed(what, collected);
  error.code = DK_INSTALL_FAILED;
  if (!answer.reason.empty()) error.reason = answer.reason;
  return error;
}

class Installation {
 public:
  Installation(dk_device* device, const dk_install_options& options, std::vector<Apk> apks,
               const Limits& limits)
      : device_(device),
        options_(options),
        apks_(std::move(apks)),
        limits_(limits),
        reader_(options, Total(apks_)) {}

  Status Run() {
    Features features(device_);
    auto known = features.Get(what_, limits_);
    if (!known.ok()) return known.TakeError();
    // Phones with `cmd` take the bytes of an APK from its standard input.
    streams_ = (*known)->Has("cmd") && (*known)->shell_v2();
    if (streams_) return apks_.size() == 1 ? InstallStreamed() : InstallSession();
    LeftOvers left_overs(&features);
    left_overs.Look({kStagingFolder}, limits_);
    Status installed = apks_.size() == 1 ? InstallStaged() : InstallSession();
    left_overs.Remove(limits_);
    return installed;
  }

 private:
  static std::uint64_t Total(const std::vector<Apk>& apks) {
    std::uint64_t total = 0;
    for (const Apk& apk : apks) total += apk.size;
    return total;
  }

  // A command that reads an APK from its standard input.
  Result<Collected> RunWithInput(const std::string& script, const Apk& apk) {
    if (Status opened = reader_.Open(apk); !opened.ok()) return opened.TakeError();
    Collected collected;
    const auto receive = [&](adb::ShellStream stream, std::string_view data) {
      (stream == adb::ShellStream::kErrors ? collected.err : collected.out).append(data);
      return collected.out.size() + collected.err.size() < kMostCollected;
    };
    auto status = RunScript(device_, script, what_, receive, limits_, [this] { return reader_.Next(); });
    if (reader_.error()) return *reader_.error();
    if (!status.ok()) return status.TakeError();
    collected.exit_status = *status;
    return collected;
  }

  Status InstallStreamed() {
    const Apk& apk = apks_.front();
    auto ran =
        RunWithInput("cmd package install" + OptionsOf(options_) + " -S " + std::to_string(apk.size), apk);
    return ran.ok() ? FromAnswer(*ran, what_) : Status(ran.TakeError());
  }

  // On the phone under a name that nobody else uses, which goes whatever happens; where the phone is gone, with the next
  // installation.
  Status InstallStaged() {
    const Staged staged(device_);
    if (Status sent = SendTo(staged.path(), apks_.front()); !sent.ok()) return sent;
    auto ran =
        CollectScript(device_, "pm install" + OptionsOf(options_) + " " + staged.path(), what_, limits_);
    return ran.ok() ? FromAnswer(*ran, what_) : Status(ran.TakeError());
  }

  Status InstallSession() {
    auto created = CollectScript(
        device_, "pm install-create" + OptionsOf(options_) + " -S " + std::to_string(Total(apks_)), what_,
        limits_);
    if (!created.ok()) return created.TakeError();
    const auto session = ReadSession(created->out);
    if (!session) return FromAnswer(*created, what_);
    Status written = WriteAll(*session);
    if (!written.ok()) {
      Abandon(*session);
      return written;
    }
    auto committed = CollectScript(device_, "pm install-commit " + *session, what_, limits_);
    return committed.ok() ? FromAnswer(*committed, what_) : Status(committed.TakeError());
  }

  Status WriteAll(const std::string& session) {
    int count = 0;
    for (const Apk& apk : apks_) {
      const std::string target =
          " -S " + std::to_string(apk.size) + " " + session + " " + std::to_string(count++) + ".apk ";
      auto written =
          streams_ ? RunWithInput("cmd package install-write" + target + "-", apk) : WriteStaged(target, apk);
      if (!written.ok()) return written.TakeError();
      if (Status answer = FromAnswer(*written, what_); !answer.ok()) return answer;
    }
    return {};
  }

  Result<Collected> WriteStaged(const std::string& target, const Apk& apk) {
    const Staged staged(device_);
    if (Status sent = SendTo(staged.path(), apk); !sent.ok()) return sent.TakeError();
    return CollectScript(device_, "pm install-write" + target + staged.path(), what_, limits_);
  }

  // Also after a cancel: with a limit of its own.
  void Abandon(const std::string& session) {
    adb::Limits limits;
    limits.deadline = adb::Clock::now() + std::chrono::seconds(5);
    static_cast<void>(
        CollectScript(device_, "pm install-abandon " + session, "abandon an installation", limits));
  }

  Status SendTo(const std::string& path, const Apk& apk) {
    if (Status opened = reader_.Open(apk); !opened.ok()) return opened;
    auto sync = OpenSync(device_, what_, limits_);
    if (!sync.ok()) return sync.TakeError();
    constexpr std::uint32_t kMode = 0100644;
    adb::Status sent = sync->connection.BeginSend(path, kMode, limits_);
    while (sent.ok()) {
      const std::string_view block = reader_.Next();
      if (reader_.error()) return *reader_.error();
      if (block.empty()) break;
      sent = sync->connection.SendData(block, limits_);
    }
    if (sent.ok()) sent = sync->connection.EndSend(0, limits_);
    if (sent.ok()) sent = sync->connection.AwaitSends(0, limits_);
    if (sent.ok()) return {};
    return SyncError(device_, sent.error(), what_, path);
  }

  // A file of the phone that is removed at the end.
  class Staged {
   public:
    explicit Staged(dk_device* device)
        : device_(device), path_(Joined(kStagingFolder, name_.text() + ".apk")) {}
    ~Staged() {
      try {
        adb::Limits limits;
        limits.deadline = adb::Clock::now() + std::chrono::seconds(5);
        static_cast<void>(CollectScript(device_, "rm -f " + path_, "remove a temporary file", limits));
      } catch (const std::bad_alloc&) {
      }
    }
    Staged(const Staged&) = delete;
    Staged& operator=(const Staged&) = delete;
    const std::string& path() const { return path_; }

   private:
    dk_device* const device_;
    const TemporaryName name_;
    const std::string path_;
  };

  dk_device* const device_;
  const dk_install_options& options_;
  const std::vector<Apk> apks_;
  const Limits& limits_;
  ApkReader reader_;
  const std::string what_ = "install " + Shown(apks_.front().path);
  bool streams_ = false;
};

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;

dk_code dk_app_install(dk_device* device, const char* const* apk_paths, size_t count,
                       const dk_install_options* given, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (device == nullptr || apk_paths == nullptr || count == 0)
      return client::InvalidArgument("no APK to install");
    std::vector<client::Apk> apks;
    for (size_t i = 0; i < count; ++i) {
      if (apk_paths[i] == nullptr) return client::InvalidArgument("an APK's path is null");
      struct stat status = {};
      const std::string path = apk_paths[i];
      if (stat(path.c_str(), &status) != 0)
        return client::FromHostErrno(errno, "install " + client::Shown(path), path);
      if (!S_ISREG(status.st_mode))
        return client::FromHostErrno(EISDIR, "install " + client::Shown(path), path);
      apks.push_back({path, static_cast<std::uint64_t>(status.st_size)});
    }
    const auto options = client::ReadOptions<dk_install_options>(given, DK_INSTALL_OPTIONS_INIT);
    return client::Installation(device, options, std::move(apks), limits).Run();
  });
}
