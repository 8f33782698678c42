// FillCallerBuffer writes into the buffer and nowhere else, and ends it.
#include <algorithm>
#include <memory>

#include "darokleim.h"
#include "src/core/caller_output.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  if (size < 2) return 0;
  const int capacity = static_cast<std::int8_t>(data[0]);
  const std::size_t most = data[1];
  const std::string text = Text(data + 2, size - 2);
  const std::size_t room = capacity < 0 ? 0 : static_cast<std::size_t>(capacity);
  const auto buffer = std::make_unique<char[]>(room);
  std::fill_n(buffer.get(), room, '#');

  const int code = FillCallerBuffer(text, buffer.get(), capacity, most);
  const bool fits = capacity >= 0 && text.size() <= room;
  Require(code == (fits ? ADB_RESULT_OK : ADB_RESULT_BUFFER_TOO_SMALL));
  if (room == 0) return 0;
  const std::size_t copied = std::min({text.size(), most, room - 1});
  Require(buffer[copied] == '\0');
  const std::string kept(buffer.get(), copied);
  const std::size_t end = kept.find_last_not_of(std::string("\0", 1)) + 1;
  Require(text.compare(0, end, kept, 0, end) == 0);
  Require(std::all_of(buffer.get() + copied + 1, buffer.get() + room, [](char c) { return c == '#'; }));
  return 0;
}
