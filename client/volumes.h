// What phones print about their storage volumes.
#ifndef DAROKLEIM_CLIENT_VOLUMES_H
#define DAROKLEIM_CLIENT_VOLUMES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::client {

struct Volume {
  std::string path;
  std::uint64_t total = 0, used = 0, free = 0;
  bool known = false;  // whether the phone has said its sizes
};

// Of the script of dk_volumes: for each volume a line with its path, and one with its sizes.
std::vector<Volume> ReadVolumes(std::string_view text);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_VOLUMES_H
