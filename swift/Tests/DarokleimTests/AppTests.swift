import Darokleim
import Foundation
import Testing

@Suite(.serialized) struct Apps {
  private let notes = "com.example.notes"

  private func apk(_ name: String) -> URL {
    URL(fileURLWithPath: #filePath).appendingPathComponent("../../../../tests/phone/data/\(name)").standardizedFileURL
  }

  @Test(arguments: Generation.allCases) func areInstalledListedAndRemoved(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    do {
      _ = try await phone.app(notes)
      Issue.record("it is there")
    } catch DarokleimError.noPackage {}
    let progress = Progress(totalUnitCount: 0)
    try await phone.install([apk("notes-1.apk")], progress: progress)
    #expect(progress.isFinished)
    let app = try await phone.app(notes)
    #expect(app.versionName == "1.2.0-beta")
    #expect(app.versionCode == 1)
    #expect(!app.isSystem && app.isEnabled)
    #expect(app.apkPaths.count == 1)
    let own = try await phone.apps(.user, sizes: true)
    #expect(own.map(\.package) == [notes])
    #expect((own.first?.size ?? 0) > 0)
    #expect(try await phone.apps(.user).first?.size == nil)
    #expect(try await phone.apps().contains { $0.isSystem })

    try await phone.start(notes)
    #expect(try phones.control(phone.serial, "show", "activities").contains(notes))
    try await phone.stop(notes)
    try await phone.clearData(of: notes)
    try await phone.uninstall(notes)
    do {
      try await phone.uninstall(notes)
      Issue.record("it was there")
    } catch DarokleimError.noPackage {}
  }

  @Test(arguments: Generation.allCases) func sayWhyTheyAreNotInstalled(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    try await phone.install([apk("notes-2.apk")])
    do {
      try await phone.install([apk("notes-1.apk")])
      Issue.record("it was installed")
    } catch DarokleimError.installFailed(let reason, let details) {
      #expect(reason == "INSTALL_FAILED_VERSION_DOWNGRADE")
      #expect(details.words?.contains("INSTALL_FAILED_VERSION_DOWNGRADE") == true)
    }
    try await phone.install([apk("notes-1.apk")], .init(downgrade: true))
    #expect(try await phone.app(notes).versionCode == 1)
  }

  @Test(arguments: Generation.allCases) func areSavedAndRestored(_ generation: Generation) async throws {
    let phones = try SimulatedPhones(generation)
    defer { phones.stop() }
    let phone = try phones.phone()
    try await phone.install([apk("notes-1.apk")])
    var saved = Data()
    for try await piece in phone.backup(notes) { saved += piece }
    #expect(saved.starts(with: Data("ANDROID BACKUP".utf8)))
    try await phone.restore(saved)
    do {
      try await phone.restore(Data("something else".utf8))
      Issue.record("it was sent")
    } catch DarokleimError.invalidArgument {}
    try await phone.dismissBackup()
    do {
      for try await _ in phone.backup("com.example.absent") {}
      Issue.record("it was saved")
    } catch DarokleimError.noPackage {}
  }
}
