// Where the tool keeps files of its own on the host.
#ifndef DAROKLEIM_TOOLS_CLI_HOST_HOST_DIRECTORIES_H
#define DAROKLEIM_TOOLS_CLI_HOST_HOST_DIRECTORIES_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

namespace darokleim::cli {

// $HOME, or what the system's user list says; nothing for a user without one.
std::optional<std::filesystem::path> HomeDirectory();

// For logs: $XDG_STATE_HOME/darokleim, ~/.local/state/darokleim or ~/Library/Logs/darokleim.
// Without a home: a directory of this user in the temporary directory.
std::filesystem::path StateDirectory();

// For files that can be made again: $XDG_CACHE_HOME/darokleim, ~/.cache/darokleim or ~/Library/Caches/darokleim.
// Nothing without a home.
std::optional<std::filesystem::path> CacheDirectory();

// A directory of this user in the temporary directory.
std::filesystem::path TemporaryUserDirectory();

// Of a text, the same in every run, which std::hash does not promise.
std::uint64_t StableHash(std::string_view text);

// Creates the directory and its parents where they are missing. Throws ToolError unless it then belongs to this
// user and nobody else can write in it.
void MakePrivateDirectory(const std::filesystem::path& directory);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_HOST_HOST_DIRECTORIES_H
