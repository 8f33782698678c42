import Foundation
import darokleim_client

extension Device {
  /// A PNG of the screen.
  public func screenshot(timeout: Timeout? = nil) async throws -> Data {
    try await blocking(timeout: timeout) { [self] call in
      var png = dk_bytes()
      let code = dk_screenshot(raw, &png, call.options)
      let data = Data(taking: &png)
      try call.check(code)
      return data
    }
  }

  /// Types text into what has the focus. ASCII only: phones do not take more (``DarokleimError/invalidArgument(_:)``).
  /// It is in no log.
  public func type(_ text: String, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in try withCText(text) { dk_type_text(device, $0, call.options) } }
  }

  /// Presses a key: a number or a name of Android's KeyEvent, `KEYCODE_HOME`, `HOME` or `3`.
  public func press(_ key: String, timeout: Timeout? = nil) async throws {
    try await order(timeout) { device, call in try withCText(key) { dk_press_key(device, $0, call.options) } }
  }

  /// Taps at a place in pixels from the upper left.
  public func tap(x: Int, y: Int, timeout: Timeout? = nil) async throws {
    try await order(timeout) { dk_tap($0, Int32(clamping: x), Int32(clamping: y), $1.options) }
  }

  /// Swipes from one place to another, in pixels from the upper left.
  public func swipe(
    from start: (x: Int, y: Int), to end: (x: Int, y: Int), milliseconds: Int = 300, timeout: Timeout? = nil
  ) async throws {
    try await order(timeout) {
      dk_swipe(
        $0, Int32(clamping: start.x), Int32(clamping: start.y), Int32(clamping: end.x), Int32(clamping: end.y),
        Int32(clamping: milliseconds), $1.options)
    }
  }
}
