// darokleim backup, restore
#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "base/unique_fd.h"
#include "tools/cli/cancel_on_signal.h"
#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_file.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json_text.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

constexpr char kBackupFooter[] =
    R"(The phone asks its user first: unlock it and confirm. Ctrl-C closes the question. An existing file is replaced once the
backup is whole. Applications can forbid backups, and most of those made for Android 12 and later do.

Examples:
  darokleim backup com.example.notes notes.ab
  darokleim backup com.example.notes - | gzip >notes.ab.gz)";

constexpr char kRestoreFooter[] =
    R"(The application must be installed. The phone asks its user first: unlock it and confirm. It does not report whether the
user did.

Examples:
  darokleim restore notes.ab
  gunzip <notes.ab.gz | darokleim restore -)";

constexpr char kStandardStream[] = "-";

// Where the pieces of a backup go.
class Sink {
 public:
  virtual ~Sink() = default;
  virtual void Write(std::string_view piece) = 0;
  virtual void Finish() = 0;
};

class OutputSink : public Sink {
 public:
  explicit OutputSink(Output& output) : output_(output) {}
  void Write(std::string_view piece) override { output_.Write(piece); }
  void Finish() override {}

 private:
  Output& output_;
};

// The file appears when it is whole.
class FileSink : public Sink {
 public:
  explicit FileSink(const fs::path& target) : target_(target), unfinished_(target) {
    file_.Reset(open(unfinished_.path().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file_.valid()) Fail();
  }

  void Write(std::string_view piece) override {
    while (!piece.empty()) {
      const ssize_t size = write(file_.get(), piece.data(), piece.size());
      if (size >= 0) {
        piece.remove_prefix(static_cast<std::size_t>(size));
      } else if (errno != EINTR) {
        Fail();
      }
    }
  }

  void Finish() override {
    file_.Reset();
    unfinished_.PutInPlace();
  }

 private:
  [[noreturn]] void Fail() const {
    throw ToolError("cannot write the backup to " + target_.native() + ": " + SystemErrorText(errno) + ".");
  }

  const fs::path target_;
  UnfinishedOnHost unfinished_;
  base::UniqueFd file_;
};

struct BackupOptions {
  Package package;
  HostPath file;
};

void DescribeBackup(Command& command, BackupOptions& options) {
  command.PackageArgument(options.package);
  command.Positional("FILE", options.file, "File to write on this computer; - is standard output").Required();
}

fs::path TargetFor(const std::string& named) {
  fs::path target = AbsolutePath(named);
  std::error_code error;
  const auto there = fs::status(target, error);
  if (fs::exists(there) && !fs::is_regular_file(there)) {
    throw ToolError("cannot write the backup to " + named + ": it is not a regular file.");
  }
  return target;
}

std::unique_ptr<Sink> SinkFor(Tool& tool, const std::string& named) {
  if (named != kStandardStream) return std::make_unique<FileSink>(TargetFor(named));
  if (tool.is_json()) throw UsageError("--json and a backup on standard output exclude each other.");
  return std::make_unique<OutputSink>(tool.output());
}

// The application and the file are checked before the phone asks its user.
void RunBackup(Tool& tool, const BackupOptions& options) {
  const std::string& package = options.package.name;
  const bool to_file = options.file.text != kStandardStream;
  const auto& phone = tool.phone();
  phone.app(package, tool.limits()).value();
  const auto sink = SinkFor(tool, options.file.text);
  if (to_file) tool.Report("Confirm the backup on the phone's screen.");
  std::uint64_t size = 0;
  const auto take = [&](std::string_view piece) {
    sink->Write(piece);
    size += piece.size();
    return true;
  };
  {
    const Progress progress(tool.progress_mode(), WaitingLine("waiting for the phone"));
    phone.backup(package, take, tool.limits()).value();
  }
  sink->Finish();
  if (tool.is_json()) {
    tool.document().Member("path", JsonString(options.file.text));
    tool.document().Member("size", std::to_string(size));
  }
  if (to_file) tool.Report("Saved " + SizeText(size) + " in " + options.file.text + ".");
}

struct RestoreOptions {
  HostPath file;
};

void DescribeRestore(Command& command, RestoreOptions& options) {
  command.Positional("FILE", options.file, "Backup file on this computer; - is standard input").Required();
}

base::UniqueFd OpenBackup(const std::string& path) {
  base::UniqueFd file(path == kStandardStream ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                              : open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.valid()) throw ToolError("cannot restore " + path + ": " + SystemErrorText(errno) + ".");
  return file;
}

void RunRestore(Tool& tool, const RestoreOptions& options) {
  const std::string& path = options.file.text;
  const base::UniqueFd file = OpenBackup(path);
  const auto read_file = [&](char* buffer, std::size_t capacity) -> std::int64_t {
    for (;;) {
      const ssize_t size = read(file.get(), buffer, capacity);
      if (size >= 0) return size;
      CheckCancelled();
      if (errno != EINTR) throw ToolError("cannot restore " + path + ": " + SystemErrorText(errno) + ".");
    }
  };
  const auto& phone = tool.phone();
  tool.Report("Confirm the restore on the phone's screen.");
  {
    const Progress progress(tool.progress_mode(), WaitingLine("waiting for the phone"));
    phone.restore(read_file, tool.limits()).value();
  }
  if (tool.is_json()) tool.document().Member("path", JsonString(path));
  tool.Report("The phone has received " + path + ".");
}

}  // namespace

void AddBackupCommand(Command& root) {
  AddCommand<BackupOptions>(root, {"backup", "Save the data of an application in a file", kBackupFooter},
                            DescribeBackup, RunBackup);
}

void AddRestoreCommand(Command& root) {
  AddCommand<RestoreOptions>(root, {"restore", "Restore a backup", kRestoreFooter}, DescribeRestore,
                             RunRestore);
}

}  // namespace darokleim::cli
