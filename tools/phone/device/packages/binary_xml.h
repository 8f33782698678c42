#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_BINARY_XML_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_BINARY_XML_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::phone {

// The compiled XML of an Android package, as far as a manifest needs it.

struct XmlAttribute {
  std::string name;     // without its namespace
  std::string text;     // empty unless it is a text
  uint32_t number = 0;  // the value of any other type
  bool is_text = false;
  bool is_reference = false;  // to a resource: the manifest itself does not hold the value
};

struct XmlElement {
  std::string name;
  int depth = 0;  // the outermost has 0
  std::vector<XmlAttribute> attributes;

  // Null when it has none of that name.
  const XmlAttribute* Find(std::string_view attribute) const;
};

// Every element in the order in which it begins. Nothing when the bytes are not compiled XML, or are damaged.
std::optional<std::vector<XmlElement>> ParseBinaryXml(std::string_view bytes);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_BINARY_XML_H
