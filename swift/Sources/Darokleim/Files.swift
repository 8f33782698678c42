import Foundation
import darokleim_client

/// A file, a folder or a link on a phone, as it was when the phone was asked.
public struct File: Sendable, Hashable {
  public enum Kind: Sendable, Hashable, CaseIterable {
    case unknown, file, folder, link, special
  }

  /// Absolute. Give it back to any call: it keeps every byte.
  public var path: DevicePath
  public var kind: Kind
  /// Permissions and type as Linux has them.
  public var mode: UInt32
  /// Bytes; of a link, of its text. `nil` for a file of 4 GiB or more in a folder of a phone before Android 8:
  /// ``Device/file(at:followingLinks:timeout:)`` knows it.
  public var size: UInt64?
  public var modified: Date
  /// Where a link leads; only from ``Device/file(at:followingLinks:timeout:)`` without following.
  public var linkTarget: DevicePath?
  /// Phones since Android 8 say it.
  public var owner: Owner?

  public struct Owner: Sendable, Hashable {
    public var user: UInt32
    public var group: UInt32
    public var device: UInt64
    public var inode: UInt64
  }

  /// The last part of the path, for people.
  public var name: String { path.lastComponent.description }
  public var isFolder: Bool { kind == .folder }
}

/// What a walk through folders hands out. Everything, unless narrowed.
public struct FileFilter: Sendable, Hashable {
  /// 1: the folder alone; `nil`: no limit.
  public var maximumDepth: Int?
  public var kinds: Set<File.Kind>?
  /// Of files, without the dot and without regard to ASCII case: `["jpg", "heic"]`.
  public var suffixes: [String]
  /// Bytes, of files.
  public var sizes: ClosedRange<UInt64>?
  public var modifiedAfter: Date?

  public init(
    suffixes: [String] = [], kinds: Set<File.Kind>? = nil, sizes: ClosedRange<UInt64>? = nil, modifiedAfter: Date? = nil,
    maximumDepth: Int? = nil
  ) {
    self.suffixes = suffixes
    self.kinds = kinds
    self.sizes = sizes
    self.modifiedAfter = modifiedAfter
    self.maximumDepth = maximumDepth
  }
}

// MARK: Looking

extension Device {
  /// What is at a path; ``DarokleimError/notFound(_:)`` when nothing is.
  public func file(at path: DevicePath, followingLinks: Bool = true, timeout: Timeout? = nil) async throws -> File {
    try await blocking(timeout: timeout) { [self] call in
      var entry: UnsafeMutablePointer<dk_entry>?
      defer { dk_entry_free(entry) }
      try withCText(path) {
        try call.check(dk_stat(raw, $0, followingLinks ? DK_FOLLOW : DK_NO_FOLLOW, &entry, call.options))
      }
      return File(entry!.pointee)
    }
  }

  /// Whether there is anything at a path. A link to nowhere is not.
  public func exists(_ path: DevicePath, timeout: Timeout? = nil) async throws -> Bool {
    do {
      _ = try await file(at: path, timeout: timeout)
      return true
    } catch DarokleimError.notFound {
      return false
    }
  }

  /// The entries of one folder, in the phone's order, while they arrive.
  public func files(in folder: DevicePath, timeout: Timeout? = nil) -> DeviceStream<File> {
    DeviceStream { [self] sink in
      let receiver = Receiver<File> { sink.send($0) }
      let call = Call(sink.token, timeout)
      try withExtendedLifetime(receiver) {
        try withCText(folder) {
          try call.check(
            dk_list(raw, $0, { Receiver<File>.call($0, File($1!.pointee)) }, receiver.pointer, call.options))
        }
      }
    }
  }

