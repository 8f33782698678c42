// Copies the photos of every attached phone to a folder; the next time, only the new ones.
//
//   photos FOLDER
//
// Each phone gets a folder named by its serial. The phones are copied at the same time.
import Darokleim
import Foundation

@main
struct Photos {
  static func main() async {
    guard CommandLine.arguments.count == 2 else { fail("usage: photos FOLDER") }
    let folder = URL(fileURLWithPath: CommandLine.arguments[1], isDirectory: true)
    do {
      let client = try Client()
      let phones = try await client.devices().filter { $0.state == .ready }
      try await withThrowingTaskGroup(of: Void.self) { group in
        for phone in phones {
          group.addTask {
            try await copyPhotos(of: client.device(phone.serial), to: folder.appendingPathComponent(phone.serial))
          }
        }
        try await group.waitForAll()
      }
    } catch {
      fail("\(error)")
    }
  }

  static func copyPhotos(of phone: Device, to folder: URL) async throws {
    let progress = Progress(totalUnitCount: 0)
    let shown = Task {
      while !Task.isCancelled {
        try await Task.sleep(nanoseconds: 1_000_000_000)
        print(phone.serial, "\(Int(progress.fractionCompleted * 100)) %")
      }
    }
    defer { shown.cancel() }
    let done = try await phone.pull("/sdcard/DCIM", to: folder, .init(existing: .skipSame), progress: progress)
    print(phone.serial, "\(done.filesTransferred) new, \(done.filesSkipped) known")
  }

  static func fail(_ message: String) -> Never {
    FileHandle.standardError.write(Data("photos: \(message)\n".utf8))
    exit(1)
  }
}
