// swift-tools-version: 5.9
// The Swift package. Where the client under it comes from, DAROKLEIM_CLIENT in the environment says:
//   source      (or not set) its C++ sources, which are compiled along
//   installed   an installed libdarokleim_client, which pkg-config finds as darokleim-client
//   PATH        an XCFramework inside this folder, as scripts/package --macos makes it
import PackageDescription

#if os(Linux)
  let otherSystem = "macos"
#else
  let otherSystem = "linux"
#endif

let client: Target
switch Context.environment["DAROKLEIM_CLIENT"] ?? "source" {
case "source":
  client = .target(
    name: "darokleim_client",
    path: "swift/Sources/darokleim_client",
    exclude: [
      "adb/CMakeLists.txt", "adb/README.md", "adb/system_\(otherSystem).cpp", "base/CMakeLists.txt",
      "client/CMakeLists.txt", "client/README.md", "client/transfer/host_names_\(otherSystem).cpp",
    ],
    cxxSettings: [.headerSearchPath("."), .headerSearchPath("../../../include")])
case "installed":
  client = .systemLibrary(name: "darokleim_client", path: "swift/InstalledClient", pkgConfig: "darokleim-client")
case let path:
  client = .binaryTarget(name: "darokleim_client", path: path)
}

let package = Package(
  name: "darokleim",
  platforms: [.macOS(.v11)],
  products: [.library(name: "Darokleim", targets: ["Darokleim"])],
  targets: [
    client,
    .target(name: "Darokleim", dependencies: ["darokleim_client"], path: "swift/Sources/Darokleim"),
    .testTarget(name: "DarokleimTests", dependencies: ["Darokleim", "darokleim_client"], path: "swift/Tests/DarokleimTests"),
  ],
  swiftLanguageVersions: [.v5, .version("6")],
  cxxLanguageStandard: .cxx20
)
