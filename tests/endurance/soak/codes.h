// Sets of result codes, for tables.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_CODES_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_CODES_H

#include <darokleim/client.h>

#include <cstdint>
#include <initializer_list>

namespace darokleim::soak {

class Codes {
 public:
  constexpr Codes() = default;
  constexpr Codes(std::initializer_list<dk_code> codes) {
    for (const dk_code code : codes) bits_ |= Bit(code);
  }
  constexpr bool Has(dk_code code) const { return (bits_ & Bit(code)) != 0; }
  constexpr bool empty() const { return bits_ == 0; }
  constexpr Codes& operator|=(Codes other) {
    bits_ |= other.bits_;
    return *this;
  }
  friend constexpr Codes operator|(Codes one, Codes other) { return one |= other; }

 private:
  static constexpr std::uint64_t Bit(dk_code code) {
    static_assert(DK_PARTLY_DONE < 64, "a code is a bit");
    return std::uint64_t{1} << code;
  }
  std::uint64_t bits_ = 0;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_CODES_H
