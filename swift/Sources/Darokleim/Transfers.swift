import Foundation
import darokleim_client

/// A file or folder to fetch from a phone.
public struct Download: Sendable, Hashable {
  public var source: DevicePath
  /// The file or folder that it becomes, not a folder to put it in. Missing parents are made.
  public var target: URL

  public init(_ source: DevicePath, to target: URL) {
    self.source = source
    self.target = target
  }
}

/// A file or folder to send to a phone.
public struct Upload: Sendable, Hashable {
  public var source: URL
  /// The file or folder that it becomes, not a folder to put it in. Missing parents are made.
  public var target: DevicePath

  public init(_ source: URL, to target: DevicePath) {
    self.source = source
    self.target = target
  }
}

/// How files are transferred.
public struct TransferOptions: Sendable, Hashable {
  /// What to do with a file that is at the target already.
  public enum Existing: Sendable, Hashable {
    /// Throw ``DarokleimError/exists(_:)``.
    case fail
    case replace
    /// Skip what has the same size and modification time (in seconds), replace the rest.
    case skipSame
    case skip
  }

  public var existing: Existing
  /// After a file's error, go on with the others. The call then throws ``DarokleimError/partlyDone(_:_:)`` at the end.
  public var keepGoing: Bool
  /// ``Existing/skipSame`` depends on it.
  public var keepTimes: Bool
  /// Permissions, where the target can have them.
  public var keepModes: Bool

  public init(
    existing: Existing = .fail, keepGoing: Bool = false, keepTimes: Bool = true, keepModes: Bool = false
  ) {
    self.existing = existing
    self.keepGoing = keepGoing
    self.keepTimes = keepTimes
    self.keepModes = keepModes
  }
}

/// What a transfer did.
public struct TransferSummary: Sendable, Hashable {
  public var filesTransferred: UInt64
  public var filesSkipped: UInt64
  public var filesFailed: UInt64
  /// Really transferred, parts of failed files included.
  public var bytesTransferred: UInt64
}

extension Device {
  /// Fetches a file or a folder from the phone.
  ///
  /// ```swift
  /// let progress = Progress(totalUnitCount: 0)  // show it; cancel it
  /// let done = try await phone.pull("/sdcard/DCIM", to: pictures, .init(existing: .skipSame), progress: progress)
  /// print(done.filesTransferred, "new,", done.filesSkipped, "known")
  /// ```
  ///
  /// Each file gets its name when it is whole, so that no failure, cancel or unplugging harms an older file; files that are
  /// whole stay. Nothing from the phone is written outside the target.
  ///
  /// - Parameters:
  ///   - target: the file or folder that it becomes, not a folder to put it in. Missing parents are made.
  ///   - progress: counts bytes, and knows its total before the first. Cancelling it cancels the transfer.
  @discardableResult
  public func pull(
    _ source: DevicePath, to target: URL, _ options: TransferOptions = TransferOptions(), progress: Progress? = nil,
    timeout: Timeout? = nil
  ) async throws -> TransferSummary {
    try await pull([Download(source, to: target)], options, progress: progress, timeout: timeout)
  }

  /// Fetches many files and folders in one call, which is much faster than one call for each.
  @discardableResult
  public func pull(
    _ downloads: [Download], _ options: TransferOptions = TransferOptions(), progress: Progress? = nil,
    timeout: Timeout? = nil
  ) async throws -> TransferSummary {
    try await transfer(options, progress, timeout) { device, options, summary, call in
      let targets = try downloads.map { try $0.target.fileSystemBytes() }
      return try withItems(downloads.map(\.source.bytes), targets) {
        dk_pull(device, $0, $1, &options, &summary, call.options)
      }
    }
  }

  /// Sends a file or a folder to the phone. See ``pull(_:to:_:progress:timeout:)``.
  @discardableResult
  public func push(
    _ source: URL, to target: DevicePath, _ options: TransferOptions = TransferOptions(), progress: Progress? = nil,
    timeout: Timeout? = nil
  ) async throws -> TransferSummary {
    try await push([Upload(source, to: target)], options, progress: progress, timeout: timeout)
  }

  /// Sends many files and folders in one call, which is much faster than one call for each.
  @discardableResult
  public func push(
    _ uploads: [Upload], _ options: TransferOptions = TransferOptions(), progress: Progress? = nil,
    timeout: Timeout? = nil
  ) async throws -> TransferSummary {
    try await transfer(options, progress, timeout) { device, options, summary, call in
      let sources = try uploads.map { try $0.source.fileSystemBytes() }
      return try withItems(sources, uploads.map(\.target.bytes)) {
        dk_push(device, $0, $1, &options, &summary, call.options)
      }
    }
  }

