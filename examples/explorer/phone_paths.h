#ifndef EXPLORER_PHONE_PATHS_H
#define EXPLORER_PHONE_PATHS_H

#include <QMimeData>
#include <memory>
#include <string>
#include <vector>

namespace explorer {

// Files of a phone as they are dragged, or kept for pasting, within this program.
struct PhonePaths {
  std::string serial;
  std::vector<std::string> paths;
  bool empty() const { return paths.empty(); }
};

inline constexpr char kPhonePathsFormat[] = "application/x-darokleim-explorer-paths";

std::unique_ptr<QMimeData> ToMimeData(const PhonePaths& files);
// Empty when the data holds none.
PhonePaths FromMimeData(const QMimeData& data);

// The local files that another program, or this one, dragged here.
std::vector<std::string> LocalPaths(const QMimeData& data);

}  // namespace explorer

#endif  // EXPLORER_PHONE_PATHS_H
