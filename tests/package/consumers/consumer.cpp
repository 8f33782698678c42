#include <darokleim.h>
#include <darokleim/command_channel.h>
#include <darokleim/log_library.h>

#include <string>

int main() {
  std::string version = "11.";
  if (!AppendMiuiVersionByTimeCode("1583366400", version) || version != "11.10.3.6") return 1;

  char* text = nullptr;
  int length = 0;
  constexpr int kNotStarted = 3001;
  if (GetPropInfo("0123456789ABCDEF", "ro.product.model", &text, &length, nullptr) != kNotStarted) return 2;
  ReleaseAdbOutBuffer(text);
  LogEx("consumer", 1, "%s", "dropped: no log is open");
  return 0;
}
