#ifndef EXPLORER_SCREENSHOT_DIALOG_H
#define EXPLORER_SCREENSHOT_DIALOG_H

#include <QDialog>
#include <QLabel>
#include <QPushButton>

#include "tasks.h"

namespace explorer {

// Takes a picture of the phone's screen, to save or to copy.
class ScreenshotDialog : public QDialog {
  Q_OBJECT

 public:
  ScreenshotDialog(Threads& threads, dk::Device phone, QWidget* parent);

  void SaveAs(const QString& file);

 private:
  void Take();
  void Show(const dk::Result<std::string>& png);
  void ChooseFile();

  const dk::Device phone_;
  QByteArray png_;  // as the phone made it
  QLabel* const picture_;
  QPushButton *again_, *save_, *copy_;
  Tasks tasks_;
};

}  // namespace explorer

#endif  // EXPLORER_SCREENSHOT_DIALOG_H
