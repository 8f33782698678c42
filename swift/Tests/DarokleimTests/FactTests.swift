import Darokleim
import Foundation
import Testing

@Suite(.serialized) struct Facts {
  @Test(arguments: Generation.allCases) func ofAPhoneAreKnown(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(["\(SimulatedPhones.serial),android=\(generation.rawValue),card=1234-5678"])
    defer { phones.stop() }
    let phone = try phones.phone()
    let properties = try await phone.properties()
    let model = try await phone.shell("getprop ro.product.model").trimmingCharacters(in: .newlines)
    #expect(properties["ro.product.model"] == model)
    let battery = try await phone.battery()
    #expect((1...100).contains(battery.level ?? 0))
    let screen = try await phone.screen()
    #expect(screen.width > 0 && screen.height > 0 && screen.density > 0)
    let memory = try await phone.memory()
    #expect(memory.total > memory.available && memory.available > 0)
    let volumes = try await phone.volumes()
    #expect(volumes.contains { $0.isInternal && $0.total >= $0.free })
    #expect(volumes.contains { $0.path == "/storage/1234-5678" && !$0.isInternal })
  }

  @Test(arguments: Generation.allCases) func ofTheScreenAndInput(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    #expect(try await phone.screenshot().prefix(8) == Data([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]))
    try await phone.type("it's 100%")
    try await phone.press("HOME")
    try await phone.tap(x: 10, y: 20)
    try await phone.swipe(from: (1, 2), to: (3, 4))
    let input = try phones.control(phone.serial, "show", "input")
    #expect(input.contains("it's"))
    do {
      try await phone.type("ü")
      Issue.record("it was typed")
    } catch DarokleimError.invalidArgument {}
  }

  @Test(arguments: Generation.allCases) func ofTheLogAreRecords(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    try await phone.shell("log -t MyTag -p e 'a first line'")
    var mine: [LogRecord] = []
    for try await record in phone.log(.init(filters: ["MyTag:V", "*:S"], stopsAtEnd: true)) { mine.append(record) }
    #expect(mine.map(\.text) == ["a first line"])
    #expect(mine.first?.level == .error)
    #expect(mine.first.map { abs($0.time.timeIntervalSinceNow) < 3600 } == true)

    // One that goes on, until its loop is left.
    let writing = Task {
      while !Task.isCancelled { _ = try await phone.shell("log -t Later later") }
    }
    for try await record in phone.log(.init(onlyNew: true)) where record.tag == "Later" {
      #expect(record.text == "later")
      break
    }
    writing.cancel()
    try await phone.clearLog()
  }

  @Test func ofPorts() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    let phone = try phones.phone()
    let port = try await phone.forward("tcp:0", to: "localabstract:one")
    #expect(port > 0)
    do {
      try await phone.forward("tcp:\(port)", to: "localabstract:two")
      Issue.record("it was replaced")
    } catch DarokleimError.addressInUse {}
    try await phone.forward("tcp:\(port)", to: "localabstract:two", replace: true)
    let mappings = try await phone.forwards()
    #expect(mappings.map(\.serial) == [phone.serial])
    #expect(mappings.map(\.from) == ["tcp:\(port)"])
    #expect(mappings.map(\.to) == ["localabstract:two"])
    try await phone.removeForward("tcp:\(port)")
    #expect(try await phone.forwards().isEmpty)
    try await phone.reverse("localabstract:x", to: "tcp:1")
    #expect(try await phone.reverses().map(\.from) == ["localabstract:x"])
    try await phone.removeAllReverses()
    #expect(try await phone.reverses().isEmpty)
  }
}
