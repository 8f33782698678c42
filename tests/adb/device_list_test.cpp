#include "adb/device_list.h"

#include <gtest/gtest.h>

#include "adb/features.h"

namespace darokleim::adb_test {
namespace {

using namespace adb;

std::string ShownDevices(std::string_view text) {
  std::string shown;
  for (const AttachedDevice& device : ParseDeviceList(text)) {
    shown += device.serial + "|" + device.state + "|" + device.plug + "|" + device.product + "|" +
             device.model + "|" + device.device + "|" + std::to_string(device.transport_id) + "\n";
  }
  return shown;
}

TEST(DeviceListTest, ShortForm) {
  EXPECT_EQ(ShownDevices("X1\tdevice\n192.168.1.2:5555\toffline\n"),
            "X1|device|||||0\n192.168.1.2:5555|offline|||||0\n");
  EXPECT_EQ(ShownDevices("a b\tunauthorized\n"), "a b|unauthorized|||||0\n");
  EXPECT_EQ(ShownDevices("X1\tdevice"), "X1|device|||||0\n");
  EXPECT_EQ(ShownDevices("X\td\n"), "X|d|||||0\n");
}

TEST(DeviceListTest, LongForm) {
  EXPECT_EQ(
      ShownDevices("X1                     device usb:1-4 product:p model:M_1 device:d transport_id:12\n"),
      "X1|device|usb:1-4|p|M_1|d|12\n");
  EXPECT_EQ(ShownDevices("192.168.1.2:5555       device product:p model:M device:d transport_id:3\n"),
            "192.168.1.2:5555|device||p|M|d|3\n");
  EXPECT_EQ(ShownDevices("X1                     offline transport_id:1\n"), "X1|offline|||||1\n");
  EXPECT_EQ(ShownDevices("X1                     unauthorized usb:336592896X transport_id:1\n"),
            "X1|unauthorized|usb:336592896X||||1\n");
}

TEST(DeviceListTest, AStateOfManyWords) {
  EXPECT_EQ(
      ShownDevices(
          "X1                     no permissions (user in plugdev group; are your udev rules wrong?); see "
          "[http://developer.android.com/tools/device.html] usb:1-4 transport_id:1\n"),
      "X1|no permissions (user in plugdev group; are your udev rules wrong?); see "
      "[http://developer.android.com/tools/device.html]|usb:1-4||||1\n");
  EXPECT_EQ(ShownDevices("(no serial number)     no permissions usb:1-4\n"),
            "(no serial number)|no permissions|usb:1-4||||0\n");
}

TEST(DeviceListTest, WhatIsNoDevice) {
  EXPECT_EQ(ShownDevices(""), "");
  EXPECT_EQ(ShownDevices("\n\nX1\n\tdevice\nX1\t\n  \n"), "");
  EXPECT_EQ(ShownDevices("X1 transport_id:1\n"), "");
}

TEST(FeatureSetTest, WholeNamesAlone) {
  const FeatureSet features("shell_v2,cmd,stat_v2");
  EXPECT_TRUE(features.shell_v2());
  EXPECT_TRUE(features.Has("cmd"));
  EXPECT_TRUE(features.stat_v2());
  EXPECT_FALSE(features.Has("shell"));
  EXPECT_FALSE(features.Has("v2"));
  EXPECT_FALSE(features.list_v2());
  EXPECT_FALSE(features.Has(""));
  EXPECT_FALSE(FeatureSet("").Has(""));
  EXPECT_FALSE(FeatureSet().shell_v2());
}

}  // namespace
}  // namespace darokleim::adb_test
