// The headers need no other header before them, in either order.
#include "darokleim/client.h"
#include "darokleim/client.hpp"

// Templates are compiled when they are used.
int IncludedAsCpp(const dk::Device& phone);
int IncludedAsCpp(const dk::Device& phone) {
  const auto listed = phone.list("/sdcard", [](const dk_entry&) { return true; });
  return listed.ok() ? DK_OK : listed.code();
}
