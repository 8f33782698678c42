import Foundation
import darokleim_client

/// Ends calls from another thread.
final class CancelToken: @unchecked Sendable {
  let raw: OpaquePointer

  init() throws {
    var token: OpaquePointer?
    let code = dk_cancel_new(&token)
    guard let token else { throw DarokleimError(code, nil) }
    raw = token
  }

  deinit { dk_cancel_free(raw) }

  func set() { dk_cancel_set(raw) }
  var isSet: Bool { dk_cancel_is_set(raw) }
}

/// One call of the library, on the thread that makes it: its limits, and the error that it leaves.
final class Call {
  /// The last argument of every function of the library.
  let options: UnsafeMutablePointer<dk_call>
  /// Of single files of a call that goes on.
  var failures: [DarokleimError] = []
  private let error: UnsafeMutablePointer<OpaquePointer?>

  init(_ token: CancelToken?, _ timeout: Timeout?) {
    error = .allocate(capacity: 1)
    error.initialize(to: nil)
    options = .allocate(capacity: 1)
    options.initialize(
      to: dk_call(
        size: MemoryLayout<dk_call>.size, cancel: token?.raw, timeout_ms: timeout?.milliseconds ?? 0, error: error))
  }

  deinit {
    dk_error_free(error.pointee)
    error.deallocate()
    options.deallocate()
  }

  /// Throws unless the call succeeded.
  func check(_ code: dk_code) throws {
    switch code {
    case DK_OK: return
    case DK_CANCELLED, DK_STOPPED: throw CancellationError()
    default: throw DarokleimError(code, error.pointee, failures: failures)
    }
  }
}

/// Makes a call on a thread of the package's own. A task that is cancelled cancels the call.
///
/// - Parameter token: of the call; given where something else than the task may cancel it, too.
func blocking<Value: Sendable>(
  timeout: Timeout? = nil, token given: CancelToken? = nil, _ body: @escaping @Sendable (Call) throws -> Value
) async throws -> Value {
  let token = try given ?? CancelToken()
  return try await withTaskCancellationHandler {
    try await withCheckedThrowingContinuation { continuation in
      BlockingThreads.shared.run {
        continuation.resume(with: Result { try body(Call(token, timeout)) })
      }
    }
  } onCancel: {
    token.set()
  }
}

/// What a callback of C is given to find its way back into Swift.
final class Receiver<Value> {
  private let body: (Value) -> Bool

  init(_ body: @escaping (Value) -> Bool) { self.body = body }

  /// Valid while the receiver is: keep it alive with `withExtendedLifetime`.
  var pointer: UnsafeMutableRawPointer { Unmanaged.passUnretained(self).toOpaque() }

  static func call(_ user: UnsafeMutableRawPointer?, _ value: Value) -> Bool {
    guard let user else { return false }
    return Unmanaged<Receiver<Value>>.fromOpaque(user).takeUnretainedValue().body(value)
  }
}

/// Collects what a callback is given.
func collect<Value>(_ call: (UnsafeMutableRawPointer) throws -> Void) rethrows -> [Value] {
  var values: [Value] = []
  let receiver = Receiver<Value> {
    values.append($0)
    return true
  }
  try withExtendedLifetime(receiver) { try call(receiver.pointer) }
  return values
}
