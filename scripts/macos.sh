# shellcheck shell=bash
# Building for macOS, natively or on Linux with Zig; sourced after common.sh.
: "${root:?}" "${cache:?}"

macos_target=11.0 # the oldest macOS that the binaries run on

# Prints the path of one of LLVM's programs, which Debian hides in a folder of the version.
llvm_program() {
  local found
  found=$(command -v "$1" || find /usr/lib/llvm-*/bin /opt/homebrew/opt/llvm/bin /usr/local/opt/llvm/bin -name "$1" 2>/dev/null |
    sort -V | tail -n 1)
  [ -n "$found" ] || die "$1 is needed: install LLVM"
  printf '%s\n' "$found"
}

# Only the header-only libraries: nothing else in the host's include directory is for macOS.
headers_for_macos() {
  local library folder=/usr/include
  if on_macos; then folder=$(brew --prefix)/include; fi
  mkdir -p "$cache/macos-headers"
  for library in spdlog fmt CLI; do
    ln -sfn "$folder/$library" "$cache/macos-headers/$library"
  done
  echo 'add_library(CLI11::CLI11 INTERFACE IMPORTED)' >"$cache/macos-headers/CLI11Config.cmake"
}

# build_for_macos TARGET: one processor, aarch64-macos or x86_64-macos, with Zig. The tree is build-macos/TARGET.
build_for_macos() {
  export ZIG_GLOBAL_CACHE_DIR=$cache/zig-cache ZIG_LOCAL_CACHE_DIR=$cache/zig-cache
  headers_for_macos
  configure_tree macos -B "build-macos/$1" -DDAROKLEIM_MACOS_TARGET="$1"
  cmake --build "build-macos/$1" --parallel "$(processors)"
}

# stage_for_macos TARGET FOLDER: installs a tree to a folder, with the static library of the SDK, which holds JsonCpp here.
stage_for_macos() {
  local tree=build-macos/$1
  rm -rf "$2"
  cmake --install "$tree" --prefix "$2" >/dev/null
  "$(llvm_program llvm-libtool-darwin)" -static -o "$2/lib/libdarokleim.a" "$tree/lib/libdarokleim.a" \
    "$tree/lib/libjsoncpp_from_source.a"
}

# join_for_macos FOLDER FIRST SECOND: the installed tree FIRST with each binary joined with that of SECOND.
join_for_macos() {
  local joined=$1 first=$2 second=$3 file
  rm -rf "$joined"
  mkdir -p "$joined"
  cp -a "$first/." "$joined"
  while read -r file; do
    rm "$joined/$file"
    "$(llvm_program llvm-lipo)" -create "$first/$file" "$second/$file" -output "$joined/$file"
  done < <(cd "$first" && find bin lib -type f \( -name '*.dylib' -o -name '*.a' -o -path 'bin/*' \))
}

# write_xcframework FRAMEWORK INSTALLED: the client as an XCFramework. The library keeps the file name of its install name.
write_xcframework() {
  local framework=$1 installed=$2 library slice=macos-arm64_x86_64
  library=$(basename "$(find "$installed/lib" -type l -name 'libdarokleim_client.[0-9]*.dylib')")
  local headers=$framework/$slice/Headers
  rm -rf "$framework"
  mkdir -p "$headers/darokleim" "$headers/darokleim_client"
  cp -L "$installed/lib/$library" "$framework/$slice/$library"
  cp "$installed/include/darokleim/client.h" "$installed/include/darokleim/client.hpp" "$headers/darokleim/"
  # In a folder of its own: Xcode copies the headers of all frameworks to one place.
  cat >"$headers/darokleim_client/module.modulemap" <<'END'
module darokleim_client {
  header "../darokleim/client.h"
  export *
}
END
  cat >"$framework/Info.plist" <<END
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
  <key>AvailableLibraries</key>
  <array>
    <dict>
      <key>BinaryPath</key>
      <string>$library</string>
      <key>HeadersPath</key>
      <string>Headers</string>
      <key>LibraryIdentifier</key>
      <string>$slice</string>
      <key>LibraryPath</key>
      <string>$library</string>
      <key>SupportedArchitectures</key>
      <array>
        <string>arm64</string>
        <string>x86_64</string>
      </array>
      <key>SupportedPlatform</key>
      <string>macos</string>
    </dict>
  </array>
  <key>CFBundlePackageType</key>
  <string>XFWK</string>
  <key>XCFrameworkFormatVersion</key>
  <string>1.0</string>
</dict>
</plist>
END
}

# build_universal_for_macos: leaves build-macos/universal, an installed tree whose binaries hold both processors.
build_universal_for_macos() {
  local target
  if on_macos; then
    [ -d "${DAROKLEIM_JSONCPP_SOURCE-}" ] ||
      die "DAROKLEIM_JSONCPP_SOURCE must name the source of JsonCpp: Homebrew's is for one processor"
    headers_for_macos
    configure_tree release -B build-macos/native "-DCMAKE_OSX_ARCHITECTURES=arm64;x86_64" \
      -DCMAKE_OSX_DEPLOYMENT_TARGET="$macos_target" -DDAROKLEIM_JSONCPP_SOURCE="$DAROKLEIM_JSONCPP_SOURCE" \
      -DDAROKLEIM_SPDLOG_INCLUDE="$cache/macos-headers" -DDAROKLEIM_FMT_INCLUDE="$cache/macos-headers" \
      -DCLI11_DIR="$cache/macos-headers" "-DCMAKE_CXX_FLAGS=-isystem $cache/macos-headers"
    cmake --build build-macos/native --parallel "$(processors)"
    stage_for_macos native build-macos/universal
    return
  fi
  for target in aarch64-macos x86_64-macos; do
    build_for_macos "$target"
    stage_for_macos "$target" "build-macos/staged/$target"
  done
  join_for_macos build-macos/universal build-macos/staged/aarch64-macos build-macos/staged/x86_64-macos
}

# package_for_macos: the archive and the XCFramework, in build-macos/packages.
package_for_macos() {
  local version name packages=$root/build-macos/packages
  version=$(sed -nE 's/^project\(darokleim VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
  name=darokleim-$version-macos
  rm -rf "$packages"
  mkdir -p "$packages"
  cp -a build-macos/universal "$packages/$name"
  write_xcframework "$packages/$name/Darokleim.xcframework" "$packages/$name"
  cmake -E chdir "$packages/$name" cmake -E tar cf "$packages/Darokleim.xcframework.zip" --format=zip Darokleim.xcframework
  tar -C "$packages" -czf "$packages/$name.tar.gz" "$name"
  rm -rf "${packages:?}/$name"
  cmake -E chdir "$packages" cmake -E sha256sum "$name.tar.gz" Darokleim.xcframework.zip
}
