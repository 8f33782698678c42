#include "phone_list.h"

#include <algorithm>

#include "text.h"

namespace explorer {

PhoneList::PhoneList(const dk::Client& client) {
  // Comes on the watch's thread. A change that is posted and not delivered when this object goes is dropped by QObject.
  const auto on_change = [this](dk_change change, const dk::DeviceInfo* info) {
    QMetaObject::invokeMethod(
        this, [this, change, copy = info == nullptr ? dk::DeviceInfo() : *info] { Apply(change, copy); },
        Qt::QueuedConnection);
  };
  watch_ = client.watch(on_change).value();
}

int PhoneList::RowOf(const std::string& serial) const {
  const auto found = std::find_if(phones_.begin(), phones_.end(),
                                  [&](const dk::DeviceInfo& phone) { return phone.serial == serial; });
  return found == phones_.end() ? -1 : static_cast<int>(found - phones_.begin());
}

void PhoneList::Apply(dk_change change, const dk::DeviceInfo& info) {
  const int row = RowOf(info.serial);
  if (change == DK_DEVICE_ADDED && row < 0) {
    beginInsertRows({}, rowCount(), rowCount());
    phones_.push_back(info);
    endInsertRows();
  } else if (change == DK_DEVICE_REMOVED && row >= 0) {
    beginRemoveRows({}, row, row);
    phones_.erase(phones_.begin() + row);
    endRemoveRows();
  } else if (info.serial.empty()) {
    has_server_ = change == DK_SERVER_FOUND;
  } else if (row >= 0) {
    phones_[static_cast<std::size_t>(row)] = info;
    emit dataChanged(index(row), index(row));
  }
  emit Changed();
}

int PhoneList::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(phones_.size());
}

QVariant PhoneList::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || role != Qt::DisplayRole) return {};
  const dk::DeviceInfo& info = phone(index.row());
  const QString second = info.state == DK_STATE_READY ? Shown(info.serial) : Shown(info.state_text);
  return ShownName(info) + '\n' + second;
}

QString ShownName(const dk::DeviceInfo& phone) {
  return phone.model.empty() ? Shown(phone.serial) : Shown(phone.model).replace('_', ' ');
}

QString Advice(const dk::DeviceInfo& phone) {
  switch (phone.state) {
    case DK_STATE_READY:
      return {};
    case DK_STATE_UNAUTHORIZED:
    case DK_STATE_AUTHORIZING:
      return "Unlock the phone and allow USB debugging for this computer on its screen.";
    case DK_STATE_OFFLINE:
      return "The phone does not answer. Unplug it and plug it in again.";
    case DK_STATE_CONNECTING:
      return "The phone is being connected.";
    case DK_STATE_NO_PERMISSIONS:
      return "This computer's user may not open the phone. On Linux, install the udev rules for Android "
             "devices "
             "(Debian: android-sdk-platform-tools-common), then plug it in again.";
    case DK_STATE_BOOTLOADER:
    case DK_STATE_RECOVERY:
    case DK_STATE_RESCUE:
    case DK_STATE_SIDELOAD:
      return QString("The phone is not in Android, but in its %1. Restart it.").arg(Shown(phone.state_text));
    default:
      return QString("The phone is not ready: its state is %1.").arg(Shown(phone.state_text));
  }
}

}  // namespace explorer
