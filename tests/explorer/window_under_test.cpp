#include "tests/explorer/window_under_test.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace darokleim::test {

std::unique_ptr<SimulatedPhones> StartBothPhones() {
  return std::make_unique<SimulatedPhones>(
      Words{kModernPhone + std::string(",profile=samsung"), kLegacyPhone + std::string(",android=legacy")},
      Words{"--quick"});
}

void AddBothPhones() {
  QTest::addColumn<std::string>("serial");
  QTest::newRow("modern") << std::string(kModernPhone);
  QTest::newRow("legacy") << std::string(kLegacyPhone);
}

namespace {

constexpr std::chrono::milliseconds kBeat(5);
#ifdef __SANITIZE_ADDRESS__
constexpr std::chrono::milliseconds kLongestPause(300);  // everything takes about three times as long
#else
constexpr std::chrono::milliseconds kLongestPause(100);
#endif

// For how long this thread was ready to run and did not, since it began.
std::chrono::nanoseconds WaitedForProcessor() {
  std::ifstream statistics("/proc/thread-self/schedstat");
  std::int64_t on_processor = 0;
  std::int64_t waited = 0;
  if (!(statistics >> on_processor >> waited))
    throw std::runtime_error("/proc/thread-self/schedstat cannot be read");
  return std::chrono::nanoseconds(waited);
}

}  // namespace

Heartbeat::Heartbeat() : waited_(WaitedForProcessor()) {
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.setInterval(kBeat);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Beat(); });
  since_.start();
  timer_.start();
}

void Heartbeat::Beat() {
  const std::chrono::nanoseconds waited = WaitedForProcessor();
  const std::chrono::nanoseconds pause(since_.nsecsElapsed());
  longest_on_clock_ = std::max(longest_on_clock_, since_.restart());
  longest_ = std::max(longest_, pause - (waited - waited_));
  waited_ = waited;
}

void Heartbeat::Stop() {
  QTest::qWait(2 * static_cast<int>(kBeat.count()));
  timer_.stop();
}

WindowUnderTest::WindowUnderTest(const SimulatedPhones& phones)
    : threads_(std::make_unique<explorer::Threads>()) {
  dk::ClientOptions options;
  options.server = "tcp:" + phones.port();
  window_ = std::make_unique<explorer::MainWindow>(*threads_, dk::Client(options));
  window_->show();
  QTest::qWait(1);  // what a window does once, before it is seen
  heartbeat_ = std::make_unique<Heartbeat>();
}

WindowUnderTest::~WindowUnderTest() {
  window_.reset();
  threads_.reset();
}

void WindowUnderTest::Choose(const std::string& serial) {
  Await(
      [&] {
        const int row = window_->phones().RowOf(serial);
        return row >= 0 && window_->phones().phone(row).state == DK_STATE_READY;
      },
      "the phone");
  window_->Choose(serial);
}

QWidget* WindowUnderTest::Page(const QString& title) {
  QTabWidget* pages = window_->pages();
  if (pages == nullptr) throw std::runtime_error("no phone is ready");
  for (int i = 0; i < pages->count(); ++i) {
    if (pages->tabText(i) != title) continue;
    pages->setCurrentIndex(i);
    return pages->widget(i);
  }
  throw std::runtime_error("no such page: " + title.toStdString());
}

void WindowUnderTest::Click(const QString& text) {
  // An action of the same name has a QToolButton.
  const auto found = [&]() -> QPushButton* {
    for (auto* button : window_->findChildren<QPushButton*>()) {
      if (button->isVisible() && button->text().remove('&') == text) return button;
    }
    return nullptr;
  };
  Await([&] { return found() != nullptr; }, ("the button " + text.toStdString()).c_str());
  found()->click();
}

void WindowUnderTest::Trigger(const QString& text) {
  for (auto* action : window_->findChildren<QAction*>()) {
    auto* place = qobject_cast<QWidget*>(action->parent());
    if (action->text() == text && place != nullptr && place->isVisible()) return action->trigger();
  }
  throw std::runtime_error("no such action: " + text.toStdString());
}

bool WindowUnderTest::Shows(const QString& text) {
  const auto labels = window_->findChildren<QLabel*>();
  return std::any_of(labels.begin(), labels.end(),
                     [&](const QLabel* label) { return label->isVisible() && label->text().contains(text); });
}

void WindowUnderTest::SaveScreenshot(const QString& name) {
  const QString folder = qEnvironmentVariable("SCREENSHOTS");
  if (folder.isEmpty()) return;
  // Few colours make small files.
  const QImage image =
      window_->grab().toImage().convertToFormat(QImage::Format_Indexed8, Qt::ThresholdDither);
  if (!QDir().mkpath(folder) || !image.save(folder + '/' + name + ".png")) {
    throw std::runtime_error("cannot save " + folder.toStdString());
  }
}

void CompareHeartbeat(WindowUnderTest& window) {
  Heartbeat& heartbeat = window.heartbeat();
  heartbeat.Stop();
  const int longest = static_cast<int>(heartbeat.longest().count());
  qInfo("the longest pause of the window is %d ms, by the clock %d ms", longest,
        static_cast<int>(heartbeat.longest_on_clock().count()));
  QVERIFY2(heartbeat.longest() <= kLongestPause,
           qPrintable(QString("the window stood still for %1 ms").arg(longest)));
}

}  // namespace darokleim::test
