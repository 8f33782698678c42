// What adb itself says of generated trees and names, and what the client says of them. Where the client does better on
// purpose, the rule by which the two differ is part of the comparison.
//
// DAROKLEIM_TREES is how many trees each test makes on each phone.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>

#include "tests/client/client_on_phone.h"
#include "tests/client/generated_tree.h"
#include "tests/support/adb_version.h"
#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {
namespace {

namespace fs = std::filesystem;

std::uint64_t TreeCount() {
  const char* const count = std::getenv("DAROKLEIM_TREES");
  return count == nullptr ? 20 : std::strtoull(count, nullptr, 10);
}

// Not the client's own quoting.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

std::string Format(const char* form, std::uint64_t mode, std::uint64_t size, std::uint64_t time) {
  char text[64];
  std::snprintf(text, sizeof text, form, static_cast<unsigned long long>(mode),
                static_cast<unsigned long long>(size), static_cast<unsigned long long>(time));
  return text;
}

// Of a transferred file: what the two have in common.
struct Found {
  char type = '?';
  mode_t permissions = 0;  // these three of files alone: neither adb nor the client keeps those of folders
  std::int64_t modified = 0;
  std::string content;  // of a link its target

  bool operator==(const Found&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Found& found) {
  return out << found.type << ' ' << std::oct << found.permissions << std::dec << ' ' << found.modified << ' '
             << testing::PrintToString(found.content.substr(0, 40)) << " of " << found.content.size();
}
using Tree = std::map<std::string, Found>;

std::optional<Found> Look(const std::string& path) {
  struct stat status;
  if (lstat(path.c_str(), &status) != 0) return std::nullopt;
  if (S_ISDIR(status.st_mode)) return Found{'d', 0, 0, ""};
  if (S_ISLNK(status.st_mode)) return Found{'l', 0, 0, fs::read_symlink(path).native()};
  return Found{'-', status.st_mode & 0777, status.st_mtime, ReadFile(path)};
}

Tree LookBelow(const std::string& folder) {
  Tree tree;
  if (!fs::exists(folder)) return tree;
  for (const std::string& path : PathsBelow(folder)) tree[path] = *Look(folder + path);
  return tree;
}

// What a link in a folder of a tree leads to: a file of the same tree, as the client transfers it.
std::optional<Found> FileAt(const std::string& root, const std::string& below) {
  const fs::path target = fs::read_symlink(root + below);
  const std::string path = (fs::path(root + below).parent_path() / target).native();
  if (target.is_absolute()) return std::nullopt;
  std::optional<Found> found = Look(path);
  return found && found->type == '-' ? found : std::nullopt;
}

bool HasOnlyFolders(const Tree& tree, const std::string& folder) {
  const std::string below = folder + "/";
  for (auto at = tree.lower_bound(below); at != tree.end() && at->first.rfind(below, 0) == 0; ++at) {
    if (at->second.type != 'd') return false;
  }
  return true;
}

bool IsBelowOneOf(const std::string& path, const std::vector<std::string>& folders) {
  return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
    return path == folder || path.rfind(folder + "/", 0) == 0;
  });
}

class ComparedWithAdb : public ClientOnPhone {
 protected:
  static constexpr char kFolder[] = "/data/local/tmp/trees";

  void SetUp() override {
    umask(0);  // adb takes its bits off the modes that it is to keep
    release_ = AdbIsOfRelease34() ? "34" : "29";
    Start({std::string(kSerial) + ",android=" + GetParam()}, {"--quick", "--server-release", release_});
    const std::string list = phones().Control({"list"}).output;
    const std::string mark = "\tfiles=";
    const std::size_t at = list.find(mark) + mark.size();
    seen_ = list.substr(at, list.find_first_of("\t\n", at) - at);
    Fill(Seen(kFolder) + "/outside");
    Fill(Host("outside"));
  }

  void TearDown() override { RemoveTree(Seen(kFolder)); }

  // The phone's path as the host sees it.
  std::string Seen(const std::string& path) const { return seen_ + path; }
  std::string Host(const std::string& name) const { return directory_.File(name); }

