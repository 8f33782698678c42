// Lists the attached phones: serial, state, and of those that are ready, model and Android release.
//
//   devices RESOURCES
//
// RESOURCES is a folder with the programs adb (for this computer) and busybox (for the phone).
import Foundation
import darokleim

struct AdbError: Error, CustomStringConvertible {
  let code: Int32

  var description: String {
    switch code {
    case Int32(ADB_RESULT_DEVICE_UNAUTHORIZED.rawValue): return "allow USB debugging on the screen of the phone"
    case Int32(ADB_CHANNEL_CANNOT_START_ADB.rawValue): return "the adb in the resource folder cannot be started"
    default: return "error \(code)"
    }
  }
}

func check(_ code: Int32) throws {
  if code != Int32(ADB_RESULT_OK.rawValue) { throw AdbError(code: code) }
}

func start(resources: String) throws {
  // Any pointer that is valid as long as the process lives.
  let logContext = UnsafeMutableRawPointer.allocate(byteCount: 1, alignment: 1)
  setenv("DAROKLEIM_CHANNEL_ASSIST", "1", 0)  // phones of every generation, paths of every kind
  try check(AdbSdkInit(resources, logContext, NSTemporaryDirectory()))
}

func devices() throws -> [(serial: String, state: String)] {
  var list: UnsafeMutablePointer<CChar>? = nil
  var length: Int32 = 0
  defer { AdbFreeResource(&list) }
  try check(AdbGetDevicesEx(&list, &length, nil))
  guard let list = list else { return [] }
  return String(cString: list).split(separator: ";").compactMap { entry in
    let parts = entry.split(separator: "-", maxSplits: 1)
    return parts.count == 2 ? (String(parts[0]), String(parts[1])) : nil
  }
}

typealias PropertyReader = (
  UnsafePointer<CChar>?, UnsafeMutablePointer<CChar>?, Int32, UnsafePointer<Bool>?
) -> Int32

func property(_ read: PropertyReader, of serial: String) throws -> String {
  var buffer = [CChar](repeating: 0, count: 128)
  try check(read(serial, &buffer, Int32(buffer.count), nil))
  return String(decoding: buffer.prefix { $0 != 0 }.map(UInt8.init(bitPattern:)), as: UTF8.self)
}

guard CommandLine.arguments.count == 2 else {
  FileHandle.standardError.write("usage: devices RESOURCES\n".data(using: .utf8)!)
  exit(2)
}
do {
  try start(resources: CommandLine.arguments[1])
  for device in try devices() {
    guard device.state == "device" else {
      print(device.serial, device.state, separator: "\t")
      continue
    }
    let model = try property(AdbGetPhoneProductModel, of: device.serial)
    let release = try property(AdbGetPhoneSoftVersion, of: device.serial)
    print(device.serial, model, "Android \(release)", separator: "\t")
  }
} catch {
  FileHandle.standardError.write("devices: \(error)\n".data(using: .utf8)!)
  exit(1)
}
