import Foundation

#if canImport(Glibc)
  import Glibc
#endif

/// An adb server that follows a script: it accepts one connection, answers its request with OKAY, then sends what it is given.
final class ScriptedServer: @unchecked Sendable {
  let port: Int
  private let listening: Int32
  private let lock = NSLock()
  private var client: Int32 = -1

  init() throws {
    let listening = socket(AF_INET, Int32(SOCK_STREAM.rawValue), 0)
    self.listening = listening
    var address = sockaddr_in()
    address.sin_family = sa_family_t(AF_INET)
    address.sin_addr.s_addr = UInt32(0x7f00_0001).bigEndian
    var length = socklen_t(MemoryLayout<sockaddr_in>.size)
    let bound = withUnsafeMutablePointer(to: &address) { pointer in
      pointer.withMemoryRebound(to: sockaddr.self, capacity: 1) {
        bind(listening, $0, length) == 0 && listen(listening, 1) == 0 && getsockname(listening, $0, &length) == 0
      }
    }
    guard bound else { throw POSIXError(.EADDRNOTAVAIL) }
    port = Int(UInt16(bigEndian: address.sin_port))
  }

  deinit {
    if client >= 0 { close(client) }
    close(listening)
  }

  /// Takes a request and answers OKAY. Blocks.
  func accept() {
    let connection = Glibc.accept(listening, nil, nil)
    var request = [UInt8](repeating: 0, count: 4096)
    _ = read(connection, &request, request.count)
    lock.lock()
    client = connection
    lock.unlock()
    sendAll("OKAY")
  }

  /// Sends a text after its length in four hexadecimal digits.
  func send(_ text: String) { sendAll(String(format: "%04x", text.utf8.count) + text) }

  private func sendAll(_ text: String) {
    lock.lock()
    defer { lock.unlock() }
    var bytes = Array(text.utf8)[...]
    while !bytes.isEmpty {
      let sent = bytes.withUnsafeBytes { Glibc.send(client, $0.baseAddress, $0.count, Int32(MSG_NOSIGNAL)) }
      guard sent > 0 else { return }
      bytes = bytes.dropFirst(sent)
    }
  }
}
