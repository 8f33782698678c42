#include "files_page.h"

#include <QFileDialog>
#include <QHeaderView>
#include <QInputDialog>
#include <QSplitter>
#include <QVBoxLayout>
#include <set>

#include "errors.h"
#include "text.h"

namespace explorer {

namespace {

constexpr std::chrono::seconds kTimeout(60);  // of one listing
constexpr char kFirstFolder[] = "/sdcard";
constexpr int kSideWidth = 200;  // these in pixels
constexpr int kSizeWidth = 80;
constexpr int kModifiedWidth = 150;

}  // namespace

FilesPage::FilesPage(Threads& threads, dk::Device phone, TransferQueue& queue)
    : phone_(std::move(phone)),
      queue_(queue),
      model_(threads, phone_,
             [this](const QMimeData& dropped, Qt::DropAction action, const std::string& folder) {
               return Drop(dropped, action, folder);
             }),
      actions_(new QToolBar),
      path_(new QLineEdit),
      tree_(new FolderTree(threads, phone_,
                           [this](const QMimeData& dropped, Qt::DropAction action,
                                  const std::string& folder) { return Drop(dropped, action, folder); })),
      list_(new QTreeView),
      status_(new QLabel),
      reading_(threads, 1, kTimeout),
      changing_(threads) {
  MakeLayout();
  MakeActions();
  connect(tree_, &FolderTree::FolderChosen, this, &FilesPage::Open);
  connect(list_, &QTreeView::activated, this, &FilesPage::Activate);
  connect(path_, &QLineEdit::returnPressed, this, [this] { Open(Typed(path_->text())); });
  connect(&model_, &FilesModel::RenameWanted, this, [this](const std::string& path, const QString& name) {
    Change({{path, Joined(FolderOf(path), Typed(name)), true}});
  });
  connect(&computer_, &ComputerModel::Dropped, this, [this](const PhonePaths& files, const QString& folder) {
    if (files.serial == phone_.serial()) {
      queue_.Pull(phone_, files.paths, QFile::encodeName(folder).toStdString());
    }
  });
  connect(&queue_, &TransferQueue::Ended, this, [this](const TransferPtr& transfer) {
    if (transfer->kind == Transfer::kPush && transfer->phone.serial() == phone_.serial()) Refresh();
  });
  Open(kFirstFolder);
}

void FilesPage::MakeActions() {
  const auto add = [this](QStyle::StandardPixmap icon, const QString& text, const QKeySequence& keys,
                          std::function<void()> action) {
    QAction* added = actions_->addAction(style()->standardIcon(icon), text);
    added->setShortcut(keys);
    added->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(added, &QAction::triggered, this, std::move(action));
    list_->addAction(added);  // also in its context menu
  };
  add(QStyle::SP_FileDialogToParent, "Up", Qt::ALT | Qt::Key_Up, [this] { Open(FolderOf(model_.folder())); });
  add(QStyle::SP_BrowserReload, "Refresh", QKeySequence::Refresh, [this] { Refresh(); });
  add(QStyle::SP_FileDialogNewFolder, "New folder", QKeySequence::New, [this] { NewFolder(); });
  add(QStyle::SP_FileIcon, "Rename", Qt::Key_F2,
      [this] { list_->edit(list_->currentIndex().siblingAtColumn(0)); });
  add(QStyle::SP_TrashIcon, "Delete", QKeySequence::Delete, [this] { Delete(); });
  add(QStyle::SP_DialogSaveButton, "Copy", QKeySequence::Copy, [this] { Keep(false); });
  add(QStyle::SP_DialogResetButton, "Cut", QKeySequence::Cut, [this] { Keep(true); });
  add(QStyle::SP_DialogApplyButton, "Paste", QKeySequence::Paste, [this] { Paste(); });
  add(QStyle::SP_ArrowDown, "Save to computer …", {}, [this] { ChooseAndPull(); });
  add(QStyle::SP_ArrowUp, "Send files …", {}, [this] { ChooseAndPush(); });
  list_->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void FilesPage::MakeLayout() {
  list_->setModel(&model_);
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setIconSize({Thumbnails::kSide, Thumbnails::kSide});
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setEditTriggers(QAbstractItemView::NoEditTriggers);  // the action does it
  list_->header()->setSectionResizeMode(FilesModel::kName, QHeaderView::Stretch);
  list_->header()->setStretchLastSection(false);
  list_->header()->setSortIndicator(FilesModel::kName, Qt::AscendingOrder);
  list_->header()->resizeSection(FilesModel::kSize, kSizeWidth);
  list_->header()->resizeSection(FilesModel::kModified, kModifiedWidth);
  list_->setSortingEnabled(true);
  list_->setDragEnabled(true);
  list_->setAcceptDrops(true);
  list_->setDragDropMode(QAbstractItemView::DragDrop);
  list_->setDefaultDropAction(Qt::MoveAction);
  status_->setTextFormat(Qt::PlainText);

  actions_->setToolButtonStyle(Qt::ToolButtonTextOnly);
  auto* middle = new QWidget;
  auto* middle_layout = new QVBoxLayout(middle);
  middle_layout->setContentsMargins(0, 0, 0, 0);
  middle_layout->addWidget(path_);
  middle_layout->addWidget(list_, 1);
  auto* columns = new QSplitter;
  columns->addWidget(tree_);
  columns->addWidget(middle);
  columns->addWidget(new ComputerFiles(computer_));
  columns->setSizes({kSideWidth, 2 * kSideWidth, kSideWidth});
  columns->setStretchFactor(1, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(actions_);
  layout->addWidget(columns, 1);
  layout->addWidget(status_);
}

void FilesPage::Open(const std::string& folder) {
  wanted_ = folder;
  status_->setText("Reading " + Shown(folder) + " …");
  reading_.Drop();
  reading_.Run(
      [phone = phone_, folder](const dk::Limits& limits) { return ReadFolder(phone, folder, limits); },
      [this, folder](dk::Result<std::vector<FileRow>> rows) { Show(folder, std::move(rows)); });
}

void FilesPage::Refresh() {
  Open(wanted_);
}

void FilesPage::Show(const std::string& folder, dk::Result<std::vector<FileRow>> rows) {
  if (!rows) {
    wanted_ = model_.folder().empty() ? folder : model_.folder();  // still the one that is shown
    status_->setText(Sentence(rows.error()));
    return;
  }
  status_->setText(QString("%1 items").arg(rows.value().size()));
  path_->setText(Shown(folder));
  model_.Show(folder, std::move(rows.value()));
}

void FilesPage::Activate(const QModelIndex& index) {
  const FileRow& row = model_.row(index);
  // What a link points to is seen by listing it.
  if (row.is_folder() || row.type == DK_LINK) Open(model_.PathOf(index));
}

std::vector<std::string> FilesPage::Selected() const {
  std::vector<std::string> paths;
  for (const QModelIndex& index : list_->selectionModel()->selectedRows())
    paths.push_back(model_.PathOf(index));
  return paths;
}

bool FilesPage::Drop(const QMimeData& dropped, Qt::DropAction action, const std::string& folder) {
  const PhonePaths files = FromMimeData(dropped);
  if (files.serial == phone_.serial()) {
    Put(files.paths, folder, action == Qt::MoveAction);
    return true;
  }
  const std::vector<std::string> local = LocalPaths(dropped);
  if (local.empty()) return false;
  queue_.Push(phone_, local, folder);
  return true;
}

void FilesPage::NewFolder() {
  auto* dialog = new QInputDialog(this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setLabelText("Name of the new folder:");
  connect(dialog, &QInputDialog::textValueSelected, this, [this, folder = wanted_](const QString& name) {
    changing_.Run([phone = phone_, path = Joined(folder, Typed(name))](
                      const dk::Limits& limits) { phone.make_folder(path, false, limits).value(); },
                  [this, folder](const dk::Result<void>& made) {
                    if (!made) ShowErrors(this, {made.error()});
                    tree_->Refresh(folder);
                    Refresh();
                  });
  });
  dialog->open();
}

void FilesPage::Delete() {
  std::vector<Step> steps;
  for (const std::string& path : Selected()) steps.push_back({path, {}, false});
  if (steps.empty()) return;
  const QString what =
      steps.size() == 1 ? Shown(NameOf(steps.front().from)) : QString("%1 items").arg(steps.size());
  Ask(this, QString("Delete %1 from the phone? This cannot be undone.").arg(what), "Delete",
      [this, steps] { Change(steps); });
}

void FilesPage::Keep(bool to_move) {
  kept_ = Selected();
  kept_to_move_ = to_move;
}

void FilesPage::Paste() {
  Put(kept_, wanted_, kept_to_move_);
  if (kept_to_move_) kept_.clear();
}

void FilesPage::Put(const std::vector<std::string>& paths, const std::string& folder, bool moves) {
  std::vector<Step> steps;
  for (const std::string& path : paths) {
    if (FolderOf(path) != folder) {
      steps.push_back({path, Joined(folder, NameOf(path)), moves});
    } else if (!moves) {
      steps.push_back({path, Joined(folder, "Copy of " + NameOf(path)), false});
    }
  }
  Change(steps);
}

void FilesPage::Change(const std::vector<Step>& steps, bool replace) {
  struct Outcome {
    std::vector<dk::Error> errors;
    std::vector<Step> existing;
  };
  if (steps.empty()) return;
  status_->setText("Changing files …");
  changing_.Run(
      [phone = phone_, steps, replace](const dk::Limits& limits) {
        Outcome outcome;
        for (const Step& step : steps) {
          const dk::Device& device = phone;
          const dk::Result<void> done = step.to.empty() ? device.remove(step.from, true, limits)
                                        : step.moves    ? device.move(step.from, step.to, replace, limits)
                                                        : device.copy(step.from, step.to, replace, limits);
          if (done.code() == DK_EXISTS && !replace) {
            outcome.existing.push_back(step);
          } else if (!done) {
            outcome.errors.push_back(done.error());
          }
        }
        return outcome;
      },
      [this, steps](const dk::Result<Outcome>& result) {
        const Outcome& outcome = result.value();
        ShowErrors(this, outcome.errors);
        if (!outcome.existing.empty()) {
          Ask(this, QString("%1 files of these names exist already.").arg(outcome.existing.size()), "Replace",
              [this, existing = outcome.existing] { Change(existing, true); });
        }
        Changed(steps);
      });
}

void FilesPage::Changed(const std::vector<Step>& steps) {
  std::set<std::string> folders;
  for (const Step& step : steps) {
    folders.insert(FolderOf(step.from));
    if (!step.to.empty()) folders.insert(FolderOf(step.to));
  }
  for (const std::string& folder : folders) tree_->Refresh(folder);
  Refresh();
}

void FilesPage::ChooseAndPull() {
  const std::vector<std::string> paths = Selected();
  if (paths.empty()) return;
  auto* dialog = new QFileDialog(this, "Save to which folder?");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::Directory);
  connect(dialog, &QFileDialog::fileSelected, this, [this, paths](const QString& folder) {
    queue_.Pull(phone_, paths, QFile::encodeName(folder).toStdString());
  });
  dialog->open();
}

void FilesPage::ChooseAndPush() {
  auto* dialog = new QFileDialog(this, "Send which files?");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::ExistingFiles);
  connect(dialog, &QFileDialog::filesSelected, this, [this, folder = wanted_](const QStringList& files) {
    std::vector<std::string> local;
    for (const QString& file : files) local.push_back(QFile::encodeName(file).toStdString());
    queue_.Push(phone_, local, folder);
  });
  dialog->open();
}

}  // namespace explorer
