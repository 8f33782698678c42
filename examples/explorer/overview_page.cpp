#include "overview_page.h"

#include <QProgressBar>
#include <QVBoxLayout>

#include "errors.h"
#include "text.h"

namespace explorer {

namespace {

constexpr std::chrono::seconds kTimeout(20);
constexpr std::chrono::seconds kInterval(30);
constexpr int kPercent = 100;

}  // namespace

OverviewPage::OverviewPage(Threads& threads, dk::Device phone)
    : phone_(std::move(phone)), facts_(new QFormLayout), tasks_(threads, 2, kTimeout) {
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(facts_);
  AddFact("Serial")->setText(Shown(phone_.serial()));
  model_ = AddFact("Model");
  android_ = AddFact("Android");
  build_ = AddFact("Build");
  battery_ = AddFact("Battery");
  screen_ = AddFact("Screen");
  memory_ = AddFact("Memory");
  storage_ = AddFact("Storage");
  volumes_ = new QVBoxLayout;
  layout->addLayout(volumes_);
  layout->addStretch(1);
  connect(&timer_, &QTimer::timeout, this, &OverviewPage::AskAll);
}

QLabel* OverviewPage::AddFact(const QString& title) {
  auto* label = new QLabel("…");
  label->setObjectName(title);
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setWordWrap(true);
  facts_->addRow(title + ":", label);
  return label;
}

template <typename Question, typename Show>
void OverviewPage::AskFor(QLabel* label, Question question, Show show) {
  const auto ask = [phone = phone_, question](const dk::Limits& limits) {
    return question(phone, limits).value();
  };
  using Answer = std::invoke_result_t<decltype(ask), const dk::Limits&>;
  tasks_.Run(ask, [label, show](const dk::Result<Answer>& answer) {
    label->setText(answer.ok() ? show(answer.value()) : Sentence(answer.error()));
  });
}

void OverviewPage::AskAll() {
  if (!tasks_.idle()) return;  // the last round has not ended
  tasks_.Run([phone = phone_](const dk::Limits& limits) { return phone.properties(limits).value(); },
             [this](const dk::Result<Properties>& properties) {
               if (properties) ShowProperties(properties.value());
             });
  AskFor(
      battery_, [](const dk::Device& phone, const dk::Limits& limits) { return phone.battery(limits); },
      [](const dk_battery& battery) {
        return QString("%1 %%2").arg(battery.level).arg(battery.charging ? ", charging" : "");
      });
  AskFor(
      screen_, [](const dk::Device& phone, const dk::Limits& limits) { return phone.screen(limits); },
      [](const dk_screen& screen) {
        return QString("%1 × %2 pixels, %3 dpi").arg(screen.width).arg(screen.height).arg(screen.density);
      });
  AskFor(
      memory_, [](const dk::Device& phone, const dk::Limits& limits) { return phone.memory(limits); },
      [](const dk_memory& memory) {
        return QString("%1, %2 available").arg(ShownSize(memory.total), ShownSize(memory.available));
      });
  AskFor(
      storage_, [](const dk::Device& phone, const dk::Limits& limits) { return phone.volumes(limits); },
      [this](const std::vector<dk::Volume>& volumes) {
        ShowVolumes(volumes);
        return QString("%1 volumes").arg(volumes.size());
      });
}

void OverviewPage::ShowProperties(const Properties& properties) {
  const std::map<std::string, std::string> values(properties.begin(), properties.end());
  const auto value = [&](const char* name) {
    const auto found = values.find(name);
    return found == values.end() ? QString() : Shown(found->second);
  };
  model_->setText(value("ro.product.manufacturer") + ' ' + value("ro.product.model"));
  android_->setText(
      QString("%1 (API %2)").arg(value("ro.build.version.release"), value("ro.build.version.sdk")));
  build_->setText(value("ro.build.display.id"));
}

void OverviewPage::ShowVolumes(const std::vector<dk::Volume>& volumes) {
  while (QLayoutItem* old = volumes_->takeAt(0)) {
    delete old->widget();
    delete old;
  }
  for (const dk::Volume& volume : volumes) {
    auto* title =
        new QLabel(QString("%1: %2 of %3 are free")
                       .arg(volume.internal ? "Internal storage" : "Card " + Shown(NameOf(volume.path)),
                            ShownSize(volume.free), ShownSize(volume.total)));
    title->setTextFormat(Qt::PlainText);
    auto* bar = new QProgressBar;
    bar->setValue(volume.total == 0 ? 0 : static_cast<int>(volume.used * kPercent / volume.total));
    volumes_->addWidget(title);
    volumes_->addWidget(bar);
  }
}

void OverviewPage::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  AskAll();
  timer_.start(kInterval);
}

void OverviewPage::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  timer_.stop();
}

}  // namespace explorer
