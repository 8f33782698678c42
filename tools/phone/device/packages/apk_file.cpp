#include "tools/phone/device/packages/apk_file.h"

#include <minizip/unzip.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <optional>
#include <set>

#include "tools/phone/common/wire.h"
#include "tools/phone/device/packages/binary_xml.h"

namespace darokleim::phone {

namespace {

constexpr char kManifest[] = "AndroidManifest.xml";
constexpr ZPOS64_T kLargestManifest = 16 * 1024 * 1024;
// Ends the block before the central directory that holds the signatures since Android 7.
constexpr char kSigningBlockMagic[] = "APK Sig Block 42";

struct CloseArchive {
  void operator()(void* archive) const { unzClose(archive); }
};
using Archive = std::unique_ptr<void, CloseArchive>;

// Of the current entry.
std::optional<std::string> ReadContent(unzFile archive) {
  unz_file_info64 info;
  if (unzGetCurrentFileInfo64(archive, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK ||
      info.uncompressed_size > kLargestManifest || unzOpenCurrentFile(archive) != UNZ_OK)
    return std::nullopt;
  std::string content(info.uncompressed_size, '\0');
  const int count = unzReadCurrentFile(archive, content.data(), static_cast<unsigned>(content.size()));
  const bool is_whole = unzCloseCurrentFile(archive) == UNZ_OK;  // compares the checksum
  if (!is_whole || count != static_cast<int>(content.size())) return std::nullopt;
  return content;
}

std::optional<std::string> ReadEntry(unzFile archive, const char* name) {
  constexpr int kCaseCounts = 1;
  if (unzLocateFile(archive, name, kCaseCounts) != UNZ_OK) return std::nullopt;
  return ReadContent(archive);
}

std::string NameOfEntry(unzFile archive) {
  unz_file_info64 info;
  if (unzGetCurrentFileInfo64(archive, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) return "";
  std::string name(info.size_filename, '\0');
  if (unzGetCurrentFileInfo64(archive, nullptr, name.data(), static_cast<uLong>(name.size()), nullptr, 0,
                              nullptr, 0) != UNZ_OK)
    return "";
  return name;
}

bool EndsWith(const std::string& text, const std::string& ending) {
  return text.size() >= ending.size() &&
         text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

bool IsSignatureFile(const std::string& name) {
  return name.rfind("META-INF/", 0) == 0 &&
         (EndsWith(name, ".RSA") || EndsWith(name, ".DSA") || EndsWith(name, ".EC"));
}

bool HasSigningBlock(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string magic = kSigningBlockMagic;
  std::string window;
  std::vector<char> buffer(64 * 1024);
  while (file.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || file.gcount() > 0) {
    window.append(buffer.data(), static_cast<size_t>(file.gcount()));
    if (window.find(magic) != std::string::npos) return true;
    if (window.size() > magic.size()) window.erase(0, window.size() - magic.size());
  }
  return false;
}

// The second folder of lib/ABI/library.so.
std::string AbiOf(const std::string& name) {
  const std::vector<std::string> pieces = Split(name, '/');
  return pieces.size() == 3 && pieces[0] == "lib" && EndsWith(name, ".so") ? pieces[1] : "";
}

std::string Text(const XmlElement& element, const char* attribute) {
  const XmlAttribute* found = element.Find(attribute);
  return found == nullptr ? "" : found->text;
}

uint32_t Number(const XmlElement& element, const char* attribute, uint32_t otherwise) {
  const XmlAttribute* found = element.Find(attribute);
  return found == nullptr || found->is_text || found->is_reference ? otherwise : found->number;
}

// ".Main" and "Main" are in the package; "a.b.Main" stays as it is.
std::string FullClassName(const std::string& package, const std::string& name) {
  if (!name.empty() && name[0] == '.') return package + name;
  return name.find('.') == std::string::npos ? package + "." + name : name;
}

void ReadManifestElement(const XmlElement& manifest, ApkFile* apk) {
  apk->package = Text(manifest, "package");
  apk->split = Text(manifest, "split");
  apk->version_code = Number(manifest, "versionCode", 0);
  const XmlAttribute* name = manifest.Find("versionName");
  apk->version_name = name == nullptr || !name->is_text ? "null" : name->text;
}

// The activity that answers to MAIN and LAUNCHER is what the home screen starts.
void ReadActivities(const std::vector<XmlElement>& elements, ApkFile* apk) {
  std::string activity;
  bool main = false;
  for (const XmlElement& element : elements) {
    if (element.name == "activity" || element.name == "activity-alias") {
      activity = FullClassName(apk->package, Text(element, "name"));
      apk->activities.push_back(activity);
    } else if (element.name == "intent-filter") {
      main = false;
    } else if (element.name == "action" && Text(element, "name") == "android.intent.action.MAIN") {
      main = true;
    } else if (element.name == "category" && main && apk->main_activity.empty() &&
               Text(element, "name") == "android.intent.category.LAUNCHER") {
      apk->main_activity = activity;
    }
  }
}

bool ReadManifest(const std::string& bytes, ApkFile* apk) {
  const auto elements = ParseBinaryXml(bytes);
  if (!elements || elements->empty() || elements->front().name != "manifest") return false;
  ReadManifestElement(elements->front(), apk);
  for (const XmlElement& element : *elements) {
    if (element.name == "uses-sdk") {
      apk->min_sdk = Number(element, "minSdkVersion", 1);
      apk->target_sdk = Number(element, "targetSdkVersion", apk->min_sdk);
    } else if (element.name == "application") {
      apk->test_only = Number(element, "testOnly", 0) != 0;
    }
  }
  ReadActivities(*elements, apk);
  return true;
}

bool IsPackageName(const std::string& name) {
  if (name == "android") return true;
  if (name.find('.') == std::string::npos) return false;
  return std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_';
  });
}

}  // namespace

std::variant<ApkFile, std::string> ReadApk(const std::string& path) {
  const Archive archive(unzOpen64(path.c_str()));
  if (archive == nullptr) return "INSTALL_PARSE_FAILED_NOT_APK: Failed to parse " + path;
  const auto manifest = ReadEntry(archive.get(), kManifest);
  ApkFile apk;
  if (!manifest || !ReadManifest(*manifest, &apk)) {
    return "INSTALL_PARSE_FAILED_UNEXPECTED_EXCEPTION: Failed to parse " + path + ": " + kManifest;
  }
  if (!IsPackageName(apk.package)) return std::string("INSTALL_PARSE_FAILED_BAD_PACKAGE_NAME");

  std::set<std::string> abis;
  bool is_signed = false;
  for (int entry = unzGoToFirstFile(archive.get()); entry == UNZ_OK; entry = unzGoToNextFile(archive.get())) {
    const std::string name = NameOfEntry(archive.get());
    is_signed = is_signed || IsSignatureFile(name);
    if (const std::string abi = AbiOf(name); !abi.empty()) abis.insert(abi);
  }
  if (!is_signed && !HasSigningBlock(path)) {
    return "INSTALL_PARSE_FAILED_NO_CERTIFICATES: Failed to collect certificates from " + path +
           ": Attempt to get length of null array";
  }
  apk.abis.assign(abis.begin(), abis.end());
  return apk;
}

}  // namespace darokleim::phone
