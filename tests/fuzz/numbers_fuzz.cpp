// Numbers of df, stat and du, compared with the C library and the C++ streams.
#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>

#include "src/core/string_helper.h"
#include "src/core/text.h"
#include "tests/fuzz/fuzz.h"

namespace {

unsigned long long PlainUnit(const std::string& size) {
  if (size.find('G') != std::string::npos) return 1073741824;
  return size.find('M') != std::string::npos ? 1048576 : 1024;
}

// Only texts that a stream and strtod read alike: spaces, digits, a point, digits.
bool IsPlainFraction(const std::string& size, std::string* number) {
  const std::size_t begin = size.find_first_not_of(" \t\n\v\f\r");
  if (begin == std::string::npos) return false;
  const std::size_t end = std::min(size.find_first_not_of("0123456789.", begin), size.size());
  *number = size.substr(begin, end - begin);
  const bool goes_on = end < size.size() && (size[end] == 'e' || size[end] == 'E' || size[end] == '\0');
  return !goes_on && number->size() > 1 && number->front() != '.' && number->back() != '.' &&
         number->find('.') != std::string::npos && number->find('.') == number->rfind('.');
}

unsigned long long PlainBytes(const std::string& number, unsigned long long unit) {
  std::istringstream stream(number);
  stream.imbue(std::locale::classic());
  double value = 0;
  stream >> value;
  value *= static_cast<double>(unit);
  constexpr double kPastTheLast = 18446744073709551616.0;  // 2^64
  return value >= kPastTheLast ? std::numeric_limits<unsigned long long>::max()
                               : static_cast<unsigned long long>(value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  const std::string text = Text(data, size);
  Require(LeadingInteger(text) == std::atoll(text.c_str()));

  const unsigned long long bytes = StringHelper::StorageToNumber(text);
  std::string number;
  if (text.find('.') == std::string::npos) {
    Require(bytes ==
            static_cast<unsigned long long>(std::strtoll(text.c_str(), nullptr, 10)) * PlainUnit(text));
  } else if (IsPlainFraction(text, &number)) {
    Require(bytes == PlainBytes(number, PlainUnit(text)));
  }
  return 0;
}
