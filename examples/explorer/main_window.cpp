#include "main_window.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QSplitter>
#include <QToolBar>

#include "applications_page.h"
#include "errors.h"
#include "files_page.h"
#include "log_page.h"
#include "overview_page.h"
#include "screenshot_dialog.h"
#include "text.h"

namespace explorer {

namespace {

constexpr QSize kSize(1100, 720);
constexpr int kListWidth = 180;  // these in pixels
constexpr int kListSpacing = 3;
constexpr int kTransfersHeight = 190;

}  // namespace

MainWindow::MainWindow(Threads& threads, dk::Client client)
    : threads_(threads),
      client_(std::move(client)),
      transfers_(threads),
      phones_(client_),
      list_(new QListView),
      stack_(new QStackedWidget),
      message_(new QLabel) {
  MakeLayout();
  connect(&phones_, &PhoneList::Changed, this, &MainWindow::PhonesChanged);
  connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this, &MainWindow::ShowChosen);
  connect(&transfers_, &TransferQueue::Idle, this, [this] {
    if (closing_) close();
  });
  ShowChosen();
}

void MainWindow::MakeLayout() {
  list_->setModel(&phones_);
  list_->setUniformItemSizes(true);
  list_->setSpacing(kListSpacing);
  message_->setTextFormat(Qt::PlainText);
  message_->setAlignment(Qt::AlignCenter);
  message_->setWordWrap(true);
  stack_->addWidget(message_);
  auto* phone = new QSplitter;
  phone->addWidget(list_);
  phone->addWidget(stack_);
  phone->setSizes({kListWidth, kSize.width() - kListWidth});
  phone->setStretchFactor(1, 1);
  auto* all = new QSplitter(Qt::Vertical);
  all->addWidget(phone);
  all->addWidget(new TransferPanel(transfers_));
  all->setSizes({kSize.height() - kTransfersHeight, kTransfersHeight});
  all->setStretchFactor(0, 1);
  setCentralWidget(all);
  QToolBar* tools = addToolBar("Phone");
  tools->addAction("Screenshot …", this, &MainWindow::TakeScreenshot);
  resize(kSize);
}

void MainWindow::PhonesChanged() {
  for (auto at = pages_.begin(); at != pages_.end();) {
    const int row = phones_.RowOf(at->first);
    const bool stays = row >= 0 && phones_.phone(row).state == DK_STATE_READY &&
                       phones_.phone(row).transport_id == at->second.transport_id;
    if (!stays) at->second.widget->deleteLater();  // its tasks are cancelled with it
    at = stays ? std::next(at) : pages_.erase(at);
  }
  if (!list_->currentIndex().isValid() && phones_.rowCount() > 0) list_->setCurrentIndex(phones_.index(0));
  ShowChosen();
}

void MainWindow::ShowChosen() {
  const int row = list_->currentIndex().isValid() ? list_->currentIndex().row() : -1;
  if (row < 0 || phones_.phone(row).state != DK_STATE_READY) {
    message_->setText(Message(row));
    stack_->setCurrentWidget(message_);
    return;
  }
  const dk::DeviceInfo& info = phones_.phone(row);
  if (pages_.find(info.serial) == pages_.end()) {
    // To open a phone by its serial asks nobody, so that the window may do it.
    const dk::Device phone = client_.open(info.serial).value();
    Pages pages{phone, NewPages(phone), info.transport_id};
    stack_->addWidget(pages.widget);
    pages_.emplace(info.serial, pages);
  }
  stack_->setCurrentWidget(pages_.at(info.serial).widget);
}

QWidget* MainWindow::NewPages(const dk::Device& phone) {
  auto* pages = new QTabWidget;
  pages->addTab(new OverviewPage(threads_, phone), "Overview");
  pages->addTab(new FilesPage(threads_, phone, transfers_), "Files");
  pages->addTab(new ApplicationsPage(threads_, phone, transfers_), "Applications");
  pages->addTab(new LogPage(threads_, phone), "Log");
  return pages;
}

QString MainWindow::Message(int row) const {
  if (row >= 0) return ShownName(phones_.phone(row)) + "\n\n" + Advice(phones_.phone(row));
  if (phones_.has_server()) return "Plug in a phone, and allow USB debugging in its developer options.";
  return "No adb server answers. Install adb, or start one: adb start-server";
}

QTabWidget* MainWindow::pages() const {
  return qobject_cast<QTabWidget*>(stack_->currentWidget());
}

void MainWindow::Choose(const std::string& serial) {
  const int row = phones_.RowOf(serial);
  if (row >= 0) list_->setCurrentIndex(phones_.index(row));
}

void MainWindow::TakeScreenshot() {
  const int row = list_->currentIndex().isValid() ? list_->currentIndex().row() : -1;
  const auto pages = row < 0 ? pages_.end() : pages_.find(phones_.phone(row).serial);
  if (pages == pages_.end()) return;
  auto* dialog = new ScreenshotDialog(threads_, pages->second.phone, pages->second.widget);
  dialog->show();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (!transfers_.is_busy()) return event->accept();
  // Not while the client still removes what is incomplete; that ends with Idle.
  event->ignore();
  if (closing_ || findChild<QMessageBox*>(QString(), Qt::FindDirectChildrenOnly) != nullptr) return;
  Ask(this, "Transfers are running. Cancel them and close? Files that are complete are kept.",
      "Cancel and close", [this] {
        closing_ = true;
        centralWidget()->setEnabled(false);
        transfers_.CancelAll();
        if (!transfers_.is_busy()) close();
      });
}

}  // namespace explorer
