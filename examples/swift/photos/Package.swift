// swift-tools-version: 5.9
import PackageDescription

let package = Package(
  name: "photos",
  platforms: [.macOS(.v11)],
  // In an application of yours: .package(url: "…", from: "2.0.0")
  dependencies: [.package(name: "darokleim", path: "../../..")],
  targets: [
    .executableTarget(name: "photos", dependencies: [.product(name: "Darokleim", package: "darokleim")])
  ],
  swiftLanguageVersions: [.version("6")]
)