  /// Everything below a folder that passes the filter, folder after folder, a folder before what is in it. Links are reported
  /// and not followed.
  ///
  /// A folder that cannot be read does not end the walk; at its end it throws ``DarokleimError/partlyDone(_:_:)`` with an error
  /// for each.
  public func walk(_ folder: DevicePath, matching filter: FileFilter = FileFilter(), timeout: Timeout? = nil)
    -> DeviceStream<File>
  {
    DeviceStream { [self] sink in
      let call = Call(sink.token, timeout)
      let receiver = WalkReceiver(sink, call, filter)
      try withExtendedLifetime(receiver) {
        try filter.withOptions { options in
          options.on_error = { user, error in WalkReceiver.at(user).fail(error) }
          try withCText(folder) {
            let code = dk_walk(
              raw, $0, &options, { user, entry in WalkReceiver.at(user).take(File(entry!.pointee)) },
              receiver.pointer, call.options)
            try call.check(code)
          }
        }
      }
    }
  }
}

// MARK: Reading and writing

extension Device {
  /// The content of a file, or a part of it.
  ///
  /// - Parameters:
  ///   - offset: needs the phone's shell when it is not 0.
  ///   - length: how many bytes at most; `nil`: all there is. The beginning of a file costs no more than itself: read a
  ///     thumbnail from the first 64 KiB of a photo.
  public func read(_ path: DevicePath, from offset: UInt64 = 0, length: UInt64? = nil, timeout: Timeout? = nil)
    async throws -> Data
  {
    if length == 0 { return Data() }
    return try await blocking(timeout: timeout) { [self] call in
      var content = Data()
      let receiver = Receiver<UnsafeBufferPointer<CChar>> {
        content.append($0)
        return true
      }
      try withExtendedLifetime(receiver) {
        try withCText(path) {
          let code = dk_read(
            raw, $0, offset, length ?? 0,
            { Receiver<UnsafeBufferPointer<CChar>>.call($0, UnsafeBufferPointer(start: $1, count: $2)) },
            receiver.pointer, call.options)
          try call.check(code)
        }
      }
      return content
    }
  }

  /// The content of a file, piece by piece as it arrives.
  public func contents(of path: DevicePath, from offset: UInt64 = 0, timeout: Timeout? = nil) -> DeviceStream<Data> {
    DeviceStream(capacity: 16) { [self] sink in
      let receiver = Receiver<Data> { sink.send($0) }
      let call = Call(sink.token, timeout)
      try withExtendedLifetime(receiver) {
        try withCText(path) {
          let code = dk_read(
            raw, $0, offset, 0,
            { user, bytes, count in Receiver<Data>.call(user, bytes.map { Data(bytes: $0, count: count) } ?? Data()) },
            receiver.pointer, call.options)
          try call.check(code)
        }
      }
    }
  }

  /// Writes a file. It gets its name when it is whole, so that no failure harms an older one.
  ///
  /// - Parameters:
  ///   - mode: permissions, for example `0o644`.
  ///   - replace: otherwise an existing file throws ``DarokleimError/exists(_:)``.
  public func write(
    _ content: Data, to path: DevicePath, mode: UInt32 = 0o644, modified: Date? = nil, replace: Bool = false,
    timeout: Timeout? = nil
  ) async throws {
    try await order(timeout) { device, call in
      let reader = DataReader(content)
      return try withExtendedLifetime(reader) {
        try withCText(path) {
          dk_write(
            device, $0, mode, modified.map { Int64($0.timeIntervalSince1970) } ?? 0, replace,
            { DataReader.at($0).read(into: $1, $2) }, reader.pointer, call.options)
        }
      }
    }
  }
}

// MARK: Changing

