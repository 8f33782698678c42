import darokleim_client

/// A device as the adb server lists it.
public struct DeviceInfo: Sendable, Hashable, Identifiable {
  public var serial: String
  public var state: DeviceState
  /// The state as the server words it.
  public var stateText: String
  public var link: DeviceLink
  /// These four are empty when not known, as for a device that is not ready.
  public var product: String
  public var model: String
  public var device: String
  public var usbPath: String
  /// New each time the device is attached; 0 when not known.
  public var transportID: UInt64

  public var id: String { serial }
}

public enum DeviceState: Sendable, Hashable, CaseIterable {
  /// A word that this version does not know: see ``DeviceInfo/stateText``.
  case unknown
  case ready
  case offline
  /// Its user has not allowed debugging for this computer.
  case unauthorized
  case authorizing
  case connecting
  case noPermissions
  case bootloader
  case recovery
  case rescue
  case sideload
  case detached
  case host
}

public enum DeviceLink: Sendable, Hashable {
  case unknown, usb, network, emulator
}

/// A change of what the adb server knows.
public enum DeviceChange: Sendable, Hashable {
  /// Also for each device that is there at the beginning.
  case added(DeviceInfo)
  /// Its state or its facts.
  case changed(DeviceInfo)
  /// With what was known last.
  case removed(DeviceInfo)
  /// The server ended; every device was reported as removed before.
  case serverLost
  /// There is a server; its devices follow as added.
  case serverFound

  /// The device, if it has become usable with this change, or may have: it is ready now.
  public var ready: DeviceInfo? {
    switch self {
    case .added(let device), .changed(let device): return device.state == .ready ? device : nil
    case .removed, .serverLost, .serverFound: return nil
    }
  }
}

extension DeviceInfo {
  init(_ info: dk_device_info) {
    serial = String(cString: info.serial)
    state = DeviceState(info.state)
    stateText = String(cString: info.state_text)
    link = DeviceLink(info.link)
    product = String(cString: info.product)
    model = String(cString: info.model)
    device = String(cString: info.device)
    usbPath = String(cString: info.usb_path)
    transportID = info.transport_id
  }
}

extension DeviceState {
  private static let pairs: [(DeviceState, dk_state)] = [
    (.unknown, DK_STATE_UNKNOWN), (.ready, DK_STATE_READY), (.offline, DK_STATE_OFFLINE),
    (.unauthorized, DK_STATE_UNAUTHORIZED), (.authorizing, DK_STATE_AUTHORIZING), (.connecting, DK_STATE_CONNECTING),
    (.noPermissions, DK_STATE_NO_PERMISSIONS), (.bootloader, DK_STATE_BOOTLOADER), (.recovery, DK_STATE_RECOVERY),
    (.rescue, DK_STATE_RESCUE), (.sideload, DK_STATE_SIDELOAD), (.detached, DK_STATE_DETACHED), (.host, DK_STATE_HOST),
  ]

  init(_ state: dk_state) {
    self = Self.pairs.first { $0.1 == state }?.0 ?? .unknown
  }

  var code: dk_state { Self.pairs.first { $0.0 == self }!.1 }
}

extension DeviceLink {
  init(_ link: dk_link) {
    switch link {
    case DK_LINK_USB: self = .usb
    case DK_LINK_NETWORK: self = .network
    case DK_LINK_EMULATOR: self = .emulator
    default: self = .unknown
    }
  }
}

extension DeviceChange {
  /// Nil for a change of a later version of the library.
  init?(_ change: dk_change, _ info: UnsafePointer<dk_device_info>?) {
    switch (change, info.map { DeviceInfo($0.pointee) }) {
    case (DK_DEVICE_ADDED, let device?): self = .added(device)
    case (DK_DEVICE_CHANGED, let device?): self = .changed(device)
    case (DK_DEVICE_REMOVED, let device?): self = .removed(device)
    case (DK_SERVER_LOST, _): self = .serverLost
    case (DK_SERVER_FOUND, _): self = .serverFound
    default: return nil
    }
  }
}
