#include "files_model.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <numeric>

#include "text.h"

namespace explorer {

namespace {

QCollator NewOrder() {
  // Without a language (the locale C) names would be in the order of their bytes, IMG_10 before IMG_9.
  const QLocale user;
  QCollator order(user.language() == QLocale::C ? QLocale(QLocale::English) : user);
  order.setNumericMode(true);
  order.setCaseSensitivity(Qt::CaseInsensitive);
  return order;
}

// Folders first, whatever the order of the rest.
bool ByName(const FileRow& left, const FileRow& right) {
  if (left.is_folder() != right.is_folder()) return left.is_folder();
  return left.key.compare(right.key) < 0;
}

}  // namespace

FileRow::FileRow(const dk_entry& entry, const QCollator& order)
    : name(entry.name),
      shown(Shown(name)),
      key(order.sortKey(shown)),
      type(entry.type),
      size(entry.size_known ? std::optional<std::uint64_t>(entry.size) : std::nullopt),
      mtime(entry.mtime) {}

std::vector<FileRow> ReadFolder(const dk::Device& phone, const std::string& folder,
                                const dk::Limits& limits) {
  const QCollator order = NewOrder();
  std::vector<FileRow> rows;
  const auto keep = [&](const dk_entry& entry) {
    rows.emplace_back(entry, order);
    return true;
  };
  const dk::Result<void> listed = phone.list(folder, keep, limits);
  // Only a name that no folder can have is left out then.
  if (!listed && listed.code() != DK_UNSAFE_NAME) throw listed.error();
  std::sort(rows.begin(), rows.end(), ByName);
  return rows;
}

FilesModel::FilesModel(Threads& threads, dk::Device phone, OnDrop on_drop)
    : phone_(phone),
      on_drop_(std::move(on_drop)),
      folder_icon_(QFileIconProvider().icon(QFileIconProvider::Folder)),
      file_icon_(QFileIconProvider().icon(QFileIconProvider::File)),
      thumbnails_(threads, std::move(phone)) {
  connect(&thumbnails_, &Thumbnails::Ready, this, &FilesModel::ShowThumbnail);
}

void FilesModel::Show(const std::string& folder, std::vector<FileRow> rows) {
  beginResetModel();
  thumbnails_.Forget();
  folder_ = folder;
  rows_ = std::move(rows);
  endResetModel();
  if (sort_column_ != kName || sort_order_ != Qt::AscendingOrder) sort(sort_column_, sort_order_);
}

std::string FilesModel::Path(const FileRow& row) const {
  return Joined(folder_, row.name);
}

int FilesModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int FilesModel::columnCount(const QModelIndex&) const {
  return kColumnCount;
}

QVariant FilesModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const FileRow& file = row(index);
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return Text(file, index.column());
    case Qt::DecorationRole:
      return index.column() == kName ? QVariant(Icon(file)) : QVariant();
    case Qt::TextAlignmentRole:
      return index.column() == kSize ? int(Qt::AlignRight | Qt::AlignVCenter) : int(Qt::AlignVCenter);
    default:
      return {};
  }
}

QVariant FilesModel::Text(const FileRow& row, int column) const {
  switch (column) {
    case kName:
      return row.shown;
    case kSize:
      if (row.is_folder()) return {};
      return row.size ? ShownSize(*row.size) : QString("4 GB or more");
    default:
      return QLocale().toString(QDateTime::fromSecsSinceEpoch(row.mtime), QLocale::ShortFormat);
  }
}

QIcon FilesModel::Icon(const FileRow& row) const {
  if (row.is_folder()) return folder_icon_;
  if (row.type != DK_FILE || !Thumbnails::IsPicture(row.name)) return file_icon_;
  const QIcon thumbnail = thumbnails_.Of(Path(row), row.size.value_or(UINT64_MAX));
  return thumbnail.isNull() ? file_icon_ : thumbnail;
}

void FilesModel::ShowThumbnail(const std::string& path) {
  const std::string name = NameOf(path);
  const auto found =
      std::find_if(rows_.begin(), rows_.end(), [&](const FileRow& row) { return row.name == name; });
  if (found == rows_.end()) return;
  const QModelIndex changed = index(static_cast<int>(found - rows_.begin()), kName);
  emit dataChanged(changed, changed, {Qt::DecorationRole});
}

QVariant FilesModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  constexpr const char* kTitles[] = {"Name", "Size", "Modified"};
  return QString(kTitles[section]);
}

Qt::ItemFlags FilesModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags base = QAbstractTableModel::flags(index) | Qt::ItemIsDropEnabled;
  if (!index.isValid()) return base;  // the space below the rows is the folder itself
  return base | Qt::ItemIsDragEnabled | (index.column() == kName ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

bool FilesModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const QString name = value.toString();
  if (role != Qt::EditRole || name.isEmpty() || name.contains('/') || name == row(index).shown) return false;
  emit RenameWanted(PathOf(index), name);
  return true;
}

std::vector<std::size_t> FilesModel::Order() const {
  std::vector<std::size_t> order(rows_.size());
  std::iota(order.begin(), order.end(), 0U);
  const auto before = [&](const FileRow& left, const FileRow& right) {
    if (sort_column_ == kSize) return left.size < right.size;
    return sort_column_ == kModified ? left.mtime < right.mtime : left.key.compare(right.key) < 0;
  };
  std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
    const FileRow& first = rows_[left];
    const FileRow& second = rows_[right];
    if (first.is_folder() != second.is_folder()) return first.is_folder();
    return sort_order_ == Qt::AscendingOrder ? before(first, second) : before(second, first);
  });
  return order;
}

void FilesModel::sort(int column, Qt::SortOrder order) {
  sort_column_ = column;
  sort_order_ = order;
  emit layoutAboutToBeChanged({}, VerticalSortHint);
  const std::vector<std::size_t> old_of_new = Order();
  std::vector<int> new_of_old(old_of_new.size());
  std::vector<FileRow> sorted;
  sorted.reserve(rows_.size());
  for (const std::size_t old : old_of_new) {
    new_of_old[old] = static_cast<int>(sorted.size());
    sorted.push_back(std::move(rows_[old]));
  }
  rows_ = std::move(sorted);
  for (const QModelIndex& kept : persistentIndexList()) {
    changePersistentIndex(kept, index(new_of_old[static_cast<std::size_t>(kept.row())], kept.column()));
  }
  emit layoutChanged({}, VerticalSortHint);
}

QStringList FilesModel::mimeTypes() const {
  return {kPhonePathsFormat, "text/uri-list"};
}

QMimeData* FilesModel::mimeData(const QModelIndexList& indexes) const {
  PhonePaths files{phone_.serial(), {}};
  for (const QModelIndex& index : indexes) {
    if (index.column() == kName) files.paths.push_back(PathOf(index));
  }
  return ToMimeData(files).release();
}

bool FilesModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int, int,
                              const QModelIndex& parent) {
  const bool into_folder = parent.isValid() && row(parent).is_folder();
  on_drop_(*data, action, into_folder ? PathOf(parent) : folder_);
  return false;  // a view would take away the rows of what was moved; the folder is read again instead
}

}  // namespace explorer
