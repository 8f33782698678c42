#include "log_page.h"

#include <QComboBox>
#include <QDateTime>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QVBoxLayout>
#include <cstring>

#include "errors.h"
#include "text.h"

namespace explorer {

namespace {

constexpr std::chrono::seconds kTimeout(30);
constexpr std::chrono::milliseconds kInterval(100);
constexpr std::size_t kMostBuffered = 5000;
constexpr std::size_t kMostOld = 1000;
constexpr char kLevels[] = "VDIWEF";

QColor ColourOf(char level) {
  switch (level) {
    case 'V':
      return Qt::gray;
    case 'D':
      return Qt::darkCyan;
    case 'W':
      return QColor(0xB0, 0x60, 0x00);
    case 'E':
    case 'F':
      return Qt::red;
    default:
      return {};
  }
}

int RankOf(char level) {
  const char* found = std::strchr(kLevels, level);
  return found == nullptr ? 0 : static_cast<int>(found - kLevels);
}

}  // namespace

void LogBuffer::Add(const dk_log_record& record) {
  LogLine line{record.seconds, record.level, record.process, Shown(record.tag), Shown(record.text)};
  const std::lock_guard lock(mutex_);
  taken_.lines.push_back(std::move(line));
  if (taken_.lines.size() > kMostBuffered) {
    taken_.lines.pop_front();
    ++taken_.left_out;
  }
}

void LogBuffer::End(const QString& reason) {
  const std::lock_guard lock(mutex_);
  taken_.has_ended = true;
  taken_.reason = reason;
}

LogBuffer::Taken LogBuffer::Take() {
  const std::lock_guard lock(mutex_);
  return std::exchange(taken_, {});
}

void LogModel::Append(std::deque<LogLine> lines) {
  if (lines.empty()) return;
  const int excess = rowCount() + static_cast<int>(lines.size()) - kMostLines;
  if (excess > 0) {
    beginRemoveRows({}, 0, excess - 1);
    lines_.erase(lines_.begin(), lines_.begin() + excess);
    endRemoveRows();
  }
  beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(lines.size()) - 1);
  lines_.insert(lines_.end(), std::make_move_iterator(lines.begin()), std::make_move_iterator(lines.end()));
  endInsertRows();
}

void LogModel::Clear() {
  beginResetModel();
  lines_.clear();
  endResetModel();
}

int LogModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

int LogModel::columnCount(const QModelIndex&) const {
  return kColumnCount;
}

QVariant LogModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const LogLine& line = lines_[static_cast<std::size_t>(index.row())];
  if (role == Qt::ForegroundRole) {
    const QColor colour = ColourOf(line.level);
    return colour.isValid() ? QVariant(colour) : QVariant();
  }
  if (role != Qt::DisplayRole) return {};
  switch (index.column()) {
    case kTime:
      return QDateTime::fromSecsSinceEpoch(line.seconds).toString("MM-dd HH:mm:ss");
    case kLevel:
      return QString(QChar(line.level));
    case kTag:
      return line.tag;
    default:
      return line.text;
  }
}

LogFilter::LogFilter(LogModel& model) : model_(model) {
  setSourceModel(&model);
}

void LogFilter::set_word(const QString& word) {
  word_ = word;
  invalidateFilter();
}

void LogFilter::set_level(char level) {
  lowest_ = RankOf(level);
  invalidateFilter();
}

bool LogFilter::filterAcceptsRow(int row, const QModelIndex&) const {
  const LogLine& line = model_.line(row);
  return RankOf(line.level) >= lowest_ &&
         (line.tag.contains(word_, Qt::CaseInsensitive) || line.text.contains(word_, Qt::CaseInsensitive));
}

LogPage::LogPage(Threads& threads, dk::Device phone)
    : threads_(threads),
      phone_(std::move(phone)),
      filter_(model_),
      view_(new QTreeView),
      pause_(new QPushButton("Pause")),
      status_(new QLabel),
      starting_(threads, 1, kTimeout) {
  MakeLayout();
  timer_.setInterval(kInterval);
  connect(&timer_, &QTimer::timeout, this, &LogPage::Drain);
}

LogPage::~LogPage() {
  Stop();
}

void LogPage::MakeLayout() {
  auto* word = new QLineEdit;
  word->setPlaceholderText("Filter");
  word->setClearButtonEnabled(true);
  connect(word, &QLineEdit::textChanged, &filter_, &LogFilter::set_word);
  auto* level = new QComboBox;
  level->addItems({"V: everything", "D: debug", "I: information", "W: warnings", "E: errors", "F: fatal"});
  connect(level, &QComboBox::currentIndexChanged, this,
          [this](int index) { filter_.set_level(kLevels[index]); });
  pause_->setCheckable(true);
  auto* clear = new QPushButton("Clear");
  connect(clear, &QPushButton::clicked, &model_, &LogModel::Clear);
  auto* line = new QHBoxLayout;
  line->addWidget(word, 1);
  for (QWidget* widget : std::initializer_list<QWidget*>{level, pause_, clear}) line->addWidget(widget);

  view_->setModel(&filter_);
  view_->setRootIsDecorated(false);
  view_->setUniformRowHeights(true);
  view_->setHeaderHidden(true);
  status_->setTextFormat(Qt::PlainText);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(line);
  layout->addWidget(view_, 1);
  layout->addWidget(status_);
}

void LogPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Start();
}

void LogPage::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  Stop();
}

void LogPage::Start() {
  if (buffer_) return;
  model_.Clear();  // the log begins with what the phone kept
  status_->clear();
  buffer_ = std::make_shared<LogBuffer>();
  starting_.Run(
      // The callbacks hold the buffer, so that they never meet a page that has gone.
      [phone = phone_, buffer = buffer_](const dk::Limits& limits) {
        dk::LogOptions options;
        options.most_old = kMostOld;
        const auto on_record = [buffer](const dk_log_record& record) { buffer->Add(record); };
        const auto on_end = [buffer](dk_code, const dk::Error* error) {
          buffer->End(error == nullptr ? QString() : Sentence(*error));
        };
        return std::make_shared<dk::Log>(phone.log(options, on_record, on_end, limits).value());
      },
      [this](const dk::Result<std::shared_ptr<dk::Log>>& log) {
        if (log) {
          log_ = log.value();
        } else {
          buffer_->End(Sentence(log.error()));
        }
      });
  timer_.start();
}

void LogPage::Stop() {
  timer_.stop();
  starting_.Drop();
  buffer_.reset();
  if (!log_) return;
  // Stopping waits for the log's thread, which this one must not.
  threads_.Start([log = std::move(log_), phone = phone_] { log->stop(); });
  log_.reset();
}

void LogPage::Drain() {
  if (pause_->isChecked()) return;  // what comes meanwhile is kept up to the buffer's limit
  LogBuffer::Taken taken = buffer_->Take();
  const QScrollBar* bar = view_->verticalScrollBar();
  const bool at_end = bar->value() == bar->maximum();
  model_.Append(std::move(taken.lines));
  if (at_end) view_->scrollToBottom();
  if (taken.left_out > 0) status_->setText(QString("%1 lines were left out.").arg(taken.left_out));
  if (taken.has_ended) status_->setText("The log has ended. " + taken.reason);
}

}  // namespace explorer
