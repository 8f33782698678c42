import Darokleim
import Foundation
import Testing

@Suite struct DevicePaths {
  @Test func areJoinedAndTakenApart() {
    let camera: DevicePath = "/sdcard/DCIM/Camera"
    #expect(camera / "a b.jpg" == "/sdcard/DCIM/Camera/a b.jpg")
    #expect("/" / "sdcard" == DevicePath("/sdcard"))
    #expect(camera.lastComponent == "Camera")
    #expect(camera.parent == "/sdcard/DCIM")
    #expect(DevicePath("/sdcard//DCIM//").parent == "/sdcard")
    #expect(DevicePath("/sdcard").parent == "/")
    #expect(DevicePath("/").parent == "/")
    #expect(DevicePath("/").lastComponent == "/")
    #expect(DevicePath("name").parent == ".")
    let number = 7
    #expect("/sdcard/\(number).jpg" as DevicePath == DevicePath("/sdcard/7.jpg"))
  }

  @Test func keepBytesThatAreNotText() {
    let path = DevicePath(bytes: Array("/sdcard/".utf8) + [0xff, 0xfe])
    #expect(path.text == nil)
    #expect(path.lastComponent.bytes == [0xff, 0xfe])
    #expect(path.description == "/sdcard/\u{fffd}\u{fffd}")
    #expect((path / "x").parent == path)
    #expect(DevicePath("/sdcard/ü").text == "/sdcard/ü")
  }

  @Test func areSortedByBytes() {
    #expect(DevicePath("/B") < "/a")
    #expect(DevicePath("/a") < "/a/b")
  }

  @Test func withAZeroByteAreRefused() async throws {
    let phone = try Client(server: .port(1)).device("NOBODY")
    await #expect(throws: DarokleimError.self) { try await phone.remove("/sdcard/photos\0.jpg") }
    do {
      try await phone.remove("/sdcard/photos\0.jpg")
    } catch DarokleimError.invalidArgument(let details) {
      #expect(details.codeName == "DK_INVALID_ARGUMENT")
    }
  }

  @Test func areQuotedForTheShell() throws {
    #expect(try Device.quoted("it's $HOME") == #"'it'\''s $HOME'"#)
  }
}