  Outcome Adb(const Words& words) const {
    Words all = {"-s", kSerial};
    all.insert(all.end(), words.begin(), words.end());
    return phones().Adb(all);
  }

  // What a command prints through adb: the terminal of an old phone turns each line break into two characters.
  std::string AdbShell(const std::string& script) const {
    const std::string printed = Adb({"shell", script}).output;
    if (!legacy()) return printed;
    std::string text;
    for (std::size_t i = 0; i < printed.size(); ++i) {
      if (printed[i] == '\r' && i + 1 < printed.size() && printed[i + 1] == '\n') continue;
      text += printed[i];
    }
    return text;
  }

  // Calls `compare` for each tree on the phone.
  template <typename Compare>
  void ForEachTreeOnThePhone(const Compare& compare) {
    for (std::uint64_t seed = 1; seed <= TreeCount() && !HasFailure(); ++seed) {
      SCOPED_TRACE("tree " + std::to_string(seed));
      Dice dice(seed);
      const std::string path = std::string(kFolder) + "/tree";
      MakeTree(&dice, Seen(path), std::string(kFolder) + "/outside", Readable::kNearlyAll);
      compare(path, &dice);
      RemoveTree(Seen(path));
    }
  }

  // Whether the phone's shell may look into it, and into every folder above it in the tree.
  bool IsReadable(const std::string& root, std::string below) const {
    struct stat status;
    if (lstat(Seen(root + below).c_str(), &status) != 0 || (status.st_mode & 0777) == 0) return false;
    while (!below.empty()) {
      below.resize(below.rfind('/'));
      if (stat(Seen(root + below).c_str(), &status) != 0 || (status.st_mode & 0777) == 0) return false;
    }
    return true;
  }

  struct Errors {
    std::map<std::string, dk_code> codes;
  };
  static dk_transfer_options Options(Errors* errors) {
    dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
    options.keep_going = true;
    options.keep_modes = true;
    options.user = errors;
    options.on_error = [](void* user, const dk_error* error) {
      static_cast<Errors*>(user)->codes[dk_error_path(error)] = dk_error_code(error);
      return true;
    };
    return options;
  }

 private:
  static void Fill(const std::string& outside) {
    fs::create_directories(outside + "/folder");
    WriteFile(outside + "/file", "outside");
    WriteFile(outside + "/folder/file", "in a folder outside");
  }

  std::string release_;
  std::string seen_;
  const TemporaryDirectory directory_;
};
DAROKLEIM_ON_BOTH_GENERATIONS(ComparedWithAdb);

// The rule: `.` and `..` are left out.
TEST_P(ComparedWithAdb, AListHasTheEntriesOfAdbLs) {
  ForEachTreeOnThePhone([&](const std::string& tree, Dice* dice) {
    std::vector<std::string> folders = {tree};
    for (const std::string& path : PathsBelow(Seen(tree))) {
      if (fs::is_directory(fs::symlink_status(Seen(tree + path))) && IsReadable(tree, path))
        folders.push_back(tree + path);
    }
    while (folders.size() > 3)
      folders.erase(folders.begin() + static_cast<std::ptrdiff_t>(dice->Roll(folders.size())));
    for (const std::string& folder : folders) {
      std::string printed = Adb({"ls", folder}).output;
      for (const std::string name : {" .\n", " ..\n"}) {
        const std::size_t end = printed.find(name);
        ASSERT_NE(end, std::string::npos) << folder;
        const std::size_t begin = end - std::string("000041ed 00001000 00000000").size();
        printed.erase(begin, end + name.size() - begin);
      }
      std::string listed;
      for (const dk::Entry& entry : phone().list(folder).value()) {
        listed += Format("%08llx %08llx %08llx ", entry.mode, entry.size.value(),
                         static_cast<std::uint64_t>(entry.mtime)) +
                  entry.name + "\n";
      }
      EXPECT_EQ(listed, printed) << folder;
    }
  });
}

