#include "applications_page.h"

#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "errors.h"
#include "phone_paths.h"
#include "text.h"

namespace explorer {

namespace {

constexpr std::chrono::seconds kTimeout(60);
constexpr int kOriginWidth = 160;  // pixels

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// APKs that were split by the build of one application: base.apk and its parts, or names with "split".
bool AreOfOneApplication(const std::vector<std::string>& apks) {
  return std::any_of(apks.begin(), apks.end(), [](const std::string& apk) {
    const std::string name = NameOf(apk);
    return name == "base.apk" || name.find("split") != std::string::npos;
  });
}

std::vector<dk::Item> ApksOf(const dk::App& app, const std::string& folder) {
  std::vector<dk::Item> items;
  for (const std::string& path : app.apk_paths) {
    const std::string part = items.empty() ? "" : "-" + std::to_string(items.size());
    items.push_back({path, Joined(folder, app.package + part + ".apk")});
  }
  return items;
}

}  // namespace

void ApplicationsModel::Show(std::vector<dk::App> apps) {
  beginResetModel();
  apps_ = std::move(apps);
  endResetModel();
}

int ApplicationsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(apps_.size());
}

int ApplicationsModel::columnCount(const QModelIndex&) const {
  return kColumnCount;
}

QVariant ApplicationsModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || (role != Qt::DisplayRole && role != kSortRole)) return {};
  const dk::App& app = apps_[static_cast<std::size_t>(index.row())];
  switch (index.column()) {
    case kPackage:
      return Shown(app.package);
    case kVersion:
      return Shown(app.version_name);
    case kSize:
      if (role == kSortRole) return static_cast<qulonglong>(app.size);
      return app.size == 0 ? QString() : ShownSize(app.size);
    default:
      return QString(app.system ? "came with the phone" : "installed") + (app.enabled ? "" : ", disabled");
  }
}

QVariant ApplicationsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  constexpr const char* kTitles[] = {"Application", "Version", "Size", "Origin"};
  return QString(kTitles[section]);
}

ApplicationsPage::ApplicationsPage(Threads& threads, dk::Device phone, TransferQueue& queue)
    : phone_(std::move(phone)),
      queue_(queue),
      set_(new QComboBox),
      view_(new QTreeView),
      status_(new QLabel),
      reading_(threads, 1, kTimeout),
      changing_(threads) {
  found_.setSourceModel(&model_);
  found_.setSortRole(ApplicationsModel::kSortRole);
  found_.setFilterCaseSensitivity(Qt::CaseInsensitive);
  MakeLayout();
  setAcceptDrops(true);
  connect(&queue_, &TransferQueue::Ended, this, [this](const TransferPtr& transfer) {
    if (transfer->kind == Transfer::kInstall && transfer->phone.serial() == phone_.serial()) Read();
  });
}

void ApplicationsPage::MakeLayout() {
  auto* search = new QLineEdit;
  search->setPlaceholderText("Search");
  search->setClearButtonEnabled(true);
  connect(search, &QLineEdit::textChanged, &found_, &QSortFilterProxyModel::setFilterFixedString);
  set_->addItem("Installed by the user", DK_USER_APPS);
  set_->addItem("Came with the phone", DK_SYSTEM_APPS);
  set_->addItem("All", DK_ALL_APPS);
  connect(set_, &QComboBox::currentIndexChanged, this, &ApplicationsPage::Read);

  auto* line = new QHBoxLayout;
  line->addWidget(search, 1);
  line->addWidget(set_);
  const auto add_button = [&](const QString& text, std::function<void()> action) {
    auto* button = new QPushButton(text);
    connect(button, &QPushButton::clicked, this, std::move(action));
    line->addWidget(button);
  };
  const auto choose = [this](QFileDialog::FileMode mode, const QString& filter, auto chosen) {
    auto* dialog = new QFileDialog(this, QString(), QString(), filter);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(mode);
    connect(dialog, &QFileDialog::filesSelected, this, chosen);
    dialog->open();
  };
  add_button("Install …", [this, choose] {
    choose(QFileDialog::ExistingFiles, "Applications (*.apk)", [this](const QStringList& files) {
      std::vector<std::string> apks;
      for (const QString& file : files) apks.push_back(QFile::encodeName(file).toStdString());
      Install(apks);
    });
  });
  add_button("Uninstall", [this] { Uninstall(); });
  add_button("Save APK …", [this, choose] {
    choose(QFileDialog::Directory, QString(),
           [this](const QStringList& folders) { SaveApks(folders.first()); });
  });

  view_->setModel(&found_);
  view_->setRootIsDecorated(false);
  view_->setUniformRowHeights(true);
  view_->setSortingEnabled(true);
  view_->sortByColumn(ApplicationsModel::kPackage, Qt::AscendingOrder);
  view_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  view_->header()->setSectionResizeMode(ApplicationsModel::kPackage, QHeaderView::Stretch);
  view_->header()->resizeSection(ApplicationsModel::kOrigin, kOriginWidth);
  view_->header()->setStretchLastSection(false);
  status_->setTextFormat(Qt::PlainText);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(line);
  layout->addWidget(view_, 1);
  layout->addWidget(status_);
}

void ApplicationsPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Read();
}

void ApplicationsPage::Read() {
  status_->setText("Reading …");
  reading_.Drop();  // an older question is of no use any more
  reading_.Run(
      [phone = phone_, set = static_cast<dk_app_set>(set_->currentData().toInt())](const dk::Limits& limits) {
        return phone.apps(set, true, limits).value();
      },
      [this](dk::Result<std::vector<dk::App>> apps) {
        status_->setText(
            apps.ok() ? QString("%1 applications. Drop APKs here to install them.").arg(apps.value().size())
                      : Sentence(apps.error()));
        if (apps) model_.Show(std::move(apps.value()));
      });
}

std::vector<const dk::App*> ApplicationsPage::Selected() const {
  std::vector<const dk::App*> apps;
  for (const QModelIndex& index : view_->selectionModel()->selectedRows()) {
    apps.push_back(&model_.app(found_.mapToSource(index).row()));
  }
  return apps;
}

void ApplicationsPage::Install(const std::vector<std::string>& apks) {
  if (AreOfOneApplication(apks)) {
    queue_.Install(phone_, apks);
  } else {
    for (const std::string& apk : apks) queue_.Install(phone_, {apk});
  }
}

void ApplicationsPage::Uninstall() {
  std::vector<std::string> packages;
  for (const dk::App* app : Selected()) packages.push_back(app->package);
  if (packages.empty()) return;
  const QString what =
      packages.size() == 1 ? Shown(packages.front()) : QString("%1 applications").arg(packages.size());
  Ask(this, QString("Uninstall %1? Their data on the phone is deleted.").arg(what), "Uninstall",
      [this, packages] { Remove(packages); });
}

void ApplicationsPage::Remove(const std::vector<std::string>& packages) {
  status_->setText("Uninstalling …");
  changing_.Run(
      [phone = phone_, packages](const dk::Limits& limits) {
        std::vector<dk::Error> errors;
        for (const std::string& package : packages) {
          if (auto done = phone.uninstall(package, false, limits); !done) errors.push_back(done.error());
        }
        return errors;
      },
      [this](const dk::Result<std::vector<dk::Error>>& errors) {
        ShowErrors(this, errors.value());
        Read();
      });
}

void ApplicationsPage::SaveApks(const QString& folder) {
  const std::string target = QFile::encodeName(folder).toStdString();
  for (const dk::App* app : Selected()) {
    queue_.Pull(phone_, QString("APK of %1 to %2").arg(Shown(app->package), Shown(target)),
                ApksOf(*app, target));
  }
}

void ApplicationsPage::dragEnterEvent(QDragEnterEvent* event) {
  const std::vector<std::string> files = LocalPaths(*event->mimeData());
  const bool all_apks =
      std::all_of(files.begin(), files.end(), [](const std::string& file) { return EndsWith(file, ".apk"); });
  if (!files.empty() && all_apks) event->acceptProposedAction();
}

void ApplicationsPage::dropEvent(QDropEvent* event) {
  Install(LocalPaths(*event->mimeData()));
  event->acceptProposedAction();
}

}  // namespace explorer
