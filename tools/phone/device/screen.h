#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_SCREEN_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_SCREEN_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace darokleim::phone {

struct Screen {
  uint32_t width;
  uint32_t height;
};

inline constexpr Screen kPhysicalScreen = {1080, 2340};
inline constexpr char kScreenSizeProperty[] = "persist.sys.screen.size";

// As `wm size` set it.
Screen CurrentScreen();

struct Color {
  uint8_t red;
  uint8_t green;
  uint8_t blue;
};

// A picture of the screen, four bytes a pixel: red, green, blue, opacity.
class Pixels {
 public:
  explicit Pixels(const Screen& screen) : screen_(screen), bytes_(size_t{4} * screen.width * screen.height) {}

  // A rectangle; what is outside the screen is left out.
  void Fill(uint32_t left, uint32_t top, uint32_t width, uint32_t height, const Color& color);

  const uint8_t* data() const { return bytes_.data(); }
  size_t size() const { return bytes_.size(); }

 private:
  Screen screen_;
  std::vector<uint8_t> bytes_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_SCREEN_H
