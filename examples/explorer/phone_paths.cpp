#include "phone_paths.h"

#include <QFile>
#include <QUrl>

namespace explorer {

std::unique_ptr<QMimeData> ToMimeData(const PhonePaths& files) {
  QByteArray bytes =
      QByteArray::fromStdString(files.serial);  // each text ends in a zero byte, which no path holds
  bytes.append('\0');
  for (const std::string& path : files.paths)
    bytes.append(path.c_str(), static_cast<qsizetype>(path.size() + 1));
  auto data = std::make_unique<QMimeData>();
  data->setData(kPhonePathsFormat, bytes);
  return data;
}

PhonePaths FromMimeData(const QMimeData& data) {
  PhonePaths files;
  QList<QByteArray> texts = data.data(kPhonePathsFormat).split('\0');
  if (texts.size() < 3) return files;
  files.serial = texts.takeFirst().toStdString();
  texts.removeLast();  // nothing follows the last zero byte
  for (const QByteArray& path : texts) files.paths.push_back(path.toStdString());
  return files;
}

std::vector<std::string> LocalPaths(const QMimeData& data) {
  std::vector<std::string> paths;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) paths.push_back(QFile::encodeName(url.toLocalFile()).toStdString());
  }
  return paths;
}

}  // namespace explorer
