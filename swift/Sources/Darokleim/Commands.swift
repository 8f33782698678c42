import Foundation
import darokleim_client

/// What a command of a phone printed, and how it ended.
public struct CommandOutput: Sendable, Hashable {
  public var standardOutput: Data
  /// Empty on phones before Android 7, which mix both streams.
  public var standardError: Data
  /// More came than was kept.
  public var isCut: Bool
  /// 128 and more: ended by a signal, as the phone's shell counts.
  public var exitStatus: Int

  /// The standard output as text; bytes that are not UTF-8 are replaced.
  public var text: String { String(decoding: standardOutput, as: UTF8.self) }
}

/// A piece of what a command prints.
public enum CommandPiece: Sendable, Hashable {
  case output(Data)
  /// Not from phones before Android 7, which mix both streams.
  case error(Data)
  /// Last, once.
  case end(exitStatus: Int)
}

extension Device {
  /// Runs a program of the phone. No argument is read by a shell.
  ///
  /// ```swift
  /// let output = try await phone.run(["wc", "-c", file.path])
  /// ```
  ///
  /// It succeeds when the command ran, whatever its exit status.
  ///
  /// - Parameters:
  ///   - input: for its standard input. Not to phones before Android 7.
  ///   - limit: how many bytes of each stream are kept.
  public func run(
    _ arguments: [any CommandWord], input: Data = Data(), limit: Int = 1 << 20, timeout: Timeout? = nil
  ) async throws -> CommandOutput {
    let words = arguments.map(\.bytes)
    return try await collectOutput(input, limit, timeout) { device, options, output, call in
      try withCTexts(words) { dk_run(device, $0, $1, options, output, call.options) }
    }
  }

  /// Runs a script, which the phone's shell reads. Quote what comes from elsewhere with ``quoted(_:)``.
  public func run(script: String, input: Data = Data(), limit: Int = 1 << 20, timeout: Timeout? = nil) async throws
    -> CommandOutput
  {
    try await collectOutput(input, limit, timeout) { device, options, output, call in
      try withCText(script) { dk_run_script(device, $0, options, output, call.options) }
    }
  }

  /// What a script prints, as it comes. Leaving the loop ends the script.
  public func output(ofScript script: String, input: Data = Data(), timeout: Timeout? = nil) -> DeviceStream<CommandPiece> {
    DeviceStream(capacity: 16) { [self] sink in
      let receiver = Receiver<CommandPiece> { sink.send($0) }
      let call = Call(sink.token, timeout)
      try withExtendedLifetime(receiver) {
        try withRunOptions(input, limit: 0) { options in
          options.user = receiver.pointer
          options.on_output = { user, stream, data, size in
            let piece = data.map { Data(bytes: $0, count: size) } ?? Data()
            return Receiver<CommandPiece>.call(user, stream == DK_STDERR ? .error(piece) : .output(piece))
          }
          var output = dk_output()
          defer { dk_output_free(&output) }
          try call.check(try withCText(script) { dk_run_script(raw, $0, &options, &output, call.options) })
          _ = sink.send(.end(exitStatus: Int(output.exit_status)))
        }
      }
    }
  }

  /// A text or a path as one word for the phone's shell.
  public static func quoted(_ word: any CommandWord) throws -> String {
    var quoted = dk_bytes()
    try withCText(word.bytes) { try Call(nil, nil).check(dk_quote($0, &quoted)) }
    return String(decoding: Data(taking: &quoted), as: UTF8.self)
  }

  private func collectOutput(
    _ input: Data, _ limit: Int, _ timeout: Timeout?,
    _ run: @escaping @Sendable (
      OpaquePointer, UnsafePointer<dk_run_options>, UnsafeMutablePointer<dk_output>, Call
    ) throws -> dk_code
  ) async throws -> CommandOutput {
    try await blocking(timeout: timeout) { [self] call in
      try withRunOptions(input, limit: limit) { options in
        var output = dk_output()
        defer { dk_output_free(&output) }
        try call.check(try run(raw, &options, &output, call))
        return CommandOutput(
          standardOutput: Data(taking: &output.out), standardError: Data(taking: &output.err), isCut: output.cut,
          exitStatus: Int(output.exit_status))
      }
    }
  }
}

private func withRunOptions<Value>(_ input: Data, limit: Int, _ body: (inout dk_run_options) throws -> Value) throws -> Value {
  try input.withUnsafeBytes { bytes in
    var options = dk_run_options()
    options.size = MemoryLayout<dk_run_options>.size
    options.input = bytes.isEmpty ? nil : bytes.bindMemory(to: CChar.self).baseAddress
    options.input_size = bytes.count
    options.most_collected = max(0, limit)
    return try body(&options)
  }
}
