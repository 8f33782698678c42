#include "errors.h"

#include <QMessageBox>
#include <QPushButton>

#include "text.h"

namespace explorer {

namespace {

constexpr std::size_t kMostShown = 10;

QMessageBox* NewBox(QWidget* parent, QMessageBox::Icon icon, const QString& text) {
  auto* box = new QMessageBox(icon, QString(), text, QMessageBox::NoButton, parent);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setTextFormat(Qt::PlainText);
  return box;
}

}  // namespace

QString Sentence(const dk::Error& error) {
  const QString message = Shown(error.message());
  const QString reason = Shown(error.reason());
  return reason.isEmpty() || message.contains(reason) ? message : message + " (" + reason + ")";
}

void ShowErrors(QWidget* parent, const std::vector<dk::Error>& errors) {
  if (errors.empty()) return;
  QStringList sentences;
  for (const dk::Error& error : errors) {
    if (sentences.size() < static_cast<qsizetype>(kMostShown)) sentences += Sentence(error);
  }
  if (errors.size() > kMostShown) sentences += QString("… and %1 more.").arg(errors.size() - kMostShown);
  QMessageBox* box = NewBox(parent, QMessageBox::Warning, sentences.join("\n\n"));
  box->addButton(QMessageBox::Close);
  box->open();
}

void Ask(QWidget* parent, const QString& question, const QString& yes_text, std::function<void()> yes) {
  QMessageBox* box = NewBox(parent, QMessageBox::Question, question);
  box->addButton(QMessageBox::Cancel);
  const QPushButton* agree = box->addButton(yes_text, QMessageBox::AcceptRole);
  QObject::connect(agree, &QPushButton::clicked, parent, std::move(yes));
  box->open();
}

}  // namespace explorer