extension Device {
  /// - Parameter parents: makes missing parents as well; an existing folder is not an error then.
  public func makeFolder(_ path: DevicePath, parents: Bool = false, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in
      try withCText(path) { dk_make_folder(device, $0, parents, call.options) }
    }
  }

  /// Removes a file, a link (not what it leads to) or an empty folder.
  ///
  /// - Parameter recursive: a folder with all in it. What cannot be removed is left, the rest is removed.
  public func remove(_ path: DevicePath, recursive: Bool = false, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in try withCText(path) { dk_remove(device, $0, recursive, call.options) } }
  }

  /// Renames, or moves to another folder. The target is the new path, never a folder to move into.
  public func move(_ path: DevicePath, to target: DevicePath, replace: Bool = false, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in
      try withCText(path) { path in try withCText(target) { dk_move(device, path, $0, replace, call.options) } }
    }
  }

  /// Copies a file, or a folder with all in it, on the phone. What was copied before a failure is removed.
  public func copy(_ path: DevicePath, to target: DevicePath, replace: Bool = false, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in
      try withCText(path) { path in try withCText(target) { dk_copy(device, path, $0, replace, call.options) } }
    }
  }

  /// Sets the permissions, for example `0o644`. Storage volumes of phones ignore it without a word.
  public func setPermissions(_ mode: UInt32, of path: DevicePath, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in try withCText(path) { dk_chmod(device, $0, mode, call.options) } }
  }
}

// MARK: -

extension File {
  init(_ entry: dk_entry) {
    path = DevicePath(cString: entry.path)
    kind = Kind(entry.type)
    mode = entry.mode
    size = entry.size_known ? entry.size : nil
    modified = Date(timeIntervalSince1970: TimeInterval(entry.mtime))
    linkTarget = entry.link_target.map { DevicePath(cString: $0) }
    owner =
      entry.has_owner
      ? Owner(user: entry.uid, group: entry.gid, device: entry.device, inode: entry.inode) : nil
  }
}

extension File.Kind {
  private static let pairs: [(File.Kind, dk_type)] = [
    (.unknown, DK_UNKNOWN_TYPE), (.file, DK_FILE), (.folder, DK_DIRECTORY), (.link, DK_LINK), (.special, DK_SPECIAL),
  ]

  init(_ type: dk_type) { self = Self.pairs.first { $0.1 == type }?.0 ?? .unknown }

  var bit: UInt32 { 1 << Self.pairs.first { $0.0 == self }!.1.rawValue }
}

extension FileFilter {
  func withOptions<Value>(_ body: (inout dk_walk_options) throws -> Value) throws -> Value {
    var options = dk_walk_options()
    options.size = MemoryLayout<dk_walk_options>.size
    options.max_depth = UInt32(clamping: maximumDepth ?? 0)
    options.types = kinds.map { $0.reduce(0) { $0 | $1.bit } } ?? 0
    options.min_size = sizes?.lowerBound ?? 0
    options.max_size = sizes?.upperBound ?? 0
    // Seconds on the phone: what changed within the second is handed out as well.
    options.newer_than = modifiedAfter.map { Int64($0.timeIntervalSince1970.rounded(.down)) } ?? 0
    return try withCTexts(suffixes.map { Array($0.utf8) }) { texts, count in
      options.suffixes = count == 0 ? nil : texts
      options.suffix_count = count
      return try body(&options)
    }
  }
}

/// Both callbacks of a walk.
private final class WalkReceiver {
  private let sink: StreamSink<File>
  private let call: Call
  private let onlyEmpty: Bool

  init(_ sink: StreamSink<File>, _ call: Call, _ filter: FileFilter) {
    self.sink = sink
    self.call = call
    onlyEmpty = filter.sizes?.upperBound == 0
  }

  var pointer: UnsafeMutableRawPointer { Unmanaged.passUnretained(self).toOpaque() }

  static func at(_ user: UnsafeMutableRawPointer?) -> WalkReceiver {
    Unmanaged<WalkReceiver>.fromOpaque(user!).takeUnretainedValue()
  }

  /// C takes a largest size of 0 for none.
  func take(_ file: File) -> Bool {
    if onlyEmpty && file.kind == .file && file.size != 0 { return true }
    return sink.send(file)
  }

  func fail(_ error: OpaquePointer?) -> Bool {
    call.failures.append(DarokleimError(dk_error_code(error), error))
    return true
  }
}