// The rule: where adb ls prints nothing and succeeds, there is an error that says why.
TEST_P(ComparedWithAdb, WhatAdbLsSaysNothingOfIsAnError) {
  ForEachTreeOnThePhone([&](const std::string& tree, Dice* dice) {
    const auto paths = PathsBelow(Seen(tree));
    if (paths.empty()) return;
    const std::string below = dice->Pick(paths);
    if (!IsReadable(tree, below)) {
      const auto found = Look(Seen(tree + below));
      if (found && found->type != 'd') return;
    }
    const std::string path = dice->OneIn(4) ? tree + "/missing" : tree + below;
    const Outcome adb = Adb({"ls", path});
    const auto listed = phone().list(path);
    if (!adb.output.empty()) {
      EXPECT_TRUE(listed) << path;
      return;
    }
    EXPECT_EQ(adb.status, 0) << path;
    std::error_code unreachable;  // for a link to a name that is longer than any file's
    const fs::file_status status = fs::status(Seen(path), unreachable);
    dk_code expected = DK_ACCESS_DENIED;
    if (unreachable == std::errc::filename_too_long)
      expected =
          legacy() ? DK_NOT_FOUND : DK_NAME_TOO_LONG;  // old phones do not say why a link leads nowhere
    else if (!fs::exists(status))
      expected = DK_NOT_FOUND;
    else if (!fs::is_directory(status))
      expected = DK_NOT_A_DIRECTORY;
    // A link into the phone's own folders leads elsewhere on the host.
    if (fs::is_symlink(Seen(path)) && fs::read_symlink(Seen(path)).is_absolute())
      expected = DK_NOT_A_DIRECTORY;
    EXPECT_EQ(listed.code(), expected) << path;
  });
}

// The rules: the folder itself is left out; a folder that cannot be read is an error of its own.
TEST_P(ComparedWithAdb, AWalkFindsWhatFindPrintsAndSaysWhatStatPrints) {
  ForEachTreeOnThePhone([&](const std::string& tree, Dice*) {
    const std::string find = "find " + Quoted(tree) + " -print0 2>/dev/null";
    const std::string printed_paths = AdbShell(find);
    const std::string printed_facts = AdbShell(find + " | xargs -0 stat -c '%f %s %Y'");
    std::map<std::string, std::string> expected, walked;
    std::size_t line = 0;
    for (std::size_t at = 0; at < printed_paths.size();) {
      const std::size_t end = printed_paths.find('\0', at), line_end = printed_facts.find('\n', line);
      ASSERT_NE(line_end, std::string::npos) << printed_facts;
      expected[printed_paths.substr(at, end - at)] = printed_facts.substr(line, line_end - line);
      at = end + 1;
      line = line_end + 1;
    }
    ASSERT_EQ(expected.erase(tree), 1U);
    const auto outcome = phone().walk(tree, dk::WalkOptions(), [&](const dk_entry& entry) {
      walked[entry.path] =
          Format("%llx %llu %llu", entry.mode, entry.size, static_cast<std::uint64_t>(entry.mtime));
      return true;
    });
    EXPECT_EQ(walked, expected);
    bool all_readable = true;
    for (const auto& [path, facts] : expected) {
      struct stat status;
      if (lstat(Seen(path).c_str(), &status) == 0 && S_ISDIR(status.st_mode) && (status.st_mode & 0777) == 0)
        all_readable = false;
    }
    EXPECT_EQ(outcome.code(), all_readable ? DK_OK : DK_PARTLY_DONE);
  });
}

