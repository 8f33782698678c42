import Foundation
import darokleim_client

public struct Battery: Sendable, Hashable {
  /// Percent.
  public var level: Int?
  public var isCharging: Bool
  /// Degrees Celsius.
  public var temperature: Double
  public var millivolts: Int?
}

public struct Screen: Sendable, Hashable {
  /// Pixels.
  public var width: Int
  public var height: Int
  /// Dots per inch.
  public var density: Int
}

/// Bytes.
public struct Memory: Sendable, Hashable {
  public var total: UInt64
  public var available: UInt64
}

/// A storage volume. Sizes are in bytes.
public struct Volume: Sendable, Hashable {
  /// `/storage/emulated/0`, `/storage/1234-5678`
  public var path: DevicePath
  /// Not a card or a USB stick.
  public var isInternal: Bool
  public var total: UInt64
  public var used: UInt64
  public var free: UInt64
}

extension Device {
  /// All system properties, in one command.
  public func properties(timeout: Timeout? = nil) async throws -> [String: String] {
    try await blocking(timeout: timeout) { [self] call in
      let found: [(String, String)] = try collect { properties in
        let code = dk_properties(
          raw, { Receiver<(String, String)>.call($0, (String(cString: $1!), String(cString: $2!))) }, properties, call.options)
        try call.check(code)
      }
      return Dictionary(found) { _, last in last }
    }
  }

  public func battery(timeout: Timeout? = nil) async throws -> Battery {
    try await blocking(timeout: timeout) { [self] call in
      var battery = dk_battery()
      try call.check(dk_battery_get(raw, &battery, call.options))
      return Battery(
        level: battery.level < 0 ? nil : Int(battery.level), isCharging: battery.charging, temperature: battery.temperature,
        millivolts: battery.voltage_mv == 0 ? nil : Int(battery.voltage_mv))
    }
  }

  public func screen(timeout: Timeout? = nil) async throws -> Screen {
    try await blocking(timeout: timeout) { [self] call in
      var screen = dk_screen()
      try call.check(dk_screen_get(raw, &screen, call.options))
      return Screen(width: Int(screen.width), height: Int(screen.height), density: Int(screen.density))
    }
  }

  public func memory(timeout: Timeout? = nil) async throws -> Memory {
    try await blocking(timeout: timeout) { [self] call in
      var memory = dk_memory()
      try call.check(dk_memory_get(raw, &memory, call.options))
      return Memory(total: memory.total, available: memory.available)
    }
  }

  public func volumes(timeout: Timeout? = nil) async throws -> [Volume] {
    try await blocking(timeout: timeout) { [self] call in
      try collect { volumes in
        try call.check(dk_volumes(raw, { Receiver<Volume>.call($0, Volume($1!.pointee)) }, volumes, call.options))
      }
    }
  }
}

extension Volume {
  init(_ volume: dk_volume) {
    path = DevicePath(cString: volume.path)
    isInternal = volume.internal
    total = volume.total
    used = volume.used
    free = volume.free
  }
}
