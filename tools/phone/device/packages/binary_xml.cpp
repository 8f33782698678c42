#include "tools/phone/device/packages/binary_xml.h"

namespace darokleim::phone {

namespace {

enum ChunkType : uint16_t {
  kStringPool = 0x0001,
  kXml = 0x0003,
  kStartElement = 0x0102,
  kEndElement = 0x0103,
};

constexpr size_t kChunkHeader = 8;
constexpr uint32_t kUtf8Pool = 1 << 8;
constexpr uint8_t kTypeReference = 0x01;
constexpr uint8_t kTypeString = 0x03;

// Little-endian numbers of a byte string; reading past its end gives 0 and is remembered.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

  uint8_t U8(size_t at) { return static_cast<uint8_t>(Number(at, 1)); }
  uint16_t U16(size_t at) { return static_cast<uint16_t>(Number(at, 2)); }
  uint32_t U32(size_t at) { return Number(at, 4); }
  std::string_view Part(size_t at, size_t size) {
    if (at > bytes_.size() || size > bytes_.size() - at) {
      damaged_ = true;
      return {};
    }
    return bytes_.substr(at, size);
  }
  size_t size() const { return bytes_.size(); }
  bool damaged() const { return damaged_; }

 private:
  uint32_t Number(size_t at, size_t size) {
    uint32_t number = 0;
    size_t shift = 0;
    for (const char byte : Part(at, size)) {
      number |= static_cast<uint32_t>(static_cast<unsigned char>(byte)) << shift;
      shift += 8;
    }
    return number;
  }

  std::string_view bytes_;
  bool damaged_ = false;
};

void AppendUtf8(uint32_t code, std::string* out) {
  const auto put = [out](uint32_t byte) { out->push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xc0 | (code >> 6));
    put(0x80 | (code & 0x3f));
  } else if (code < 0x10000) {
    put(0xe0 | (code >> 12));
    put(0x80 | ((code >> 6) & 0x3f));
    put(0x80 | (code & 0x3f));
  } else {
    put(0xf0 | (code >> 18));
    put(0x80 | ((code >> 12) & 0x3f));
    put(0x80 | ((code >> 6) & 0x3f));
    put(0x80 | (code & 0x3f));
  }
}

// A length of one or two units, the first with its top bit set when there are two.
size_t Length8(Bytes* pool, size_t* at) {
  const uint8_t first = pool->U8((*at)++);
  return (first & 0x80) == 0 ? first : static_cast<size_t>((first & 0x7f) << 8) | pool->U8((*at)++);
}

std::string ReadUtf8(Bytes* pool, size_t at) {
  Length8(pool, &at);  // in characters
  const size_t size = Length8(pool, &at);
  return std::string(pool->Part(at, size));
}

std::string ReadUtf16(Bytes* pool, size_t at) {
  size_t units = pool->U16(at);
  at += 2;
  if ((units & 0x8000) != 0) {
    units = ((units & 0x7fff) << 16) | pool->U16(at);
    at += 2;
  }
  std::string text;
  for (size_t i = 0; i < units && !pool->damaged(); ++i) {
    uint32_t code = pool->U16(at + 2 * i);
    if (code >= 0xd800 && code < 0xdc00 && i + 1 < units) {
      code = 0x10000 + ((code & 0x3ff) << 10) + (pool->U16(at + 2 * ++i) & 0x3ffu);
    }
    AppendUtf8(code, &text);
  }
  return text;
}

std::vector<std::string> ReadStringPool(Bytes pool) {
  const size_t count = pool.U32(8);
  const bool utf8 = (pool.U32(16) & kUtf8Pool) != 0;
  const size_t texts = pool.U32(20);
  const size_t offsets = pool.U16(2);
  std::vector<std::string> strings;
  for (size_t i = 0; i < count && !pool.damaged(); ++i) {
    const size_t at = texts + pool.U32(offsets + 4 * i);
    strings.push_back(utf8 ? ReadUtf8(&pool, at) : ReadUtf16(&pool, at));
  }
  return strings;
}

std::string StringAt(const std::vector<std::string>& strings, uint32_t index) {
  return index < strings.size() ? strings[index] : "";
}

XmlAttribute ReadAttribute(Bytes* chunk, size_t at, const std::vector<std::string>& strings) {
  XmlAttribute attribute;
  attribute.name = StringAt(strings, chunk->U32(at + 4));
  const uint8_t type = chunk->U8(at + 15);
  attribute.number = chunk->U32(at + 16);
  attribute.is_reference = type == kTypeReference;
  attribute.is_text = type == kTypeString;
  if (attribute.is_text) attribute.text = StringAt(strings, attribute.number);
  return attribute;
}

XmlElement ReadElement(Bytes* chunk, const std::vector<std::string>& strings) {
  const size_t body = chunk->U16(2);
  XmlElement element;
  element.name = StringAt(strings, chunk->U32(body + 4));
  const size_t first = body + chunk->U16(body + 8);
  const size_t size = chunk->U16(body + 10);
  const size_t count = chunk->U16(body + 12);
  for (size_t i = 0; i < count && !chunk->damaged(); ++i) {
    element.attributes.push_back(ReadAttribute(chunk, first + i * size, strings));
  }
  return element;
}

}  // namespace

const XmlAttribute* XmlElement::Find(std::string_view attribute) const {
  for (const XmlAttribute& each : attributes) {
    if (each.name == attribute) return &each;
  }
  return nullptr;
}

std::optional<std::vector<XmlElement>> ParseBinaryXml(std::string_view text) {
  Bytes document(text);
  if (document.U16(0) != kXml) return std::nullopt;
  std::vector<std::string> strings;
  std::vector<XmlElement> elements;
  int depth = 0;
  for (size_t at = document.U16(2); at + kChunkHeader <= document.size();) {
    const uint16_t type = document.U16(at);
    const size_t size = document.U32(at + 4);
    Bytes chunk(document.Part(at, size));
    if (document.damaged() || size < kChunkHeader) return std::nullopt;
    if (type == kStringPool) {
      strings = ReadStringPool(chunk);
    } else if (type == kStartElement) {
      elements.push_back(ReadElement(&chunk, strings));
      elements.back().depth = depth++;
      if (chunk.damaged()) return std::nullopt;
    } else if (type == kEndElement) {
      --depth;
    }
    at += size;
  }
  return elements;
}

}  // namespace darokleim::phone
