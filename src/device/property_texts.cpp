// AdbGetPhoneManufacturer, AdbGetPhoneSoftVersion, AdbGetPhoneProductModel, AdbGetMiuiBuildRegin: properties
// as text.
#include "darokleim.h"
#include "src/core/call_log.h"
#include "src/core/caller_buffer.h"
#include "src/device/property.h"

namespace darokleim::sdk {
namespace {

int ReadText(const char* function, const char* property_name, const char* serial, char* buffer,
             int buffer_size, const bool* cancel) {
  CallLog log(function);
  if (AnyNull(serial, buffer)) return log.InvalidParam();
  const Property property(serial, property_name, cancel);
  if (!property.has_value()) return log.Leave(property.code());
  return log.Leave(FillCallerBuffer(property.value(), buffer, buffer_size));
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetPhoneManufacturer(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return darokleim::sdk::ReadText("AdbGetPhoneManufacturer", "ro.product.manufacturer", serial, buffer,
                                  buffer_size, cancel);
}

int AdbGetPhoneSoftVersion(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return darokleim::sdk::ReadText("AdbGetPhoneSoftVersion", "ro.build.version.release", serial, buffer,
                                  buffer_size, cancel);
}

int AdbGetPhoneProductModel(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return darokleim::sdk::ReadText("AdbGetPhoneProductModel", "ro.product.model", serial, buffer, buffer_size,
                                  cancel);
}

int AdbGetMiuiBuildRegin(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return darokleim::sdk::ReadText("AdbGetMiuiBuildRegin", "ro.miui.build.region", serial, buffer, buffer_size,
                                  cancel);
}
