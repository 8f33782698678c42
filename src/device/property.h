// One system property of a device.
#ifndef DAROKLEIM_SRC_DEVICE_PROPERTY_H
#define DAROKLEIM_SRC_DEVICE_PROPERTY_H

#include <string_view>

#include "src/core/adb_run.h"

namespace darokleim::sdk {

// Reads a property with GetPropInfo and owns its text.
class Property {
 public:
  Property(const char* serial, const char* name, const bool* cancel);

  // The result code of GetPropInfo.
  int code() const { return code_; }
  // Whether the property was read and there is a text, which can be empty.
  bool has_value() const;
  // The text as the device printed it, its line break included; valid as long as this object. Empty without a value.
  std::string_view value() const;
  // The value up to its first zero byte.
  std::string_view c_value() const;

 private:
  ChannelBuffer buffer_;
  int code_;
};

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_DEVICE_PROPERTY_H
