import Darokleim
import Foundation
import Testing

typealias Generation = SimulatedPhones.Generation

@Suite(.serialized) struct Files {
  @Test(arguments: Generation.allCases) func areListedWithEveryName(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    let folder: DevicePath = "/sdcard/t"
    let names: [DevicePath] = ["a photo.jpg", "it's $HOME;&", "-rf", "line\nbreak", DevicePath(bytes: [0xff, 0xfe, 0x41])]
    for name in names { try await phone.write(Data("12345".utf8), to: folder / name) }
    try await phone.makeFolder(folder / "empty")

    var found: [DevicePath: File] = [:]
    for try await file in phone.files(in: folder) { found[file.path.lastComponent] = file }
    #expect(Set(found.keys) == Set(names + ["empty"]))
    #expect(found["empty"]?.isFolder == true)
    for name in names {
      #expect(found[name]?.size == 5)
      #expect(found[name]?.kind == .file)
      let path = try #require(found[name]).path
      #expect(try await phone.read(path) == Data("12345".utf8))
    }
  }

  @Test(arguments: Generation.allCases) func sayWhatTheyAre(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    let modified = Date(timeIntervalSince1970: 1_600_000_000)
    try await phone.write(Data(count: 70_000), to: "/data/local/tmp/t/file", modified: modified)
    try await phone.shell("ln -s file /data/local/tmp/t/link; ln -s nowhere /data/local/tmp/t/dangling")
    let file = try await phone.file(at: "/data/local/tmp/t/file")
    #expect(file.size == 70_000)
    #expect(file.modified == modified)
    #expect(file.name == "file")
    let link = try await phone.file(at: "/data/local/tmp/t/link", followingLinks: false)
    #expect(link.kind == .link)
    #expect(link.linkTarget == "file")
    #expect(try await phone.file(at: "/data/local/tmp/t/link").kind == .file)
    #expect(try await phone.exists("/data/local/tmp/t/link"))
    #expect(try await !phone.exists("/data/local/tmp/t/dangling"))
    do {
      for try await _ in phone.files(in: "/data/local/tmp/t/none") {}
      Issue.record("it was listed")
    } catch DarokleimError.notFound(let details) {
      #expect(details.path == "/data/local/tmp/t/none")
      #expect(!details.isOnHost)
    }
    do {
      for try await _ in phone.files(in: "/data/local/tmp/t/file") {}
      Issue.record("it was listed")
    } catch DarokleimError.notADirectory {}
    do {
      _ = try await phone.file(at: "sdcard")
      Issue.record("a relative path was taken")
    } catch DarokleimError.invalidArgument {}
  }

  @Test(arguments: Generation.allCases) func areFoundInFoldersOfFolders(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    for (name, size) in [("a.jpg", 10), ("sub/b.JPG", 200), ("sub/deep/c.png", 3000), ("sub/deep/d.txt", 4)] {
      try await phone.write(Data(count: size), to: "/sdcard/w/\(name)")
    }
    func found(_ filter: FileFilter) async throws -> Set<String> {
      var names: Set<String> = []
      for try await file in phone.walk("/sdcard/w", matching: filter) { names.insert(file.name) }
      return names
    }
    #expect(try await found(FileFilter()) == ["a.jpg", "sub", "b.JPG", "deep", "c.png", "d.txt"])
    #expect(try await found(FileFilter(suffixes: ["jpg", "png"])) == ["a.jpg", "b.JPG", "c.png"])
    #expect(try await found(FileFilter(kinds: [.folder])) == ["sub", "deep"])
    #expect(try await found(FileFilter(kinds: [.file], sizes: 100...1000)) == ["b.JPG"])
    #expect(try await found(FileFilter(kinds: [.file], sizes: 0...0)) == [])
    #expect(try await found(FileFilter(kinds: [.file], maximumDepth: 1)) == ["a.jpg"])
    #expect(try await found(FileFilter(kinds: [.file], modifiedAfter: Date(timeIntervalSinceNow: 3600))) == [])
  }

  @Test(arguments: Generation.allCases) func areReadInParts(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    let content = Data((0..<300_000).map { UInt8(truncatingIfNeeded: $0 &* 31 &+ $0 >> 8) })
    try await phone.write(content, to: "/sdcard/large")
    #expect(try await phone.read("/sdcard/large", length: 100) == content.prefix(100))
    #expect(try await phone.read("/sdcard/large", from: 250_000, length: 20) == content[250_000..<250_020])
    #expect(try await phone.read("/sdcard/large", length: 0) == Data())
    var pieces = Data()
    var count = 0
    for try await piece in phone.contents(of: "/sdcard/large") {
      pieces += piece
      count += 1
    }
    #expect(pieces == content)
    #expect(count > 1)
  }

  @Test(arguments: Generation.allCases) func areWrittenMovedCopiedAndRemoved(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    try await phone.write(Data("old".utf8), to: "/sdcard/t/a")
    do {
      try await phone.write(Data("new".utf8), to: "/sdcard/t/a")
      Issue.record("it was replaced")
    } catch DarokleimError.exists(let details) {
      #expect(details.path == "/sdcard/t/a")
    }
    try await phone.write(Data("new".utf8), to: "/sdcard/t/a", replace: true)
    try await phone.copy("/sdcard/t/a", to: "/sdcard/t/b")
    try await phone.move("/sdcard/t/a", to: "/sdcard/t/c")
    #expect(try await phone.shell("cd /sdcard/t; cat b c; ls") == "newnewb\nc\n")
    try await phone.makeFolder("/sdcard/t/x/y", parents: true)
    do {
      try await phone.makeFolder("/sdcard/t/x")
      Issue.record("it was made")
    } catch DarokleimError.exists {}
    do {
      try await phone.remove("/sdcard/t/x")
      Issue.record("it was removed")
    } catch DarokleimError.notEmpty {}
    try await phone.remove("/sdcard/t", recursive: true)
    #expect(try await !phone.exists("/sdcard/t"))
    try await phone.write(Data(), to: "/data/local/tmp/mode")
    try await phone.setPermissions(0o750, of: "/data/local/tmp/mode")
    #expect(try await phone.file(at: "/data/local/tmp/mode").mode & 0o777 == 0o750)
  }
}
