#ifndef EXPLORER_LOG_PAGE_H
#define EXPLORER_LOG_PAGE_H

#include <QAbstractTableModel>
#include <QLabel>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTimer>
#include <QTreeView>
#include <QWidget>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "tasks.h"

namespace explorer {

struct LogLine {
  std::int64_t seconds;  // since 1970, UTC
  char level;
  std::uint32_t process;
  QString tag;
  QString text;
};

// What the log's thread hands to the window. A phone can write faster than a window can draw: when the window does not keep up,
// the oldest lines are left out and counted.
class LogBuffer {
 public:
  void Add(const dk_log_record& record);
  void End(const QString& reason);  // empty: as asked

  struct Taken {
    std::deque<LogLine> lines;
    std::size_t left_out = 0;
    bool has_ended = false;
    QString reason;
  };
  Taken Take();

 private:
  std::mutex mutex_;
  Taken taken_;
};

// The newest lines.
class LogModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kTime, kLevel, kTag, kText, kColumnCount };
  static constexpr int kMostLines = 20000;

  void Append(std::deque<LogLine> lines);
  void Clear();
  const LogLine& line(int row) const { return lines_[static_cast<std::size_t>(row)]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  std::deque<LogLine> lines_;
};

// Lines of a level and above whose tag or text contains a word.
class LogFilter : public QSortFilterProxyModel {
  Q_OBJECT

 public:
  explicit LogFilter(LogModel& model);
  void set_word(const QString& word);
  void set_level(char level);

 protected:
  bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

 private:
  const LogModel& model_;
  QString word_;
  int lowest_ = 0;  // position of the level in VDIWEF
};

// The phone's log, while it is seen.
class LogPage : public QWidget {
  Q_OBJECT

 public:
  LogPage(Threads& threads, dk::Device phone);
  ~LogPage() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void MakeLayout();
  void Start();
  void Stop();
  void Drain();

  Threads& threads_;
  const dk::Device phone_;
  LogModel model_;
  LogFilter filter_;
  QTreeView* const view_;
  QPushButton* const pause_;
  QLabel* const status_;
  QTimer timer_;
  std::shared_ptr<LogBuffer> buffer_;
  std::shared_ptr<dk::Log> log_;
  Tasks starting_;
};

}  // namespace explorer

#endif  // EXPLORER_LOG_PAGE_H
