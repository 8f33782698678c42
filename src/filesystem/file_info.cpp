#include "src/filesystem/file_info.h"

bool CheckIsDir(unsigned int mode) {
  constexpr unsigned int kDirectoryBit = 0x4000;
  return (mode & kDirectoryBit) != 0;
}
