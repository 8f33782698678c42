#include <cstdio>
#include <string>

#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/screen.h"

namespace darokleim::phone {

namespace {

constexpr char kDensity[] = "persist.sys.screen.density";

int Set(const char* property, const std::string& value) {
  return SetProperty(property, value == "reset" ? "" : value) ? 0 : 1;
}

}  // namespace

// wm size, wm density: what the hardware has, and what was set instead of it.
int RunWm(const Words& words) {
  const std::string what = words.empty() ? "" : words[0];
  if (what == "size") {
    if (words.size() > 1) return Set(kScreenSizeProperty, words[1]);
    const Screen set = CurrentScreen();
    std::printf("Physical size: %ux%u\n", kPhysicalScreen.width, kPhysicalScreen.height);
    if (set.width != kPhysicalScreen.width || set.height != kPhysicalScreen.height)
      std::printf("Override size: %ux%u\n", set.width, set.height);
    return 0;
  }
  if (what == "density") {
    if (words.size() > 1) return Set(kDensity, words[1]);
    std::printf("Physical density: 420\n");
    if (const std::string set = Property(kDensity); !set.empty())
      std::printf("Override density: %s\n", set.c_str());
    return 0;
  }
  std::fprintf(stderr, "usage: wm size [WIDTHxHEIGHT|reset] | density [DPI|reset]\n");
  return 1;
}

}  // namespace darokleim::phone
