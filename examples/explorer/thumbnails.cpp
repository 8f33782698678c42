#include "thumbnails.h"

#include <QBuffer>
#include <QImageReader>
#include <algorithm>
#include <string_view>

namespace explorer {

namespace {

constexpr int kAtOnce = 2;
constexpr std::size_t kMostWanted = 100;
constexpr int kMostKept = 1000;
constexpr std::uint64_t kBeginning = 64 * 1024;  // bytes; holds the small picture of a camera's photo
constexpr std::uint64_t kMostDecoded = 8ULL * 1024 * 1024;  // bytes; larger files without one keep their icon
constexpr std::chrono::seconds kTimeout(20);

// The small JPEG that cameras put into the first segment of a photo (Exif); empty where there is none.
std::string_view EmbeddedPicture(std::string_view photo) {
  constexpr std::size_t kHeader = 4;  // of the file and of the segment; the segment's length follows
  if (photo.size() < kHeader + 2 || photo.substr(0, kHeader) != "\xFF\xD8\xFF\xE1") return {};
  const auto high = static_cast<unsigned char>(photo[kHeader]);
  const auto low = static_cast<unsigned char>(photo[kHeader + 1]);
  const std::string_view segment = photo.substr(kHeader, static_cast<std::size_t>(high << 8 | low));
  const std::size_t begin = segment.find("\xFF\xD8\xFF");
  return begin == std::string_view::npos ? std::string_view() : segment.substr(begin);
}

QImage Decoded(std::string_view bytes) {
  QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&data);
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (!size.isValid()) return {};
  reader.setScaledSize(
      size.scaled(Thumbnails::kSide, Thumbnails::kSide, Qt::KeepAspectRatio).expandedTo({1, 1}));
  return reader.read();
}

// On a thread: two ranges of the file at most.
QImage ReadThumbnail(const dk::Device& phone, const std::string& path, std::uint64_t size,
                     const dk::Limits& limits) {
  std::string content = phone.read(path, 0, kBeginning, limits).value();
  QImage image = Decoded(EmbeddedPicture(content));
  if (image.isNull() && size <= kMostDecoded) {
    if (content.size() < size) content += phone.read(path, content.size(), 0, limits).value();
    image = Decoded(content);
  }
  return image;
}

}  // namespace

Thumbnails::Thumbnails(Threads& threads, dk::Device phone)
    : phone_(std::move(phone)), icons_(kMostKept), tasks_(threads, kAtOnce, kTimeout) {}

bool Thumbnails::IsPicture(const std::string& name) {
  const QByteArray suffix = QByteArray::fromStdString(name.substr(name.rfind('.') + 1)).toLower();
  static const QList<QByteArray> known = QImageReader::supportedImageFormats();
  return known.contains(suffix);
}

QIcon Thumbnails::Of(const std::string& path, std::uint64_t size) {
  const QByteArray key = QByteArray::fromStdString(path);
  if (const QIcon* icon = icons_.object(key)) return *icon;
  if (asked_.contains(key)) return {};
  asked_.insert(key);
  wanted_.push_front({path, size});
  if (wanted_.size() > kMostWanted) {
    asked_.remove(QByteArray::fromStdString(wanted_.back().path));
    wanted_.pop_back();
  }
  ReadNext();
  return {};
}

void Thumbnails::Forget() {
  tasks_.Drop();
  running_ = 0;
  wanted_.clear();
  asked_.clear();
}

void Thumbnails::ReadNext() {
  if (running_ >= kAtOnce || wanted_.empty()) return;
  const Wanted wanted = wanted_.front();
  wanted_.pop_front();
  ++running_;
  tasks_.Run([phone = phone_, wanted](
                 const dk::Limits& limits) { return ReadThumbnail(phone, wanted.path, wanted.size, limits); },
             [this, path = wanted.path](dk::Result<QImage> image) {
               --running_;
               Keep(path, std::move(image).value_or(QImage()));
               ReadNext();
             });
}

void Thumbnails::Keep(const std::string& path, const QImage& image) {
  const QByteArray key = QByteArray::fromStdString(path);
  asked_.remove(key);
  icons_.insert(key, image.isNull() ? new QIcon : new QIcon(QPixmap::fromImage(image)));
  if (!image.isNull()) emit Ready(path);
}

}  // namespace explorer
