#include "tools/cli/device_property.h"

#include <darokleim.h>

#include "src/platform/command_channel.h"

namespace darokleim::cli {
namespace {

// The text belongs to the command channel, not to the library.
class ChannelText {
 public:
  ChannelText() = default;
  ~ChannelText() { ReleaseAdbOutBuffer(text_); }
  ChannelText(const ChannelText&) = delete;
  ChannelText& operator=(const ChannelText&) = delete;

  char** text() { return &text_; }
  int* length() { return &length_; }
  std::string Text() const { return text_ == nullptr ? "" : text_; }

 private:
  char* text_ = nullptr;
  int length_ = 0;
};

}  // namespace

std::string ReadProperty(const Device& device, const std::string& name) {
  ChannelText value;
  device.Check(GetPropInfo(device.serial(), name.c_str(), value.text(), value.length(), device.cancel()),
               "read the property " + name);
  std::string text = value.Text();
  text.erase(text.find_last_not_of(" \t\r\n") + 1);
  return text;
}

}  // namespace darokleim::cli
