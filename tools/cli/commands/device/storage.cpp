// darokleim storage
#include <darokleim.h>
#include <json/value.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/device/argument_text.h"
#include "tools/cli/device/device_entry.h"
#include "tools/cli/device/library_block.h"
#include "tools/cli/output/human_text.h"
#include "tools/cli/output/json.h"
#include "tools/cli/output/table.h"
#include "tools/cli/tool.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim storage                    volumes, memory card, free space
  darokleim storage --json
  darokleim storage --free /data       free space of the storage that holds a path

The shared storage is where applications expect the user's files. Newer phones do not report which volume is a memory
card: it is the one that is not /storage/emulated/0.)";

struct Options {
  bool json = false;
  std::vector<DevicePath> paths;
};

void Describe(Command& command, Options& options) {
  command.Option("--free", options.paths, "Show only the free space at these paths").SeveralWords();
  command.JsonFlag(options.json,
                   "{shared, card, volumes: [{path, free}]}; with --free an array of {path, free}, in bytes");
}

struct Volume {
  std::string path;
  std::optional<std::uint64_t> free;
};

struct Storage {
  std::string shared;
  std::string card;  // empty without one, or where the device does not report it
  std::vector<Volume> volumes;
};

std::uint64_t ReadFree(const Device& device, const std::string& path) {
  unsigned long long bytes = 0;
  const std::string argument = ForBarePlace(path);
  device.Check(AdbGetStorageFreeSpace(device.serial(), argument.c_str(), &bytes, device.cancel()),
               "read the free space of " + path);
  return bytes;
}

std::string ReadShared(const Device& device) {
  char path[16] = "";
  const int code = AdbGetFirstSDCardPath(device.serial(), path, sizeof path, device.cancel());
  device.Check(code == ADB_RESULT_NO_SUCH_FILE ? ADB_RESULT_OK : code, "find the shared storage");
  return path;
}

std::string ReadCard(const Device& device) {
  LibraryBlock path;
  device.Check(AdbSearchExternalSDCardPath(device.serial(), path.text(), path.length(), device.cancel()),
               "find the memory card");
  return std::string(path.Text());
}

// A volume may be in the library's list twice.
std::vector<Volume> ReadVolumes(const Device& device) {
  LibraryBlock paths;
  device.Check(AdbSearchSDCardPath(device.serial(), paths.text(), paths.length(), device.cancel()),
               "list the storage volumes");
  const Json::Value list = ParseJson(paths.Text(), "a list of volumes");
  std::vector<Volume> volumes;
  for (const Json::Value& entry : list) {
    const std::string path = entry.asString();
    const auto is_known = [&path](const Volume& volume) { return volume.path == path; };
    if (std::none_of(volumes.begin(), volumes.end(), is_known)) volumes.push_back({path, std::nullopt});
  }
  return volumes;
}

Storage ReadStorage(const Device& device) {
  Storage storage{ReadShared(device), ReadCard(device), ReadVolumes(device)};
  for (auto& volume : storage.volumes) {
    // A card that was removed may still be listed.
    if (EntryExists(device, DevicePath(volume.path))) volume.free = ReadFree(device, volume.path);
  }
  return storage;
}

std::string FreeText(const Volume& volume) {
  return volume.free ? SizeText(*volume.free) + " free" : "not readable";
}

std::string ToText(const Output& output, const Storage& storage) {
  Table table;
  table.AddRow({"shared storage", storage.shared.empty() ? "none found" : output.Shown(storage.shared)});
  table.AddRow({"memory card", storage.card.empty() ? "unknown" : output.Shown(storage.card)});
  for (const auto& volume : storage.volumes) {
    table.AddRow({"volume", output.Shown(volume.path), FreeText(volume)});
  }
  return table.Text();
}

Json::Value ToJson(const std::vector<Volume>& volumes) {
  Json::Value list(Json::arrayValue);
  for (const auto& volume : volumes) {
    Json::Value& entry = list.append(Json::objectValue);
    entry["path"] = volume.path;
    entry["free"] = volume.free ? Json::Value(Json::UInt64(*volume.free)) : Json::Value();
  }
  return list;
}

Json::Value ToJson(const Storage& storage) {
  Json::Value json(Json::objectValue);
  json["shared"] = storage.shared.empty() ? Json::Value() : Json::Value(storage.shared);
  json["card"] = storage.card.empty() ? Json::Value() : Json::Value(storage.card);
  json["volumes"] = ToJson(storage.volumes);
  return json;
}

std::string ToText(const Output& output, const std::vector<Volume>& volumes) {
  Table table;
  for (const auto& volume : volumes) table.AddRow({FreeText(volume), output.Shown(volume.path)});
  return table.Text();
}

template <typename Result>
void Print(Tool& tool, const Result& result, bool as_json) {
  if (as_json) {
    tool.output().WriteJson(ToJson(result));
  } else {
    tool.output().Write(ToText(tool.output(), result));
  }
}

void Run(Tool& tool, const Options& options) {
  if (options.paths.empty()) {
    Print(tool, ReadStorage(tool.device()), options.json);
    return;
  }
  std::vector<Volume> volumes;
  for (const auto& path : options.paths) {
    RequireEntry(tool.device(), path, "read the free space of " + path.text());
    volumes.push_back({path.text(), ReadFree(tool.device(), path.text())});
  }
  Print(tool, volumes, options.json);
}

}  // namespace

void AddStorageCommand(Command& root) {
  AddCommand<Options>(root, {"storage", "Show the storage of the device and its free space", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli
