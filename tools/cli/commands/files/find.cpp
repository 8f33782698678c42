// darokleim find
#include <fnmatch.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "tools/cli/command_line/command.h"
#include "tools/cli/commands/commands.h"
#include "tools/cli/commands/files/entries.h"

namespace darokleim::cli {
namespace {

constexpr char kFooter[] = R"(Examples:
  darokleim find /sdcard --suffix jpg --suffix png    in upper or lower case
  darokleim find /sdcard/DCIM --name 'IMG_2024*'
  darokleim find /sdcard --type f --larger 100M --newer 7d
  darokleim find -0 /sdcard --suffix mp3 | xargs -0 -n 1 darokleim stat

Links are found and not followed. A folder that cannot be read is reported, the rest is searched, and the exit status is
1.)";

// "100", "20k", "1.5G": powers of 1024.
struct Size {
  static constexpr ValueKind kKind = ValueKind::kText;
  static Size Parse(const std::string& word) {
    constexpr std::string_view kUnits = "kmgt";
    std::size_t end = 0;
    double value = 0;
    const bool begins_with_digit = !word.empty() && word.front() >= '0' && word.front() <= '9';
    try {
      if (begins_with_digit) value = std::stod(word, &end);
    } catch (const std::exception&) {
      end = 0;
    }
    const std::string unit = word.substr(end);
    const auto power =
        unit.size() == 1 ? kUnits.find(static_cast<char>(unit[0] | 0x20)) : std::string_view::npos;
    constexpr double kMost = 1e18;
    if (end == 0 || (!unit.empty() && power == std::string_view::npos) || !(value < kMost)) {
      throw UsageError("\"" + word + "\" is not a size, for example 500, 20k, 100M or 1.5G.");
    }
    for (std::size_t i = 0; !unit.empty() && i <= power; ++i) value *= 1024;
    if (!(value < kMost)) throw UsageError("\"" + word + "\" is too large a size.");
    return {static_cast<std::uint64_t>(value)};
  }
  std::uint64_t bytes = 0;
};

// "7d", "24h", "30m", or a date of this computer's time zone: "2024-01-31", "2024-01-31 18:30:00".
struct PointInTime {
  static constexpr ValueKind kKind = ValueKind::kText;
  static PointInTime Parse(const std::string& word) {
    for (const char* format : {"%Y-%m-%d %H:%M:%S", "%Y-%m-%d %H:%M", "%Y-%m-%d"}) {
      tm parts{};
      parts.tm_isdst = -1;
      const char* const end = strptime(word.c_str(), format, &parts);
      if (end != nullptr && *end == '\0') return {mktime(&parts)};
    }
    constexpr std::size_t kMostDigits = 6;
    const std::string digits = word.substr(0, word.empty() ? 0 : word.size() - 1);
    const bool is_number = !digits.empty() && digits.size() <= kMostDigits &&
                           digits.find_first_not_of("0123456789") == std::string::npos;
    const std::int64_t unit = word.ends_with('d')   ? 86400
                              : word.ends_with('h') ? 3600
                              : word.ends_with('m') ? 60
                                                    : 0;
    if (!is_number || unit == 0) {
      throw UsageError("\"" + word +
                       "\" is not a time, for example 7d, 24h, 30m, 2024-01-31 or \"2024-01-31 18:30\".");
    }
    return {time(nullptr) - std::stoll(digits) * unit};
  }
  std::int64_t seconds = std::numeric_limits<std::int64_t>::min();
};

// "*.jpg" and ".jpg" mean jpg.
struct Suffix {
  static constexpr ValueKind kKind = ValueKind::kText;
  static Suffix Parse(std::string word) {
    word.erase(0, word.find_first_not_of("*."));
    if (word.empty() || word.find('/') != std::string::npos) {
      throw UsageError("\"" + word +
                       "\" is not a valid suffix: it must not be empty and must not contain /.");
    }
    return {word};
  }
  std::string text;
};

struct Options {
  bool zeros = false;
  std::string name, type;
  std::vector<Suffix> suffixes;
  Size larger;
  PointInTime newer;
  std::vector<PhonePath> folders;
};

void Describe(Command& command, Options& options) {
  command.Positional("FOLDER", options.folders, "Where to search on the device").Required();
  command.Option("--name", options.name, "Names like this, with * ? and [...] as in a shell")
      .Called("PATTERN");
  command.Option("--suffix", options.suffixes, "Files whose names end in this after a dot; may be repeated")
      .Called("SUFFIX");
  command.Option("--type", options.type, "Only files, folders (d) or links")
      .Called("TYPE")
      .OneOf({"f", "d", "l"});
  command.Option("--larger", options.larger, "Files of more than so many bytes: 500, 20k, 100M, 1.5G")
      .Called("SIZE");
  command
      .Option("--newer", options.newer,
              "Changed after this: 7d, 24h, 30m (ago), 2024-01-31, \"2024-01-31 18:30\"")
      .Called("TIME");
  command.Flag("-0,--null", options.zeros, "End each path with a zero byte instead of a line break");
}

dk::WalkOptions Filters(Tool& tool, const Options& options) {
  dk::WalkOptions walk;
  if (!options.type.empty()) {
    walk.types = 1u << (options.type == "f" ? DK_FILE : options.type == "d" ? DK_DIRECTORY : DK_LINK);
  }
  for (const auto& suffix : options.suffixes) walk.suffixes.push_back(suffix.text);
  walk.on_error = [&tool](const dk::Error& error) {
    tool.ReportFailure(error);
    return true;
  };
  return walk;
}

bool IsWanted(const dk_entry& entry, const Options& options) {
  if (!options.name.empty() && fnmatch(options.name.c_str(), entry.name, 0) != 0) return false;
  // A file whose size the phone does not say has 4 GiB or more.
  constexpr std::uint64_t kUnknownSize = std::uint64_t{4} << 30;
  const std::uint64_t size = entry.size_known ? entry.size : kUnknownSize;
  if (options.larger.bytes > 0 && (entry.type != DK_FILE || size <= options.larger.bytes)) return false;
  return entry.mtime > options.newer.seconds;
}

void Run(Tool& tool, const Options& options) {
  if (tool.is_json()) tool.document().BeginList("entries");
  const auto filters = Filters(tool, options);
  tool.ForEach(options.folders, [&](const PhonePath& folder) {
    const auto show = [&](const dk_entry& entry) {
      if (!IsWanted(entry, options)) return true;
      if (tool.is_json()) {
        tool.document().Add(EntryJson(dk::Entry(entry)));
      } else {
        tool.output().Append(options.zeros ? entry.path + std::string(1, '\0')
                                           : tool.output().Shown(entry.path) + "\n");
      }
      return true;
    };
    const auto walked = tool.phone().walk(folder.text, filters, show, tool.limits());
    if (!walked && walked.code() != DK_PARTLY_DONE) throw dk::Error(walked.error());
  });
}

}  // namespace

void AddFindCommand(Command& root) {
  AddCommand<Options>(root, {"find", "Find files on the device by name, type, size and time", kFooter},
                      Describe, Run);
}

}  // namespace darokleim::cli
