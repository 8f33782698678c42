#include "folder_tree.h"

#include <QHeaderView>

#include "text.h"

namespace explorer {

namespace {

constexpr std::chrono::seconds kTimeout(30);
constexpr int kAtOnce = 2;
constexpr int kPath = Qt::UserRole;        // bytes
constexpr int kIsRead = Qt::UserRole + 1;  // its folders are its children

std::string PathOf(const QTreeWidgetItem* item) {
  return item->data(0, kPath).toByteArray().toStdString();
}

QTreeWidgetItem* NewItem(const QString& title, const std::string& path, const QIcon& icon) {
  auto* item = new QTreeWidgetItem({title});
  item->setData(0, kPath, QByteArray::fromStdString(path));
  item->setIcon(0, icon);
  item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
  return item;
}

}  // namespace

FolderTree::FolderTree(Threads& threads, dk::Device phone, FilesModel::OnDrop on_drop)
    : phone_(std::move(phone)), on_drop_(std::move(on_drop)), tasks_(threads, kAtOnce, kTimeout) {
  header()->hide();
  setUniformRowHeights(true);
  setAcceptDrops(true);
  setDragDropMode(DropOnly);
  connect(this, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
    if (!item->data(0, kIsRead).toBool()) Read(item);
  });
  connect(this, &QTreeWidget::itemSelectionChanged, this, [this] {
    if (!selectedItems().isEmpty()) emit FolderChosen(PathOf(selectedItems().first()));
  });
  AddTop("Internal storage", "/sdcard");
  AddTop("Whole phone", "/");
  AddVolumes();
}

void FolderTree::AddTop(const QString& title, const std::string& path) {
  addTopLevelItem(NewItem(title, path, style()->standardIcon(QStyle::SP_DriveHDIcon)));
}

void FolderTree::AddVolumes() {
  tasks_.Run([phone = phone_](const dk::Limits& limits) { return phone.volumes(limits).value(); },
             [this](const dk::Result<std::vector<dk::Volume>>& volumes) {
               if (!volumes) return;  // the overview says why
               for (const dk::Volume& volume : volumes.value()) {
                 if (!volume.internal) AddTop("Card " + Shown(NameOf(volume.path)), volume.path);
               }
             });
}

void FolderTree::Read(QTreeWidgetItem* item) {
  const std::string folder = PathOf(item);
  item->setData(0, kIsRead, true);
  tasks_.Run(
      [phone = phone_, folder](const dk::Limits& limits) {
        std::vector<FileRow> rows = ReadFolder(phone, folder, limits);
        rows.erase(
            std::find_if_not(rows.begin(), rows.end(), [](const FileRow& row) { return row.is_folder(); }),
            rows.end());
        return rows;
      },
      [this, folder](const dk::Result<std::vector<FileRow>>& rows) {
        // Items may have gone meanwhile, paths have not.
        Fill(folder, rows.ok() ? rows.value() : std::vector<FileRow>());
      });
}

void FolderTree::Fill(const std::string& folder, const std::vector<FileRow>& rows) {
  for (QTreeWidgetItemIterator at(this); *at != nullptr; ++at) {
    if (PathOf(*at) != folder || !(*at)->data(0, kIsRead).toBool()) continue;
    QList<QTreeWidgetItem*> children;
    for (const FileRow& row : rows) {
      children += NewItem(row.shown, Joined(folder, row.name), style()->standardIcon(QStyle::SP_DirIcon));
    }
    qDeleteAll((*at)->takeChildren());
    (*at)->addChildren(children);
    if (children.isEmpty()) (*at)->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
    return;
  }
}

void FolderTree::Refresh(const std::string& folder) {
  for (QTreeWidgetItemIterator at(this); *at != nullptr; ++at) {
    if (PathOf(*at) == folder && (*at)->data(0, kIsRead).toBool()) {
      (*at)->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
      Read(*at);
      return;
    }
  }
}

bool FolderTree::dropMimeData(QTreeWidgetItem* parent, int, const QMimeData* dropped, Qt::DropAction action) {
  if (parent != nullptr) on_drop_(*dropped, action, PathOf(parent));
  return false;  // the tree takes no items itself
}

}  // namespace explorer
