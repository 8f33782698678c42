import Foundation
import Testing
import darokleim_client

@testable import Darokleim

@Suite struct Errors {
  @Test func haveACaseForEachCode() {
    var cases: Set<String> = []
    for number in 1..<UInt32(100) {
      let code = dk_code(rawValue: number)
      let name = String(cString: dk_code_name(code))
      guard name != "unknown", code != DK_CANCELLED, code != DK_STOPPED else { continue }
      let error = DarokleimError(code, nil)
      #expect(error.details.codeName == name)
      if case .other = error { Issue.record("\(name) has no case") }
      cases.insert("\(Mirror(reflecting: error).children.first?.label ?? "")")
    }
    #expect(cases.count == 33)
  }

  @Test func ofALaterLibraryAreKept() {
    guard case .other = DarokleimError(dk_code(rawValue: 4711), nil) else {
      Issue.record("not other")
      return
    }
  }

  @Test func sayThatThereIsNoServer() async throws {
    let client = try Client(server: .port(1))
    do {
      _ = try await client.devices()
      Issue.record("a server answered")
    } catch DarokleimError.noServer(let details) {
      #expect(details.message.contains("adb server"))
      #expect(details.codeName == "DK_NO_SERVER")
    }
  }
}
