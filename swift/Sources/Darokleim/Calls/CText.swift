import Foundation
import darokleim_client

extension DevicePath {
  init(cString: UnsafePointer<CChar>) {
    self.init(bytes: UnsafeRawBufferPointer(start: cString, count: strlen(cString)))
  }
}

/// Bytes as C wants them. A zero byte would end them early, and name another file.
func withCText<Value>(_ bytes: [UInt8], _ body: (UnsafePointer<CChar>) throws -> Value) throws -> Value {
  guard !bytes.contains(0) else {
    throw DarokleimError.invalidArgument("A text for the phone cannot have a zero byte: \(String(decoding: bytes, as: UTF8.self))")
  }
  return try (bytes + [0]).withUnsafeBufferPointer { buffer in
    try buffer.withMemoryRebound(to: CChar.self) { try body($0.baseAddress!) }
  }
}

func withCText<Value>(_ path: DevicePath, _ body: (UnsafePointer<CChar>) throws -> Value) throws -> Value {
  try withCText(path.bytes, body)
}

func withCText<Value>(_ text: String, _ body: (UnsafePointer<CChar>) throws -> Value) throws -> Value {
  try withCText(Array(text.utf8), body)
}

/// Null for `nil`.
func withOptionalCText<Value>(_ text: String?, _ body: (UnsafePointer<CChar>?) throws -> Value) throws -> Value {
  guard let text else { return try body(nil) }
  return try withCText(text) { try body($0) }
}

/// The path of a file of this computer.
func withCText<Value>(_ file: URL, _ body: (UnsafePointer<CChar>) throws -> Value) throws -> Value {
  guard file.isFileURL else { throw DarokleimError.invalidArgument("Not the URL of a file: \(file)") }
  return try file.withUnsafeFileSystemRepresentation { path in
    guard let path else { throw DarokleimError.invalidArgument("Not the URL of a file: \(file)") }
    return try body(path)
  }
}

/// An array of texts, valid while the body runs.
func withCTexts<Value>(
  _ texts: [[UInt8]], _ body: (UnsafePointer<UnsafePointer<CChar>?>, Int) throws -> Value
) throws -> Value {
  var pointers: [UnsafePointer<CChar>?] = []
  defer { pointers.forEach { free(UnsafeMutablePointer(mutating: $0)) } }
  for text in texts {
    pointers.append(try withCText(text) { UnsafePointer(strdup($0)) })
  }
  return try pointers.withUnsafeBufferPointer { buffer in
    var none: UnsafePointer<CChar>?
    return try withUnsafePointer(to: &none) { try body(buffer.baseAddress ?? $0, texts.count) }
  }
}

extension Data {
  /// Takes over a block that the library allocated.
  init(taking bytes: inout dk_bytes) {
    defer { dk_bytes_free(&bytes) }
    self = bytes.data.map { Data(bytes: $0, count: bytes.size) } ?? Data()
  }
}
