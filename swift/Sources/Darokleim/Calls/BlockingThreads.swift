import Foundation

/// Threads for calls that block, so that none of Swift's cooperative threads ever waits for a phone.
///
/// There are as many as there are calls at work: a queue of Dispatch would stop at its limit of threads, and sixty-four calls
/// that wait for absent phones would hold up every other one. A thread without work waits a while for more, then ends.
final class BlockingThreads: @unchecked Sendable {
  static let shared = BlockingThreads()

  private let condition = NSCondition()
  private var jobs: [@Sendable () -> Void] = []
  private var idle = 0
  private let patience: TimeInterval = 2

  /// Runs the job on a thread of its own.
  func run(_ job: @escaping @Sendable () -> Void) {
    condition.lock()
    defer { condition.unlock() }
    jobs.append(job)
    if jobs.count <= idle {
      condition.signal()
    } else {
      start()
    }
  }

  private func start() {
    let thread = Thread { [self] in work() }
    thread.name = "darokleim"
    thread.start()
  }

  private func work() {
    while let job = next() { autoreleasing(job) }
  }

  private func next() -> (@Sendable () -> Void)? {
    condition.lock()
    defer { condition.unlock() }
    let end = Date(timeIntervalSinceNow: patience)
    idle += 1
    defer { idle -= 1 }
    while jobs.isEmpty {
      if !condition.wait(until: end) && jobs.isEmpty { return nil }
    }
    return jobs.removeFirst()
  }

  private func autoreleasing(_ job: () -> Void) {
    #if canImport(ObjectiveC)
      autoreleasepool { job() }
    #else
      job()
    #endif
  }
}
