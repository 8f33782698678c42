#include "client/transfer/staging.h"

#include "base/shell_quoting.h"
#include "client/phone_errors.h"
#include "client/phone_path.h"
#include "client/shell.h"
#include "client/temporary_name.h"

namespace darokleim::client {
namespace {

// A script goes to the phone in one request of at most 65,535 bytes.
constexpr std::size_t kLongestScript = 48 * 1024;

constexpr char kWhat[] = "give sent files their names";

constexpr std::chrono::seconds kTimeToCleanUp{5};

}  // namespace

Staging::~Staging() {
  try {
    std::string script;
    for (const auto& [folder, state] : folders_) {
      const std::string remove = CommandLine({"rm", "-rf", state.temporary}) + "; ";
      if (script.size() + remove.size() > kLongestScript) break;
      script += remove;
    }
    if (script.empty()) return;
    adb::Limits limits;
    limits.deadline = adb::Clock::now() + kTimeToCleanUp;
    static_cast<void>(CollectScript(device_, script, "remove temporary files", limits));
  } catch (const std::bad_alloc&) {  // a later transfer removes them
  }
}

std::string Staging::PathFor(const std::string& folder, const std::string& name) {
  Folder& state = folders_[folder];
  if (state.temporary.empty()) state.temporary = Joined(folder, NewTemporaryName());
  return Joined(state.temporary, name);
}

void Staging::Whole(const std::string& folder, const std::string& name) {
  folders_[folder].whole.push_back(name);
  ++waiting_;
}

// The temporary folders are removed with the last of their files.
Status Staging::Commit(const Limits& limits, const Fail& failed) {
  while (!folders_.empty()) {
    const auto first = folders_.begin();
    Folder rest = std::move(first->second);
    Folder some{rest.temporary, {}};
    std::size_t length = 0;
    while (!rest.whole.empty() && length < kLongestScript / 2) {
      length += rest.whole.back().size() + rest.temporary.size() + 16;
      some.whole.push_back(std::move(rest.whole.back()));
      rest.whole.pop_back();
    }
    first->second = std::move(rest);
    if (Status committed = CommitSome(first->first, some, limits, failed); !committed.ok()) return committed;
    waiting_ -= some.whole.size();
    if (first->second.whole.empty()) folders_.erase(first);
  }
  return {};
}

Status Staging::CommitSome(const std::string& folder, const Folder& some, const Limits& limits,
                           const Fail& failed) {
  std::string script;
  if (!some.whole.empty()) {
    script = "mv -f";
    for (const std::string& name : some.whole)
      script += " " + base::QuoteForShell(Joined(some.temporary, name));
    script += " " + base::QuoteForShell(folder == "/" ? folder : folder + "/") + " && ";
  }
  // Of a folder whose files are moved in several steps it fails until the last one.
  script += "{ rmdir " + base::QuoteForShell(some.temporary) + " 2>/dev/null; true; }";
  auto moved = CollectScript(device_, script, kWhat, limits);
  if (!moved.ok()) return moved.TakeError();
  if (moved->exit_status == 0) return {};
  return ReportLeft(folder, some, moved->err.empty() ? moved->out : moved->err, limits, failed);
}

Status Staging::ReportLeft(const std::string& folder, const Folder& some, const std::string& words,
                           const Limits& limits, const Fail& failed) {
  std::string script;
  for (const std::string& name : some.whole) {
    script += "[ -e " + base::QuoteForShell(Joined(some.temporary, name)) + " ] && echo 1 || echo 0; ";
  }
  script += CommandLine({"rm", "-rf", some.temporary});
  auto left = CollectScript(device_, script, kWhat, limits);
  if (!left.ok()) return left.TakeError();
  Collected said;
  said.err = words;
  said.exit_status = 1;
  std::size_t at = 0;
  Status status;
  ForEachLine(left->out, [&](std::string_view line) {
    if (at >= some.whole.size()) return false;
    const std::string path = Joined(folder, some.whole[at++]);
    if (line == "1") status = failed(FromProgram(said, "send " + Shown(path), path));
    return status.ok();
  });
  return status;
}

void Staging::RemoveLeftOvers(dk_device* device, const std::vector<std::string>& folders,
                              const Limits& limits) {
  std::string script;
  for (const std::string& folder : folders) {
    const std::string list =
        "ls -d " + base::QuoteForShell(folder) + "/" + std::string(kTemporaryPrefix) + "*; ";
    if (script.size() + list.size() > kLongestScript) break;
    script += list;
  }
  auto listed =
      CollectScript(device, "{ " + script + "true; } 2>/dev/null", "look for left-over files", limits);
  if (!listed.ok()) return;
  std::string removal;
  ForEachLine(listed->out, [&](std::string_view line) {
    if (!line.empty() && line.front() == '/' && IsLeftOver(NameOf(line))) {
      removal += "rm -rf " + base::QuoteForShell(line) + "; ";
    }
    return removal.size() < kLongestScript;
  });
  if (!removal.empty()) static_cast<void>(CollectScript(device, removal, "remove left-over files", limits));
}

}  // namespace darokleim::client
