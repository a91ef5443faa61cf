// swift-tools-version:5.9
// The component as a Swift package, for devices. NOT BUILT on the system that this tree is tested on, which has neither
// Swift nor the device's SDK; a test there holds the lists of folders to the tree.
import PackageDescription

let package = Package(
  name: "TavloUtility",
  platforms: [.iOS(.v13)],
  products: [.library(name: "TavloUtility", targets: ["TavloUtility"])],
  targets: [
    .target(
      name: "TavloUtility",
      path: ".",
      exclude: [
        "platform/linux", "objc/CMakeLists.txt", "platform/CMakeLists.txt", "platform/apple/CMakeLists.txt",
        "common/CMakeLists.txt", "request/CMakeLists.txt", "cache/CMakeLists.txt", "identity/CMakeLists.txt",
        "location/CMakeLists.txt", "resources/CMakeLists.txt",
      ],
      sources: [
        "common", "platform", "request", "cache", "identity", "location", "resources", "objc",
      ],
      resources: [.copy("objc/PrivacyInfo.xcprivacy"), .copy("resources/TavloSDKResource.bundle")],
      publicHeadersPath: "objc",
      cxxSettings: [.headerSearchPath(".")],
      linkerSettings: [
        .linkedFramework("Foundation"), .linkedFramework("UIKit"), .linkedFramework("CoreLocation"),
      ]
    )
  ],
  cxxLanguageStandard: .cxx20
)
