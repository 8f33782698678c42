#ifndef EXPLORER_FOLDER_TREE_H
#define EXPLORER_FOLDER_TREE_H

#include <QTreeWidget>
#include <string>

#include "files_model.h"
#include "tasks.h"

namespace explorer {

// The folders of a phone: its volumes, and below each folder what is in it, read when it is opened.
class FolderTree : public QTreeWidget {
  Q_OBJECT

 public:
  FolderTree(Threads& threads, dk::Device phone, FilesModel::OnDrop on_drop);

  // Reads this folder again where it is open.
  void Refresh(const std::string& folder);

 signals:
  void FolderChosen(const std::string& folder);

 protected:
  QStringList mimeTypes() const override { return {kPhonePathsFormat, "text/uri-list"}; }
  Qt::DropActions supportedDropActions() const override { return Qt::CopyAction | Qt::MoveAction; }
  bool dropMimeData(QTreeWidgetItem* parent, int index, const QMimeData* data,
                    Qt::DropAction action) override;

 private:
  void AddVolumes();
  void AddTop(const QString& title, const std::string& path);
  void Read(QTreeWidgetItem* item);
  void Fill(const std::string& folder, const std::vector<FileRow>& rows);

  const dk::Device phone_;
  const FilesModel::OnDrop on_drop_;
  Tasks tasks_;
};

}  // namespace explorer

#endif  // EXPLORER_FOLDER_TREE_H
