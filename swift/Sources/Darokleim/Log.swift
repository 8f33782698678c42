import Foundation
import darokleim_client

/// A record of a phone's log.
public struct LogRecord: Sendable, Hashable {
  public enum Level: Character, Sendable, Hashable, Comparable {
    case verbose = "V"
    case debug = "D"
    case info = "I"
    case warning = "W"
    case error = "E"
    case fatal = "F"

    public static func < (left: Level, right: Level) -> Bool { left.rank < right.rank }

    private var rank: Int { Array("VDIWEF").firstIndex(of: rawValue) ?? 0 }
  }

  public var time: Date
  public var level: Level
  public var process: UInt32
  public var thread: UInt32
  public var tag: String
  /// May have several lines.
  public var text: String
}

/// Which records of a log are wanted.
public struct LogOptions: Sendable, Hashable {
  /// As logcat takes them: `ActivityManager:I`, `*:S`. Empty: everything.
  public var filters: [String]
  /// `["main", "crash"]`; empty: the phone's choice.
  public var buffers: [String]
  /// Not what is in the buffer already.
  public var onlyNew: Bool
  /// Of what is in the buffer already, the last records alone; `nil`: all.
  public var lastOld: Int?
  /// What is in the buffer, then the end.
  public var stopsAtEnd: Bool

  public init(
    filters: [String] = [], buffers: [String] = [], onlyNew: Bool = false, lastOld: Int? = nil, stopsAtEnd: Bool = false
  ) {
    self.filters = filters
    self.buffers = buffers
    self.onlyNew = onlyNew
    self.lastOld = lastOld
    self.stopsAtEnd = stopsAtEnd
  }
}

extension Device {
  /// The phone's log, record by record.
  ///
  /// ```swift
  /// for try await record in phone.log(.init(filters: ["*:W"])) where record.level >= .error {
  ///   print(record.time, record.tag, record.text)
  /// }
  /// ```
  ///
  /// Without ``LogOptions/stopsAtEnd`` it goes on until the loop is left or the phone is gone. Phones before Android 5
  /// throw ``DarokleimError/unsupported(_:)``.
  public func log(_ options: LogOptions = LogOptions()) -> DeviceStream<LogRecord> {
    DeviceStream { [self] sink in
      let receiver = LogReceiver(sink)
      try withExtendedLifetime(receiver) {
        let call = Call(sink.token, nil)
        var log: OpaquePointer?
        try options.withPlain { plain in
          let code = dk_log_start(
            raw, &plain, { user, record in LogReceiver.at(user).take(record) },
            { user, code, error in LogReceiver.at(user).end(code, error) }, receiver.pointer, &log, call.options)
          try call.check(code)
        }
        sink.waitForEnd()
        dk_log_stop(log)
      }
    }
  }

  public func clearLog(timeout: Timeout? = nil) async throws {
    try await order(timeout) { dk_log_clear($0, $1.options) }
  }
}

// MARK: -

/// Both callbacks of a log.
private final class LogReceiver {
  private let sink: StreamSink<LogRecord>

  init(_ sink: StreamSink<LogRecord>) { self.sink = sink }

  var pointer: UnsafeMutableRawPointer { Unmanaged.passUnretained(self).toOpaque() }

  static func at(_ user: UnsafeMutableRawPointer?) -> LogReceiver {
    Unmanaged<LogReceiver>.fromOpaque(user!).takeUnretainedValue()
  }

  func take(_ record: UnsafePointer<dk_log_record>?) {
    if let record { _ = sink.send(LogRecord(record.pointee)) }
  }

  func end(_ code: dk_code, _ error: OpaquePointer?) {
    sink.finish(with: code == DK_OK ? .success(()) : .failure(DarokleimError(code, error)))
  }
}

extension LogRecord {
  init(_ record: dk_log_record) {
    time = Date(timeIntervalSince1970: TimeInterval(record.seconds) + TimeInterval(record.nanoseconds) / 1e9)
    level = Level(rawValue: Character(UnicodeScalar(UInt8(bitPattern: record.level)))) ?? .verbose
    process = record.process
    thread = record.thread
    tag = String(cString: record.tag)
    text = String(cString: record.text)
  }
}

extension LogOptions {
  fileprivate func withPlain(_ body: (inout dk_log_options) throws -> Void) throws {
    try withCTexts(filters.map { Array($0.utf8) }) { filters, count in
      try withOptionalCText(buffers.isEmpty ? nil : buffers.joined(separator: ",")) { buffers in
        var options = dk_log_options()
        options.size = MemoryLayout<dk_log_options>.size
        options.filters = count == 0 ? nil : filters
        options.filter_count = count
        options.buffers = buffers
        options.only_new = onlyNew
        options.most_old = max(0, lastOld ?? 0)
        options.stop_at_end = stopsAtEnd
        try body(&options)
      }
    }
  }
}
