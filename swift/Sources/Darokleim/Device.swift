import darokleim_client

/// One device, by its serial.
///
/// ```swift
/// let phone = try await client.device()  // the only one that is ready
/// for try await file in phone.files(in: "/sdcard/DCIM") {
///   print(file.name, file.size ?? 0)
/// }
/// ```
///
/// The device may come and go meanwhile. Any number of tasks may use it at the same time.
public final class Device: @unchecked Sendable {
  public let serial: String
  let raw: OpaquePointer
  private let client: Client  // which must outlive it

  init(_ device: OpaquePointer, of client: Client) {
    raw = device
    serial = String(cString: dk_device_serial(device))
    self.client = client
  }

  deinit { dk_device_free(raw) }

  /// Makes a call that has no result.
  func order(_ timeout: Timeout?, _ body: @escaping @Sendable (OpaquePointer, Call) throws -> dk_code) async throws {
    try await blocking(timeout: timeout) { [self] call in try call.check(try body(raw, call)) }
  }

  public func state(timeout: Timeout? = nil) async throws -> DeviceState {
    try await blocking(timeout: timeout) { [self] call in
      var state = DK_STATE_UNKNOWN
      try call.check(dk_device_state(raw, &state, call.options))
      return DeviceState(state)
    }
  }

  /// Waits until the device is in this state; one that is absent is waited for, too.
  public func wait(for state: DeviceState = .ready, timeout: Timeout? = nil) async throws {
    try await order(timeout) { dk_device_wait($0, state.code, $1.options) }
  }

  /// What a phone starts into.
  public enum BootTarget: String, Sendable {
    case android = ""
    case bootloader, recovery, sideload
    case sideloadAndReboot = "sideload-auto-reboot"
  }

  /// Returns when the phone has taken the order, not when it is back: wait for ``DeviceState/offline``, then for
  /// ``DeviceState/ready``.
  public func reboot(into target: BootTarget = .android, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in
      try withOptionalCText(target == .android ? nil : target.rawValue) { dk_device_reboot(device, $0, call.options) }
    }
  }

  /// Makes the server drop the device and look for it again; one that is unauthorized asks its user again.
  public func reconnect(timeout: Timeout? = nil) async throws {
    try await order(timeout) { dk_device_reconnect($0, $1.options) }
  }
}
