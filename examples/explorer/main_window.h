#ifndef EXPLORER_MAIN_WINDOW_H
#define EXPLORER_MAIN_WINDOW_H

#include <QLabel>
#include <QListView>
#include <QMainWindow>
#include <QStackedWidget>
#include <QTabWidget>
#include <map>

#include "phone_list.h"
#include "transfer_panel.h"
#include "transfers.h"

namespace explorer {

// Phones on the left, the chosen one's pages on the right, transfers below.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  // Throws dk::Error when the watch cannot start.
  MainWindow(Threads& threads, dk::Client client);

  PhoneList& phones() { return phones_; }
  TransferQueue& transfers() { return transfers_; }
  // The pages of the chosen phone; null while none is ready.
  QTabWidget* pages() const;
  void Choose(const std::string& serial);
  void TakeScreenshot();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeLayout();
  void PhonesChanged();
  void ShowChosen();
  QWidget* NewPages(const dk::Device& phone);
  QString Message(int row) const;

  Threads& threads_;
  const dk::Client client_;
  TransferQueue transfers_;
  PhoneList phones_;
  QListView* const list_;
  QStackedWidget* const stack_;
  QLabel* const message_;  // in place of a page that cannot be shown
  struct Pages {
    dk::Device phone;
    QWidget* widget;
    std::uint64_t transport_id;  // a phone that was plugged again is asked again
  };
  std::map<std::string, Pages> pages_;  // by serial, of phones that were chosen and are still there
  bool closing_ = false;
};

}  // namespace explorer

#endif  // EXPLORER_MAIN_WINDOW_H
