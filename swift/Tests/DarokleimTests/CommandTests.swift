import Darokleim
import Foundation
import Testing

@Suite(.serialized) struct Commands {
  @Test(arguments: Generation.allCases) func giveTheirOutputAndExitStatus(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    let output = try await phone.run(script: "echo out; echo err >&2; exit 3")
    #expect(output.exitStatus == 3)
    #expect(output.text == (generation == .legacy ? "out\nerr\n" : "out\n"))
    #expect(String(decoding: output.standardError, as: UTF8.self) == (generation == .legacy ? "" : "err\n"))
    let path = DevicePath(bytes: Array("/sdcard/it's ".utf8) + [0xff])
    try await phone.write(Data("123".utf8), to: path)
    #expect(try await phone.run(["cat", path]).text == "123")
    #expect(try await phone.run(["echo", "$HOME", "a  b"]).text == "$HOME a  b\n")
    let cut = try await phone.run(script: "echo 1234567890", limit: 4)
    #expect(cut.isCut)
    #expect(cut.text == "1234")
  }

  @Test func takeInput() async throws {
    let phones = try SimulatedPhones()
    defer { phones.stop() }
    #expect(try await phones.phone().run(["cat"], input: Data("input".utf8)).text == "input")
  }

  @Test(arguments: Generation.allCases) func areFollowed(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    var printed = Data()
    var status: Int?
    for try await piece in phone.output(ofScript: "for i in 1 2 3; do echo $i; done; exit 5") {
      switch piece {
      case .output(let data), .error(let data): printed += data
      case .end(let exitStatus): status = exitStatus
      }
    }
    #expect(printed == Data("1\n2\n3\n".utf8))
    #expect(status == 5)

    // One that never ends.
    for try await piece in phone.output(ofScript: "while :; do echo again; done") {
      if case .output = piece { break }
    }
  }
}
