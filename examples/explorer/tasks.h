// The bridge between the client, whose calls block, and the window, whose thread must not.
#ifndef EXPLORER_TASKS_H
#define EXPLORER_TASKS_H

#include <QObject>
#include <QThreadPool>
#include <chrono>
#include <darokleim/client.hpp>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace explorer {

// The threads that calls block on. One object serves the whole program and outlives every Tasks. There may be many threads,
// because they wait for phones and not for the processor: calls that hang must not take the threads of other phones.
class Threads : public QObject {
 public:
  Threads();
  // Waits for the calls that still run. All were cancelled by their Tasks, so that this takes a moment.
  ~Threads() override;

  void Start(std::function<void()> work);
  // May be called on any thread; `call` runs later, on the window's.
  void Post(std::function<void()> call);

 private:
  QThreadPool pool_;
};

// Tasks of one purpose, for example the listings of one page. It is a member of what it works for, and lives on the window's
// thread. When it goes, its calls are cancelled and none of them reports any more: `done` may therefore use `this`.
class Tasks {
 public:
  // `at_once`: how many run at the same time. `timeout`: of each call; 0: no limit.
  explicit Tasks(Threads& threads, int at_once = 1, std::chrono::milliseconds timeout = {});
  ~Tasks();
  Tasks(const Tasks&) = delete;
  Tasks& operator=(const Tasks&) = delete;

  // Runs `work(limits)` on a thread and then `done(result)` on the window's. `work` returns a value or throws a dk::Error, as
  // value() of a dk::Result does; `done` gets a dk::Result with either.
  template <typename Work, typename Done>
  void Run(Work work, Done done) {
    using Value = std::invoke_result_t<Work&, const dk::Limits&>;
    auto result = std::make_shared<std::optional<dk::Result<Value>>>();
    Add({[work = std::move(work), result](const dk::Limits& limits) mutable {
           result->emplace(Caught<Value>(work, limits));
         },
         [done = std::move(done), result]() mutable { done(std::move(**result)); }});
  }

  // Cancels what runs and forgets what waits. None of them reports.
  void Drop();
  bool idle() const { return waiting_.empty() && (!round_ || round_->running == 0); }

 private:
  struct Task {
    std::function<void(const dk::Limits&)> work;
    std::function<void()> done;
  };
  // The tasks until the next Drop(). Threads hold it and use its token; all else belongs to the window's thread.
  struct Round {
    dk::Cancel cancel;
    bool dropped = false;
    int running = 0;
  };

  template <typename Value, typename Work>
  static dk::Result<Value> Caught(Work& work, const dk::Limits& limits) {
    try {
      if constexpr (std::is_void_v<Value>) {
        work(limits);
        return {};
      } else {
        return work(limits);
      }
    } catch (const dk::Error& error) {
      return error;
    }
  }
  void Add(Task task);
  void StartNext();

  Threads& threads_;
  const int at_once_;
  const std::chrono::milliseconds timeout_;
  std::deque<Task> waiting_;
  std::shared_ptr<Round> round_;
};

}  // namespace explorer

#endif  // EXPLORER_TASKS_H
