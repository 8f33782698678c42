import Foundation

/// What this process holds of the system.
enum HostResources {
  static func descriptors() -> Int { entries("/proc/self/fd") }
  static func threads() -> Int { entries("/proc/self/task") }

  /// Waits until a count is at most so much; the count at the end.
  static func settle(_ count: @Sendable () -> Int, at most: Int, seconds: Double = 15) async throws -> Int {
    let end = Date(timeIntervalSinceNow: seconds)
    while count() > most && Date() < end { try await Task.sleep(nanoseconds: 50_000_000) }
    return count()
  }

  /// Waits until a count is at least so much; the count at the end.
  static func grow(_ count: @Sendable () -> Int, to least: Int, seconds: Double = 15) async throws -> Int {
    let end = Date(timeIntervalSinceNow: seconds)
    while count() < least && Date() < end { try await Task.sleep(nanoseconds: 5_000_000) }
    return count()
  }

  private static func entries(_ folder: String) -> Int {
    (try? FileManager.default.contentsOfDirectory(atPath: folder).count) ?? -1
  }
}

/// A value that several tasks write to.
final class Shared<Value: Sendable>: @unchecked Sendable {
  private let lock = NSLock()
  private var held: Value

  init(_ value: Value) { held = value }

  var value: Value { change { $0 } }

  @discardableResult
  func change<Result>(_ body: (inout Value) -> Result) -> Result {
    lock.lock()
    defer { lock.unlock() }
    return body(&held)
  }
}
