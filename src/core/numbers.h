// Numbers that begin a text, as the C library reads them, without a terminating zero or a copy.
#ifndef DAROKLEIM_SRC_CORE_NUMBERS_H
#define DAROKLEIM_SRC_CORE_NUMBERS_H

#include <string_view>

namespace darokleim::sdk {

// As atoll: blanks, a sign, decimal digits; 0 without digits, the nearest long long when out of range.
long long LeadingInteger(std::string_view text);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_NUMBERS_H
