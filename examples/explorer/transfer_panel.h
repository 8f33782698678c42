#ifndef EXPLORER_TRANSFER_PANEL_H
#define EXPLORER_TRANSFER_PANEL_H

#include <QElapsedTimer>
#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "transfers.h"

namespace explorer {

// One transfer as the user sees it.
class TransferRow : public QFrame {
  Q_OBJECT

 public:
  TransferRow(TransferPtr transfer, TransferQueue& queue);

  const TransferPtr& transfer() const { return transfer_; }
  // Shows how far it is now.
  void Update();

 private:
  void AddButtons(TransferQueue& queue, QHBoxLayout& line);
  QPushButton* AddButton(QHBoxLayout& line, const QString& text, std::function<void()> action);
  QString Detail(const Progress& progress) const;
  void UpdateRate(const Progress& progress);
  void UpdateErrors();

  const TransferPtr transfer_;
  QLabel* const title_;
  QProgressBar* const bar_;
  QLabel* const detail_;
  QListWidget* const errors_;
  QPushButton* cancel_ = nullptr;
  QPushButton* again_ = nullptr;
  std::vector<QPushButton*> answers_;  // what to do with existing files

  QElapsedTimer since_rate_;
  std::uint64_t bytes_at_rate_ = 0;
  double rate_ = 0;  // bytes a second, of the last seconds
};

// All transfers, the newest first, and what to do with existing files.
class TransferPanel : public QWidget {
  Q_OBJECT

 public:
  explicit TransferPanel(TransferQueue& queue);

 private:
  void Add(const TransferPtr& transfer);
  void Update();
  void RemoveEnded();

  TransferQueue& queue_;
  QVBoxLayout* rows_layout_ = nullptr;
  std::vector<TransferRow*> rows_;
  QTimer timer_;  // runs while there is something to watch
};

}  // namespace explorer

#endif  // EXPLORER_TRANSFER_PANEL_H
