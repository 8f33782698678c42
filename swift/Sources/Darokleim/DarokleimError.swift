import darokleim_client

/// Why a call failed.
///
/// Cases come from the protocol, an errno or an exit status, never from words in an output.
///
/// ```swift
/// do {
///   try await phone.install([apk])
/// } catch DarokleimError.installFailed(let reason, let details) {
///   print(reason ?? "no reason given", details.words ?? "")  // INSTALL_FAILED_OLDER_SDK, and the phone's own words
/// } catch DarokleimError.noDevice {
///   print("The phone is gone.")
/// }
/// ```
///
/// A call whose task was cancelled, or whose `Progress` was cancelled, throws `CancellationError` instead.
public enum DarokleimError: Error, Sendable {
  // The caller's own doing.

  /// The limit in time was reached.
  case timedOut(Details)
  /// A relative path, a malformed address, a zero byte: nothing was sent.
  case invalidArgument(Details)
  case outOfMemory(Details)
  /// This computer has no descriptor, socket or thread left.
  case systemRefused(Details)

  // The way to the phone.

  /// No adb server answers, and none could be started.
  case noServer(Details)
  /// Not an adb server, or its answer breaks the protocol.
  case serverProtocol(Details)
  /// The server refused, for a reason without a case of its own; see ``Details/words``.
  case serverRefused(Details)
  /// The server does not know this serial.
  case noDevice(Details)
  /// No serial was given, and there are several devices.
  case severalDevices(Details)
  /// Attached, but does not answer; also while it restarts.
  case deviceOffline(Details)
  /// Its user has not allowed debugging for this computer.
  case deviceUnauthorized(Details)
  /// This computer's user may not open it (udev rules on Linux).
  case deviceNoPermissions(Details)
  /// The server or the phone went away during the call.
  case connectionLost(Details)

  // Files, the phone's and this computer's: see ``Details/isOnHost``.

  case notFound(Details)
  case accessDenied(Details)
  case notADirectory(Details)
  case isADirectory(Details)
  case exists(Details)
  case notEmpty(Details)
  case noSpace(Details)
  case readOnly(Details)
  case linkLoop(Details)
  case nameTooLong(Details)
  /// A name from the phone that would leave the target folder, or meet another file there.
  case unsafeName(Details)
  /// Any other errno; see ``Details/errno``.
  case fileError(Details)
  /// The file changed while it was read.
  case changed(Details)

  // What the phone's programs answer.

  /// An exit status other than 0; see ``Details/exitStatus``.
  case commandFailed(Details)
  /// An application was not installed or removed. The reason is Android's: `INSTALL_FAILED_OLDER_SDK`.
  case installFailed(reason: String?, Details)
  /// No application of this name is installed.
  case noPackage(Details)
  /// The phone's program answered in a form that is not known.
  case answerUnreadable(Details)
  /// This phone, or its server, cannot do that.
  case unsupported(Details)

  /// A port mapping exists already.
  case addressInUse(Details)

  /// Some of several items failed, each for its own reason; the others are done.
  case partlyDone([DarokleimError], Details)

  /// A code of a later version of the library.
  case other(Details)
}

extension DarokleimError {
  /// What the library knows about a failure.
  public struct Details: Sendable, Hashable {
    /// The library's code, for example `"DK_NO_DEVICE"`.
    public var codeName: String
    /// One plain English sentence: what was tried, what went wrong, what to do. It may be shown as it is.
    public var message: String
    /// The path that it is about.
    public var path: DevicePath?
    /// What the server or the phone said, in its own words.
    public var words: String?
    /// The errno, the phone's in Linux numbering or this computer's.
    public var errno: Int?
    /// Whether ``path`` and ``errno`` are this computer's and not the phone's.
    public var isOnHost = false
    /// The exit status of the phone's program.
    public var exitStatus: Int?
  }

  public var details: Details {
    switch self {
    case .timedOut(let details), .invalidArgument(let details), .outOfMemory(let details), .systemRefused(let details),
      .noServer(let details), .serverProtocol(let details), .serverRefused(let details), .noDevice(let details),
      .severalDevices(let details), .deviceOffline(let details), .deviceUnauthorized(let details),
      .deviceNoPermissions(let details), .connectionLost(let details), .notFound(let details),
      .accessDenied(let details), .notADirectory(let details), .isADirectory(let details), .exists(let details),
      .notEmpty(let details), .noSpace(let details), .readOnly(let details), .linkLoop(let details),
      .nameTooLong(let details), .unsafeName(let details), .fileError(let details), .changed(let details),
      .commandFailed(let details), .installFailed(_, let details), .noPackage(let details),
      .answerUnreadable(let details), .unsupported(let details), .addressInUse(let details),
      .partlyDone(_, let details), .other(let details):
      return details
    }
  }

