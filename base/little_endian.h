// Numbers in byte texts, the lowest byte first.
#ifndef DAROKLEIM_BASE_LITTLE_ENDIAN_H
#define DAROKLEIM_BASE_LITTLE_ENDIAN_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace darokleim::base {

template <typename Number>
Number GetLittleEndian(const char* bytes) {
  Number number = 0;
  for (std::size_t i = sizeof(Number); i-- > 0;) {
    number = static_cast<Number>((number << 8) | static_cast<unsigned char>(bytes[i]));
  }
  return number;
}

inline std::uint32_t GetLe32(const char* bytes) {
  return GetLittleEndian<std::uint32_t>(bytes);
}
inline std::uint64_t GetLe64(const char* bytes) {
  return GetLittleEndian<std::uint64_t>(bytes);
}

inline void PutLe32(std::string* text, std::uint32_t number) {
  for (int shift = 0; shift < 32; shift += 8) text->push_back(static_cast<char>(number >> shift));
}
inline void PutLe64(std::string* text, std::uint64_t number) {
  for (int shift = 0; shift < 64; shift += 8) text->push_back(static_cast<char>(number >> shift));
}

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_LITTLE_ENDIAN_H
