#include "tools/cli/connection/device_table.h"

#include <gmock/gmock.h>

namespace darokleim::cli {
namespace {

using testing::HasSubstr;
using testing::Not;

dk::DeviceInfo Device(const char* serial, dk_state state, const char* text, dk_link link) {
  dk::DeviceInfo device;
  device.serial = serial;
  device.state = state;
  device.state_text = text;
  device.link = link;
  return device;
}

TEST(DeviceTable, SaysWhatToDo) {
  EXPECT_EQ(
      DeviceTable({Device("A", DK_STATE_READY, "device", DK_LINK_USB),
                   Device("BB", DK_STATE_UNAUTHORIZED, "unauthorized", DK_LINK_USB)}),
      "SERIAL  STATE\n"
      "A       device\n"
      "BB      unauthorized  Unlock the phone and allow USB debugging for this computer on its screen.\n");
}

TEST(DeviceTable, ExplainsMissingPermissionsInWordsOfItsOwn) {
  const auto table = DeviceTable(
      {Device("A", DK_STATE_NO_PERMISSIONS,
              "no permissions (user in plugdev group; are your udev rules wrong?)", DK_LINK_USB)});
  EXPECT_THAT(table, HasSubstr("A       no-permissions  This user may not open it: udev rules are missing"));
  EXPECT_THAT(table, Not(HasSubstr("are your udev rules")));
}

TEST(DeviceTable, SendsNobodyToTheCableOfAnEmulator) {
  EXPECT_THAT(DeviceTable({Device("emulator-5554", DK_STATE_OFFLINE, "offline", DK_LINK_EMULATOR)}),
              HasSubstr("offline  Does not respond: restart the emulator.\n"));
  EXPECT_THAT(DeviceTable({Device("10.0.0.2:5555", DK_STATE_OFFLINE, "offline", DK_LINK_NETWORK)}),
              HasSubstr("offline  Does not respond: disconnect it and connect to it again.\n"));
}

TEST(DeviceTable, ShowsNoControlCharacters) {
  EXPECT_THAT(DeviceTable({Device("\x1b[2J", DK_STATE_UNKNOWN, "new\nstate", DK_LINK_USB)}),
              HasSubstr("\\x1b[2J  new\\nstate\n"));
}

}  // namespace
}  // namespace darokleim::cli