// The rule: a link's target is said, too.
TEST_P(ComparedWithAdb, AStatusIsWhatStatPrints) {
  ForEachTreeOnThePhone([&](const std::string& tree, Dice* dice) {
    std::vector<std::string> paths = PathsBelow(Seen(tree));
    while (paths.size() > 5)
      paths.erase(paths.begin() + static_cast<std::ptrdiff_t>(dice->Roll(paths.size())));
    const auto script_of = [&](const std::string& path) {
      std::string script;
      for (const std::string stat : {"stat -c '%f %s %Y' ", "stat -L -c '%f %s %Y' "})
        script += stat + Quoted(tree + path) + " 2>/dev/null || echo none; ";
      return script;
    };
    std::string script;
    std::size_t count = 0;
    constexpr std::size_t kLongestOfAdb = 4096 - 64;  // for old phones
    while (count < paths.size() && script.size() + script_of(paths[count]).size() < kLongestOfAdb)
      script += script_of(paths[count++]);
    paths.resize(count);
    const std::string printed = AdbShell(script);
    std::string looked;
    for (const std::string& path : paths) {
      for (const dk_follow follow : {DK_NO_FOLLOW, DK_FOLLOW}) {
        auto entry = phone().stat(tree + path, follow);
        if (!entry) {
          looked += "none\n";
          continue;
        }
        const dk::Entry& found = entry.value();
        looked += Format("%llx %llu %llu\n", found.mode, found.size.value(),
                         static_cast<std::uint64_t>(found.mtime));
        if (found.type == DK_LINK) {
          EXPECT_EQ(found.link_target, fs::read_symlink(Seen(tree + path)).native()) << path;
        }
      }
    }
    EXPECT_EQ(looked, printed) << script;
  });
}

// The rules: a link to a file of the tree is that file, with its time and mode (adb gives it the link's); others are not
// followed, each with an error; a file that cannot be read
// is an error and keeps nothing up, where adb ends.
TEST_P(ComparedWithAdb, APullBringsWhatAdbPullBrings) {
  ForEachTreeOnThePhone([&](const std::string& tree, Dice*) {
    const std::string by_adb = Host("adb"), by_client = Host("client");
    const Outcome adb = Adb({"pull", "-a", tree, by_adb});
    Errors errors;
    const auto pulled = phone().pull({{tree, by_client}}, Options(&errors));

    Tree expected;
    std::vector<std::string> not_followed, not_readable;
    for (const std::string& path : PathsBelow(Seen(tree))) {
      const Found found = *Look(Seen(tree + path));
      if (!IsReadable(tree, path.substr(0, path.rfind('/')))) continue;
      if (found.type == 'l') {
        const std::optional<Found> target = FileAt(Seen(tree), path);
        const bool is_readable = target && target->permissions != 0;
        if (is_readable) expected[path] = *target;
        if (!target) not_followed.push_back(path);
        if (target && !is_readable) not_readable.push_back(path);
        continue;
      }
      const bool is_readable = IsReadable(tree, path);
      if (!is_readable) not_readable.push_back(path);
      if (is_readable || found.type == 'd') expected[path] = found;
    }
    const Tree client_tree = LookBelow(by_client), adb_tree = LookBelow(by_adb);
    EXPECT_EQ(client_tree, expected);
    std::vector<std::string> wrong;
    for (const std::vector<std::string>* paths : {&not_followed, &not_readable})
      for (const std::string& path : *paths) wrong.push_back(tree + path);
    std::vector<std::string> reported;
    for (const auto& [path, code] : errors.codes) reported.push_back(path);
    EXPECT_THAT(reported, testing::UnorderedElementsAreArray(wrong));
    EXPECT_EQ(pulled.code(), wrong.empty() ? DK_OK : DK_PARTLY_DONE);

    for (const auto& [path, found] : adb_tree) {
      if (IsBelowOneOf(path, not_followed)) continue;
      const auto ours = client_tree.find(path);
      ASSERT_NE(ours, client_tree.end()) << path;
      const bool was_at_work = found.type == '-' && adb.status != 0 && found != ours->second;
      if (was_at_work) continue;  // when it ended
      if (fs::is_symlink(Seen(tree + path))) {
        EXPECT_EQ(ours->second.content, found.content) << path;
      } else {
        EXPECT_EQ(ours->second, found) << path;
      }
    }
    if (adb.status == 0) {
      for (const auto& [path, found] : client_tree)
        EXPECT_EQ(adb_tree.count(path), 1U) << path << adb.output << adb.errors;
    } else {
      EXPECT_FALSE(wrong.empty()) << adb.output << adb.errors;
    }
    RemoveTree(by_adb);
    RemoveTree(by_client);
  });
}

