// What the host process holds of the system.
#ifndef DAROKLEIM_TESTS_ENDURANCE_HOST_RESOURCES_H
#define DAROKLEIM_TESTS_ENDURANCE_HOST_RESOURCES_H

#include <cstddef>

namespace darokleim::endurance {

struct HostResources {
  std::size_t descriptors;
  std::size_t threads;
  std::size_t children;    // running or zombies
  std::size_t heap_bytes;  // handed out by malloc and not freed
};

HostResources CountHostResources();

}  // namespace darokleim::endurance

#endif  // DAROKLEIM_TESTS_ENDURANCE_HOST_RESOURCES_H
