import Foundation

/// A folder of this computer that goes with the object.
final class TemporaryFolder {
  let url = FileManager.default.temporaryDirectory.appendingPathComponent(UUID().uuidString, isDirectory: true)

  init() throws { try FileManager.default.createDirectory(at: url, withIntermediateDirectories: true) }
  deinit { try? FileManager.default.removeItem(at: url) }

  func file(_ name: String) -> URL { url.appendingPathComponent(name) }

  @discardableResult
  func write(_ name: String, _ content: Data) throws -> URL {
    let url = file(name)
    try FileManager.default.createDirectory(at: url.deletingLastPathComponent(), withIntermediateDirectories: true)
    try content.write(to: url)
    return url
  }

  @discardableResult
  func write(_ name: String, _ content: String) throws -> URL { try write(name, Data(content.utf8)) }

  func read(_ name: String) throws -> String { String(decoding: try Data(contentsOf: file(name)), as: UTF8.self) }

  /// The names of everything below, as transfers must not leave any temporary ones.
  func names() -> [String] { FileManager.default.subpaths(atPath: url.path) ?? [] }
}
