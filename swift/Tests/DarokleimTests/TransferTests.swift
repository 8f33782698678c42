import Darokleim
import Foundation
import Testing

@Suite(.serialized) struct Transfers {
  @Test(arguments: Generation.allCases) func takeATreeThereAndBack(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    let folder = try TemporaryFolder()
    for name in ["a photo.jpg", "it's $HOME;&", "sub/deep/-rf"] { try folder.write("tree/\(name)", name) }
    let progress = Progress(totalUnitCount: 0)
    let sent = try await phone.push(folder.file("tree"), to: "/sdcard/tree", progress: progress)
    #expect(sent.filesTransferred == 3)
    #expect(progress.isFinished)
    #expect(progress.totalUnitCount == Int64(sent.bytesTransferred))
    let fetched = try await phone.pull("/sdcard/tree", to: folder.file("back"))
    #expect(fetched.filesTransferred == 3)
    for name in ["a photo.jpg", "it's $HOME;&", "sub/deep/-rf"] { #expect(try folder.read("back/\(name)") == name) }
    let again = try await phone.pull("/sdcard/tree", to: folder.file("back"), .init(existing: .skipSame))
    #expect(again.filesSkipped == 3)
    #expect(again.bytesTransferred == 0)
  }

  @Test(arguments: Generation.allCases) func reportEachFileThatFails(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    let folder = try TemporaryFolder()
    try folder.write("a", "a")
    try folder.write("c", "c")
    let uploads = ["a", "b", "c"].map { Upload(folder.file($0), to: "/sdcard/t/\($0)") }
    do {
      try await phone.push(uploads, .init(keepGoing: true))
      Issue.record("all were sent")
    } catch DarokleimError.partlyDone(let failures, _) {
      #expect(failures.count == 1)
      guard case .notFound(let details)? = failures.first else {
        Issue.record("\(failures)")
        return
      }
      #expect(details.isOnHost)
      #expect(details.path?.text == folder.file("b").path)
    }
    #expect(try await phone.shell("cat /sdcard/t/a /sdcard/t/c") == "ac")
    do {
      try await phone.push(folder.file("a"), to: "/sdcard/t/a")
      Issue.record("it was replaced")
    } catch DarokleimError.exists(let details) {
      #expect(details.path == "/sdcard/t/a")
    }
    try await phone.push(folder.file("c"), to: "/sdcard/t/a", .init(existing: .replace))
    #expect(try await phone.shell("cat /sdcard/t/a") == "c")
  }

  @Test(arguments: Generation.allCases) func thatAreCancelledHarmNoOlderFile(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    let folder = try TemporaryFolder()
    let large = try folder.write("large", Data(repeating: 0x78, count: 64 << 20))
    try await phone.write(Data("old".utf8), to: "/sdcard/t/large")

    // By its task.
    let progress = Progress(totalUnitCount: 0)
    let push = Task { try await phone.push(large, to: "/sdcard/t/large", .init(existing: .replace), progress: progress) }
    try await begun(progress)
    push.cancel()
    await #expect(throws: CancellationError.self) { try await push.value }
    #expect(progress.completedUnitCount < progress.totalUnitCount)
    #expect(try await phone.shell("cat /sdcard/t/large; ls -a /sdcard/t | grep darokleim") == "old")

    // By its progress.
    try await phone.push(large, to: "/sdcard/t/large", .init(existing: .replace))
    try folder.write("target", "old")
    let other = Progress(totalUnitCount: 0)
    let pull = Task { [target = folder.file("target")] in
      try await phone.pull("/sdcard/t/large", to: target, .init(existing: .replace), progress: other)
    }
    try await begun(other)
    other.cancel()
    await #expect(throws: CancellationError.self) { try await pull.value }
    #expect(try folder.read("target") == "old")
    #expect(folder.names().sorted() == ["large", "target"])
  }

  @Test func ofATaskThatIsCancelledAlreadySendNothing() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    let phone = try phones.phone()
    let folder = try TemporaryFolder()
    let file = try folder.write("a", "a")
    let task = Task {
      while !Task.isCancelled { await Task.yield() }
      try await phone.push(file, to: "/sdcard/a")
    }
    task.cancel()
    await #expect(throws: CancellationError.self) { try await task.value }
    #expect(try await !phone.exists("/sdcard/a"))
    let progress = Progress(totalUnitCount: 0)
    progress.cancel()
    await #expect(throws: CancellationError.self) { try await phone.push(file, to: "/sdcard/a", progress: progress) }
    #expect(try await !phone.exists("/sdcard/a"))
  }

  @Test func keepTheCallersOwnHandler() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    let folder = try TemporaryFolder()
    let file = try folder.write("empty", "")
    let called = Shared(0)
    let progress = Progress(totalUnitCount: 0)
    progress.cancellationHandler = { called.change { $0 += 1 } }
    try await phones.phone().push(file, to: "/sdcard/empty", progress: progress)
    #expect(progress.isFinished)
    progress.cancel()
    while called.value == 0 { try await Task.sleep(nanoseconds: 1_000_000) }
    #expect(called.value == 1)
  }

  private func begun(_ progress: Progress) async throws {
    while progress.completedUnitCount == 0 { try await Task.sleep(nanoseconds: 1_000_000) }
  }
}
