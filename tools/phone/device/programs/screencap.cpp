#include <fcntl.h>
#include <png.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "base/little_endian.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/packages/package_store.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/screen.h"

namespace darokleim::phone {

namespace {

// The home screen: a status bar, and a tile for every application.
Pixels Picture(const Screen& screen) {
  constexpr uint32_t kWidth = 6;  // tiles in a row
  constexpr uint32_t kStatusBar = 60;
  Pixels pixels(screen);
  for (uint32_t y = 0; y < screen.height; ++y) {
    const auto shade = static_cast<uint8_t>(40 + 120 * y / screen.height);
    pixels.Fill(0, y, screen.width, 1, {20, shade, static_cast<uint8_t>(200 - shade / 2)});
  }
  pixels.Fill(0, 0, screen.width, kStatusBar, {10, 10, 10});
  const uint32_t cell = screen.width / kWidth;
  uint32_t place = 0;
  for (const Package& package : PackageStore().Installed()) {
    size_t hash = 5381;
    for (const char c : package.name) hash = hash * 33 + static_cast<unsigned char>(c);
    const Color color{static_cast<uint8_t>(hash & 0xff), static_cast<uint8_t>((hash >> 8) & 0xff),
                      static_cast<uint8_t>((hash >> 16) & 0xff)};
    pixels.Fill((place % kWidth) * cell + cell / 6, kStatusBar + (place / kWidth) * cell + cell / 6,
                cell * 2 / 3, cell * 2 / 3, color);
    ++place;
  }
  return pixels;
}

std::string AsPng(const Screen& screen, const Pixels& pixels) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  image.width = screen.width;
  image.height = screen.height;
  image.format = PNG_FORMAT_RGBA;
  image.flags = PNG_IMAGE_FLAG_FAST;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string bytes(size, '\0');
  const bool written =
      png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels.data(), 0, nullptr) != 0;
  bytes.resize(written ? size : 0);
  return bytes;
}

// Width, height, the number of the pixel format, the colour space, then the pixels.
std::string AsRaw(const Screen& screen, const Pixels& pixels) {
  constexpr uint32_t kRgba8888 = 1;
  constexpr uint32_t kSrgb = 1;
  std::string bytes;
  for (const uint32_t number : {screen.width, screen.height, kRgba8888, kSrgb}) base::PutLe32(&bytes, number);
  return bytes.append(reinterpret_cast<const char*>(pixels.data()), pixels.size());
}

}  // namespace

// screencap [-p] [FILE]; without a file to the standard output.
int RunScreencap(const Words& words) {
  bool png = false;
  std::string file;
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "-p") {
      png = true;
    } else if (words[i] == "-d") {
      ++i;  // there is one display
    } else if (words[i][0] == '-') {
      std::fprintf(stderr, "usage: screencap [-hp] [-d display-id] [FILENAME]\n");
      return 1;
    } else {
      file = words[i];
    }
  }
  const std::string ending = ".png";
  if (file.size() >= ending.size() && file.compare(file.size() - ending.size(), ending.size(), ending) == 0)
    png = true;

  base::UniqueFd out(file.empty() ? dup(STDOUT_FILENO)
                                  : open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  if (!out.valid()) {
    std::fprintf(stderr, "Error opening file: %s (%s)\n", file.c_str(), std::strerror(errno));
    return 1;
  }
  const Screen screen = CurrentScreen();
  const Pixels pixels = Picture(screen);
  const std::string bytes = png ? AsPng(screen, pixels) : AsRaw(screen, pixels);
  if (!bytes.empty() && WriteAll(out.get(), bytes.data(), bytes.size())) return 0;
  std::perror("screencap");
  return 1;
}

}  // namespace darokleim::phone
