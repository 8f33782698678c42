// What a watch says of the devices, followed event by event.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_DEVICE_PICTURE_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_DEVICE_PICTURE_H

#include <darokleim/client.hpp>
#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace darokleim::soak {

class DevicePicture {
 public:
  // State and transport of each serial.
  using Devices = std::map<std::string, std::pair<std::string, std::uint64_t>>;

  // Empty, or what is wrong with this event after those before.
  std::string Take(dk_change change, const dk::DeviceInfo* info);
  // No event may come from now on.
  void Close();
  Devices devices() const;
  static Devices Of(const std::vector<dk::DeviceInfo>& list);

 private:
  std::string TakeServer(dk_change change);

  mutable std::mutex mutex_;
  Devices devices_;
  bool has_server_ = false;
  bool closed_ = false;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_DEVICE_PICTURE_H
