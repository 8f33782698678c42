// Output of commands as the client takes it apart while it comes: the same whatever the pieces are.
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "client/exit_mark.h"
#include "client/log_records.h"
#include "client/phone_errors.h"
#include "tests/fuzz/fuzz.h"

namespace {

using namespace darokleim::client;
using darokleim::sdk::Require;

template <typename Use>
void InPieces(std::string_view text, std::size_t piece, Use use) {
  for (; !text.empty(); text.remove_prefix(std::min(piece, text.size()))) {
    if (!use(text.substr(0, piece))) return;
  }
}

// Records as text, and whether all could be read.
std::pair<std::vector<std::string>, bool> Records(std::string_view text, std::size_t piece) {
  std::pair<std::vector<std::string>, bool> found = {{}, true};
  LogRecords records;
  InPieces(text, piece, [&](std::string_view some) {
    return found.second = records.Read(some, [&](const dk_log_record& record) {
      found.first.push_back(record.level + std::string(record.tag) + ':' + record.text);
    });
  });
  return found;
}

std::pair<std::string, std::optional<int>> Marked(const ExitMark& mark, bool terminal, std::string_view text,
                                                  std::size_t piece) {
  ExitMarkReader reader(mark, terminal);
  std::string passed;
  InPieces(text, piece, [&](std::string_view some) {
    passed += reader.Pass(some);
    return true;
  });
  const auto status = reader.Finish();
  return {passed + reader.TakeRest(), status};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = darokleim::sdk::Text(data, size);
  static const ExitMark mark;
  const std::string ended = text + mark.text() + "7\n";
  const auto records = Records(text, text.size() + 1);
  for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, std::size_t{64}}) {
    Require(Records(text, piece) == records);
    for (const bool terminal : {false, true}) {
      Require(Marked(mark, terminal, text, piece) == Marked(mark, terminal, text, text.size() + 1));
    }
    const auto marked = Marked(mark, false, ended, piece);
    Require(marked.first == text && marked.second == 7);
  }
  ErrnoAtEnd(text);
  return 0;
}
