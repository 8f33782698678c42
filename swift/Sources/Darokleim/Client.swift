import Foundation
import darokleim_client

/// An adb server, and through it the devices.
///
/// ```swift
/// let client = try Client()
/// for device in try await client.devices() {
///   print(device.serial, device.state)
/// }
/// ```
///
/// Making one asks nobody and starts nothing. Any number of tasks may use it at the same time; no call blocks one of Swift's
/// own threads, and a task that is cancelled cancels its call at once.
public final class Client: @unchecked Sendable {
  let raw: OpaquePointer
  private let log: Receiver<String>?

  /// - Parameters:
  ///   - server: where the adb server is.
  ///   - adb: the adb program that starts a server where none answers. `nil`: none is started, and calls throw
  ///     ``DarokleimError/noServer(_:)``.
  ///   - log: called with each request to the server and its outcome, on any thread. Text that is typed on the phone
  ///     is left out.
  public init(server: AdbServer = .standard, adb: URL? = nil, log: (@Sendable (String) -> Void)? = nil) throws {
    let receiver = log.map { log in
      Receiver<String> {
        log($0)
        return true
      }
    }
    var options = dk_context_options()
    options.size = MemoryLayout<dk_context_options>.size
    if let receiver {
      options.log = { user, line in
        if let line { _ = Receiver<String>.call(user, String(cString: line)) }
      }
      options.log_user = receiver.pointer
    }
    let call = Call(nil, nil)
    var context: OpaquePointer?
    try withOptionalCText(server.text) { server in
      options.server = server
      guard let adb else { return try call.check(dk_context_new(&options, &context, call.options)) }
      try withCText(adb) { adb in
        options.adb_path = adb
        try call.check(dk_context_new(&options, &context, call.options))
      }
    }
    guard let context else { throw DarokleimError.invalidArgument("no context") }
    raw = context
    self.log = receiver
  }

  deinit { dk_context_free(raw) }

  /// The version of the server's protocol, 41 for adb 29 to 36.
  public func serverVersion(timeout: Timeout? = nil) async throws -> Int {
    try await blocking(timeout: timeout) { [self] call in
      var version: Int32 = 0
      try call.check(dk_server_version(raw, &version, call.options))
      return Int(version)
    }
  }

  /// Ends the server, for every program of the user: port mappings, streams and running commands end. Starts none;
  /// ``DarokleimError/noServer(_:)`` when none ran.
  public func stopServer(timeout: Timeout? = nil) async throws {
    try await blocking(timeout: timeout) { [self] call in try call.check(dk_server_stop(raw, call.options)) }
  }

  /// The version of the client library.
  public static var libraryVersion: String { String(cString: dk_version()) }

  /// All devices that the server knows, in every state.
  public func devices(timeout: Timeout? = nil) async throws -> [DeviceInfo] {
    try await blocking(timeout: timeout) { [self] call in
      try collect { found in
        let code = dk_devices(raw, { Receiver<DeviceInfo>.call($0, DeviceInfo($1!.pointee)) }, found, call.options)
        try call.check(code)
      }
    }
  }

  /// What is there, then each change as the server reports it, without polling.
  ///
  /// The first element is ``DeviceChange/serverFound``, as soon as there is a server, then every device that is there as
  /// ``DeviceChange/added(_:)``. It outlives the server: when that ends, a new one is looked for.
  public func deviceChanges() -> DeviceStream<DeviceChange> {
    DeviceStream { [self] sink in
      let receiver = Receiver<DeviceChange> { sink.send($0) }
      try withExtendedLifetime(receiver) {
        let call = Call(nil, nil)
        var watch: OpaquePointer?
        let code = dk_watch_start(
          raw,
          { user, change, info in
            guard let change = DeviceChange(change, info) else { return }
            _ = Receiver<DeviceChange>.call(user, change)
          }, receiver.pointer, &watch, call.options)
        try call.check(code)
        sink.waitForEnd()
        dk_watch_stop(watch)
      }
    }
  }

  /// The device with this serial. Nobody is asked, and it may come and go meanwhile.
  public func device(_ serial: String) throws -> Device {
    let call = Call(nil, nil)
    return try withCText(serial) { try open($0, call) }
  }

  /// The only device that is ready; ``DarokleimError/noDevice(_:)`` or ``DarokleimError/severalDevices(_:)`` otherwise.
  public func device(timeout: Timeout? = nil) async throws -> Device {
    try await blocking(timeout: timeout) { [self] call in try open(nil, call) }
  }

  private func open(_ serial: UnsafePointer<CChar>?, _ call: Call) throws -> Device {
    var device: OpaquePointer?
    try call.check(dk_device_open(raw, serial, &device, call.options))
    guard let device else { throw DarokleimError.invalidArgument("no device") }
    return Device(device, of: self)
  }

  /// Connects to a phone over the network: `HOST` or `HOST:PORT`, 5555 when left out. Connecting twice is not an error.
  public func connect(to address: String, timeout: Timeout? = nil) async throws {
    try await blocking(timeout: timeout) { [self] call in
      try withCText(address) { try call.check(dk_connect(raw, $0, call.options)) }
    }
  }

  public func disconnect(from address: String, timeout: Timeout? = nil) async throws {
    try await blocking(timeout: timeout) { [self] call in
      try withCText(address) { try call.check(dk_disconnect(raw, $0, call.options)) }
    }
  }

  /// Disconnects all phones of the network.
  public func disconnectAll(timeout: Timeout? = nil) async throws {
    try await blocking(timeout: timeout) { [self] call in try call.check(dk_disconnect(raw, nil, call.options)) }
  }

  /// Pairs with a phone by the address and the six digits that it shows (Android 11 or later).
  public func pair(with address: String, code: String, timeout: Timeout? = nil) async throws {
    try await blocking(timeout: timeout) { [self] call in
      try withCText(address) { address in
        try withCText(code) { try call.check(dk_pair(raw, address, $0, call.options)) }
      }
    }
  }
}

/// Where an adb server is.
public struct AdbServer: Sendable, Hashable {
  let text: String?

  /// Where adb itself looks: `ADB_SERVER_SOCKET` or `ANDROID_ADB_SERVER_PORT` in the environment, otherwise port 5037 of
  /// this computer.
  public static let standard = AdbServer(text: nil)

  public static func port(_ port: Int) -> AdbServer { AdbServer(text: "tcp:\(port)") }
  public static func host(_ host: String, port: Int) -> AdbServer { AdbServer(text: "tcp:\(host):\(port)") }
  /// A socket in the file system of this computer.
  public static func socket(_ path: String) -> AdbServer { AdbServer(text: "localfilesystem:\(path)") }
}
