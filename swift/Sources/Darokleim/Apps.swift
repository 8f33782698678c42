import Foundation
import darokleim_client

/// An application on a phone.
public struct App: Sendable, Hashable, Identifiable {
  public var package: String
  public var versionName: String?
  public var versionCode: Int64?
  /// Came with the phone.
  public var isSystem: Bool
  public var isEnabled: Bool
  /// Bytes of its APKs; `nil` unless asked for.
  public var size: UInt64?
  public var apkPaths: [DevicePath]

  public var id: String { package }
}

/// Which applications are listed.
public enum AppSet: Sendable, Hashable {
  case all, user, system
}

/// How an application is installed.
public struct InstallOptions: Sendable, Hashable {
  /// An installed version is replaced and keeps its data.
  public var replace: Bool
  /// Also an older version.
  public var downgrade: Bool
  /// Grant all permissions that it asks for.
  public var grantPermissions: Bool
  /// Also one that is marked as for tests only.
  public var allowTestOnly: Bool

  public init(replace: Bool = true, downgrade: Bool = false, grantPermissions: Bool = false, allowTestOnly: Bool = false) {
    self.replace = replace
    self.downgrade = downgrade
    self.grantPermissions = grantPermissions
    self.allowTestOnly = allowTestOnly
  }
}

extension Device {
  /// All applications, in a few commands however many there are.
  ///
  /// - Parameter sizes: asks for the sizes of the APKs as well.
  public func apps(_ set: AppSet = .all, sizes: Bool = false, timeout: Timeout? = nil) async throws -> [App] {
    try await blocking(timeout: timeout) { [self] call in
      let found: [App] = try collect { apps in
        let code = dk_apps(raw, set.code, sizes, { Receiver<App>.call($0, App($1!.pointee)) }, apps, call.options)
        try call.check(code)
      }
      if sizes { return found }
      return found.map { app in
        var app = app
        app.size = nil
        return app
      }
    }
  }

  /// One application; ``DarokleimError/noPackage(_:)`` when it is not installed.
  public func app(_ package: String, timeout: Timeout? = nil) async throws -> App {
    try await blocking(timeout: timeout) { [self] call in
      var app: UnsafeMutablePointer<dk_app>?
      defer { dk_app_free(app) }
      try withCText(package) { try call.check(dk_app_get(raw, $0, &app, call.options)) }
      return App(app!.pointee)
    }
  }

  /// Installs one APK, or the several of one application together.
  ///
  /// Throws ``DarokleimError/installFailed(reason:_:)`` with Android's reason.
  public func install(
    _ apks: [URL], _ options: InstallOptions = InstallOptions(), progress: Progress? = nil, timeout: Timeout? = nil
  ) async throws {
    let token = try CancelToken()
    let report = ProgressReport(progress, token)
    defer { report.end() }
    try await blocking(timeout: timeout, token: token) { [self] call in
      let receiver = Receiver<(UInt64, UInt64)> { report.show(bytes: $0.0, of: $0.1) }
      try withExtendedLifetime(receiver) {
        var plain = dk_install_options()
        plain.size = MemoryLayout<dk_install_options>.size
        plain.replace = options.replace
        plain.downgrade = options.downgrade
        plain.grant = options.grantPermissions
        plain.test = options.allowTestOnly
        plain.user = receiver.pointer
        plain.on_progress = { Receiver<(UInt64, UInt64)>.call($0, ($1, $2)) }
        try withCTexts(try apks.map { try $0.fileSystemBytes() }) {
          try call.check(dk_app_install(raw, $0, $1, &plain, call.options))
        }
      }
      report.finish()
    }
  }

  public func uninstall(_ package: String, keepData: Bool = false, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in
      try withCText(package) { dk_app_uninstall(device, $0, keepData, call.options) }
    }
  }

  /// - Parameter activity: `nil` starts what the phone's launcher would.
  public func start(_ package: String, activity: String? = nil, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in
      try withCText(package) { package in try withOptionalCText(activity) { dk_app_start(device, package, $0, call.options) } }
    }
  }

  public func stop(_ package: String, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in try withCText(package) { dk_app_stop(device, $0, call.options) } }
  }

  /// Deletes the data of an application.
  public func clearData(of package: String, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in try withCText(package) { dk_app_clear(device, $0, call.options) } }
  }
}

// MARK: -

extension App {
  init(_ app: dk_app) {
    package = String(cString: app.package)
    versionName = app.version_name.pointee == 0 ? nil : String(cString: app.version_name)
    versionCode = app.version_code < 0 ? nil : app.version_code
    isSystem = app.system
    isEnabled = app.enabled
    size = app.size
    apkPaths = (0..<app.apk_count).map { DevicePath(cString: app.apk_paths[$0]!) }
  }
}

extension AppSet {
  var code: dk_app_set {
    switch self {
    case .all: return DK_ALL_APPS
    case .user: return DK_USER_APPS
    case .system: return DK_SYSTEM_APPS
    }
  }
}
