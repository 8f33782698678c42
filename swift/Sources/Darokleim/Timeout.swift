/// How long a call may take.
///
/// ```swift
/// try await phone.wait(for: .ready, timeout: .seconds(30))
/// ```
public struct Timeout: Sendable, Hashable {
  let milliseconds: Int64

  /// Less than a millisecond counts as one.
  public static func milliseconds(_ count: Int) -> Timeout { Timeout(milliseconds: Int64(max(1, count))) }

  public static func seconds(_ count: Double) -> Timeout {
    let milliseconds = (count * 1000).rounded(.up)
    return Timeout(milliseconds: milliseconds < 1 ? 1 : Int64(exactly: min(milliseconds, 1e15)) ?? 1)
  }

  public static func minutes(_ count: Double) -> Timeout { seconds(count * 60) }
}
