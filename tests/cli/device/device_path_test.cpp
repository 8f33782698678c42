#include "tools/cli/device/device_path.h"

#include <gtest/gtest.h>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

TEST(DevicePath, LosesSlashesThatMeanNothing) {
  EXPECT_EQ(DevicePath("/sdcard//a/").text(), "/sdcard/a");
  EXPECT_EQ(DevicePath("///").text(), "/");
}

TEST(DevicePath, IsAbsolute) {
  EXPECT_THROW(DevicePath("sdcard"), ToolError);
  EXPECT_THROW(DevicePath(""), ToolError);
}

TEST(DevicePath, MustReachTheDevice) {
  EXPECT_THROW(DevicePath("/a\" \"/b"), ToolError);
}

TEST(DevicePath, KnowsItsPieces) {
  EXPECT_EQ(DevicePath("/sdcard/a b").Name(), "a b");
  EXPECT_EQ(DevicePath("/sdcard/a").Parent().text(), "/sdcard");
  EXPECT_EQ(DevicePath("/sdcard").Parent().text(), "/");
  EXPECT_EQ(DevicePath("/").Child("a").text(), "/a");
  EXPECT_EQ(DevicePath("/sdcard").Child("a/b").text(), "/sdcard/a/b");
  EXPECT_TRUE(DevicePath("/").IsRoot());
}

TEST(DevicePath, IsNoLongerThanADeviceAllows) {
  EXPECT_EQ(DevicePath("/" + std::string(4094, 'a')).text().size(), 4095u);
  EXPECT_THROW(DevicePath("/" + std::string(4095, 'a')), ToolError);
}

}  // namespace
}  // namespace darokleim::cli
