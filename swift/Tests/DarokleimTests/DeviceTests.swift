import Darokleim
import Foundation
import Testing

@Suite(.serialized) struct Devices {
  @Test func areListedInEveryState() async throws {
    let phones = try SimulatedPhones(["R58M123ABC", "LOCKED42,state=unauthorized", "192.168.1.5:5555"])
    defer { phones.stop() }
    let client = try phones.client()
    let devices = Dictionary(uniqueKeysWithValues: try await client.devices().map { ($0.serial, $0) })
    #expect(devices.count == 3)
    #expect(devices["R58M123ABC"]?.state == .ready)
    #expect(devices["LOCKED42"]?.state == .unauthorized)
    #expect(devices["192.168.1.5:5555"]?.link == .network)
    #expect(try await client.serverVersion() == 41)
    do {
      _ = try await client.device()
      Issue.record("one was chosen")
    } catch DarokleimError.severalDevices {}
    do {
      _ = try await client.device("LOCKED42").run(["ls"])
      Issue.record("it answered")
    } catch DarokleimError.deviceUnauthorized {}
    do {
      _ = try await client.device("NOBODY").run(["ls"])
      Issue.record("it answered")
    } catch DarokleimError.noDevice(let details) {
      #expect(details.message.contains("NOBODY"))
    }
    try await client.disconnect(from: "192.168.1.5:5555")
    #expect(try await client.devices().count == 2)
    try await client.connect(to: "192.168.1.5:5555", timeout: .seconds(20))
    #expect(try await client.devices().count == 3)
  }

  @Test func areWatched() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    var seen: [String] = []
    for try await change in try phones.client().deviceChanges() {
      switch change {
      case .serverFound: seen.append("server")
      case .added(let device):
        seen.append("added \(device.serial)")
        if seen.count < 4 { try phones.control(device.serial, "unplug") }
      case .removed(let device):
        seen.append("removed \(device.serial)")
        try phones.control(device.serial, "plug")
      case .changed, .serverLost: break
      }
      if seen.count == 4 { break }
    }
    let serial = SimulatedPhones.serial
    #expect(seen == ["server", "added \(serial)", "removed \(serial)", "added \(serial)"])
  }

  @Test func areWatchedBeyondTheEndOfTheServer() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    var lost = false
    var removed = false
    for try await change in try phones.client().deviceChanges() {
      if case .added = change { phones.stop() }
      if case .removed = change { removed = true }
      if case .serverLost = change {
        lost = true
        break
      }
    }
    #expect(lost && removed)
  }

  @Test func aThousandAreReportedAsTheyComeAndGo() async throws {
    let server = try ScriptedServer()
    let thread = Thread {
      server.accept()
      let list = (0..<1000).map { "SERIAL\($0)\tdevice transport_id:\($0 + 1)\n" }.joined()
      server.send(list)
      server.send("")
      server.send(list)
    }
    thread.start()
    var added: [String] = []
    var removed = 0
    for try await change in try Client(server: .port(server.port)).deviceChanges() {
      if case .added(let device) = change { added.append(device.serial) }
      if case .removed = change { removed += 1 }
      if added.count == 2000 { break }
    }
    #expect(removed == 1000)
    #expect(Set(added).count == 1000)
    #expect(added.prefix(1000).elementsEqual((0..<1000).map { "SERIAL\($0)" }))
  }

  @Test func areWaitedFor() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    let phone = try phones.phone()
    try phones.control(phone.serial, "unplug")
    do {
      try await phone.wait(timeout: .milliseconds(100))
      Issue.record("it was there")
    } catch DarokleimError.timedOut {}
    async let ready: Void = phone.wait(timeout: .seconds(20))
    try phones.control(phone.serial, "plug")
    try await ready
    #expect(try await phone.state() == .ready)
  }

  @Test func areRestarted() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    let phone = try phones.phone()
    try await phone.shell("echo kept > /sdcard/kept")
    let client = try phones.client()
    let before = try await client.devices().first?.transportID
    try await phone.reboot()
    // It is attached anew.
    for try await change in client.deviceChanges() {
      if let device = change.ready, device.transportID != before { break }
    }
    #expect(try await phone.shell("cat /sdcard/kept") == "kept\n")
  }

  @Test func areGoneWithTheirServer() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    let client = try phones.client()
    try await client.stopServer()
    do {
      _ = try await client.devices()
      Issue.record("there is still a server")
    } catch DarokleimError.noServer {}
    #expect(Client.libraryVersion.split(separator: ".").count == 3)
  }
}
