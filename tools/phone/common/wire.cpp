#include "tools/phone/common/wire.h"

#include <algorithm>
#include <array>

#include "tools/phone/common/io.h"
#include "tools/phone/common/numbers.h"

namespace darokleim::phone {

namespace {

constexpr size_t kLengthDigits = 4;
constexpr size_t kLongestText = 0xffff;

bool Send(int fd, const std::string& bytes) {
  return WriteAll(fd, bytes.data(), bytes.size());
}

}  // namespace

std::optional<std::string> ReadRequest(int fd) {
  std::array<char, kLengthDigits> digits;
  if (!ReadExactly(fd, digits.data(), digits.size())) return std::nullopt;
  const auto length = ParseNumber<size_t>({digits.data(), digits.size()}, 16);
  if (!length) return std::nullopt;
  std::string request(*length, '\0');
  if (!ReadExactly(fd, request.data(), request.size())) return std::nullopt;
  return request;
}

std::string WithLength(std::string_view text) {
  static constexpr char kDigits[] = "0123456789abcdef";
  text = text.substr(0, kLongestText);
  std::string out;
  for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[(text.size() >> shift) & 0xf];
  return out.append(text);
}

bool SendOkay(int fd) {
  return Send(fd, "OKAY");
}

bool SendFail(int fd, std::string_view reason) {
  return Send(fd, "FAIL") && Send(fd, WithLength(reason));
}

bool SendText(int fd, std::string_view text) {
  return Send(fd, WithLength(text));
}

bool SendOkayAndText(int fd, std::string_view text) {
  return Send(fd, "OKAY") && Send(fd, WithLength(text));
}

bool TakePrefix(std::string_view* text, std::string_view prefix) {
  if (text->substr(0, prefix.size()) != prefix) return false;
  text->remove_prefix(prefix.size());
  return true;
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  size_t start = 0;
  for (;;) {
    const size_t end = text.find(separator, start);
    pieces.emplace_back(text.substr(start, end == std::string_view::npos ? end : end - start));
    if (end == std::string_view::npos) return pieces;
    start = end + 1;
  }
}

}  // namespace darokleim::phone
