#include "tools/phone/device/screen.h"

#include <algorithm>

#include "tools/phone/common/numbers.h"
#include "tools/phone/device/properties.h"

namespace darokleim::phone {

Screen CurrentScreen() {
  Screen screen = kPhysicalScreen;
  if (const auto size = ParseNumbers<uint32_t>(Property(kScreenSizeProperty), "x")) {
    constexpr uint32_t kLargest = 10000;
    const auto [width, height] = *size;
    if (width > 0 && height > 0 && width <= kLargest && height <= kLargest) screen = {width, height};
  }
  return screen;
}

void Pixels::Fill(uint32_t left, uint32_t top, uint32_t width, uint32_t height, const Color& color) {
  const uint32_t right = std::min(left + width, screen_.width);
  const uint32_t bottom = std::min(top + height, screen_.height);
  for (uint32_t y = top; y < bottom; ++y) {
    for (uint32_t x = left; x < right; ++x) {
      uint8_t* pixel = &bytes_[4 * (size_t{y} * screen_.width + x)];
      pixel[0] = color.red;
      pixel[1] = color.green;
      pixel[2] = color.blue;
      pixel[3] = 0xff;
    }
  }
}

}  // namespace darokleim::phone