// The rules: a link to a file of the tree is that file, others are not followed, where adb sends links; folders without
// files are sent, too.
TEST_P(ComparedWithAdb, APushSendsWhatAdbPushSends) {
  for (std::uint64_t seed = 1; seed <= TreeCount() && !HasFailure(); ++seed) {
    SCOPED_TRACE("tree " + std::to_string(seed));
    Dice dice(seed);
    const std::string source = Host("tree"), by_adb = std::string(kFolder) + "/adb",
                      by_client = std::string(kFolder) + "/client";
    MakeTree(&dice, source, Host("outside"), Readable::kAll);
    const Outcome adb = Adb({"push", source, by_adb});
    ASSERT_EQ(adb.status, 0) << adb.output << adb.errors;
    Errors errors;
    const auto pushed = phone().push({{source, by_client}}, Options(&errors));

    const Tree sent = LookBelow(source), sent_by_adb = LookBelow(Seen(by_adb));
    Tree expected;
    std::size_t not_followed = 0;
    for (const auto& [path, found] : sent) {
      const auto there = sent_by_adb.find(path);
      if (found.type == 'd') {
        EXPECT_TRUE(there != sent_by_adb.end() || HasOnlyFolders(sent, path)) << path;
        expected[path] = found;
      } else {
        ASSERT_NE(there, sent_by_adb.end()) << path;
        const std::optional<Found> target = found.type == 'l' ? FileAt(source, path) : found;
        not_followed += !target;
        if (target)
          expected[path] = found.type == 'l'
                               ? sent_by_adb.at(path.substr(0, path.rfind('/') + 1) + found.content.substr(2))
                               : there->second;
      }
    }
    EXPECT_EQ(LookBelow(Seen(by_client)), expected);
    EXPECT_EQ(errors.codes.size(), not_followed);
    EXPECT_EQ(pushed.code(), not_followed == 0 ? DK_OK : DK_PARTLY_DONE);
    RemoveTree(source);
    RemoveTree(Seen(by_adb));
    RemoveTree(Seen(by_client));
  }
}

// The rule: the exit status of an old phone is known, as if the command had printed it.
TEST_P(ComparedWithAdb, ACommandComesToWhatAdbShellSays) {
  for (std::uint64_t seed = 1; seed <= 2 * TreeCount() && !HasFailure(); ++seed) {
    SCOPED_TRACE("command " + std::to_string(seed));
    Dice dice(seed);
    std::vector<std::string> words = {"printf", dice.OneIn(2) ? "%s\\n" : "[%s]"};
    std::string script;
    for (std::uint64_t left = 1 + dice.Roll(6); left > 0; --left) words.push_back(AwkwardName(&dice));
    for (const std::string& word : words) script += Quoted(word) + " ";
    const auto run = phone().run(words).value();
    EXPECT_EQ(run.out, AdbShell(script)) << script;
    EXPECT_EQ(run.exit_status, 0) << script;

    static const std::vector<std::string> kEnds = {"",
                                                   "exit 3",
                                                   "exit 255",
                                                   "false",
                                                   "nosuchprogram",
                                                   "kill -9 $$",
                                                   "(exit 7)",
                                                   "ls /nowhere",
                                                   "printf 'no line break'",
                                                   "printf '\\001\\377\\n'",
                                                   "echo error >&2",
                                                   "seq 3000"};
    script += "; " + dice.Pick(kEnds);
    const Outcome adb = Adb({"shell", script});
    const auto ended = phone().run_script(script).value();
    if (legacy()) {
      const std::string by_adb = AdbShell("sh -c " + Quoted(script) + "; echo =$?");
      EXPECT_EQ(ended.out + "=" + std::to_string(ended.exit_status) + "\n", by_adb) << script;
      EXPECT_EQ(adb.status, 0);
    } else {
      EXPECT_EQ(ended.out, adb.output) << script;
      EXPECT_EQ(ended.err, adb.errors) << script;
      EXPECT_EQ(ended.exit_status, adb.status) << script;
    }
  }
}

}  // namespace
}  // namespace darokleim::test
