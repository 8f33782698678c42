#include "screenshot_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QSaveFile>
#include <QVBoxLayout>

#include "errors.h"

namespace explorer {

namespace {

constexpr std::chrono::seconds kTimeout(30);
constexpr QSize kPictureSize(320, 560);

}  // namespace

ScreenshotDialog::ScreenshotDialog(Threads& threads, dk::Device phone, QWidget* parent)
    : QDialog(parent), phone_(std::move(phone)), picture_(new QLabel), tasks_(threads, 1, kTimeout) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle("Screenshot");
  picture_->setMinimumSize(kPictureSize);
  picture_->setAlignment(Qt::AlignCenter);
  picture_->setTextFormat(Qt::PlainText);
  picture_->setWordWrap(true);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  again_ = buttons->addButton("Take again", QDialogButtonBox::ActionRole);
  copy_ = buttons->addButton("Copy", QDialogButtonBox::ActionRole);
  save_ = buttons->addButton("Save …", QDialogButtonBox::ActionRole);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(picture_, 1);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(again_, &QPushButton::clicked, this, &ScreenshotDialog::Take);
  connect(save_, &QPushButton::clicked, this, &ScreenshotDialog::ChooseFile);
  connect(copy_, &QPushButton::clicked, this,
          [this] { QApplication::clipboard()->setImage(QImage::fromData(png_)); });
  Take();
}

void ScreenshotDialog::Take() {
  for (QPushButton* button : {again_, save_, copy_}) button->setEnabled(false);
  picture_->setText("Asking the phone …");
  tasks_.Run([phone = phone_](const dk::Limits& limits) { return phone.screenshot(limits).value(); },
             [this](const dk::Result<std::string>& png) { Show(png); });
}

void ScreenshotDialog::Show(const dk::Result<std::string>& png) {
  again_->setEnabled(true);
  if (!png) {
    picture_->setText(Sentence(png.error()));
    return;
  }
  png_ = QByteArray::fromStdString(png.value());
  const QPixmap pixmap = QPixmap::fromImage(QImage::fromData(png_));
  if (pixmap.isNull()) {
    picture_->setText("The phone's picture cannot be read.");
    return;
  }
  picture_->setPixmap(pixmap.scaled(kPictureSize, Qt::KeepAspectRatio, Qt::SmoothTransformation));
  save_->setEnabled(true);
  copy_->setEnabled(true);
}

void ScreenshotDialog::ChooseFile() {
  auto* dialog = new QFileDialog(this, "Save the screenshot", "screenshot.png", "PNG (*.png)");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  connect(dialog, &QFileDialog::fileSelected, this, &ScreenshotDialog::SaveAs);
  dialog->open();
}

void ScreenshotDialog::SaveAs(const QString& name) {
  QSaveFile file(name);  // an older file stays until this one is complete
  if (file.open(QIODevice::WriteOnly) && file.write(png_) == png_.size() && file.commit()) return;
  auto* box = new QMessageBox(QMessageBox::Warning, QString(),
                              QString("%1 was not saved: %2").arg(name, file.errorString()),
                              QMessageBox::Close, this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

}  // namespace explorer
