import darokleim_client

/// A port mapping between this computer and a phone.
///
/// Addresses are adb's: `tcp:8080`, `localabstract:NAME`, `localfilesystem:PATH`, `localreserved:NAME`, `jdwp:PID`.
public struct PortMapping: Sendable, Hashable {
  /// Of a reverse mapping: empty.
  public var serial: String
  /// Where is listened: this computer for a forward mapping, the phone for a reverse one.
  public var from: String
  public var to: String
}

extension Device {
  /// Listens on this computer and connects to the phone.
  ///
  /// - Parameters:
  ///   - from: `tcp:0` takes a free port.
  ///   - replace: otherwise an address that has a mapping throws ``DarokleimError/addressInUse(_:)``.
  /// - Returns: the port that is listened on, where it is one.
  @discardableResult
  public func forward(_ from: String, to target: String, replace: Bool = false, timeout: Timeout? = nil) async throws -> Int {
    try await add(dk_forward_add, from, target, replace, timeout)
  }

  public func removeForward(_ from: String, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in try withCText(from) { dk_forward_remove(device, $0, call.options) } }
  }

  /// All of this device.
  public func removeAllForwards(timeout: Timeout? = nil) async throws {
    try await order(timeout) { dk_forward_remove($0, nil, $1.options) }
  }

  public func forwards(timeout: Timeout? = nil) async throws -> [PortMapping] {
    try await list(dk_forward_list, timeout)
  }

  /// Listens on the phone and connects to this computer. Not on phones before Android 5.
  ///
  /// - Parameters:
  ///   - from: `tcp:0` takes a free port.
  ///   - replace: otherwise an address that has a mapping throws ``DarokleimError/addressInUse(_:)``.
  /// - Returns: the port that is listened on, where it is one.
  @discardableResult
  public func reverse(_ from: String, to target: String, replace: Bool = false, timeout: Timeout? = nil) async throws -> Int {
    try await add(dk_reverse_add, from, target, replace, timeout)
  }

  public func removeReverse(_ from: String, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in try withCText(from) { dk_reverse_remove(device, $0, call.options) } }
  }

  /// All of this device.
  public func removeAllReverses(timeout: Timeout? = nil) async throws {
    try await order(timeout) { dk_reverse_remove($0, nil, $1.options) }
  }

  public func reverses(timeout: Timeout? = nil) async throws -> [PortMapping] {
    try await list(dk_reverse_list, timeout)
  }

  private typealias Add = @Sendable (
    OpaquePointer?, UnsafePointer<CChar>?, UnsafePointer<CChar>?, Bool, UnsafeMutablePointer<Int32>?,
    UnsafePointer<dk_call>?
  ) -> dk_code
  private typealias List = @Sendable (
    OpaquePointer?, dk_on_mapping?, UnsafeMutableRawPointer?, UnsafePointer<dk_call>?
  ) -> dk_code

  private func add(
    _ function: @escaping Add, _ from: String, _ target: String, _ replace: Bool, _ timeout: Timeout?
  ) async throws -> Int {
    try await blocking(timeout: timeout) { [self] call in
      var port: Int32 = 0
      try withCText(from) { from in
        try withCText(target) { try call.check(function(raw, from, $0, replace, &port, call.options)) }
      }
      return Int(port)
    }
  }

  private func list(_ function: @escaping List, _ timeout: Timeout?) async throws -> [PortMapping] {
    try await blocking(timeout: timeout) { [self] call in
      try collect { mappings in
        let code = function(raw, { Receiver<PortMapping>.call($0, PortMapping($1!.pointee)) }, mappings, call.options)
        try call.check(code)
      }
    }
  }
}

extension PortMapping {
  init(_ mapping: dk_mapping) {
    serial = String(cString: mapping.serial)
    from = String(cString: mapping.from)
    to = String(cString: mapping.to)
  }
}
