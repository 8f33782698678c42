// The explorer's window on simulated phones, and whether it stays alive.
#ifndef DAROKLEIM_TESTS_EXPLORER_WINDOW_UNDER_TEST_H
#define DAROKLEIM_TESTS_EXPLORER_WINDOW_UNDER_TEST_H

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>

#include "examples/explorer/main_window.h"
#include "examples/explorer/tasks.h"
#include "tests/support/simulated_phones.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {

// For QTRY_…_WITH_TIMEOUT: long, since it only matters when a test fails.
inline constexpr int kLong = 60000;  // milliseconds

inline constexpr char kModernPhone[] = "R58M123ABC";
inline constexpr char kLegacyPhone[] = "0123456789ABCDEF";
// A phone of each generation, on a quick network.
std::unique_ptr<SimulatedPhones> StartBothPhones();
// The rows of a test function that runs with each of them: QFETCH(const std::string, serial).
void AddBothPhones();

// A timer of the window's thread: for how long the window did nothing. Time that the thread was ready to run and the machine had
// no processor for it does not count: other programs' load is not the window's doing.
class Heartbeat {
 public:
  Heartbeat();

  // Until now. Processes events first, so that a pause that still lasts counts.
  void Stop();
  std::chrono::milliseconds longest() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(longest_);
  }
  // The same with the time that the machine took.
  std::chrono::milliseconds longest_on_clock() const { return std::chrono::milliseconds(longest_on_clock_); }

 private:
  void Beat();

  QElapsedTimer since_;
  QTimer timer_;
  std::chrono::nanoseconds waited_{};  // for a processor, since the thread began
  std::chrono::nanoseconds longest_{};
  qint64 longest_on_clock_ = 0;  // milliseconds
};

// The window, its threads and its heartbeat, which must not stop for more than 100 ms.
class WindowUnderTest {
 public:
  explicit WindowUnderTest(const SimulatedPhones& phones);
  // Ends the window as main() does.
  ~WindowUnderTest();

  explorer::MainWindow& window() { return *window_; }
  // Chooses a phone once it is ready; throws when it does not come.
  void Choose(const std::string& serial);
  // The page of this title of the chosen phone, in front.
  QWidget* Page(const QString& title);

  template <typename Widget>
  Widget* Find(const QString& name = {}) {
    return window_->findChild<Widget*>(name);
  }
  // Clicks a button by its text, in the window or in a box of it; throws when there is none that is seen.
  void Click(const QString& text);
  void Trigger(const QString& action);
  bool Shows(const QString& text);
  // Into the build tree, for the documents.
  void SaveScreenshot(const QString& name);

  Heartbeat& heartbeat() { return *heartbeat_; }

 private:
  std::unique_ptr<explorer::Threads> threads_;
  std::unique_ptr<explorer::MainWindow> window_;
  std::unique_ptr<Heartbeat> heartbeat_;
};

// Checks the heartbeat at the end of a test function.
void CompareHeartbeat(WindowUnderTest& window);

// Processes events until `condition`, at most kLong; throws then.
template <typename Condition>
void Await(Condition condition, const char* what) {
  if (!QTest::qWaitFor(condition, kLong)) throw std::runtime_error(std::string("waited in vain: ") + what);
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_EXPLORER_WINDOW_UNDER_TEST_H