  private func transfer(
    _ chosen: TransferOptions, _ progress: Progress?, _ timeout: Timeout?,
    _ run: @escaping @Sendable (OpaquePointer, inout dk_transfer_options, inout dk_summary, Call) throws -> dk_code
  ) async throws -> TransferSummary {
    let token = try CancelToken()
    let report = ProgressReport(progress, token)
    defer { report.end() }
    return try await blocking(timeout: timeout, token: token) { [self] call in
      let receiver = TransferReceiver(call, report)
      return try withExtendedLifetime(receiver) {
        var options = chosen.plain
        options.user = receiver.pointer
        options.on_progress = { user, progress in TransferReceiver.at(user).report.show(progress!.pointee) }
        options.on_error = { user, error in TransferReceiver.at(user).fail(error) }
        var summary = dk_summary()
        try call.check(try run(raw, &options, &summary, call))
        report.finish()
        return TransferSummary(summary)
      }
    }
  }
}

// MARK: -

extension TransferSummary {
  init(_ summary: dk_summary) {
    filesTransferred = summary.files_sent
    filesSkipped = summary.files_skipped
    filesFailed = summary.files_failed
    bytesTransferred = summary.bytes_sent
  }
}

extension TransferOptions {
  var plain: dk_transfer_options {
    var options = dk_transfer_options()
    options.size = MemoryLayout<dk_transfer_options>.size
    options.existing = existing.code
    options.keep_going = keepGoing
    options.keep_times = keepTimes
    options.keep_modes = keepModes
    return options
  }
}

extension TransferOptions.Existing {
  var code: dk_existing {
    switch self {
    case .fail: return DK_FAIL_IF_EXISTS
    case .replace: return DK_REPLACE
    case .skipSame: return DK_SKIP_SAME
    case .skip: return DK_SKIP_EXISTING
    }
  }
}

extension URL {
  func fileSystemBytes() throws -> [UInt8] {
    try withCText(self) { Array(UnsafeRawBufferPointer(start: $0, count: strlen($0))) }
  }
}

private func withItems(
  _ sources: [[UInt8]], _ targets: [[UInt8]], _ body: (UnsafePointer<dk_item>?, Int) -> dk_code
) throws -> dk_code {
  try withCTexts(sources) { sources, count in
    try withCTexts(targets) { targets, _ in
      let items = (0..<count).map { dk_item(source: sources[$0], target: targets[$0]) }
      return items.withUnsafeBufferPointer { body($0.baseAddress, count) }
    }
  }
}

/// Both callbacks of a transfer.
private final class TransferReceiver {
  let report: ProgressReport
  private let call: Call

  init(_ call: Call, _ report: ProgressReport) {
    self.call = call
    self.report = report
  }

  var pointer: UnsafeMutableRawPointer { Unmanaged.passUnretained(self).toOpaque() }

  static func at(_ user: UnsafeMutableRawPointer?) -> TransferReceiver {
    Unmanaged<TransferReceiver>.fromOpaque(user!).takeUnretainedValue()
  }

  func fail(_ error: OpaquePointer?) -> Bool {
    call.failures.append(DarokleimError(dk_error_code(error), error))
    return true
  }
}

/// Keeps the caller's `Progress` up to date, and ends the call when that is cancelled.
final class ProgressReport: @unchecked Sendable {
  private let progress: Progress?
  private let handlerBefore: (@Sendable () -> Void)?
  private var shown = DispatchTime(uptimeNanoseconds: 0)

  init(_ progress: Progress?, _ token: CancelToken) {
    self.progress = progress
    handlerBefore = progress?.cancellationHandler
    guard let progress else { return }
    progress.cancellationHandler = { [handlerBefore] in
      token.set()
      handlerBefore?()
    }
    if progress.isCancelled { token.set() }
  }

  /// Leaves the caller's own handler.
  func end() { progress?.cancellationHandler = handlerBefore }

  func show(_ now: dk_progress) -> Bool {
    show(bytes: now.bytes_done, of: now.bytes_total)
  }

  /// Each change is seen by whoever observes it, so that they are given at most a hundred in a second.
  func show(bytes done: UInt64, of total: UInt64) -> Bool {
    let time = DispatchTime.now()
    guard let progress, done == total || time.uptimeNanoseconds > shown.uptimeNanoseconds + 10_000_000 else { return true }
    shown = time
    if progress.totalUnitCount != Int64(clamping: total) { progress.totalUnitCount = Int64(clamping: total) }
    progress.completedUnitCount = Int64(clamping: done)
    return true
  }

  /// All is done, also where there was nothing to do.
  func finish() {
    guard let progress else { return }
    if progress.totalUnitCount <= 0 { progress.totalUnitCount = 1 }
    progress.completedUnitCount = progress.totalUnitCount
  }
}
