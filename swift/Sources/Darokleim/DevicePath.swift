import Foundation

/// The path of a file on a phone: bytes, in no promised encoding.
///
/// Most names are UTF-8, and a path is written as a string literal. A name that is not UTF-8 keeps its bytes: what a
/// listing gave can be given back to any call.
///
/// ```swift
/// let camera: DevicePath = "/sdcard/DCIM/Camera"
/// let photo = camera / "IMG_0001.jpg"
/// ```
///
/// Calls take absolute paths only, and no shell of the phone reads them: spaces, quotes and `$` need no care.
public struct DevicePath: Sendable, Hashable {
  /// The bytes, without a zero byte at the end.
  public let bytes: [UInt8]

  /// The path in UTF-8.
  public init(_ text: some StringProtocol) { bytes = Array(text.utf8) }

  /// The path as the phone spells it.
  public init(bytes: some Sequence<UInt8>) { self.bytes = Array(bytes) }

  /// The path as text, or `nil` when its bytes are not UTF-8.
  public var text: String? {
    String(bytes: bytes, encoding: .utf8)
  }

  /// The part after the last slash; of `/`, the path itself.
  public var lastComponent: DevicePath {
    let parts = bytes.split(separator: UInt8(ascii: "/"))
    return parts.last.map { DevicePath(bytes: $0) } ?? self
  }

  /// The folder that it is in; of `/`, the path itself.
  public var parent: DevicePath {
    let slash = UInt8(ascii: "/")
    guard let end = bytes.lastIndex(where: { $0 != slash }) else { return self }
    guard let cut = bytes[...end].lastIndex(of: slash) else { return "." }
    guard let last = bytes[..<cut].lastIndex(where: { $0 != slash }) else { return "/" }
    return DevicePath(bytes: bytes[...last])
  }

  /// The path of something in this folder.
  public func appending(_ name: DevicePath) -> DevicePath {
    let needsSlash = !bytes.isEmpty && bytes.last != UInt8(ascii: "/")
    return DevicePath(bytes: bytes + (needsSlash ? [UInt8(ascii: "/")] : []) + name.bytes)
  }

  public static func / (folder: DevicePath, name: DevicePath) -> DevicePath { folder.appending(name) }
}

extension DevicePath: ExpressibleByStringLiteral, ExpressibleByStringInterpolation {
  public init(stringLiteral value: String) { self.init(value) }
}

extension DevicePath: CustomStringConvertible {
  /// For people: bytes that are not UTF-8 are replaced.
  public var description: String { String(decoding: bytes, as: UTF8.self) }
}

extension DevicePath: Comparable {
  /// By bytes, as `LC_ALL=C ls` sorts.
  public static func < (left: DevicePath, right: DevicePath) -> Bool {
    left.bytes.lexicographicallyPrecedes(right.bytes)
  }
}

/// One word of a command for a phone: text, or a path with all its bytes.
public protocol CommandWord: Sendable {
  var bytes: [UInt8] { get }
}

extension DevicePath: CommandWord {}

extension String: CommandWord {
  public var bytes: [UInt8] { Array(utf8) }
}
