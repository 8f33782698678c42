// Any bytes as the output of a command, read in pieces of any size: both ways of reading see the same.
#include <algorithm>
#include <string>
#include <string_view>

#include "adb/shell.h"
#include "tests/fuzz/adb_reader.h"

using namespace darokleim::adb;
using namespace darokleim::adb_fuzz;
using darokleim::sdk::Require;

namespace {

struct Seen {
  std::string output;
  std::string errors;
  std::optional<int> exit_status;
  std::optional<ErrorCode> error;
  bool operator==(const Seen&) const = default;

  void Add(ShellStream stream, std::string_view data) {
    Require(!data.empty());
    (stream == ShellStream::kOutput ? output : errors).append(data);
  }
  Seen& Fail(const Error& failure) {
    RequireAnErrorOfTheInput(failure);
    error = failure.code;
    return *this;
  }
};

ShellSession Start(ServerOfBytes* server, ShellForm form) {
  ShellCommand command;
  command.form = form;
  command.with_input = true;  // nothing is written: the other end is closed soon
  auto shell = ShellSession::Start(server->Take(), command, Soon());
  Require(shell.ok());
  return *std::move(shell);
}

Seen ReadAll(const std::string& bytes, ShellForm form) {
  ServerOfBytes server("OKAY" + bytes);
  ShellSession shell = Start(&server, form);
  Seen seen;
  auto end = shell.ReadAll(
      [&](ShellStream stream, std::string_view data) { return seen.Add(stream, data), true; }, Soon());
  if (!end.ok()) return seen.Fail(end.error());
  seen.exit_status = end->exit_status;
  return seen;
}

Seen ReadPieces(const std::string& bytes, ShellForm form, size_t size) {
  ServerOfBytes server("OKAY" + bytes);
  ShellSession shell = Start(&server, form);
  Seen seen;
  std::string buffer(size, '\0');
  for (;;) {
    auto piece = shell.Read(buffer, Soon());
    if (!piece.ok()) return seen.Fail(piece.error());
    if (piece->size == 0) {
      seen.exit_status = piece->exit_status;
      return seen;
    }
    seen.Add(piece->stream, std::string_view(buffer).substr(0, piece->size));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string bytes = darokleim::sdk::Text(data + 1, std::min(size - 1, kLongestInput - 4));
  for (const ShellForm form : {ShellForm::kV2, ShellForm::kOld}) {
    const Seen all = ReadAll(bytes, form);
    Require(all == ReadPieces(bytes, form, data[0] + size_t{1}));
    Require(form == ShellForm::kV2 ? all.exit_status.has_value() != all.error.has_value()
                                   : all.output == bytes);
  }
  return 0;
}
