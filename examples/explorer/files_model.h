#ifndef EXPLORER_FILES_MODEL_H
#define EXPLORER_FILES_MODEL_H

#include <QAbstractTableModel>
#include <QCollator>
#include <QFileIconProvider>
#include <QMimeData>
#include <darokleim/client.hpp>
#include <functional>
#include <string>
#include <vector>

#include "phone_paths.h"
#include "thumbnails.h"

namespace explorer {

// One entry of a folder. Made on a thread, so that the window's does not prepare 20,000 names.
struct FileRow {
  FileRow(const dk_entry& entry, const QCollator& order);

  std::string name;  // the phone's bytes
  QString shown;
  QCollatorSortKey key;
  dk_type type;
  std::optional<std::uint64_t> size;
  std::int64_t mtime;

  bool is_folder() const { return type == DK_DIRECTORY; }
};

// A folder's entries by name, folders first.
std::vector<FileRow> ReadFolder(const dk::Device& phone, const std::string& folder, const dk::Limits& limits);

// What is in one folder, sorted.
class FilesModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kName, kSize, kModified, kColumnCount };
  // Takes what was dropped into a folder; false refuses it.
  using OnDrop = std::function<bool(const QMimeData&, Qt::DropAction, const std::string& folder)>;

  FilesModel(Threads& threads, dk::Device phone, OnDrop on_drop);

  // `rows` as ReadFolder() gives them.
  void Show(const std::string& folder, std::vector<FileRow> rows);
  const std::string& folder() const { return folder_; }
  const FileRow& row(const QModelIndex& index) const { return rows_[static_cast<std::size_t>(index.row())]; }
  std::string PathOf(const QModelIndex& index) const { return Path(row(index)); }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  void sort(int column, Qt::SortOrder order) override;
  QStringList mimeTypes() const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  Qt::DropActions supportedDropActions() const override { return Qt::CopyAction | Qt::MoveAction; }
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

 signals:
  // The user typed a new name. The model keeps the old one until the folder is shown again.
  void RenameWanted(const std::string& path, const QString& new_name);

 private:
  std::string Path(const FileRow& row) const;
  QVariant Text(const FileRow& row, int column) const;
  QIcon Icon(const FileRow& row) const;
  std::vector<std::size_t> Order() const;
  void ShowThumbnail(const std::string& path);

  const dk::Device phone_;
  const OnDrop on_drop_;
  std::string folder_;
  std::vector<FileRow> rows_;
  int sort_column_ = kName;
  Qt::SortOrder sort_order_ = Qt::AscendingOrder;
  const QIcon folder_icon_, file_icon_;
  mutable Thumbnails thumbnails_;  // asked for while the view draws
};

}  // namespace explorer

#endif  // EXPLORER_FILES_MODEL_H
