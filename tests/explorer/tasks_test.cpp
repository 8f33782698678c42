#include "examples/explorer/tasks.h"

#include <atomic>
#include <thread>

#include "tests/explorer/suites.h"
#include "tests/explorer/window_under_test.h"

namespace darokleim::test {

namespace {

// As a call that hangs until it is cancelled.
void HangUntilCancelled(const dk::Limits& limits) {
  while (!limits.cancel->is_set()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  throw dk::Error(DK_CANCELLED);
}

}  // namespace

class TasksTest : public QObject {
  Q_OBJECT

 private slots:
  void ResultsComeOnTheThreadOfTheWindow() {
    explorer::Threads threads;
    explorer::Tasks tasks(threads, 2);
    const auto here = std::this_thread::get_id();
    bool has_value = false;
    bool has_error = false;
    tasks.Run([here](const dk::Limits&) { return std::this_thread::get_id() != here; },
              [&](const dk::Result<bool>& elsewhere) {
                has_value = elsewhere.value() && std::this_thread::get_id() == here;
              });
    tasks.Run([](const dk::Limits&) { throw dk::Error(DK_NO_SPACE); },
              [&](const dk::Result<void>& done) { has_error = done.code() == DK_NO_SPACE; });
    QVERIFY(!has_value && !has_error);  // not from within Run()
    QTRY_VERIFY_WITH_TIMEOUT(has_value && has_error, kLong);
    QVERIFY(tasks.idle());
  }

  void NoMoreRunAtOnceThanAllowed() {
    explorer::Threads threads;
    explorer::Tasks tasks(threads, 3);
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    int done = 0;
    for (int i = 0; i < 30; ++i) {
      tasks.Run(
          [&](const dk::Limits&) {
            const int now = ++running;
            if (now > most) most = now;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            --running;
          },
          [&](const dk::Result<void>&) { ++done; });
    }
    QTRY_COMPARE_WITH_TIMEOUT(done, 30, kLong);
    QVERIFY(most <= 3);
  }

  void NothingReportsToAnOwnerThatIsGone() {
    explorer::Threads threads;
    std::atomic<int> ended = 0;
    int reported = 0;
    auto tasks = std::make_unique<explorer::Tasks>(threads, 2);
    for (int i = 0; i < 4; ++i) {  // two run, two wait
      tasks->Run(
          [&](const dk::Limits& limits) {
            try {
              HangUntilCancelled(limits);
            } catch (const dk::Error&) {
              ++ended;
              throw;
            }
          },
          [&](const dk::Result<void>&) { ++reported; });
    }
    tasks.reset();
    QTRY_COMPARE_WITH_TIMEOUT(ended.load(), 2, kLong);
    QTest::qWait(20);
    QCOMPARE(ended.load(), 2);
    QCOMPARE(reported, 0);
  }

  void NothingReportsThatWasDone_ButNotDeliveredYet() {
    explorer::Threads threads;
    std::atomic<bool> ended = false;
    int reported = 0;
    auto tasks = std::make_unique<explorer::Tasks>(threads);
    tasks->Run([&](const dk::Limits&) { ended = true; }, [&](const dk::Result<void>&) { ++reported; });
    while (!ended) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // it is posted
    tasks.reset();
    QTest::qWait(20);
    QCOMPARE(reported, 0);
  }

  void ADroppedRoundDoesNotDelayTheNext() {
    explorer::Threads threads;
    explorer::Tasks tasks(threads);
    bool reported = false;
    bool answered = false;
    tasks.Run(HangUntilCancelled, [&](const dk::Result<void>&) { reported = true; });
    tasks.Drop();
    tasks.Run([](const dk::Limits&) { return 7; },
              [&](const dk::Result<int>& seven) { answered = seven.value() == 7; });
    QTRY_VERIFY_WITH_TIMEOUT(answered, kLong);
    QVERIFY(!reported);
  }

  void AReportMayDeleteItsOwner() {
    explorer::Threads threads;
    auto tasks = std::make_unique<explorer::Tasks>(threads);
    tasks->Run([](const dk::Limits&) {}, [&](const dk::Result<void>&) { tasks.reset(); });
    tasks->Run(HangUntilCancelled, [](const dk::Result<void>&) { QFAIL("it waited, or was cancelled"); });
    QTRY_VERIFY_WITH_TIMEOUT(tasks == nullptr, kLong);
  }
};

std::unique_ptr<QObject> MakeTasksTest() {
  return std::make_unique<TasksTest>();
}

}  // namespace darokleim::test

#include "tasks_test.moc"
