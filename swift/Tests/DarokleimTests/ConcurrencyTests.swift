import Darokleim
import Foundation
import Testing

/// What holds for every call: cancelling, many at once, nothing kept.
@Suite(.serialized) struct Calls {
  @Test func thatWaitHoldUpNoOther() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    let client = try phones.client()
    let absent = try client.device("ABSENT")
    let before = try await HostResources.settle(HostResources.threads, at: 12, seconds: 5)
    let waiting = (0..<200).map { _ in Task { try await absent.wait() } }
    let reached = try await HostResources.grow(HostResources.threads, to: 200)
    #expect(reached >= 200)
    // More calls than any pool of a few threads would have left room for.
    let began = Date()
    #expect(try await client.device(SimulatedPhones.serial).run(["echo", "on"]).text == "on\n")
    #expect(Date().timeIntervalSince(began) < 5)
    let cancelled = Date()
    waiting.forEach { $0.cancel() }
    for task in waiting { await #expect(throws: CancellationError.self) { try await task.value } }
    #expect(Date().timeIntervalSince(cancelled) < 5)
    #expect(try await HostResources.settle(HostResources.threads, at: before + 8) <= before + 8)
  }

  @Test func endAtOnceWhenTheirTaskIsCancelled() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    let phone = try phones.phone()
    let running = Task { try await phone.run(["sleep", "600"]) }
    let listing = Task { for try await _ in try phones.client().deviceChanges() {} }
    let reading = Task { for try await _ in phone.log() {} }
    try await Task.sleep(nanoseconds: 200_000_000)
    let cancelled = Date()
    running.cancel()
    listing.cancel()
    reading.cancel()
    await #expect(throws: CancellationError.self) { try await running.value }
    await #expect(throws: CancellationError.self) { try await listing.value }
    await #expect(throws: CancellationError.self) { try await reading.value }
    #expect(Date().timeIntervalSince(cancelled) < 2)
  }

  @Test func ofALoopThatIsSlowMakeThePhoneWait() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    var lines = 0
    for try await piece in try phones.phone().output(ofScript: "i=0; while [ $i -lt 20000 ]; do echo line $i; i=$((i+1)); done") {
      if case .output(let data) = piece { lines += data.filter { $0 == UInt8(ascii: "\n") }.count }
      if lines < 2000 { try await Task.sleep(nanoseconds: 1_000_000) }
    }
    #expect(lines == 20000)
  }

  @Test func leaveNothingBehind() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    let folder = try TemporaryFolder()
    let large = try folder.write("large", Data(count: 8 << 20))
    weak var clientOfBefore: Client?
    weak var phoneOfBefore: Device?

    func round() async throws {
      let client = try phones.client()
      let phone = try client.device(SimulatedPhones.serial)
      clientOfBefore = client
      phoneOfBefore = phone
      for try await _ in client.deviceChanges() { break }
      for try await _ in phone.files(in: "/") { break }
      for try await _ in phone.walk("/system") { break }
      for try await _ in phone.output(ofScript: "while :; do echo x; done") { break }
      try await phone.shell("log -t Mine text")
      for try await _ in phone.log() { break }
      let push = Task { try await phone.push(large, to: "/sdcard/large", .init(existing: .replace)) }
      try await Task.sleep(nanoseconds: 3_000_000)
      push.cancel()
      _ = await push.result
      let wait = Task { try await client.device("ABSENT").wait() }
      wait.cancel()
      _ = await wait.result
    }

    try await round()
    let threads = HostResources.threads() + 4
    let descriptors = try await HostResources.settle(HostResources.descriptors, at: 0, seconds: 1)
    for _ in 0..<20 { try await round() }
    #expect(try await HostResources.settle(HostResources.threads, at: threads) <= threads)
    #expect(try await HostResources.settle(HostResources.descriptors, at: descriptors) <= descriptors)
    for _ in 0..<100 where clientOfBefore != nil { try await Task.sleep(nanoseconds: 20_000_000) }
    #expect(clientOfBefore == nil)
    #expect(phoneOfBefore == nil)
    #expect(try await phones.phone().shell("ls -a /sdcard | grep darokleim") == "")
  }
}
