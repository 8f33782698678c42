#include "src/core/connection_word.h"

std::string convert_connect_string(const std::string& state) {
  if (state == "unauthorized") return "unauthor";
  if (state == "offline") return "offline";
  return "author";
}
