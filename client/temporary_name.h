// Names of files and folders that are not whole yet, on the phone and on this computer.
#ifndef DAROKLEIM_CLIENT_TEMPORARY_NAME_H
#define DAROKLEIM_CLIENT_TEMPORARY_NAME_H

#include <cstdint>
#include <string>
#include <string_view>

namespace darokleim::client {

// A hidden name that no other call, process or computer uses: it names this computer and this process, and counts. It is in use as
// long as the object lives.
class TemporaryName {
 public:
  TemporaryName();
  ~TemporaryName();
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;

  const std::string& text() const { return text_; }

 private:
  const std::uint64_t number_;
  const std::string text_;
};

// Whether a name is one that is not in use any more: of a process of this computer that has ended, or of a call of this process that
// could not remove what it had made, because the phone was gone.
bool IsLeftOver(std::string_view name);

// What all of them begin with.
inline constexpr std::string_view kTemporaryPrefix = ".darokleim-";

// Whether it is a name of a temporary file, of whatever computer and process. Such files are not part of a folder that is transferred.
inline bool IsTemporary(std::string_view name) {
  return name.substr(0, kTemporaryPrefix.size()) == kTemporaryPrefix;
}

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TEMPORARY_NAME_H
