#ifndef EXPLORER_COMPUTER_FILES_H
#define EXPLORER_COMPUTER_FILES_H

#include <QFileSystemModel>
#include <QTreeView>
#include <functional>

#include "phone_paths.h"

namespace explorer {

// This computer's files, which take what is dragged from a phone.
class ComputerModel : public QFileSystemModel {
  Q_OBJECT

 public:
  using QFileSystemModel::QFileSystemModel;

  QStringList mimeTypes() const override;
  bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                       const QModelIndex& parent) const override;
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

 signals:
  void Dropped(const explorer::PhonePaths& files, const QString& folder);
};

// A view of it that begins at the user's folder.
class ComputerFiles : public QTreeView {
 public:
  explicit ComputerFiles(ComputerModel& model);
};

}  // namespace explorer

#endif  // EXPLORER_COMPUTER_FILES_H
