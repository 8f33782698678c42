#include "client/transfer/staging.h"

#include "base/shell_quoting.h"
#include "client/phone_errors.h"
#include "client/phone_path.h"

namespace darokleim::client {
namespace {

// A script goes to the phone in one request of at most 65,535 bytes.
constexpr std::size_t kLongestScript = 40 * 1024;
// With room for what is around it, see kLongestOldCommand.
constexpr std::size_t kLongestScriptOfOldPhones = 3000;

constexpr char kNamingFiles[] = "give sent files their names";

constexpr std::chrono::seconds kTimeToCleanUp{5};

// What a word takes of a script at most: quoted, and each quote of that quoted again.
std::size_t CostOf(std::string_view word) {
  return base::QuoteForShell(base::QuoteForShell(word)).size() + 1;
}

std::size_t LongestScript(const Features& features) {
  return features.has_shell_v2() ? kLongestScript : kLongestScriptOfOldPhones;
}

// The temporary folder is in the folder that they are for: a long path stands in the script once.
std::string MoveScript(const std::string& temporary, const std::vector<std::string>& names) {
  std::string script = "cd " + base::QuoteForShell(temporary) + " && mv -f";
  for (const std::string& name : names) script += " ./" + base::QuoteForShell(name);
  return script + " ../";
}

void AppendWords(std::string* script, const std::vector<std::string>& words) {
  for (const std::string& word : words) *script += " " + base::QuoteForShell(word);
}

// Prints the temporary folders in the current folder, without a program of the phone where there are none.
std::string SearchHere() {
  return "for f in " + std::string(kTemporaryPrefix) +
         "*; do [ -e \"$f\" ] && ls -d \"$PWD/$f\"; done 2>/dev/null";
}

// Of the lines of a search, those that nobody writes to any more.
void RemoveLeftOversOf(const Features& features, std::string_view lines, const Limits& limits) {
  const std::size_t longest = LongestScript(features);
  std::string removal;
  std::size_t cost = 0;
  ForEachLine(lines, [&](std::string_view line) {
    if (!line.empty() && line.front() == '/' && IsLeftOver(NameOf(line))) {
      cost += CostOf(line);
      if (cost < longest) removal += " " + base::QuoteForShell(line);
    }
    return cost < longest;
  });
  if (removal.empty()) return;
  static_cast<void>(CollectScript(features.device(), "rm -rf" + removal, "remove left-over files", limits));
}

}  // namespace

Staging::~Staging() {
  try {
    std::vector<std::string> temporary;
    for (const auto& [folder, state] : folders_) temporary.push_back(state.temporary.path);
    for (const Part& part : moving_.parts) temporary.push_back(part.temporary.path);
    std::string words;
    std::size_t cost = 0;
    for (const std::string& folder : temporary) {
      if (folder.empty()) continue;
      cost += CostOf(folder);
      if (cost > LongestScript(*features_)) break;
      words += " " + base::QuoteForShell(folder);
    }
    if (words.empty()) return;
    adb::Limits limits;
    limits.deadline = adb::Clock::now() + kTimeToCleanUp;
    script_.reset();
    static_cast<void>(CollectScript(device_, "rm -rf" + words, "remove temporary files", limits));
  } catch (const std::bad_alloc&) {  // a later transfer removes them
  }
}

std::string Staging::PathFor(const std::string& folder, const std::string& name) {
  Folder& state = folders_[folder];
  Temporary& temporary = state.temporary;
  if (temporary.name == nullptr) {
    auto created = std::make_shared<const TemporaryName>();
    temporary.path = Joined(folder, created->text());
    temporary.name = std::move(created);
  }
  return Joined(temporary.path, name);
}

void Staging::Whole(const std::string& folder, const std::string& name) {
  Folder& state = folders_[folder];
  --state.under_way;
  state.whole.push_back(name);
  ++waiting_;
}

void Staging::Make(std::string folder) {
  folders_to_make_.push_back(std::move(folder));
}

Staging::Batch Staging::TakeBatch() {
  Batch batch;
  const std::size_t longest = LongestScript(*features_);
  std::size_t cost = 0;
  while (!folders_to_make_.empty() && cost < longest / 2) {
    cost += CostOf(folders_to_make_.back());
    batch.folders_to_make.push_back(std::move(folders_to_make_.back()));
    folders_to_make_.pop_back();
  }
  for (auto at = folders_.begin(); at != folders_.end() && cost < longest;) {
    Folder& state = at->second;
    Part part{at->first, state.temporary, {}, false};
    constexpr std::size_t kWordsAround = 160;
    std::size_t part_cost = CostOf(part.temporary.path) + CostOf(NameOf(part.temporary.path)) + kWordsAround;
    const bool is_first = batch.parts.empty();  // gets at least one, however long its words are
    if (!is_first && cost + part_cost >= longest) break;
    while (!state.whole.empty() && (cost + part_cost < longest || (is_first && part.names.empty()))) {
      part_cost += CostOf(state.whole.back()) + 2;
      part.names.push_back(std::move(state.whole.back()));
      state.whole.pop_back();
    }
    waiting_ -= part.names.size();
    part.is_last = state.whole.empty() && state.under_way == 0;
    at = part.is_last ? folders_.erase(at) : std::next(at);
    const bool is_used = part.temporary.name != nullptr && (part.is_last || !part.names.empty());
    if (!is_used) continue;
    cost += part_cost;
    batch.parts.push_back(std::move(part));
  }
  return batch;
}

std::string Staging::ScriptOf(const Batch& batch) {
  std::string script = "e=; ";
  if (!batch.folders_to_make.empty()) {
    script += "mkdir -p";
    AppendWords(&script, batch.folders_to_make);
    script += " || e=1; ";
  }
  for (const Part& part : batch.parts) {
    if (part.names.empty()) {
      script += "rm -rf " + base::QuoteForShell(part.temporary.path) + "; ";
      continue;
    }
    script += MoveScript(part.temporary.path, part.names);
    if (part.is_last) {
      script += " && cd .. && { rm -rf ./" + base::QuoteForShell(NameOf(part.temporary.path)) + "; " +
                SearchHere() + "; true; }";
    }
    script += " || e=1; ";
  }
  return script + "[ -z \"$e\" ]";
}

Status Staging::Commit(const Limits& limits, const Fail& failed) {
  do {
    if (Status settled = Settle(limits, failed); !settled.ok()) return settled;
    moving_ = TakeBatch();
    if (moving_.parts.empty() && moving_.folders_to_make.empty()) return {};
    auto script = RunningScript::Start(features_, ScriptOf(moving_), kNamingFiles, limits);
    if (!script.ok()) return script.TakeError();
    script_.emplace(*std::move(script));
  } while (waiting_ > 0 || !folders_to_make_.empty());
  return {};
}

Status Staging::Finish(const Limits& limits, const Fail& failed) {
  while (!folders_.empty() || !folders_to_make_.empty()) {
    if (Status committed = Commit(limits, failed); !committed.ok()) return committed;
  }
  Status settled = Settle(limits, failed);
  if (settled.ok()) RemoveLeftOversOf(*features_, left_overs_, limits);
  return settled;
}

Status Staging::Settle(const Limits& limits, const Fail& failed) {
  if (!script_) return {};
  auto moved = script_->Finish(limits);
  script_.reset();
  if (!moved.ok()) return moved.TakeError();
  if (moved->exit_status == 0) {
    left_overs_ += moved->out;
    for (const Part& part : moving_.parts) named_ += part.names.size();
  } else {
    if (Status explained = Explain(moving_, limits, failed); !explained.ok()) return explained;
  }
  moving_ = {};
  return {};
}

Status Staging::Explain(const Batch& batch, const Limits& limits, const Fail& failed) {
  Status wanted;  // to go on; what is named is counted in any case
  const auto fail = [&](Error error) {
    if (wanted.ok()) wanted = failed(std::move(error));
  };
  if (!batch.folders_to_make.empty()) {
    std::string script = "mkdir -p";
    AppendWords(&script, batch.folders_to_make);
    auto made = CollectScript(device_, script, "make folders", limits);
    if (!made.ok()) return made.TakeError();
    if (made->exit_status != 0) fail(FromProgram(*made, "make a folder", ""));
  }
  for (const Part& part : batch.parts) {
    if (Status status = ExplainPart(part, limits, fail); !status.ok()) return status;
  }
  return wanted;
}

// Once more, for the words about this folder alone.
Status Staging::ExplainPart(const Part& part, const Limits& limits,
                            const std::function<void(Error)>& failed) {
  Part left = part;
  auto names = LeftOf(left, limits);
  if (!names.ok()) return names.TakeError();
  left.names = *std::move(names);
  if (!left.names.empty()) {
    auto moved = CollectScript(device_, MoveScript(left.temporary.path, left.names), kNamingFiles, limits);
    if (!moved.ok()) return moved.TakeError();
    names = LeftOf(left, limits);
    if (!names.ok()) return names.TakeError();
    for (const std::string& name : *names) {
      const std::string path = Joined(part.folder, name);
      failed(FromProgram(*moved, "send " + Shown(path), path));
    }
    left.names = *std::move(names);
  }
  named_ += part.names.size() - left.names.size();
  if (left.names.empty() && !part.is_last) return {};
  std::string script = "cd " + base::QuoteForShell(part.temporary.path) + " && rm -f";
  for (const std::string& name : left.names) script += " ./" + base::QuoteForShell(name);
  if (part.is_last) script = "rm -rf " + base::QuoteForShell(part.temporary.path);
  auto removed = CollectScript(device_, script, kNamingFiles, limits);
  return removed.ok() ? Status() : removed.TakeError();
}

Result<std::vector<std::string>> Staging::LeftOf(const Part& part, const Limits& limits) {
  std::vector<std::string> left;
  if (part.names.empty()) return left;
  std::string script = "cd " + base::QuoteForShell(part.temporary.path) + " || exit 1; for n in";
  AppendWords(&script, part.names);
  script += "; do [ -e \"./$n\" ] && echo 1 || echo 0; done";
  auto answers = CollectScript(device_, script, kNamingFiles, limits);
  if (!answers.ok()) return answers.TakeError();
  std::size_t at = 0;
  ForEachLine(answers->out, [&](std::string_view line) {
    if (at < part.names.size() && line == "1") left.push_back(part.names[at]);
    return ++at < part.names.size();
  });
  return left;
}

void LeftOvers::Look(const std::vector<std::string>& folders, const Limits& limits) {
  if (!features_->Get("look for left-over files", limits).ok()) return;
  std::string script = "for d in";
  std::size_t cost = 0;
  const std::string* before = nullptr;
  for (const std::string& folder : folders) {
    if (before != nullptr && *before == folder) continue;
    before = &folder;
    cost += CostOf(folder);
    if (cost > LongestScript(*features_)) break;
    script += " " + base::QuoteForShell(folder);
  }
  script += "; do cd \"$d\" && " + SearchHere() + "; done 2>/dev/null";
  auto started = RunningScript::Start(features_, script, "look for left-over files", limits);
  if (started.ok()) script_.emplace(*std::move(started));
}

void LeftOvers::Remove(const Limits& limits) {
  if (!script_) return;
  auto listed = script_->Finish(limits);
  script_.reset();
  if (listed.ok()) RemoveLeftOversOf(*features_, listed->out, limits);
}

}  // namespace darokleim::client
