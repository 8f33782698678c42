import Foundation
import darokleim_client

extension Device {
  /// Saves the data of an application, piece by piece. Keep the pieces only when the loop has ended without an error.
  ///
  /// The phone asks its user first. ``DarokleimError/commandFailed(_:)``: it saved nothing, because it was refused on its screen,
  /// or because the application forbids it.
  public func backup(_ package: String, timeout: Timeout? = nil) -> DeviceStream<Data> {
    DeviceStream(capacity: 16) { [self] sink in
      let receiver = Receiver<Data> { sink.send($0) }
      let call = Call(sink.token, timeout)
      try withExtendedLifetime(receiver) {
        try withCText(package) {
          let code = dk_backup(
            raw, $0,
            { user, bytes, count in
              Receiver<Data>.call(user, bytes.map { Data(bytes: $0, count: count) } ?? Data())
            }, receiver.pointer, call.options)
          try call.check(code)
        }
      }
    }
  }

  /// Sends a backup to the phone, which does not say whether its user agreed, nor whether it could read the backup.
  ///
  /// Throws ``DarokleimError/invalidArgument(_:)`` for data that do not begin as a backup does.
  public func restore(_ backup: Data, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in
      let reader = DataReader(backup)
      return withExtendedLifetime(reader) {
        dk_restore(device, { DataReader.at($0).read(into: $1, $2) }, reader.pointer, call.options)
      }
    }
  }

  /// Closes the question of a backup or a restore on the phone's screen, also of another program; it then ends.
  public func dismissBackup(timeout: Timeout? = nil) async throws {
    try await order(timeout) { dk_backup_dismiss($0, $1.options) }
  }
}
