#include "tasks.h"

namespace explorer {

namespace {

constexpr int kMostThreads = 64;

}  // namespace

Threads::Threads() {
  pool_.setMaxThreadCount(kMostThreads);
}

Threads::~Threads() {
  pool_.waitForDone();
}

void Threads::Start(std::function<void()> work) {
  pool_.start(std::move(work));
}

void Threads::Post(std::function<void()> call) {
  QMetaObject::invokeMethod(this, std::move(call), Qt::QueuedConnection);
}

Tasks::Tasks(Threads& threads, int at_once, std::chrono::milliseconds timeout)
    : threads_(threads), at_once_(at_once), timeout_(timeout) {}

Tasks::~Tasks() {
  Drop();
}

void Tasks::Drop() {
  waiting_.clear();
  if (!round_) return;
  round_->dropped = true;
  round_->cancel.set();
  round_.reset();
}

void Tasks::Add(Task task) {
  if (!round_) round_ = std::make_shared<Round>();
  waiting_.push_back(std::move(task));
  StartNext();
}

void Tasks::StartNext() {
  while (round_->running < at_once_ && !waiting_.empty()) {
    const auto task = std::make_shared<Task>(std::move(waiting_.front()));
    waiting_.pop_front();
    ++round_->running;
    threads_.Start([this, &threads = threads_, round = round_, task, timeout = timeout_] {
      task->work({round->cancel, timeout});
      threads.Post([this, round, task] {
        if (round->dropped) return;  // and `this` may be gone
        --round->running;
        StartNext();
        task->done();  // last: it may delete `this`
      });
    });
  }
}

}  // namespace explorer
