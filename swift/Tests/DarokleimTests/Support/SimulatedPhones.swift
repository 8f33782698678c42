import Darokleim
import Foundation
import Testing

/// A server with simulated phones on a port of its own. It ends when the object is freed.
final class SimulatedPhones: Sendable {
  /// Android 13, and Android 6: one stream, no exit status.
  enum Generation: String, CaseIterable, Sendable, CustomTestStringConvertible {
    case modern, legacy
    var testDescription: String { rawValue }
  }

  static let serial = "R58M123ABC"

  let port: Int
  private let process: Process

  /// - Parameter phones: as after `--phone`.
  init(_ phones: [String]) throws {
    process = Process()
    process.executableURL = try Self.program()
    process.arguments = ["--port", "0", "--quick"] + phones.flatMap { ["--phone", $0] }
    let output = Pipe()
    process.standardOutput = output
    try process.run()
    let line = Self.readLine(output.fileHandleForReading)
    guard let port = line.components(separatedBy: "ready on port ").last.flatMap({ Int($0) }) else {
      throw NotStarted(said: line)
    }
    self.port = port
  }

  convenience init(_ generation: Generation = .modern) throws {
    try self.init(["\(Self.serial),android=\(generation.rawValue)"])
  }

  deinit { stop() }

  func stop() {
    guard process.isRunning else { return }
    process.terminate()
    process.waitUntilExit()
  }

  func client() throws -> Client { try Client(server: .port(port)) }
  func phone() throws -> Device { try client().device(Self.serial) }

  /// `darokleim-phone ctl` with these words.
  @discardableResult
  func control(_ words: String...) throws -> String {
    let control = Process()
    control.executableURL = try Self.program()
    control.arguments = ["ctl", "--port", "\(port)"] + words
    let output = Pipe()
    control.standardOutput = output
    try control.run()
    let text = String(decoding: output.fileHandleForReading.readDataToEndOfFile(), as: UTF8.self)
    control.waitUntilExit()
    return text
  }

  private struct NotStarted: Error { let said: String }
  private struct NoProgram: Error, CustomStringConvertible {
    let description = "DAROKLEIM_PHONE must name the program darokleim-phone (scripts/check swift sets it)"
  }

  private static func program() throws -> URL {
    guard let path = ProcessInfo.processInfo.environment["DAROKLEIM_PHONE"] else { throw NoProgram() }
    return URL(fileURLWithPath: path)
  }

  private static func readLine(_ file: FileHandle) -> String {
    var line = Data()
    while let byte = try? file.read(upToCount: 1), byte.first != UInt8(ascii: "\n"), !byte.isEmpty { line += byte }
    return String(decoding: line, as: UTF8.self)
  }
}

extension Device {
  /// What a script prints.
  @discardableResult
  func shell(_ script: String) async throws -> String { try await run(script: script).text }
}