  /// ``Details/message``.
  public var message: String { details.message }
}

extension DarokleimError: CustomStringConvertible {
  public var description: String { message }
}

extension DarokleimError {
  /// The error that the library left, which may be null where there was no memory for one.
  init(_ code: dk_code, _ error: OpaquePointer?, failures: [DarokleimError] = []) {
    var details = Details(codeName: String(cString: dk_code_name(code)), message: String(cString: dk_error_message(error)))
    details.path = dk_error_path(error).map { DevicePath(cString: $0) }
    details.words = dk_error_words(error).map { String(cString: $0) }
    details.errno = dk_error_errno(error) == 0 ? nil : Int(dk_error_errno(error))
    details.isOnHost = dk_error_on_host(error)
    details.exitStatus = dk_error_exit_status(error) < 0 ? nil : Int(dk_error_exit_status(error))
    self.init(code, details, reason: dk_error_reason(error).map { String(cString: $0) }, failures)
  }

  private init(_ code: dk_code, _ details: Details, reason: String?, _ failures: [DarokleimError]) {
    switch code {
    case DK_INSTALL_FAILED: self = .installFailed(reason: reason, details)
    case DK_PARTLY_DONE: self = .partlyDone(failures, details)
    default: self = (Self.cases[code.rawValue] ?? DarokleimError.other)(details)
    }
  }

  /// The cases that hold details and nothing else.
  private static let cases: [UInt32: @Sendable (Details) -> DarokleimError] = [
    DK_TIMED_OUT.rawValue: { .timedOut($0) },
    DK_INVALID_ARGUMENT.rawValue: { .invalidArgument($0) },
    DK_OUT_OF_MEMORY.rawValue: { .outOfMemory($0) },
    DK_SYSTEM_REFUSED.rawValue: { .systemRefused($0) },
    DK_NO_SERVER.rawValue: { .noServer($0) },
    DK_SERVER_PROTOCOL.rawValue: { .serverProtocol($0) },
    DK_SERVER_REFUSED.rawValue: { .serverRefused($0) },
    DK_NO_DEVICE.rawValue: { .noDevice($0) },
    DK_SEVERAL_DEVICES.rawValue: { .severalDevices($0) },
    DK_DEVICE_OFFLINE.rawValue: { .deviceOffline($0) },
    DK_DEVICE_UNAUTHORIZED.rawValue: { .deviceUnauthorized($0) },
    DK_DEVICE_NO_PERMISSIONS.rawValue: { .deviceNoPermissions($0) },
    DK_CONNECTION_LOST.rawValue: { .connectionLost($0) },
    DK_NOT_FOUND.rawValue: { .notFound($0) },
    DK_ACCESS_DENIED.rawValue: { .accessDenied($0) },
    DK_NOT_A_DIRECTORY.rawValue: { .notADirectory($0) },
    DK_IS_A_DIRECTORY.rawValue: { .isADirectory($0) },
    DK_EXISTS.rawValue: { .exists($0) },
    DK_NOT_EMPTY.rawValue: { .notEmpty($0) },
    DK_NO_SPACE.rawValue: { .noSpace($0) },
    DK_READ_ONLY.rawValue: { .readOnly($0) },
    DK_LINK_LOOP.rawValue: { .linkLoop($0) },
    DK_NAME_TOO_LONG.rawValue: { .nameTooLong($0) },
    DK_UNSAFE_NAME.rawValue: { .unsafeName($0) },
    DK_FILE_ERROR.rawValue: { .fileError($0) },
    DK_CHANGED.rawValue: { .changed($0) },
    DK_COMMAND_FAILED.rawValue: { .commandFailed($0) },
    DK_NO_PACKAGE.rawValue: { .noPackage($0) },
    DK_ANSWER_UNREADABLE.rawValue: { .answerUnreadable($0) },
    DK_UNSUPPORTED.rawValue: { .unsupported($0) },
    DK_ADDRESS_IN_USE.rawValue: { .addressInUse($0) },
  ]

  /// An argument that cannot be passed on: nothing was sent.
  static func invalidArgument(_ what: String) -> DarokleimError {
    .invalidArgument(Details(codeName: String(cString: dk_code_name(DK_INVALID_ARGUMENT)), message: what))
  }
}
