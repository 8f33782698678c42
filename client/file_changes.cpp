// dk_make_folder, dk_remove, dk_move, dk_copy, dk_chmod: changes of the phone's files, by its own programs.
#include <cstdio>
#include <functional>

#include "base/shell_quoting.h"
#include "client/phone_errors.h"
#include "client/phone_path.h"
#include "client/shell.h"
#include "client/temporary_name.h"

namespace darokleim::client {
namespace {

// Exit statuses of our own scripts, which none of the programs in them has.
constexpr int kTargetExists = 97;
constexpr int kTargetIsFolder = 98;
constexpr int kSourceMissing = 99;

std::string Is(const char* test, const std::string& path) {
  return std::string("[ ") + test + " " + base::QuoteForShell(path) + " ]";
}

// Links to nowhere are there, too.
std::string Exists(const std::string& path) {
  return "{ " + Is("-e", path) + " || " + Is("-L", path) + "; }";
}

Status RunChange(dk_device* device, const std::string& script, const std::string& what,
                 const std::string& path, const std::string& target, const Limits& limits) {
  auto collected = CollectScript(device, script, what, limits);
  if (!collected.ok()) return collected.TakeError();
  constexpr int kExists = 17, kIsFolder = 21, kMissing = 2;
  switch (collected->exit_status) {
    case 0:
      return {};
    case kTargetExists:
      return FromPhoneErrno(kExists, what, target);
    case kTargetIsFolder:
      return FromPhoneErrno(kIsFolder, what, target);
    case kSourceMissing:
      return FromPhoneErrno(kMissing, what, path);
    default:
      return FromProgram(*collected, what, path);
  }
}

std::string Exit(int status) {
  return "exit " + std::to_string(status);
}

// What is checked before a file takes the name `to`. A folder there is never taken for one to move into.
std::string CheckTarget(const std::string& to, bool replace) {
  const std::string folder = "if " + Is("-d", to) + "; then " + Exit(kTargetIsFolder) + "; fi; ";
  return replace ? folder : "if " + Exists(to) + "; then " + Exit(kTargetExists) + "; fi; ";
}

std::string CheckSource(const std::string& from) {
  return Exists(from) + " || " + Exit(kSourceMissing) + "; ";
}

std::string MoveScript(const std::string& from, const std::string& to, bool replace) {
  return CheckSource(from) + CheckTarget(to, replace) + CommandLine({"mv", "-f", from, to});
}

// Under a temporary name first, so that a copy that fails leaves nothing and harms no older file.
std::string CopyScript(const std::string& from, const std::string& to, bool replace,
                       const TemporaryName& temporary) {
  const std::string whole = Joined(ParentOf(to), temporary.text());
  return CheckSource(from) + CheckTarget(to, replace) + "trap " +
         base::QuoteForShell(CommandLine({"rm", "-rf", whole})) + " EXIT HUP; " +
         CommandLine({"cp", "-rp", from, whole}) + " && " + CommandLine({"mv", "-f", whole, to});
}

std::string RemoveScript(const std::string& path, bool recursive) {
  const std::string is_folder = Is("-d", path) + " && [ ! -L " + base::QuoteForShell(path) + " ]";
  const std::string remove_folder = CommandLine({recursive ? "rm" : "rmdir", path});
  return CheckSource(path) + "if " + is_folder + "; then " +
         (recursive ? CommandLine({"rm", "-rf", path}) : remove_folder) + "; else " +
         CommandLine({"rm", "-f", path}) + "; fi";
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;
using client::Answer;
using client::Limits;
using client::Status;

dk_code dk_make_folder(dk_device* device, const char* path, bool parents, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    auto folder = client::ReadPath(path);
    if (!folder.ok()) return folder.TakeError();
    const std::string script =
        parents ? client::CommandLine({"mkdir", "-p", *folder}) : client::CommandLine({"mkdir", *folder});
    return client::RunChange(device, script, "make the folder " + client::Shown(*folder), *folder, *folder,
                             limits);
  });
}

dk_code dk_remove(dk_device* device, const char* path, bool recursive, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    auto victim = client::ReadPath(path);
    if (!victim.ok()) return victim.TakeError();
    if (client::IsTooMuchToRemove(*victim)) {
      return client::InvalidArgument("that would remove the phone's system or a whole volume: " +
                                     client::Shown(*victim));
    }
    return client::RunChange(device, client::RemoveScript(*victim, recursive),
                             "remove " + client::Shown(*victim), *victim, *victim, limits);
  });
}

namespace darokleim::client {
namespace {

using ScriptOfTwo = std::function<std::string(const std::string& from, const std::string& to, bool replace)>;

Status ChangeTwo(dk_device* device, const char* from, const char* to, bool replace, const char* verb,
                 const ScriptOfTwo& script, const Limits& limits) {
  if (device == nullptr) return InvalidArgument("no device");
  auto source = ReadPath(from);
  if (!source.ok()) return source.TakeError();
  auto target = ReadPath(to);
  if (!target.ok()) return target.TakeError();
  if (*source == *target) return InvalidArgument("source and target are the same: " + Shown(*source));
  const std::string what = std::string(verb) + " " + Shown(*source) + " to " + Shown(*target);
  return RunChange(device, script(*source, *target, replace), what, *source, *target, limits);
}

}  // namespace
}  // namespace darokleim::client

dk_code dk_move(dk_device* device, const char* from, const char* to, bool replace, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) {
    return client::ChangeTwo(device, from, to, replace, "move", client::MoveScript, limits);
  });
}

dk_code dk_copy(dk_device* device, const char* from, const char* to, bool replace, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) {
    const client::TemporaryName temporary;
    const auto script = [&](const std::string& source, const std::string& target, bool replaces) {
      return client::CopyScript(source, target, replaces, temporary);
    };
    return client::ChangeTwo(device, from, to, replace, "copy", script, limits);
  });
}

dk_code dk_chmod(dk_device* device, const char* path, uint32_t mode, const dk_call* call) {
  return Answer(call, [&](const Limits& limits) -> Status {
    if (device == nullptr) return client::InvalidArgument("no device");
    auto file = client::ReadPath(path);
    if (!file.ok()) return file.TakeError();
    constexpr uint32_t kAllBits = 07777;
    if (mode > kAllBits) return client::InvalidArgument("not a mode, for example 0644");
    char octal[8];
    std::snprintf(octal, sizeof octal, "%o", static_cast<unsigned>(mode));
    return client::RunChange(device, client::CommandLine({"chmod", octal, *file}),
                             "change the mode of " + client::Shown(*file), *file, *file, limits);
  });
}
