#include "transfer_panel.h"

#include <QComboBox>
#include <QScrollArea>
#include <algorithm>
#include <optional>

#include "errors.h"
#include "text.h"

namespace explorer {

namespace {

constexpr int kInterval = 100;        // milliseconds
constexpr int kRateInterval = 500;    // milliseconds
constexpr double kNewestShare = 0.4;  // of the newest interval in the rate
constexpr int kParts = 1000;          // of the progress bar
constexpr int kMostErrors = 1000;
constexpr int kErrorsHeight = 70;  // pixels

QLabel* NewLabel() {
  auto* label = new QLabel;
  label->setTextFormat(Qt::PlainText);
  return label;
}

}  // namespace

TransferRow::TransferRow(TransferPtr transfer, TransferQueue& queue)
    : transfer_(std::move(transfer)),
      title_(NewLabel()),
      bar_(new QProgressBar),
      detail_(NewLabel()),
      errors_(new QListWidget) {
  setFrameShape(QFrame::StyledPanel);
  title_->setText(transfer_->title);
  bar_->setRange(0, kParts);
  errors_->setMaximumHeight(kErrorsHeight);
  errors_->hide();
  auto* line = new QHBoxLayout;
  line->addWidget(detail_, 1);
  AddButtons(queue, *line);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(title_);
  layout->addWidget(bar_);
  layout->addLayout(line);
  layout->addWidget(errors_);
  since_rate_.start();
  Update();
}

void TransferRow::AddButtons(TransferQueue& queue, QHBoxLayout& line) {
  const auto again = [this, &queue](std::optional<dk_existing> existing) {
    return [this, &queue, existing] {
      bytes_at_rate_ = 0;
      rate_ = 0;
      errors_->clear();
      queue.Again(transfer_, existing.value_or(queue.existing()));
    };
  };
  answers_ = {AddButton(line, "Keep them", again(DK_SKIP_EXISTING)),
              AddButton(line, "Replace if different", again(DK_SKIP_SAME)),
              AddButton(line, "Replace all", again(DK_REPLACE))};
  answers_[0]->setToolTip("The files that are there already stay as they are.");
  answers_[1]->setToolTip("Replaces files of another size or date.");
  // What exists then is also what was transferred before.
  again_ = AddButton(line, "Try again", again(std::nullopt));
  cancel_ = AddButton(line, "Cancel", [this] { transfer_->Cancel(); });
}

QPushButton* TransferRow::AddButton(QHBoxLayout& line, const QString& text, std::function<void()> action) {
  auto* button = new QPushButton(text);
  connect(button, &QPushButton::clicked, this, std::move(action));
  line.addWidget(button);
  return button;
}

void TransferRow::Update() {
  const Transfer::State state = transfer_->state();
  const Progress progress = transfer_->progress();
  UpdateRate(progress);
  UpdateErrors();
  const double share = progress.bytes_total == 0 ? 0
                                                 : static_cast<double>(progress.bytes_done) /
                                                       static_cast<double>(progress.bytes_total);
  bar_->setValue(state == Transfer::kDone ? kParts : static_cast<int>(share * kParts));
  detail_->setText(Detail(progress));
  cancel_->setVisible(!transfer_->is_over());
  cancel_->setEnabled(!transfer_->is_cancelled());
  again_->setVisible(state == Transfer::kFailed || state == Transfer::kCancelled);
  for (QPushButton* answer : answers_) answer->setVisible(state == Transfer::kAsking);
}

void TransferRow::UpdateRate(const Progress& progress) {
  const qint64 elapsed = since_rate_.elapsed();
  if (elapsed < kRateInterval || progress.bytes_done < bytes_at_rate_) return;
  const double newest =
      static_cast<double>(progress.bytes_done - bytes_at_rate_) * 1000 / static_cast<double>(elapsed);
  rate_ = rate_ == 0 ? newest : kNewestShare * newest + (1 - kNewestShare) * rate_;
  bytes_at_rate_ = progress.bytes_done;
  since_rate_.restart();
}

void TransferRow::UpdateErrors() {
  const std::size_t count = transfer_->error_count();
  if (count > static_cast<std::size_t>(errors_->count()) && errors_->count() < kMostErrors) {
    const std::vector<dk::Error> errors = transfer_->errors();
    for (std::size_t i = static_cast<std::size_t>(errors_->count()); i < errors.size() && i < kMostErrors;
         ++i) {
      errors_->addItem(Sentence(errors[i]));
    }
  }
  errors_->setVisible(errors_->count() > 0);
}

QString TransferRow::Detail(const Progress& progress) const {
  const QString bytes =
      QString("%1 of %2").arg(ShownSize(progress.bytes_done), ShownSize(progress.bytes_total));
  switch (transfer_->state()) {
    case Transfer::kWaiting:
      return transfer_->is_cancelled() ? "Cancelling …" : "Waiting …";
    case Transfer::kRunning: {
      if (transfer_->is_cancelled()) return "Cancelling: removing what is incomplete …";
      if (progress.bytes_total == 0) return "Starting …";
      if (rate_ <= 0) return bytes;
      const std::chrono::seconds left(
          static_cast<std::int64_t>(static_cast<double>(progress.bytes_total - progress.bytes_done) / rate_));
      return QString("%1, %2/s, %3 left")
          .arg(bytes, ShownSize(static_cast<std::uint64_t>(rate_)), ShownDuration(left));
    }
    case Transfer::kAsking:
      return QString("%1 of the files exist already.").arg(transfer_->error_count());
    case Transfer::kDone:
      return transfer_->kind == Transfer::kInstall ? "Installed."
                                                   : QString("Done: %1 files, %2.")
                                                         .arg(progress.files_done)
                                                         .arg(ShownSize(progress.bytes_done));
    case Transfer::kCancelled:
      return transfer_->kind == Transfer::kInstall ? "Cancelled."
                                                   : QString("Cancelled; %1 of %2 files are complete.")
                                                         .arg(progress.files_done)
                                                         .arg(progress.files_total);
    default:
      return transfer_->kind == Transfer::kInstall ? "Not installed." : "Not everything was transferred.";
  }
}

TransferPanel::TransferPanel(TransferQueue& queue) : queue_(queue) {
  auto* existing = new QComboBox;
  existing->setObjectName("existing");
  existing->addItem("Existing files: ask", DK_FAIL_IF_EXISTS);
  existing->addItem("Existing files: keep", DK_SKIP_EXISTING);
  existing->addItem("Existing files: replace if different", DK_SKIP_SAME);
  existing->addItem("Existing files: replace", DK_REPLACE);
  connect(existing, &QComboBox::currentIndexChanged, this, [this, existing] {
    queue_.set_existing(static_cast<dk_existing>(existing->currentData().toInt()));
  });
  auto* clear = new QPushButton("Remove ended");
  connect(clear, &QPushButton::clicked, this, &TransferPanel::RemoveEnded);

  auto* line = new QHBoxLayout;
  line->addWidget(new QLabel("Transfers"), 1);
  line->addWidget(existing);
  line->addWidget(clear);
  auto* rows = new QWidget;
  rows_layout_ = new QVBoxLayout(rows);
  rows_layout_->setContentsMargins(0, 0, 0, 0);
  rows_layout_->addStretch(1);
  auto* scroll = new QScrollArea;
  scroll->setWidget(rows);
  scroll->setWidgetResizable(true);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(line);
  layout->addWidget(scroll, 1);

  timer_.setInterval(kInterval);
  connect(&timer_, &QTimer::timeout, this, &TransferPanel::Update);
  connect(&queue, &TransferQueue::Added, this, &TransferPanel::Add);
  connect(&queue, &TransferQueue::Busy, &timer_, qOverload<>(&QTimer::start));
  connect(&queue, &TransferQueue::Ended, this, &TransferPanel::Update);
}

void TransferPanel::Add(const TransferPtr& transfer) {
  auto* row = new TransferRow(transfer, queue_);
  rows_layout_->insertWidget(0, row);
  rows_.push_back(row);
}

void TransferPanel::Update() {
  for (TransferRow* row : rows_) row->Update();
  if (!queue_.is_busy()) timer_.stop();
}

void TransferPanel::RemoveEnded() {
  const auto ended = [](TransferRow* row) {
    if (!row->transfer()->is_over()) return false;
    row->deleteLater();
    return true;
  };
  rows_.erase(std::remove_if(rows_.begin(), rows_.end(), ended), rows_.end());
}

}  // namespace explorer
