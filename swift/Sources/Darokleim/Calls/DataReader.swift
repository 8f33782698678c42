import Foundation

/// Hands out what is sent to a phone, block by block.
final class DataReader {
  private var rest: Data

  init(_ data: Data) { rest = data }

  var pointer: UnsafeMutableRawPointer { Unmanaged.passUnretained(self).toOpaque() }

  static func at(_ user: UnsafeMutableRawPointer?) -> DataReader {
    Unmanaged<DataReader>.fromOpaque(user!).takeUnretainedValue()
  }

  func read(into buffer: UnsafeMutablePointer<CChar>?, _ capacity: Int) -> Int64 {
    guard let buffer else { return -1 }
    let count = rest.copyBytes(to: UnsafeMutableRawBufferPointer(start: buffer, count: capacity))
    rest = rest.dropFirst(count)
    return Int64(count)
  }
}
