#ifndef EXPLORER_THUMBNAILS_H
#define EXPLORER_THUMBNAILS_H

#include <QCache>
#include <QIcon>
#include <QImage>
#include <QSet>
#include <deque>
#include <string>

#include "tasks.h"

namespace explorer {

// Small pictures of photos on the phone, read in the background. Those asked for last come first, since they are the ones that
// the user sees.
class Thumbnails : public QObject {
  Q_OBJECT

 public:
  static constexpr int kSide = 40;  // pixels

  Thumbnails(Threads& threads, dk::Device phone);

  // Whether a file of this name can have one.
  static bool IsPicture(const std::string& name);
  // The thumbnail, or none yet: then Ready() comes, unless the file is not a picture or others are asked for since.
  QIcon Of(const std::string& path, std::uint64_t size);
  // Forgets what is asked for and not read yet.
  void Forget();

 signals:
  void Ready(const std::string& path);

 private:
  struct Wanted {
    std::string path;
    std::uint64_t size;
  };
  void ReadNext();
  void Keep(const std::string& path, const QImage& image);

  const dk::Device phone_;
  QCache<QByteArray, QIcon> icons_;  // an empty icon: it has no thumbnail
  std::deque<Wanted> wanted_;
  QSet<QByteArray> asked_;
  int running_ = 0;
  Tasks tasks_;
};

}  // namespace explorer

#endif  // EXPLORER_THUMBNAILS_H
