#include "tests/endurance/soak/device_picture.h"

namespace darokleim::soak {

std::string DevicePicture::Take(dk_change change, const dk::DeviceInfo* info) {
  const std::lock_guard lock(mutex_);
  if (closed_) return "a watch called back after its stop";
  if (info == nullptr) return TakeServer(change);
  const bool is_known = devices_.count(info->serial) > 0;
  if (!has_server_) return "a watch said something of a device while there is no server";
  switch (change) {
    case DK_DEVICE_ADDED:
    case DK_DEVICE_CHANGED:
      devices_[info->serial] = {info->state_text, info->transport_id};
      if (is_known == (change == DK_DEVICE_ADDED))
        return "a watch added or changed the wrong device: " + info->serial;
      return "";
    case DK_DEVICE_REMOVED:
      devices_.erase(info->serial);
      return is_known ? "" : "a watch removed a device that it had not added: " + info->serial;
    default:
      return "an event of a watch has a device and should have none";
  }
}

std::string DevicePicture::TakeServer(dk_change change) {
  const bool is_found = change == DK_SERVER_FOUND;
  if (!is_found && change != DK_SERVER_LOST) return "an event of a watch lacks its device";
  if (!devices_.empty()) return "a watch lost a server whose devices it had not removed";
  if (has_server_ == is_found) return "a watch said twice that the server came or went";
  has_server_ = is_found;
  return "";
}

void DevicePicture::Close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
}

DevicePicture::Devices DevicePicture::devices() const {
  const std::lock_guard lock(mutex_);
  return devices_;
}

DevicePicture::Devices DevicePicture::Of(const std::vector<dk::DeviceInfo>& list) {
  Devices devices;
  for (const dk::DeviceInfo& info : list) devices[info.serial] = {info.state_text, info.transport_id};
  return devices;
}

}  // namespace darokleim::soak
