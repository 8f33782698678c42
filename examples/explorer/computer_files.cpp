#include "computer_files.h"

#include <QDir>

namespace explorer {

QStringList ComputerModel::mimeTypes() const {
  return {kPhonePathsFormat, "text/uri-list"};
}

bool ComputerModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                    const QModelIndex&) const {
  return data->hasFormat(kPhonePathsFormat);  // this computer's own files are moved elsewhere
}

bool ComputerModel::dropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex& parent) {
  const PhonePaths files = FromMimeData(*data);
  if (files.empty()) return false;
  const QFileInfo target = parent.isValid() ? fileInfo(parent) : QFileInfo(rootPath());
  emit Dropped(files, target.isDir() ? target.filePath() : target.path());
  return false;  // the phone's files stay where they are
}

ComputerFiles::ComputerFiles(ComputerModel& model) {
  setModel(&model);
  setRootIndex(model.setRootPath(QDir::homePath()));
  for (const int column : {1, 2, 3}) hideColumn(column);  // size, type, date
  setDragEnabled(true);
  setAcceptDrops(true);
  setDropIndicatorShown(true);
  setDragDropMode(DragDrop);
  setSelectionMode(ExtendedSelection);
}

}  // namespace explorer
